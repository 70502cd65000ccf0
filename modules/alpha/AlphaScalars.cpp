#include <charconv>
#include <stdexcept>
#include <string>

#include "KVLKit.h"
#include "shared/Scalar.h"

namespace {

int Compare(const kvl::Any& a, const kvl::Any& b) {
  const scalar::Scalar left = scalar::Read(a.Get());
  const scalar::Scalar right = scalar::Read(b.Get());
  if (!scalar::AreAlike(left, right)) throw scalar::NotAlike(a.Get(), b.Get());
  if (left.IsNan() || right.IsNan()) throw std::domain_error("nan has no place among the numbers");
  return scalar::Compare(left, right);
}

std::int64_t ParseInt(const std::string& text, int base) {
  if (base < 2 || base > 36) throw std::invalid_argument("base must lie between 2 and 36");
  std::int64_t number = 0;
  const char* const end = text.data() + text.size();
  const std::from_chars_result read = std::from_chars(text.data(), end, number, base);
  if (read.ec == std::errc::invalid_argument || read.ptr != end) {
    throw std::invalid_argument("'" + text + "' is no whole number of base " +
                                std::to_string(base));
  }
  if (read.ec != std::errc()) throw std::out_of_range("'" + text + "' does not fit 64 bits");
  return number;
}

}  // namespace

KVL_DOC("scalar", "Truth values, numbers and texts, of whichever of these types.");
KVL_FUNCTION("scalar/typeof", "value",
             "The name of the value's type; \"void\" where there is no value.",
             [](const kvl::Any& value) { return scalar::TypeNameOf(value.Get()); });
KVL_FUNCTION(
    "scalar/compare", "a, b",
    "-1, 0 or 1, as a is less than, equal to or greater than b: numbers by their exact "
    "values, whatever their types; false before true; texts by their bytes. Fails for nan, "
    "and where one is a number and the other a text, say.",
    Compare);
KVL_FUNCTION("scalar/parse_int", "text, base = 10",
             "The whole number that the text writes with the digits 0 to 9 and a to z (or A to Z), "
             "as many as the base, 2 to 36; \"-\" is the only sign. Fails for any other text, and "
             "where the number does not fit 64 bits.",
             ParseInt);
