// and MRBUnicodeString or std::string instead of const char*
#include "KVLKit.h"
KVL_FUNCTION("f", "text", "", [](const char* text) { return text != nullptr; });
