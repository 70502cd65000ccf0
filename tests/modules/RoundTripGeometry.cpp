#include "../../modules/zeta/ZetaTypes.h"
#include "RoundTrip.h"

namespace zeta {

// Bit by bit, so that negative zeros count.
bool operator==(const Point& a, const Point& b) {
  return round_trip::IsSame(a.x, b.x) && round_trip::IsSame(a.y, b.y) &&
         round_trip::IsSame(a.z, b.z);
}
bool operator==(const Vector& a, const Vector& b) {
  return round_trip::IsSame(a.x, b.x) && round_trip::IsSame(a.y, b.y) &&
         round_trip::IsSame(a.z, b.z);
}
bool operator==(const Direction& a, const Direction& b) {
  return Vector{a.x, a.y, a.z} == Vector{b.x, b.y, b.z};
}
bool operator==(const Transform& a, const Transform& b) {
  return a.x == b.x && a.y == b.y && a.z == b.z && a.origin == b.origin;
}

}  // namespace zeta

namespace {

using namespace round_trip;

class GeometryRoundTrip : public LoadedModules {
 protected:
  GeometryRoundTrip() : LoadedModules({"Alpha", "Beta", "Gamma", "Zeta"}) {}
};

enum class Axis { X, Y, Z };

// The corners of a box, with nothing of the module's own class in it.
struct Corners {
  zeta::Point low;
  zeta::Point high;
};
bool operator==(const Corners& a, const Corners& b) {
  return a.low == b.low && a.high == b.high;
}

template <class Triple>
rc::Gen<Triple> Triples() {
  return rc::gen::map(
      rc::gen::tuple(Doubles(), Doubles(), Doubles()),
      [](const std::tuple<double, double, double>& numbers) {
        return Triple{std::get<0>(numbers), std::get<1>(numbers), std::get<2>(numbers)};
      });
}

rc::Gen<zeta::Direction> Directions() {
  const rc::Gen<int> part = rc::gen::inRange(-1000000, 1000000);
  return rc::gen::map(rc::gen::tuple(part, part, part), [](const std::tuple<int, int, int>& parts) {
    const double x = std::get<0>(parts);
    const double y = std::get<1>(parts);
    const double z = std::get<2>(parts);
    const double length = std::hypot(x, y, z);
    return length > 0 ? zeta::Direction{x / length, y / length, z / length} : zeta::Direction();
  });
}

Corners Sorted(const zeta::Point& a, const zeta::Point& b) {
  const auto isNumber = [](double number) { return std::isnan(number) ? 0 : number; };
  Corners corners{{isNumber(a.x), isNumber(a.y), isNumber(a.z)},
                  {isNumber(b.x), isNumber(b.y), isNumber(b.z)}};
  if (corners.low.x > corners.high.x) std::swap(corners.low.x, corners.high.x);
  if (corners.low.y > corners.high.y) std::swap(corners.low.y, corners.high.y);
  if (corners.low.z > corners.high.z) std::swap(corners.low.z, corners.high.z);
  return corners;
}

rc::Gen<Corners> Boxes() {
  const Corners empty{{HUGE_VAL, HUGE_VAL, HUGE_VAL}, {-HUGE_VAL, -HUGE_VAL, -HUGE_VAL}};
  return rc::gen::weightedOneOf<Corners>(
      {{9, rc::gen::map(rc::gen::pair(Triples<zeta::Point>(), Triples<zeta::Point>()),
                        [](const std::pair<zeta::Point, zeta::Point>& points) {
                          return Sorted(points.first, points.second);
                        })},
       {1, rc::gen::just(empty)}});
}

rc::Gen<zeta::Transform> Transforms() {
  const rc::Gen<zeta::Vector> vector = Triples<zeta::Vector>();
  using Vectors = std::tuple<zeta::Vector, zeta::Vector, zeta::Vector, zeta::Vector>;
  return rc::gen::map(rc::gen::tuple(vector, vector, vector, vector), [](const Vectors& vectors) {
    return zeta::Transform{std::get<0>(vectors), std::get<1>(vectors), std::get<2>(vectors),
                           std::get<3>(vectors)};
  });
}

TEST_F(GeometryRoundTrip, Types) {
  ExpectRoundTrips<zeta::Point>("Point", Triples<zeta::Point>());
  ExpectRoundTrips<zeta::Vector>("Vector", Triples<zeta::Vector>());
  ExpectRoundTrips<zeta::Direction>("Direction", Directions());
  ExpectRoundTrips<Corners>("Box", Boxes());
  ExpectRoundTrips<zeta::Transform>("Transform", Transforms());
  ExpectRoundTrips<Axis>("Axis", rc::gen::element(Axis::X, Axis::Y, Axis::Z));
}

}  // namespace
