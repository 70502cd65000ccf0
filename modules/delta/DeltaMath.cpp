#include <cmath>
#include <limits>
#include <stdexcept>

#include "KVLKit.h"

namespace {

using kvl::Out;

double Div(double a, double b) {
  if (b == 0) throw std::domain_error("division by zero");
  return a / b;
}

double Sqrt(double x) {
  if (x < 0) throw std::domain_error("square root of a negative number");
  return std::sqrt(x);
}

double Clamp(double x, double low, double high) {
  // Written so that a NaN is refused.
  if (!(low <= high)) throw std::invalid_argument("low must not lie above high");
  // A NaN stays one.
  return x < low ? low : x > high ? high : x;
}

// Exact at both ends, and between two that are equal.
double Lerp(double a, double b, double t) {
  if (t == 0) return a;
  if (t == 1) return b;
  const double difference = b - a;
  return std::isfinite(difference) ? a + difference * t : a * (1 - t) + b * t;
}

double Pow(double base, double exponent) {
  if (base == 0 && exponent < 0) throw std::domain_error("0 to the power of a negative number");
  if (base < 0 && std::isfinite(base) && std::isfinite(exponent) &&
      std::trunc(exponent) != exponent) {
    throw std::domain_error("a negative number to a power that is not whole");
  }
  return std::pow(base, exponent);
}

double Log(double x) {
  if (x <= 0) throw std::domain_error("logarithm of a number that is not positive");
  return std::log(x);
}

double Mean(const KVLVector<double>& list) {
  if (list.IsEmpty()) throw std::invalid_argument("mean of no numbers");
  double sum = 0;
  for (const double number : list)
    sum += number;
  if (std::isfinite(sum)) return sum / list.GetCount();
  // Divided first, so that the sum does not grow beyond all numbers.
  double mean = 0;
  for (const double number : list)
    mean += number / list.GetCount();
  return mean;
}

void DivMod(int dividend, int divisor, Out<int> quotient, Out<int> remainder) {
  if (divisor == 0) throw std::domain_error("division by zero");
  if (divisor == -1 && dividend == std::numeric_limits<int>::min()) {
    throw std::overflow_error("the quotient does not fit");
  }
  quotient = dividend / divisor;
  remainder = dividend % divisor;
}

void Increment(int& number, int by) {
  const std::int64_t sum = std::int64_t{number} + by;
  if (sum != static_cast<int>(sum)) throw std::overflow_error("the sum does not fit");
  number = static_cast<int>(sum);
}

}  // namespace

KVL_DOC("math", "Mathematics of numbers.");
KVL_VARIABLE("math/pi", 3.14159265358979312, "The circle constant.");
KVL_VARIABLE("math/e", 2.71828182845904509, "The base of the natural logarithm.");

KVL_FUNCTION("math/add", "a, b", "a + b.", [](double a, double b) { return a + b; });
KVL_FUNCTION("math/sub", "a, b", "a - b.", [](double a, double b) { return a - b; });
KVL_FUNCTION("math/mul", "a, b", "a times b.", [](double a, double b) { return a * b; });
KVL_FUNCTION("math/div", "a, b", "a divided by b. Fails where b is 0.", Div);
KVL_FUNCTION("math/sqrt", "x", "The square root. Fails for a negative number.", Sqrt);
KVL_FUNCTION("math/clamp", "x, low = 0, high = 1",
             "The number nearest to x between low and high; nan stays nan. Fails where low lies "
             "above high.",
             Clamp);
KVL_FUNCTION("math/lerp", "a, b, t = 0.5", "The number between a, at t = 0, and b, at t = 1.",
             Lerp);
KVL_FUNCTION("math/hypot", "a, b = 0", "The length of the vector (a, b).",
             [](double a, double b) { return std::hypot(a, b); });
KVL_FUNCTION("math/pow", "base, exponent",
             "The base to the power of the exponent. Fails where no real number is that: 0 to a "
             "negative power, a negative number to one that is not whole.",
             Pow);
KVL_FUNCTION("math/exp", "x", "e to the power of x.", [](double x) { return std::exp(x); });
KVL_FUNCTION("math/log", "x", "The natural logarithm. Fails where x is not positive.", Log);
KVL_FUNCTION("math/abs", "x", "The number without its sign.",
             [](double x) { return std::fabs(x); });
KVL_FUNCTION("math/min", "a, b", "The lesser number; where one is nan, the other.",
             [](double a, double b) { return std::fmin(a, b); });
KVL_FUNCTION("math/max", "a, b", "The greater number; where one is nan, the other.",
             [](double a, double b) { return std::fmax(a, b); });
KVL_FUNCTION("math/floor", "x", "The greatest whole number that is not above x.",
             [](double x) { return std::floor(x); });
KVL_FUNCTION("math/ceil", "x", "The least whole number that is not below x.",
             [](double x) { return std::ceil(x); });
KVL_FUNCTION("math/mean", "list", "The arithmetic mean. Fails for no numbers.", Mean);
KVL_FUNCTION("math/divmod", "dividend, divisor, quotient, remainder",
             "Divides whole numbers; the quotient is rounded towards 0. Fails where the divisor is "
             "0, or the quotient does not fit.",
             DivMod);
KVL_FUNCTION("math/increment", "number, by = 1",
             "Adds to the number. Fails where the sum does not fit.", Increment);
