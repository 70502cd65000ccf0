#include "EtaUnit.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <stdexcept>
#include <string>

namespace eta {

namespace {

constexpr int GreatestPower = 9;
constexpr int MostFactors = 16;

const Unit* FindUnit(const char* symbol) {
  for (const Unit* unit = Units; unit->symbol; ++unit)
    if (std::strcmp(unit->symbol, symbol) == 0) return unit;
  return nullptr;
}

// A symbol is read as a unit's own before it is read as one with a prefix.
bool FindFactor(const MRBUnicodeString& symbol, Factor& factor) {
  factor = Factor{symbol, FindUnit(symbol), 0, 1};
  if (factor.unit) return true;
  for (const Prefix* prefix = Prefixes; prefix->symbol; ++prefix) {
    if (!KVLStringOperations::StartsWith(symbol, prefix->symbol)) continue;
    const Unit* const unit = FindUnit(symbol.ConvertToChar() + std::strlen(prefix->symbol));
    if (!unit || !unit->takesPrefix) continue;
    factor.unit = unit;
    factor.prefixExponent = prefix->exponent;
    return true;
  }
  return false;
}

bool AddFactor(const Factor& added, Factors& factors) {
  for (int i = 0; i < factors.GetCount(); ++i) {
    if (factors[i].symbol != added.symbol) continue;
    factors[i].power += added.power;
    if (factors[i].power == 0) factors.Erase(i);
    return true;
  }
  factors.Append(added);
  return factors.GetCount() <= MostFactors;
}

bool IsSymbolByte(char byte) {
  return byte != '\0' && std::strchr("*/^ ", byte) == nullptr;
}

// Reads along a unit's text.
class UnitReader {
 public:
  explicit UnitReader(const MRBUnicodeString& text)
      : next(text), end(next + text.GetLengthInByte()) {}

  bool Read(Factors& factors) {
    SkipBlanks();
    if (next == end) return true;
    for (int sign = 1;; sign = ReadOperator()) {
      if (sign == 0 || !ReadFactor(sign, factors)) return false;
      SkipBlanks();
      if (next == end) return true;
    }
  }

 private:
  void SkipBlanks() {
    while (next < end && *next == ' ')
      ++next;
  }

  // The sign of the power of what follows; two symbols with a blank between them are multiplied.
  int ReadOperator() {
    const char byte = *next;
    if (byte == '*' || byte == '/') {
      ++next;
      SkipBlanks();
      return byte == '*' ? 1 : -1;
    }
    return next[-1] == ' ' ? 1 : 0;
  }

  bool ReadFactor(int sign, Factors& factors) {
    const char* const begin = next;
    while (next < end && IsSymbolByte(*next))
      ++next;
    const MRBUnicodeString symbol(begin, static_cast<int>(next - begin));
    if (symbol == "1") return true;
    Factor factor;
    if (!FindFactor(symbol, factor)) return false;
    if (next < end && *next == '^' && !ReadPower(factor.power)) return false;
    factor.power *= sign;
    return AddFactor(factor, factors);
  }

  bool ReadPower(int& power) {
    const std::from_chars_result read = std::from_chars(next + 1, end, power);
    if (read.ec != std::errc() || power == 0 || std::abs(power) > GreatestPower) return false;
    next = read.ptr;
    return true;
  }

