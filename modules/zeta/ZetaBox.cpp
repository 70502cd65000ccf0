#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "ZetaTypes.h"

namespace {

using zeta::Box;
using zeta::Point;
using zeta::Vector;

Point Lower(const Point& a, const Point& b) {
  return Point{std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z)};
}

Point Upper(const Point& a, const Point& b) {
  return Point{std::max(a.x, b.x), std::max(a.y, b.y), std::max(a.z, b.z)};
}

Box United(const Box& a, const Box& b) {
  Box box;
  box.low = Lower(a.low, b.low);
  box.high = Upper(a.high, b.high);
  return box;
}

Box Common(const Box& a, const Box& b) {
  Box box;
  box.low = Upper(a.low, b.low);
  box.high = Lower(a.high, b.high);
  const bool isEmpty = box.low.x > box.high.x || box.low.y > box.high.y || box.low.z > box.high.z;
  return isEmpty ? Box() : box;
}

void Add(Box& box, const Point& point) {
  if (std::isnan(point.x) || std::isnan(point.y) || std::isnan(point.z)) {
    throw std::invalid_argument("the point lies nowhere");
  }
  box.low = Lower(box.low, point);
  box.high = Upper(box.high, point);
}

Box Around(const KVLVector<Point>& points) {
  Box box;
  for (const Point& point : points)
    Add(box, point);
  return box;
}

bool Contains(const Box& box, const Point& point) {
  return box.low.x <= point.x && point.x <= box.high.x && box.low.y <= point.y &&
         point.y <= box.high.y && box.low.z <= point.z && point.z <= box.high.z;
}

bool IsEmpty(const Box& box) {
  return box.IsEmpty();
}

void RefuseEmpty(const Box& box) {
  if (box.IsEmpty()) throw std::domain_error("the box is empty");
}

Point Center(const Box& box) {
  RefuseEmpty(box);
  // Halved first: the sum of two large corners would overflow.
  return Point{box.low.x / 2 + box.high.x / 2, box.low.y / 2 + box.high.y / 2,
               box.low.z / 2 + box.high.z / 2};
}

Vector Size(const Box& box) {
  return box.IsEmpty() ? Vector() : box.high - box.low;
}

double Volume(const Box& box) {
  const Vector size = Size(box);
  return size.x * size.y * size.z;
}

Box Grown(const Box& box, double by) {
  if (!std::isfinite(by)) throw std::invalid_argument("by must be finite");
  if (box.IsEmpty()) return box;
  Box grown;
  grown.low = box.low + Vector{-by, -by, -by};
  grown.high = box.high + Vector{by, by, by};
  return Common(grown, grown);
}

}  // namespace

KVL_DOC("geom/box", "Boxes along the axes of space.");
KVL_DOC("_members/Box", "What is asked of boxes.");

KVL_FUNCTION("_members/Box/Add", "this, point", "Makes the box just large enough for the point.",
             Add);
KVL_FUNCTION("_members/Box/Contains", "this, point", "Whether the point is in the box.", Contains);
KVL_FUNCTION("_members/Box/IsEmpty", "this", "Whether the box is the one without points.", IsEmpty);
KVL_FUNCTION("_members/Box/Center", "this", "The middle of the box. Fails for an empty box.",
             Center);
KVL_FUNCTION("_members/Box/Size", "this", "The way from the low corner to the high one.", Size);

KVL_FUNCTION("geom/box/around", "points", "The smallest box that holds all the points.", Around);
KVL_FUNCTION("geom/box/unite", "a, b", "The smallest box that holds two boxes.", United);
KVL_FUNCTION("geom/box/intersect", "a, b", "What two boxes have in common; \"()\" when nothing.",
             Common);
KVL_FUNCTION("geom/box/contains", "box, point", "Whether the point is in the box.", Contains);
KVL_FUNCTION("geom/box/center", "box", "The middle of the box. Fails for an empty box.", Center);
KVL_FUNCTION("geom/box/volume", "box", "The volume of the box; 0 for an empty one.", Volume);
KVL_FUNCTION("geom/box/grow", "box, by",
             "The box with each side moved outwards, inwards where by is negative; \"()\" when "
             "nothing is left. An empty box stays empty.",
             Grown);
