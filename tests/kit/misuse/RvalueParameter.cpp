// a parameter cannot be T&&
#include "KVLKit.h"
KVL_FUNCTION("f", "number", "", [](int&& number) { return number; });
