#ifndef KIT_SHAPES_H
#define KIT_SHAPES_H

#include <cmath>

#include "KVLKit.h"

/// Types that several sources of the test program use.

struct Spot {
  double x = 0;
  double y = 0;

  double DistanceTo(const Spot& other) const noexcept {
    return std::hypot(other.x - x, other.y - y);
  }
  void Move(double dx, double dy) {
    x += dx;
    y += dy;
  }
  static Spot Polar(double radius, double angle) {
    return Spot{radius * std::cos(angle), radius * std::sin(angle)};
  }
};

inline bool ParseSpot(const MRBUnicodeString& text, Spot& spot) {
  return !KVLFailed(kvl::ParseRecord(text, spot.x, spot.y));
}
inline MRBUnicodeString PrintSpot(const Spot& spot) {
  return kvl::PrintRecord(spot.x, spot.y);
}
KVL_TYPE_TRAITS(Spot, "Spot", ParseSpot, PrintSpot);

enum class Hue { Red, Green, Blue = 7 };
KVL_ENUM_TRAITS(Hue, "Hue", Red, Green, Blue);

/// Too big to lie inside a value.
struct Grid {
  double cells[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
};

inline long ParseGrid(const MRBUnicodeString& text, Grid& grid) {
  double* const c = grid.cells;
  return kvl::ParseRecord(text, c[0], c[1], c[2], c[3], c[4], c[5], c[6], c[7], c[8]);
}
inline MRBUnicodeString PrintGrid(const Grid& grid) {
  const double* const c = grid.cells;
  return kvl::PrintRecord(c[0], c[1], c[2], c[3], c[4], c[5], c[6], c[7], c[8]);
}
KVL_TYPE_TRAITS(Grid, "Grid", ParseGrid, PrintGrid);

#endif
