// a variable is of a plain type
#include "KVLKit.h"
KVL_VARIABLE("anything", kvl::Any(), "");
