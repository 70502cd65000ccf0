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

Point Between(const Point& a, const Point& b, double t) {
  return Point{a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t, a.z + (b.z - a.z) * t};
}

Point Centroid(const KVLVector<Point>& points) {
  if (points.IsEmpty()) throw std::invalid_argument("no points have no centroid");
  Vector sum;
  for (const Point& point : points)
    sum = sum + (point - Point());
  return Point() + sum * (1.0 / points.GetCount());
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