  const char* next;
  const char* const end;
};

double PowerOf(double base, int power) {
  double result = 1;
  for (int i = 0; i < power; ++i)
    result *= base;
  return result;
}

// Exact up to 10^22.
double PowerOfTen(int exponent) {
  return exponent <= 22 ? PowerOf(10, exponent) : std::pow(10, exponent);
}

// The power of two is taken out of `number` and added to `exponent`.
double WithoutExponent(double number, int& exponent) {
  int ofNumber = 0;
  const double mantissa = std::frexp(number, &ofNumber);
  exponent += ofNumber;
  return mantissa;
}

// number * up / down * 10^exponent, where a product on the way may be beyond all numbers though the
// result is not: powers of two are counted apart.
double ScaledInSteps(double number, double up, double down, int exponent) {
  constexpr int MostTens = 22;
  int binary = 0;
  int divided = 0;
  double scaled = WithoutExponent(number, binary) * WithoutExponent(up, binary);
  scaled /= WithoutExponent(down, divided);
  for (int left = std::abs(exponent); left > 0; left -= MostTens) {
    const double tens = PowerOfTen(std::min(left, MostTens));
    scaled = WithoutExponent(exponent > 0 ? scaled * tens : scaled / tens, binary);
  }
  return std::ldexp(scaled, binary - divided);
}

double Scaled(double number, double up, double down, int exponent) {
  if (number == 0 || !std::isfinite(number)) return number;
  const double tens = PowerOfTen(std::abs(exponent));
  const double product = number * (exponent > 0 ? up * tens : up);
  const double divisor = exponent > 0 ? down : down * tens;
  const bool isInRange = std::isnormal(product) && std::isfinite(divisor);
  return isInRange ? product / divisor : ScaledInSteps(number, up, down, exponent);
}

}  // namespace

bool ParseUnit(const MRBUnicodeString& text, Factors& factors) {
  Factors read;
  if (!UnitReader(text).Read(read)) return false;
  for (const Factor& factor : read) {
    if (std::abs(factor.power) > GreatestPower) return false;
    const bool isWhole = read.GetCount() == 1 && factor.power == 1;
    if (factor.unit->offset != 0 && !isWhole) return false;
  }
  factors.Swap(read);
  return true;
}

MRBUnicodeString UnitText(const Factors& factors) {
  MRBUnicodeString text;
  for (const Factor& factor : factors) {
    const bool isFirst = text.IsEmpty();
    const int power = isFirst ? factor.power : std::abs(factor.power);
    if (!isFirst) text += factor.power > 0 ? "*" : "/";
    text += factor.symbol;
    if (power != 1) text += "^" + kvl::Print(power);
  }
  return text;
}

bool Scale::HasDimension() const {
  for (const int power : powers)
    if (power != 0) return true;
  return false;
}

Scale ScaleOf(const Factors& factors) {
  Scale scale;
  for (const Factor& factor : factors) {
    const Unit& unit = *factor.unit;
    for (int i = 0; i < BaseCount; ++i)
      scale.powers[i] += unit.dimension->powers[i] * factor.power;
    const bool isAbove = factor.power > 0;
    const int power = std::abs(factor.power);
    scale.numerator *= PowerOf(isAbove ? unit.numerator : unit.denominator, power);
    scale.denominator *= PowerOf(isAbove ? unit.denominator : unit.numerator, power);
    scale.exponent += (unit.exponent + factor.prefixExponent) * factor.power;
    scale.offset += unit.offset;
  }
  return scale;
}

Scale ScaleOf(const MRBUnicodeString& unit) {
  Factors factors;
  if (!ParseUnit(unit, factors)) {
    throw std::invalid_argument(std::string("'") + unit.ConvertToChar() + "' is no unit");
  }
  return ScaleOf(factors);
}

bool HaveSameDimension(const Scale& a, const Scale& b) {
  for (int i = 0; i < BaseCount; ++i)
    if (a.powers[i] != b.powers[i]) return false;
  return true;
}

double ConvertedOrInfinite(double number, const Scale& from, const Scale& to) {
  const bool hasOffset = from.offset != 0 || to.offset != 0;
  const int exponent = from.exponent - to.exponent;
  // What both have in common goes first: pi, of which only the beginning is known.
  const bool isSameNumerator = from.numerator == to.numerator;
  const bool isSameDenominator = from.denominator == to.denominator;
  const double up =
      (isSameNumerator ? 1 : from.numerator) * (isSameDenominator ? 1 : to.denominator);
  const double down =
      (isSameDenominator ? 1 : from.denominator) * (isSameNumerator ? 1 : to.numerator);
  // In hundredths, in which the offsets are whole numbers.
  const double shifted = hasOffset ? number * 100 + from.offset : number;
  const double scaled = Scaled(shifted, up, down, exponent);
  return hasOffset ? (scaled - to.offset) / 100 : scaled;
}

double Converted(double number, const Scale& from, const Scale& to) {
  const double converted = ConvertedOrInfinite(number, from, to);
  if (std::isfinite(number) && !std::isfinite(converted)) {
    throw std::overflow_error("the number is too large for the unit");
  }
  return converted;
}

bool Parse(const MRBUnicodeString& text, Quantity& quantity) {
  const char* const begin = text;
  const char* const end = begin + text.GetLengthInByte();
  double number = 0;
  const std::from_chars_result read = std::from_chars(begin, end, number);
  if (read.ec != std::errc()) return false;
  const MRBUnicodeString unit(read.ptr, static_cast<int>(end - read.ptr));
  Factors factors;
  // No blanks at the end, as with a number.
  if (KVLStringOperations::EndsWith(text, " ") || !ParseUnit(unit, factors)) return false;
  quantity.number = number;
  quantity.unit = UnitText(factors);
  return true;
}

MRBUnicodeString Print(const Quantity& quantity) {
  const MRBUnicodeString number = kvl::Print(quantity.number);
  return quantity.unit.IsEmpty() ? number : number + " " + quantity.unit;
}

}  // namespace eta
