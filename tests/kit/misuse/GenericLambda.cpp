// write the types of its parameters
#include "KVLKit.h"
KVL_FUNCTION("f", "number", "", [](auto number) { return number; });
