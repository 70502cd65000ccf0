#include "ZetaTypes.h"

namespace {

enum class Axis { X, Y, Z };

zeta::Direction DirectionOf(const Axis& axis) {
  return zeta::Direction{axis == Axis::X ? 1.0 : 0.0, axis == Axis::Y ? 1.0 : 0.0,
                         axis == Axis::Z ? 1.0 : 0.0};
}

}  // namespace

KVL_ENUM(Axis, "Axis", X, Y, Z);
KVL_DOC("_types/Axis", "One of the three axes of space: X, Y or Z.");
KVL_DOC("geom/axis", "The axes of space.");

KVL_FUNCTION("geom/axis/direction", "axis", "The direction in which the axis grows.", DirectionOf);

KVL_CONVERSION(Axis, MRBUnicodeString);
KVL_CONVERSION(MRBUnicodeString, Axis);
KVL_CONVERSION_WITH(Axis, zeta::Direction, DirectionOf);
