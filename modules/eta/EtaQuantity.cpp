#include <charconv>
#include <stdexcept>
#include <string>

#include "EtaUnit.h"

namespace {

using eta::Quantity;
using eta::Scale;
using Texts = KVLVector<MRBUnicodeString>;

constexpr int MostDigits = 100;

double ValueIn(const Quantity& quantity, const MRBUnicodeString& unit) {
  const Scale from = eta::ScaleOf(quantity.unit);
  const Scale to = eta::ScaleOf(unit);
  if (eta::HaveSameDimension(from, to)) return eta::Converted(quantity.number, from, to);
  throw std::invalid_argument(std::string("'") + eta::Print(quantity).ConvertToChar() +
                              "' cannot be measured in '" + unit.ConvertToChar() + "'");
}

Quantity ConvertedTo(const Quantity& quantity, const MRBUnicodeString& unit) {
  eta::Factors factors;
  if (!eta::ParseUnit(unit, factors)) {
    throw std::invalid_argument(std::string("'") + unit.ConvertToChar() + "' is no unit");
  }
  return Quantity{ValueIn(quantity, unit), eta::UnitText(factors)};
}

MRBUnicodeString Format(const Quantity& quantity, int digits) {
  if (digits < 0 || digits > MostDigits) throw std::invalid_argument("digits must be 0 to 100");
  // A double has 309 digits before the point at most.
  char buffer[2 + 309 + MostDigits + 1];
  const std::to_chars_result written = std::to_chars(
      buffer, buffer + sizeof(buffer), quantity.number, std::chars_format::fixed, digits);
  MRBUnicodeString text(buffer, static_cast<int>(written.ptr - buffer));
  return quantity.unit.IsEmpty() ? text : text + " " + quantity.unit;
}

Texts List(const MRBUnicodeString& dimension) {
  Texts symbols;
  for (const eta::Unit* unit = eta::Units; unit->symbol; ++unit) {
    if (dimension.IsEmpty() || dimension == unit->dimension->name) symbols.Append(unit->symbol);
  }
  if (symbols.IsEmpty()) {
    throw std::invalid_argument(std::string("there is no dimension '") + dimension.ConvertToChar() +
                                "'");
  }
  return symbols;
}

Texts ListDimensions() {
  Texts names;
  for (const eta::Dimension* dimension = eta::Dimensions; dimension->name; ++dimension)
    names.Append(dimension->name);
  return names;
}

// The first unit's own word for what it measures, where there is one; else the first known word.
MRBUnicodeString DimensionOf(const Quantity& quantity) {
  eta::Factors factors;
  (void)eta::ParseUnit(quantity.unit, factors);
  if (factors.GetCount() == 1 && factors[0].power == 1) return factors[0].unit->dimension->name;
  const Scale scale = eta::ScaleOf(factors);
  for (const eta::Dimension* dimension = eta::Dimensions; dimension->name; ++dimension) {
    Scale known;
    for (int i = 0; i < eta::BaseCount; ++i)
      known.powers[i] = dimension->powers[i];
    if (eta::HaveSameDimension(scale, known)) return dimension->name;
  }
  MRBUnicodeString text;
  for (int i = 0; i < eta::BaseCount; ++i) {
    if (scale.powers[i] == 0) continue;
    if (!text.IsEmpty()) text += "*";
    text += eta::BaseSymbols[i];
    if (scale.powers[i] != 1) text += "^" + kvl::Print(scale.powers[i]);
  }
  return text;
}

bool ToNumber(const Quantity& quantity, double& number) {
  const Scale scale = eta::ScaleOf(quantity.unit);
  if (scale.HasDimension()) return false;
  number = eta::Converted(quantity.number, scale, Scale());
  return true;
}

Quantity FromNumber(const double& number) {
  return Quantity{number, ""};
}

Quantity FromInt(const std::int32_t& number) {
  return Quantity{static_cast<double>(number), ""};
}

}  // namespace

KVL_PUBLISH_TYPE(eta::Quantity);
KVL_LIST(eta::Quantity);
KVL_DOC("_types/quantity",
        "A number and its unit: \"12.5 mm\", \"3 kg*m/s^2\", \"20 degC\", or \"12.5\" without one. "
        "Symbols with powers are multiplied by \"*\" or a blank; \"/\" divides by the next symbol "
        "alone. Prefixes from q to Q go before the units that take them.");
KVL_DOC("_types/KVLVector<quantity>", "A list of quantities: \"[12.5 mm,3 m]\".");

KVL_CONVERSION(Quantity, MRBUnicodeString);
KVL_CONVERSION(MRBUnicodeString, Quantity);
KVL_CONVERSION_WITH(Quantity, double, ToNumber);
KVL_CONVERSION_WITH(double, Quantity, FromNumber);
KVL_CONVERSION_WITH(std::int32_t, Quantity, FromInt);

KVL_DOC("units", "Quantities: numbers with units. Angles and ratios have no dimension.");
KVL_DOC("_members/quantity", "What is asked of quantities.");

KVL_FUNCTION("_members/quantity/In", "this, unit",
             "The same quantity in the unit. Fails when it measures something else.", ConvertedTo);
KVL_FUNCTION("_members/quantity/Number", "this", "The number before the unit.",
             [](const Quantity& quantity) { return quantity.number; });
KVL_FUNCTION("_members/quantity/Unit", "this", "The unit; empty for a plain number.",
             [](const Quantity& quantity) { return quantity.unit; });

KVL_FUNCTION("units/convert", "quantity, unit",
             "The same quantity in the unit. Fails when it measures something else, and when its "
             "number becomes too large.",
             ConvertedTo);
KVL_FUNCTION("units/value", "quantity, unit",
             "How many of the unit the quantity is. Fails as units/convert does.", ValueIn);
KVL_FUNCTION("units/format", "quantity, digits = 2",
             "The quantity with that many digits behind the point, 0 to 100.", Format);
KVL_FUNCTION("units/dimension", "quantity",
             "What the quantity measures, in a word, or as powers of base units.", DimensionOf);
KVL_FUNCTION("units/list", "dimension = \"\"",
             "The symbols of the units for what the dimension measures; without one, of all. Fails "
             "when there is no such dimension.",
             List);
KVL_FUNCTION("units/dimensions", "", "The words for what quantities measure.", ListDimensions);
