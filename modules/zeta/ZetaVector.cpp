#include <cmath>
#include <stdexcept>

#include "ZetaTypes.h"

namespace {

using zeta::Direction;
using zeta::Vector;

Vector Scaled(const Vector& vector, double factor) {
  return Vector() + vector * factor;  // never a negative 0
}

Vector Sum(const Vector& a, const Vector& b) {
  return a + b;
}

Direction Normalized(const Vector& vector) {
  Direction direction;
  if (!zeta::Normalize(vector, direction)) {
    throw std::domain_error("the vector has no direction");
  }
  return direction;
}

// Exact to the last digits where the cosine is not: near 0 and near pi.
double Angle(const Vector& a, const Vector& b) {
  const Vector u = zeta::AsVector(Normalized(a));
  const Vector v = zeta::AsVector(Normalized(b));
  return 2 * std::atan2(zeta::Length(u + v * -1), zeta::Length(u + v));
}

Direction Reversed(const Direction& direction) {
  return Direction{0 - direction.x, 0 - direction.y, 0 - direction.z};
}

}  // namespace

KVL_DOC("_members/Vector", "What is asked of vectors.");
KVL_DOC("_members/Direction", "What is asked of directions.");

KVL_FUNCTION("_members/Vector/Length", "this", "The length.", zeta::Length);
KVL_FUNCTION("_members/Vector/Scaled", "this, factor", "The vector, that many times as long.",
             Scaled);
KVL_FUNCTION("_members/Vector/Plus", "this, other", "The sum with the other vector.", Sum);
KVL_FUNCTION("_members/Direction/Reversed", "this", "The opposite direction.", Reversed);

KVL_FUNCTION("geom/length", "vector", "The length of the vector.", zeta::Length);
KVL_FUNCTION("geom/dot", "a, b", "The scalar product of two vectors.", zeta::Dot);
KVL_FUNCTION("geom/cross", "a, b", "The vector product of two vectors.", zeta::Cross);
KVL_FUNCTION(
    "geom/angle", "a, b",
    "The angle between two vectors, in radians from 0 to pi. Fails when one of them has no "
    "direction.",
    Angle);
KVL_FUNCTION("geom/normalize", "vector",
             "The direction of the vector. Fails when it has none: for length 0, and for numbers "
             "that are not finite.",
             Normalized);
