#include <cmath>
#include <stdexcept>
#include <string>

#include "EtaUnit.h"

namespace {

using eta::Factors;
using eta::Quantity;
using eta::Scale;

std::string Quoted(const Quantity& quantity) {
  return std::string("'") + eta::Print(quantity).ConvertToChar() + "'";
}

// Of a scale, what one step on it is.
Scale Steps(Scale scale) {
  scale.offset = 0;
  return scale;
}

void ExpectSameDimension(const Quantity& a, const Scale& aScale, const Quantity& b,
                         const Scale& bScale) {
  if (eta::HaveSameDimension(aScale, bScale)) return;
  throw std::invalid_argument(Quoted(a) + " and " + Quoted(b) + " measure different things");
}

// To a point of a scale, as "20 degC", a difference may be added, as "5 K".
Quantity Add(const Quantity& a, const Quantity& b) {
  const Scale aScale = eta::ScaleOf(a.unit);
  const Scale bScale = eta::ScaleOf(b.unit);
  ExpectSameDimension(a, aScale, b, bScale);
  if (aScale.offset != 0 && bScale.offset != 0) {
    throw std::invalid_argument(Quoted(a) + " and " + Quoted(b) +
                                " are points of a scale, and have no sum");
  }
  if (bScale.offset != 0) {
    return Quantity{b.number + eta::Converted(a.number, aScale, Steps(bScale)), b.unit};
  }
  return Quantity{a.number + eta::Converted(b.number, bScale, Steps(aScale)), a.unit};
}

// Between two points of scales lies a difference.
Quantity Subtract(const Quantity& a, const Quantity& b) {
  const Scale aScale = eta::ScaleOf(a.unit);
  const Scale bScale = eta::ScaleOf(b.unit);
  ExpectSameDimension(a, aScale, b, bScale);
  if (bScale.offset == 0) {
    return Quantity{a.number - eta::Converted(b.number, bScale, Steps(aScale)), a.unit};
  }
  // On one scale the difference is exact.
  const double difference = a.number - eta::Converted(b.number, bScale, aScale);
  const Scale kelvin = eta::ScaleOf("K");
  return Quantity{eta::Converted(difference, Steps(aScale), kelvin), "K"};
}

void RefusePoint(const Quantity& quantity, const Scale& scale) {
  if (scale.offset == 0) return;
  throw std::invalid_argument(Quoted(quantity) + " is a point of a scale: convert it to K first");
}

// The product of the units, those of `b` to the power `sign`.
Quantity Combined(const Quantity& a, const Quantity& b, int sign, double number) {
  RefusePoint(a, eta::ScaleOf(a.unit));
  RefusePoint(b, eta::ScaleOf(b.unit));
  Factors factors;
  MRBUnicodeString text = a.unit;
  Factors divisors;
  (void)eta::ParseUnit(b.unit, divisors);
  for (const eta::Factor& factor : divisors) {
    text += (text.IsEmpty() ? "" : "*") + factor.symbol + "^" + kvl::Print(factor.power * sign);
  }
  if (!eta::ParseUnit(text, factors)) {
    throw std::invalid_argument("the powers of the unit pass 9");
  }
  const Scale scale = eta::ScaleOf(factors);
  const bool isPlain = !scale.HasDimension() && !a.unit.IsEmpty() && !b.unit.IsEmpty();
  // What has lost its dimension is a number; but a number times an angle is an angle.
  if (isPlain) return Quantity{eta::Converted(number, scale, Scale()), ""};
  return Quantity{number, eta::UnitText(factors)};
}

Quantity Multiply(const Quantity& a, const Quantity& b) {
  return Combined(a, b, 1, a.number * b.number);
}

Quantity Divide(const Quantity& a, const Quantity& b) {
  if (b.number == 0) throw std::domain_error("division by zero");
  return Combined(a, b, -1, a.number / b.number);
}

int Compare(const Quantity& a, const Quantity& b) {
  const Scale aScale = eta::ScaleOf(a.unit);
  const Scale bScale = eta::ScaleOf(b.unit);
  ExpectSameDimension(a, aScale, b, bScale);
  if (std::isnan(a.number) || std::isnan(b.number)) {
    throw std::invalid_argument("what is no number cannot be compared");
  }
  if (a.unit == b.unit || std::isinf(a.number) || std::isinf(b.number)) {
    return a.number < b.number ? -1 : a.number > b.number ? 1 : 0;
  }
  // One of two equal quantities may be hit by a conversion that misses the other.
  const double there = eta::ConvertedOrInfinite(b.number, bScale, aScale);
  const double back = eta::ConvertedOrInfinite(a.number, aScale, bScale);
  if (there == a.number || back == b.number) return 0;
  // By one of the conversions, the same whichever quantity is first.
  const bool isLess = a.unit < b.unit ? a.number < there : back < b.number;
  return isLess ? -1 : 1;
}

Quantity Sum(KVLCodeSession* session, const KVLVector<Quantity>& quantities) {
  if (quantities.IsEmpty()) throw std::invalid_argument("no quantities have no sum");
  Quantity sum = quantities[0];
  for (int i = 1; i < quantities.GetCount(); ++i) {
    if (session && session->IsInterrupted()) throw std::runtime_error("interrupted");
    sum = Add(sum, quantities[i]);
  }
  return sum;
}

}  // namespace

KVL_FUNCTION("units/add", "a, b",
             "The sum, in the unit of a, or of the one that is a point of a scale. Fails when the "
             "two measure different things, and for two "
             "points of a scale, as \"20 degC\"; to one of these a difference may be added.",
             Add);
KVL_FUNCTION("units/sub", "a, b",
             "The difference, in the unit of a; between two points of a scale, as \"20 degC\", in "
             "K. Fails when the two measure different things.",
             Subtract);
KVL_FUNCTION("units/mul", "a, b",
             "The product, in the product of the units; a plain number where no dimension is left. "
             "Fails for points of a scale, as \"20 degC\".",
             Multiply);
KVL_FUNCTION("units/div", "a, b",
             "The quotient, in the quotient of the units; a plain number where no dimension is "
             "left. Fails for points of a scale, as \"20 degC\", and for a division by zero.",
             Divide);
KVL_FUNCTION("units/compare", "a, b",
             "-1, 0 or 1: whether a is less than b, equal, or greater. Fails when the two measure "
             "different things.",
             Compare);
KVL_FUNCTION("units/sum", "quantities",
             "The sum of all, in the unit of the first. Fails as units/add does, and for none.",
             Sum);
