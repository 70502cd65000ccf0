#include <cmath>
#include <limits>

#include "KVLKit.h"

// A conversion keeps the value or refuses: what it gives converts back to what it was given.

namespace {

using kvl::Long;

template <class From>
bool ToTruth(const From& from, bool& to) {
  if (from != From(0) && from != From(1)) return false;
  to = from != From(0);
  return true;
}

template <class To>
bool Narrow(const std::int64_t& from, To& to) {
  if (from != static_cast<std::int32_t>(from)) return false;
  to = static_cast<std::int32_t>(from);
  return true;
}

// Written so that a NaN is refused. Of the two bounds, powers of two, only the lower is a number of
// the target.
template <class Number, class To>
bool Whole(const double& from, To& to) {
  constexpr double low = static_cast<double>(std::numeric_limits<Number>::min());
  if (!(from >= low && from < -low) || std::trunc(from) != from) return false;
  to = static_cast<Number>(from);
  return true;
}

// Doubles have 53 bits.
bool ToDouble(const std::int64_t& from, double& to) {
  const double number = static_cast<double>(from);
  std::int64_t back = 0;
  if (!Whole<std::int64_t>(number, back) || back != from) return false;
  to = number;
  return true;
}

}  // namespace

KVL_DOC("_conversions", "How values become values of another type: source type, target type.");

KVL_CONVERSION(bool, std::int32_t);
KVL_CONVERSION(bool, std::int64_t);
KVL_CONVERSION(bool, Long);
KVL_CONVERSION(bool, double);
KVL_CONVERSION(bool, MRBUnicodeString);

KVL_CONVERSION_WITH(std::int32_t, bool, ToTruth<std::int32_t>);
KVL_CONVERSION(std::int32_t, std::int64_t);
KVL_CONVERSION(std::int32_t, Long);
KVL_CONVERSION(std::int32_t, double);
KVL_CONVERSION(std::int32_t, MRBUnicodeString);

KVL_CONVERSION_WITH(std::int64_t, bool, ToTruth<std::int64_t>);
KVL_CONVERSION_WITH(std::int64_t, std::int32_t, Narrow<std::int32_t>);
KVL_CONVERSION_WITH(std::int64_t, Long, Narrow<Long>);
KVL_CONVERSION_WITH(std::int64_t, double, ToDouble);
KVL_CONVERSION(std::int64_t, MRBUnicodeString);

KVL_CONVERSION_WITH(Long, bool, ToTruth<Long>);
KVL_CONVERSION(Long, std::int32_t);
KVL_CONVERSION(Long, std::int64_t);
KVL_CONVERSION(Long, double);
KVL_CONVERSION(Long, MRBUnicodeString);

KVL_CONVERSION_WITH(double, bool, ToTruth<double>);
KVL_CONVERSION_WITH(double, std::int32_t, Whole<std::int32_t, std::int32_t>);
KVL_CONVERSION_WITH(double, std::int64_t, Whole<std::int64_t, std::int64_t>);
KVL_CONVERSION_WITH(double, Long, Whole<std::int32_t, Long>);
KVL_CONVERSION(double, MRBUnicodeString);

KVL_CONVERSION(MRBUnicodeString, bool);
KVL_CONVERSION(MRBUnicodeString, std::int32_t);
KVL_CONVERSION(MRBUnicodeString, std::int64_t);
KVL_CONVERSION(MRBUnicodeString, Long);
KVL_CONVERSION(MRBUnicodeString, double);
