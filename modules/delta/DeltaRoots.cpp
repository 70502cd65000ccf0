#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "KVLKit.h"

namespace {

using kvl::Out;

// b * b - 4 * a * c, rounded about once: where the two products nearly cancel, the rounding errors
// of both would be all that is left.
double Discriminant(double a, double b, double c) {
  const double product = 4 * a * c;
  const double square = b * b;
  const double squareError = std::fma(b, b, -square);
  const double productError = std::fma(4 * a, c, -product);
  return (square - product) + (squareError - productError);
}

void ExpectFinite(double a, double b, double c) {
  if (std::isfinite(a) && std::isfinite(b) && std::isfinite(c)) return;
  throw std::invalid_argument("a, b and c must be finite");
}

// Real solutions of a x^2 + b x + c = 0, in ascending order; both the same when there is one, both
// NaN when there is none. Returns their number.
int Roots(double a, double b, double c, Out<double> x1, Out<double> x2) {
  ExpectFinite(a, b, c);
  if (a == 0) throw std::domain_error("a must not be 0");
  // Scaled by a power of two, which rounds nothing, so that the squares neither grow beyond all
  // numbers nor vanish.
  const int exponent = std::ilogb(std::max({std::fabs(a), std::fabs(b), std::fabs(c)}));
  a = std::scalbn(a, -exponent);
  b = std::scalbn(b, -exponent);
  c = std::scalbn(c, -exponent);
  if (a == 0) throw std::domain_error("a is too small beside b and c");
  const double discriminant = Discriminant(a, b, c);
  if (discriminant < 0) {
    x1 = x2 = std::numeric_limits<double>::quiet_NaN();
    return 0;
  }
  // Of the two solutions the one without cancellation is computed first; their product gives the
  // other.
  const double q = -(b + std::copysign(std::sqrt(discriminant), b)) / 2;
  const double first = q / a;
  const double second = q == 0 ? first : c / q;
  // Not -0.
  x1 = std::fmin(first, second) + 0.0;
  x2 = std::fmax(first, second) + 0.0;
  return discriminant > 0 ? 2 : 1;
}

// Of an equation whose degree is 2 or less.
int Roots2(double a, double b, double c, Out<double> x1, Out<double> x2) {
  ExpectFinite(a, b, c);
  if (a != 0) return Roots(a, b, c, x1, x2);
  if (b == 0 && c == 0) throw std::domain_error("every x is a solution");
  x1 = x2 = b == 0 ? std::numeric_limits<double>::quiet_NaN() : -c / b + 0.0;
  return b == 0 ? 0 : 1;
}

}  // namespace

KVL_FUNCTION("math/roots", "a, b, c, x1, x2",
             "Solves a x^2 + b x + c = 0: how many real solutions there are, and the solutions in "
             "ascending order, \"nan\" where there are none. Fails where a is 0, or vanishes "
             "beside b and c, and for numbers that are not finite.",
             Roots);
KVL_FUNCTION("math/roots2", "a, b, c, x1, x2",
             "As math/roots, but where a is 0, solves b x + c = 0. Fails where every x is a "
             "solution, and for numbers that are not finite.",
             Roots2);
