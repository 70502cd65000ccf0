#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>

#include "AlphaFunction.h"
#include "KVLCodeObjectRegisterer.h"

namespace {

using Value = KVLSmartPtr<KVLCodeValue>;

constexpr double Pi = 3.14159265358979323846;

double Number(const AlphaArguments& arguments, int i) {
  return arguments.Get<AlphaDouble>(i);
}

Value Result(double number) {
  return AlphaResult<AlphaDouble>(number);
}

Value Add(const AlphaArguments& arguments) {
  return Result(Number(arguments, 0) + Number(arguments, 1));
}

Value Sub(const AlphaArguments& arguments) {
  return Result(Number(arguments, 0) - Number(arguments, 1));
}

Value Mul(const AlphaArguments& arguments) {
  return Result(Number(arguments, 0) * Number(arguments, 1));
}

Value Div(const AlphaArguments& arguments) {
  if (Number(arguments, 1) == 0) throw std::domain_error("division by zero");
  return Result(Number(arguments, 0) / Number(arguments, 1));
}

Value Lerp(const AlphaArguments& arguments) {
  const double a = Number(arguments, 0);
  const double b = Number(arguments, 1);
  return Result(a + (b - a) * Number(arguments, 2));
}

Value Clamp(const AlphaArguments& arguments) {
  const double low = Number(arguments, 1);
  const double high = Number(arguments, 2);
  // Written so that a NaN is refused.
  if (!(low <= high)) throw std::invalid_argument("low must not lie above high");
  return Result(std::fmin(std::fmax(Number(arguments, 0), low), high));
}

Value Hypot(const AlphaArguments& arguments) {
  return Result(std::hypot(Number(arguments, 0), Number(arguments, 1)));
}

Value Sqrt(const AlphaArguments& arguments) {
  if (Number(arguments, 0) < 0) throw std::domain_error("square root of a negative number");
  return Result(std::sqrt(Number(arguments, 0)));
}

Value DivMod(const AlphaArguments& arguments) {
  const std::int32_t dividend = arguments.Get<AlphaInt>(0);
  const std::int32_t divisor = arguments.Get<AlphaInt>(1);
  if (divisor == 0) throw std::domain_error("division by zero");
  if (divisor == -1 && dividend == std::numeric_limits<std::int32_t>::min()) {
    throw std::overflow_error("the quotient does not fit");
  }
  arguments.Get<AlphaInt>(2) = dividend / divisor;
  arguments.Get<AlphaInt>(3) = dividend % divisor;
  return new AlphaVoidValue("result");
}

// Real solutions of a x^2 + b x + c = 0, in ascending order; both the same when there is one, both
// NaN when there is none. Returns their number.
Value Roots(const AlphaArguments& arguments) {
  const double a = Number(arguments, 0);
  const double b = Number(arguments, 1);
  const double c = Number(arguments, 2);
  if (a == 0) throw std::domain_error("a must not be 0");
  double& x1 = arguments.Get<AlphaDouble>(3);
  double& x2 = arguments.Get<AlphaDouble>(4);
  const double discriminant = b * b - 4 * a * c;
  if (discriminant < 0) {
    x1 = x2 = std::numeric_limits<double>::quiet_NaN();
    return AlphaResult<AlphaInt>(0);
  }
  // Of the two solutions the one without cancellation is computed first; their product gives the
  // other.
  const double q = -(b + std::copysign(std::sqrt(discriminant), b)) / 2;
  const double first = q / a;
  const double second = q == 0 ? first : c / q;
  x1 = std::fmin(first, second);
  x2 = std::fmax(first, second);
  return AlphaResult<AlphaInt>(discriminant > 0 ? 2 : 1);
}

Value Increment(const AlphaArguments& arguments) {
  std::int32_t& number = arguments.Get<AlphaInt>(0);
  const std::int64_t sum = std::int64_t{number} + arguments.Get<AlphaInt>(1);
  if (sum != static_cast<std::int32_t>(sum)) throw std::overflow_error("the sum does not fit");
  number = static_cast<std::int32_t>(sum);
  return new AlphaVoidValue("result");
}

KVLCodeObjectRegisterer Publish(KVLCodeObject* object, int line) {
  return KVLCodeObjectRegisterer(KVLCodeEnv::GetDefault(), object, "math/" + object->GetName(),
                                 KVLSourceLocation(__FILE__, line, ""));
}

const KVLCodeObjectRegisterer add =
    Publish(new AlphaFunction("add", "double", {{"double"}, {"double"}}, "a, b", Add), __LINE__);
const KVLCodeObjectRegisterer sub =
    Publish(new AlphaFunction("sub", "double", {{"double"}, {"double"}}, "a, b", Sub), __LINE__);
const KVLCodeObjectRegisterer mul =
    Publish(new AlphaFunction("mul", "double", {{"double"}, {"double"}}, "a, b", Mul), __LINE__);
const KVLCodeObjectRegisterer div =
    Publish(new AlphaFunction("div", "double", {{"double"}, {"double"}}, "a, b", Div), __LINE__);
const KVLCodeObjectRegisterer lerp =
    Publish(new AlphaFunction("lerp", "double", {{"double"}, {"double"}, {"double"}},
                              "a, b, t = 0.5", Lerp),
            __LINE__);
const KVLCodeObjectRegisterer clamp =
    Publish(new AlphaFunction("clamp", "double", {{"double"}, {"double"}, {"double"}},
                              "x, low = 0, high = 1", Clamp),
            __LINE__);
const KVLCodeObjectRegisterer hypotenuse = Publish(
    new AlphaFunction("hypot", "double", {{"double"}, {"double"}}, "a, b = 0", Hypot), __LINE__);
const KVLCodeObjectRegisterer squareRoot =
    Publish(new AlphaFunction("sqrt", "double", {{"double"}}, "x", Sqrt), __LINE__);
const KVLCodeObjectRegisterer divMod = Publish(
    new AlphaFunction("divmod", "void",
                      {{"int"}, {"int"}, {"int", AlphaFunction::Out}, {"int", AlphaFunction::Out}},
                      "dividend, divisor, quotient, remainder", DivMod),
    __LINE__);
const KVLCodeObjectRegisterer roots = Publish(new AlphaFunction("roots", "int",
                                                                {{"double"},
                                                                 {"double"},
                                                                 {"double"},
                                                                 {"double", AlphaFunction::Out},
                                                                 {"double", AlphaFunction::Out}},
                                                                "a, b, c, x1, x2", Roots),
                                              __LINE__);
const KVLCodeObjectRegisterer increment =
    Publish(new AlphaFunction("increment", "void", {{"int", AlphaFunction::InOut}, {"int"}},
                              "number, by = 1", Increment),
            __LINE__);
const KVLCodeObjectRegisterer pi = Publish(new AlphaScalarValue<AlphaDouble>("pi", Pi), __LINE__);

}  // namespace
