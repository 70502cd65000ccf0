// Publish a function, a method or a lambda
#include "KVLKit.h"
KVL_FUNCTION("f", "", "", 7);
