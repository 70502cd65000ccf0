#include <cmath>
#include <stdexcept>

#include "KVLCodeFunctionBinding.h"
#include "ZetaTypes.h"

namespace {

using zeta::Point;
using zeta::Vector;

double Distance(const Point& from, const Point& to) {
  return zeta::Length(to - from);
}

void Move(Point& point, double dx, double dy, double dz) {
  point = point + Vector{dx, dy, dz};
}

Point Translated(const Point& point, const Vector& by) {
  return point + by;
}

Vector VectorTo(const Point& from, const Point& to) {
  return to - from;
}

// Exact at both ends, and between two that are equal.
double NumberBetween(double a, double b, double t) {
  if (t == 0) return a;
  if (t == 1) return b;
  const double difference = b - a;
  return std::isfinite(difference) ? a + difference * t : a * (1 - t) + b * t;
}

Point Between(const Point& a, const Point& b, double t) {
  return Point{NumberBetween(a.x, b.x, t), NumberBetween(a.y, b.y, t), NumberBetween(a.z, b.z, t)};
}

double Mean(const KVLVector<Point>& points, double Point::*coordinate) {
  double sum = 0;
  for (const Point& point : points)
    sum += point.*coordinate;
  if (std::isfinite(sum)) return sum / points.GetCount();
  // Divided first, so that the sum does not grow beyond all numbers.
  double mean = 0;
  for (const Point& point : points)
    mean += point.*coordinate / points.GetCount();
  return mean;
}

Point Centroid(const KVLVector<Point>& points) {
  if (points.IsEmpty()) throw std::invalid_argument("no points have no centroid");
  return Point{Mean(points, &Point::x), Mean(points, &Point::y), Mean(points, &Point::z)};
}

// The method with its object fixed: a function of the other point alone.
const KVLCodeObjectRegisterer fromOrigin(
    KVLCodeEnv::GetDefault(),
    new KVLCodeFunctionBinding(*KVLSmartPtr<kvl::Function>(new kvl::Function(
                                   "Distance", kvl::detail::Describe(&Distance), "this, other")),
                               kvl::MakeValueOf(Point(), "origin")),
    "geom/from_origin", KVLSourceLocation(__FILE__, __LINE__, ""));

}  // namespace

KVL_DOC("geom", "Points, vectors, boxes and transformations of space.");
KVL_DOC("geom/from_origin", "How far the point is from the origin.");
KVL_DOC("_members/Point", "What is asked of points.");

KVL_FUNCTION("_members/Point/Distance", "this, other", "How far the other point is.", Distance);
KVL_FUNCTION("_members/Point/Move", "this, dx, dy = 0, dz = 0", "Moves the point along the axes.",
             Move);
KVL_FUNCTION("_members/Point/Translated", "this, by", "The point that is that far from this one.",
             Translated);
KVL_FUNCTION("_members/Point/VectorTo", "this, other", "The way to the other point.", VectorTo);

KVL_FUNCTION("geom/distance", "a, b", "How far two points are from each other.", Distance);
KVL_FUNCTION("geom/between", "a, b, t = 0.5",
             "The point on the line through a and b that is a at t = 0 and b at t = 1.", Between);
KVL_FUNCTION("geom/centroid", "points", "The mean of the points. Fails when there are none.",
             Centroid);
