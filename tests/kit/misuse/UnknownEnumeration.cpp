// or, for an enumeration:
#include "KVLKit.h"
enum class Axis { X };
KVL_FUNCTION("f", "", "", [] { return Axis::X; });
