#include <charconv>
#include <cmath>
#include <string>
#include <system_error>

#include "KVLKit.h"

namespace {

// Of a double: digits before the point at most, and behind it.
constexpr int MostDigits = 309;
constexpr int MostDecimals = 1074;

// Rounds the decimal number that the double is, every digit of it, as one does by hand: what seems
// to be a 5 may be less. `digits` is less than the decimals of a double.
double RoundDigits(double x, int digits) {
  char buffer[1 + MostDigits + 1 + MostDecimals];
  const std::to_chars_result end = std::to_chars(buffer, buffer + sizeof(buffer), std::fabs(x),
                                                 std::chars_format::fixed, MostDecimals);
  // A leading 0 takes the carry.
  std::string decimal = "0" + std::string(buffer, end.ptr);
  const std::size_t point = decimal.find('.');
  decimal.erase(point, 1);
  const int place = static_cast<int>(point) + digits;
  if (place < 0) return std::copysign(0.0, x);
  const auto kept = static_cast<std::size_t>(place);
  const bool isUp = decimal[kept] >= '5';
  for (std::size_t i = kept; i < decimal.size(); ++i)
    decimal[i] = '0';
  for (std::size_t i = kept; isUp && i-- > 0;) {
    if (decimal[i] != '9') {
      ++decimal[i];
      break;
    }
    decimal[i] = '0';
  }
  decimal.insert(point, ".");
  double rounded = 0;
  const std::from_chars_result read =
      std::from_chars(decimal.data(), decimal.data() + decimal.size(), rounded);
  // The greatest numbers round up to what is beyond them all.
  if (read.ec != std::errc()) rounded = HUGE_VAL;
  return std::copysign(rounded, x);
}

double Round(double x, int digits) {
  if (!std::isfinite(x) || digits >= MostDecimals) return x;
  if (digits == 0) return std::round(x);
  if (digits < -MostDigits) return std::copysign(0.0, x);
  return RoundDigits(x, digits);
}

}  // namespace

KVL_FUNCTION("math/round", "x, digits = 0",
             "The nearest number with so many digits behind the point, a negative count for zeros "
             "before it; of two as near, the one away from 0.",
             Round);
