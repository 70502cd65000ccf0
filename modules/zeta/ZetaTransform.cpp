#include <cmath>
#include <stdexcept>

#include "ZetaTypes.h"

namespace {

using zeta::Cross;
using zeta::Direction;
using zeta::Dot;
using zeta::Point;
using zeta::Transform;
using zeta::Vector;

// The sum begins with 0, so that it is never a negative 0.
Vector OnVector(const Transform& transform, const Vector& vector) {
  return Vector() + transform.x * vector.x + transform.y * vector.y + transform.z * vector.z;
}

Point OnPoint(const Transform& transform, const Point& point) {
  return Point() + (OnVector(transform, point - Point()) + transform.origin);
}

KVLVector<Point> OnPoints(const Transform& transform, const KVLVector<Point>& points) {
  KVLVector<Point> moved;
  moved.Reserve(points.GetCount());
  for (const Point& point : points)
    moved.Append(OnPoint(transform, point));
  return moved;
}

Transform Composed(const Transform& first, const Transform& second) {
  Transform both;
  both.x = OnVector(second, first.x);
  both.y = OnVector(second, first.y);
  both.z = OnVector(second, first.z);
  both.origin = OnVector(second, first.origin) + second.origin;
  return both;
}

double Determinant(const Transform& transform) {
  return Dot(transform.x, Cross(transform.y, transform.z));
}

double Greatest(const Vector& vector) {
  return std::fmax(std::abs(vector.x), std::fmax(std::abs(vector.y), std::abs(vector.z)));
}

Vector TimesPowerOfTwo(const Vector& vector, int exponent) {
  return Vector{std::scalbn(vector.x, exponent), std::scalbn(vector.y, exponent),
                std::scalbn(vector.z, exponent)};
}

[[noreturn]] void FailToInvert() {
  throw std::domain_error("the transformation has no inverse");
}

// The rows of the inverse are the cross products of the columns, over the determinant.
Transform Inverted(const Transform& transform) {
  const double greatest =
      std::fmax(Greatest(transform.x), std::fmax(Greatest(transform.y), Greatest(transform.z)));
  if (greatest == 0 || !std::isfinite(greatest)) FailToInvert();
  // By a power of two, which rounds nothing, so that the determinant, a product of three, neither
  // grows beyond all numbers nor vanishes.
  const int exponent = -std::ilogb(greatest);
  Transform scaled;
  scaled.x = TimesPowerOfTwo(transform.x, exponent);
  scaled.y = TimesPowerOfTwo(transform.y, exponent);
  scaled.z = TimesPowerOfTwo(transform.z, exponent);
  const double determinant = Determinant(scaled);
  if (determinant == 0 || !std::isfinite(1 / determinant)) FailToInvert();
  const Vector rows[] = {TimesPowerOfTwo(Cross(scaled.y, scaled.z) * (1 / determinant), exponent),
                         TimesPowerOfTwo(Cross(scaled.z, scaled.x) * (1 / determinant), exponent),
                         TimesPowerOfTwo(Cross(scaled.x, scaled.y) * (1 / determinant), exponent)};
  for (const Vector& row : rows)
    if (!std::isfinite(Greatest(row))) FailToInvert();
  Transform inverse;
  inverse.x = Vector() + Vector{rows[0].x, rows[1].x, rows[2].x};
  inverse.y = Vector() + Vector{rows[0].y, rows[1].y, rows[2].y};
  inverse.z = Vector() + Vector{rows[0].z, rows[1].z, rows[2].z};
  inverse.origin = Vector() + OnVector(inverse, transform.origin) * -1;
  return inverse;
}

Transform Identity() {
  return Transform();
}

Transform Translation(const Vector& by) {
  Transform transform;
  transform.origin = by;
  return transform;
}

// The linear part, moved so that the center stays where it is.
Transform About(const Point& center, Transform linear) {
  linear.origin = Vector();
  linear.origin = center - OnPoint(linear, center);
  return linear;
}

Vector Rotated(const Vector& vector, const Vector& axis, double cosine, double sine) {
  return vector * cosine + Cross(axis, vector) * sine + axis * (Dot(axis, vector) * (1 - cosine));
}

Transform Rotation(const Direction& direction, double angle, const Point& center) {
  if (!std::isfinite(angle)) throw std::invalid_argument("the angle must be finite");
  const Vector axis = zeta::AsVector(direction);
  const double cosine = std::cos(angle);
  const double sine = std::sin(angle);
  Transform transform;
  transform.x = Rotated(transform.x, axis, cosine, sine);
  transform.y = Rotated(transform.y, axis, cosine, sine);
  transform.z = Rotated(transform.z, axis, cosine, sine);
  return About(center, transform);
}

Transform Scaling(double factor, const Point& center) {
  Transform transform;
  transform.x.x = transform.y.y = transform.z.z = factor;
  return About(center, transform);
}

}  // namespace

KVL_DOC("geom/transform", "Affine transformations of space.");
KVL_DOC("_members/Transform", "What is asked of transformations.");

KVL_FUNCTION("_members/Transform/Apply", "this, point", "Where the point is taken.", OnPoint);
KVL_FUNCTION("_members/Transform/Then", "this, next", "This transformation, then the next.",
             Composed);
KVL_FUNCTION("_members/Transform/Inverted", "this",
             "The transformation that undoes this one. Fails when there is none.", Inverted);
KVL_FUNCTION("_members/Transform/Determinant", "this",
             "How many times larger volumes become; negative where left and right change places.",
             Determinant);

KVL_FUNCTION("geom/transform/identity", "", "The transformation that moves nothing.", Identity);
KVL_FUNCTION("geom/transform/translation", "by", "Moves everything alike.", Translation);
KVL_FUNCTION("geom/transform/rotation", "axis, angle, center = (0, 0)",
             "Turns about the axis through the center by an angle in radians, counter-clockwise "
             "for who looks against the axis.",
             Rotation);
KVL_FUNCTION("geom/transform/scaling", "factor, center = (0, 0)",
             "Makes everything larger by the factor, seen from the center.", Scaling);
KVL_FUNCTION("geom/transform/compose", "first, second",
             "The first transformation, then the second.", Composed);
KVL_FUNCTION("geom/transform/invert", "transform",
             "The transformation that undoes this one. Fails when there is none.", Inverted);
KVL_FUNCTION("geom/transform/apply", "transform, point", "Where the point is taken.", OnPoint);
KVL_FUNCTION("geom/transform/apply_to_vector", "transform, vector",
             "What becomes of the vector; translations do not change it.", OnVector);
KVL_FUNCTION("geom/transform/apply_to_all", "transform, points", "Where the points are taken.",
             OnPoints);
