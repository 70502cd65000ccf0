#include "ZetaTypes.h"

#include <cmath>
#include <limits>

namespace zeta {

namespace {

// How far the square of a length may be from 1 for the length to count as 1: what is printed of a
// direction reads back as it was.
constexpr double UnitTolerance = 16 * std::numeric_limits<double>::epsilon();

template <class Triple>
bool ParseTriple(const MRBUnicodeString& text, Triple& triple) {
  Triple read;
  read.z = 0;
  if (KVLFailed(kvl::ParseRecord(text, read.x, read.y, read.z)) &&
      KVLFailed(kvl::ParseRecord(text, read.x, read.y))) {
    return false;
  }
  triple = read;
  return true;
}

void Sort(double& low, double& high) {
  if (low > high) std::swap(low, high);
}

bool HasNan(const Point& point) {
  return std::isnan(point.x) || std::isnan(point.y) || std::isnan(point.z);
}

}  // namespace

// What is united with it takes its place, corner by corner.
Box::Box() {
  constexpr double Infinity = std::numeric_limits<double>::infinity();
  low = Point{Infinity, Infinity, Infinity};
  high = Point{-Infinity, -Infinity, -Infinity};
}

double Length(const Vector& vector) {
  // Of three at once the library makes nan where one is infinite.
  return std::hypot(std::hypot(vector.x, vector.y), vector.z);
}

double Dot(const Vector& a, const Vector& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}

Vector Cross(const Vector& a, const Vector& b) {
  return Vector{a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

bool Normalize(const Vector& vector, Direction& direction) {
  if (std::abs(Dot(vector, vector) - 1) <= UnitTolerance) {
    direction = Direction{vector.x, vector.y, vector.z};
    return true;
  }
  // Of the greatest component first, so that no square overflows or vanishes.
  const double greatest =
      std::fmax(std::abs(vector.x), std::fmax(std::abs(vector.y), std::abs(vector.z)));
  const Vector scaled{vector.x / greatest, vector.y / greatest, vector.z / greatest};
  const double length = Length(scaled);
  if (!std::isfinite(length)) return false;
  direction = Direction{scaled.x / length, scaled.y / length, scaled.z / length};
  return true;
}

bool Parse(const MRBUnicodeString& text, Point& point) {
  return ParseTriple(text, point);
}

bool Parse(const MRBUnicodeString& text, Vector& vector) {
  return ParseTriple(text, vector);
}

bool Parse(const MRBUnicodeString& text, Direction& direction) {
  Vector vector;
  return Parse(text, vector) && Normalize(vector, direction);
}

bool Parse(const MRBUnicodeString& text, Box& box) {
  KVLVector<MRBUnicodeString> items;
  if (!KVLFailed(kvl::ParseItems(text, '(', ')', items)) && items.IsEmpty()) {
    box = Box();
    return true;
  }
  Box read;
  if (KVLFailed(kvl::ParseRecord(text, read.low, read.high))) return false;
  if (HasNan(read.low) || HasNan(read.high)) return false;
  Sort(read.low.x, read.high.x);
  Sort(read.low.y, read.high.y);
  Sort(read.low.z, read.high.z);
  box = read;
  return true;
}

bool Parse(const MRBUnicodeString& text, Transform& transform) {
  return !KVLFailed(
      kvl::ParseRecord(text, transform.x, transform.y, transform.z, transform.origin));
}

MRBUnicodeString Print(const Point& point) {
  // A negative 0 is told apart.
  if (point.z == 0 && !std::signbit(point.z)) return kvl::PrintRecord(point.x, point.y);
  return kvl::PrintRecord(point.x, point.y, point.z);
}

MRBUnicodeString Print(const Vector& vector) {
  return kvl::PrintRecord(vector.x, vector.y, vector.z);
}

MRBUnicodeString Print(const Direction& direction) {
  return kvl::PrintRecord(direction.x, direction.y, direction.z);
}

MRBUnicodeString Print(const Box& box) {
  return box.IsEmpty() ? "()" : kvl::PrintRecord(box.low, box.high);
}

MRBUnicodeString Print(const Transform& transform) {
  return kvl::PrintRecord(transform.x, transform.y, transform.z, transform.origin);
}

}  // namespace zeta

namespace {

using zeta::Box;
using zeta::Direction;
using zeta::Point;
using zeta::Transform;
using zeta::Vector;

Vector ToVector(const Point& point) {
  return Vector{point.x, point.y, point.z};
}

Point ToPoint(const Vector& vector) {
  return Point{vector.x, vector.y, vector.z};
}

}  // namespace

KVL_PUBLISH_TYPE(zeta::Point);
KVL_PUBLISH_TYPE(zeta::Vector);
KVL_PUBLISH_TYPE(zeta::Direction);
KVL_PUBLISH_TYPE(zeta::Box);
KVL_PUBLISH_TYPE(zeta::Transform);
KVL_LIST(zeta::Point);
KVL_LIST(zeta::Vector);

KVL_DOC("_types/Point", "A point in space: \"(x, y, z)\", or \"(x, y)\" where z is 0.");
KVL_DOC("_types/Vector", "A displacement in space: \"(x, y, z)\"; \"(x, y)\" is read too.");
KVL_DOC("_types/Direction",
        "A vector of length 1. A text that gives another length is brought to 1; length 0 and "
        "numbers that are not finite are refused.");
KVL_DOC("_types/Box",
        "All points between two corners, these included: \"((0, 0), (1, 1, 1))\". The corners are "
        "read in any order; \"()\" is the box without points.");
KVL_DOC("_types/Transform",
        "An affine transformation, told by where it takes the axes x, y and z and the origin: "
        "\"((1, 0, 0), (0, 1, 0), (0, 0, 1), (0, 0, 0))\" moves nothing.");
KVL_DOC("_types/KVLVector<Point>", "A list of points: \"[(0, 0),(1, 2, 3)]\".");
KVL_DOC("_types/KVLVector<Vector>", "A list of vectors: \"[(1, 0, 0),(1, 2, 3)]\".");

KVL_CONVERSION(Point, MRBUnicodeString);
KVL_CONVERSION(Vector, MRBUnicodeString);
KVL_CONVERSION(Direction, MRBUnicodeString);
KVL_CONVERSION(Box, MRBUnicodeString);
KVL_CONVERSION(Transform, MRBUnicodeString);
KVL_CONVERSION(MRBUnicodeString, Point);
KVL_CONVERSION(MRBUnicodeString, Vector);
KVL_CONVERSION(MRBUnicodeString, Direction);
KVL_CONVERSION(MRBUnicodeString, Box);
KVL_CONVERSION(MRBUnicodeString, Transform);
KVL_CONVERSION_WITH(Point, Vector, ToVector);
KVL_CONVERSION_WITH(Vector, Point, ToPoint);
KVL_CONVERSION_WITH(Vector, Direction, zeta::Normalize);
