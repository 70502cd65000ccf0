#ifndef ZETA_TYPES_H
#define ZETA_TYPES_H

#include "KVLKit.h"

/// What the module's types hold, and their text forms. A number may be anything that a double
/// holds, unless a type says otherwise. `Parse` and `Print` are those that the kit's records use.
namespace zeta {

/// "(x, y, z)", or "(x, y)" where z is 0.
struct Point {
  double x = 0;
  double y = 0;
  double z = 0;
};

/// "(x, y, z)"; "(x, y)" is read too.
struct Vector {
  double x = 0;
  double y = 0;
  double z = 0;
};

/// A vector of length 1, to the last digits. A text that gives another length is brought to 1; what
/// has no direction is refused: length 0, and numbers that are not finite.
struct Direction {
  double x = 1;
  double y = 0;
  double z = 0;
};

/// All points between two corners, these included: "((0, 0), (1, 1, 1))". The corners are read in
/// any order. A box without points is "()".
struct Box {
  Box();
  bool IsEmpty() const { return low.x > high.x; }

  Point low;
  Point high;
};

/// An affine transformation, told by where it takes the three axes and the origin:
/// "((1, 0, 0), (0, 1, 0), (0, 0, 1), (0, 0, 0))" moves nothing.
struct Transform {
  Vector x{1, 0, 0};
  Vector y{0, 1, 0};
  Vector z{0, 0, 1};
  Vector origin;
};

inline Vector operator+(const Vector& a, const Vector& b) {
  return Vector{a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vector operator*(const Vector& vector, double factor) {
  return Vector{vector.x * factor, vector.y * factor, vector.z * factor};
}
inline Point operator+(const Point& point, const Vector& by) {
  return Point{point.x + by.x, point.y + by.y, point.z + by.z};
}
inline Vector operator-(const Point& to, const Point& from) {
  return Vector{to.x - from.x, to.y - from.y, to.z - from.z};
}
inline Vector AsVector(const Direction& direction) {
  return Vector{direction.x, direction.y, direction.z};
}

double Length(const Vector& vector);
double Dot(const Vector& a, const Vector& b);
Vector Cross(const Vector& a, const Vector& b);
/// False, and `direction` is untouched, when the vector has no direction.
bool Normalize(const Vector& vector, Direction& direction);

bool Parse(const MRBUnicodeString& text, Point& point);
bool Parse(const MRBUnicodeString& text, Vector& vector);
bool Parse(const MRBUnicodeString& text, Direction& direction);
bool Parse(const MRBUnicodeString& text, Box& box);
bool Parse(const MRBUnicodeString& text, Transform& transform);
MRBUnicodeString Print(const Point& point);
MRBUnicodeString Print(const Vector& vector);
MRBUnicodeString Print(const Direction& direction);
MRBUnicodeString Print(const Box& box);
MRBUnicodeString Print(const Transform& transform);

}  // namespace zeta

KVL_TYPE_TRAITS(zeta::Point, "Point", zeta::Parse, zeta::Print);
KVL_TYPE_TRAITS(zeta::Vector, "Vector", zeta::Parse, zeta::Print);
KVL_SUBTYPE_TRAITS(zeta::Direction, "Direction", "Vector", zeta::Parse, zeta::Print);
KVL_TYPE_TRAITS(zeta::Box, "Box", zeta::Parse, zeta::Print);
KVL_TYPE_TRAITS(zeta::Transform, "Transform", zeta::Parse, zeta::Print);

#endif
