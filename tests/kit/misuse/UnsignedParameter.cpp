// Take int, std::int64_t, kvl::Long (32 bits) or double instead.
#include "KVLKit.h"
KVL_FUNCTION("f", "number", "", [](unsigned number) { return number > 0; });
