// takes const From& and returns To
#include "KVLKit.h"
KVL_CONVERSION_WITH(int, double, [](const double& from) { return from; });
