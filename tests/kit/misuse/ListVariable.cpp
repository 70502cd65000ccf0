// a variable is of a plain type
#include "KVLKit.h"
KVLVector<double> numbers;
KVL_VARIABLE("numbers", &numbers, "");
