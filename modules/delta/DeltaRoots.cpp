#include <cmath>
#include <limits>
#include <stdexcept>

#include "KVLKit.h"

namespace {

using kvl::Out;

// Real solutions of a x^2 + b x + c = 0, in ascending order; both the same when there is one, both
// NaN when there is none. Returns their number.
int Roots(double a, double b, double c, Out<double> x1, Out<double> x2) {
  if (a == 0) throw std::domain_error("a must not be 0");
  const double discriminant = b * b - 4 * a * c;
  if (discriminant < 0) {
    x1 = x2 = std::numeric_limits<double>::quiet_NaN();
    return 0;
  }
  // Of the two solutions the one without cancellation is computed first; their product gives the
  // other.
  const double q = -(b + std::copysign(std::sqrt(discriminant), b)) / 2;
  const double first = q / a;
  const double second = q == 0 ? first : c / q;
  x1 = std::fmin(first, second);
  x2 = std::fmax(first, second);
  return discriminant > 0 ? 2 : 1;
}

}  // namespace

KVL_FUNCTION("math/roots", "a, b, c, x1, x2",
             "Solves a x^2 + b x + c = 0: how many real solutions there are, and the solutions in "
             "ascending order, \"nan\" where there are none. Fails where a is 0.",
             Roots);
