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

void ExpectSolution(double x) {
  if (!std::isfinite(x)) throw std::overflow_error("a solution is too large");
}

// Real solutions of a x^2 + b x + c = 0, in ascending order; both the same when there is one, both
// NaN when there is none. Returns their number.
int Roots(double a, double b, double c, Out<double> x1, Out<double> x2) {
  ExpectFinite(a, b, c);
  if (a == 0) throw std::domain_error("a must not be 0");
  // In y, where x = 2^balance y, a and c (or b, where c is 0) are about as large as each other; and
  // all are divided by the power of two of the greatest. Powers of two round nothing, and so the
  // squares neither grow beyond all numbers nor vanish where they matter.
  const int ofA = std::ilogb(a);
  const int balance = c != 0 ? (std::ilogb(c) - ofA) / 2 : b != 0 ? std::ilogb(b) - ofA : 0;
  int greatest = ofA + 2 * balance;
  if (b != 0) greatest = std::max(greatest, std::ilogb(b) + balance);
  if (c != 0) greatest = std::max(greatest, std::ilogb(c));
  const double scaledB = std::scalbn(b, balance - greatest);
  const double discriminant =
      Discriminant(std::scalbn(a, 2 * balance - greatest), scaledB, std::scalbn(c, -greatest));
  if (discriminant < 0) {
    x1 = x2 = std::numeric_limits<double>::quiet_NaN();
    return 0;
  }
  // Of the two solutions the one without cancellation is computed first; their product gives the
  // other.
  const double q = -(scaledB + std::copysign(std::sqrt(discriminant), scaledB)) / 2;
  const double first = std::scalbn(q / std::scalbn(a, -ofA), greatest - balance - ofA);
  const int ofC = c != 0 ? std::ilogb(c) : 0;
  const double second =
      q == 0 ? first : std::scalbn(std::scalbn(c, -ofC) / q, ofC - greatest + balance);
  ExpectSolution(first);
  ExpectSolution(second);
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
  if (b == 0) {
    x1 = x2 = std::numeric_limits<double>::quiet_NaN();
    return 0;
  }
  const double solution = -c / b + 0.0;
  ExpectSolution(solution);
  x1 = x2 = solution;
  return 1;
}

}  // namespace

KVL_FUNCTION("math/roots", "a, b, c, x1, x2",
             "Solves a x^2 + b x + c = 0: how many real solutions there are, and the solutions in "
             "ascending order, \"nan\" where there are none. Fails where a is 0, for numbers that "
             "are not finite, and where a solution is too large for a number.",
             Roots);
KVL_FUNCTION("math/roots2", "a, b, c, x1, x2",
             "As math/roots, but where a is 0, solves b x + c = 0. Fails where every x is a "
             "solution, for numbers that are not finite, and where a solution is too large for a "
             "number.",
             Roots2);
