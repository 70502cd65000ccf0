// a lambda that captures cannot be published
#include "KVLKit.h"
int base = 1;
KVL_FUNCTION("f", "", "", [captured = base] { return captured; });
