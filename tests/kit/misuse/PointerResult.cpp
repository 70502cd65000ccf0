// a function cannot return a pointer
#include "KVLKit.h"
KVL_FUNCTION("f", "", "", [] { return "text"; });
