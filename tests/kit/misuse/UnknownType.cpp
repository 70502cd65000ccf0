// Add, at global scope before its first use: KVL_TYPE(T,
#include "KVLKit.h"
struct Colour {};
KVL_FUNCTION("f", "colour", "", [](const Colour&) {});
