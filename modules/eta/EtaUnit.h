#ifndef ETA_UNIT_H
#define ETA_UNIT_H

#include "EtaTable.h"
#include "KVLKit.h"

namespace eta {

/// A number and its unit: "12.5 mm", "3 kg*m/s^2"; without a unit, "12.5".
struct Quantity {
  double number = 0;
  MRBUnicodeString unit;  ///< in the form that `UnitText` writes
};

/// One symbol of a unit's text, with its power.
struct Factor {
  MRBUnicodeString symbol;  ///< with its prefix
  const Unit* unit;
  int prefixExponent;
  int power;  ///< not 0; -9 to 9
};
/// Each symbol once, in the order of the text; empty for the unit of plain numbers.
using Factors = KVLVector<Factor>;

/// Reads "kg*m/s^2": symbols with powers, between them "*" or a blank to multiply, "/" to divide by
/// the next symbol alone; "1" may stand for no unit. False, and `factors` is untouched, where a
/// symbol is not known, a power passes 9, or a scale with an offset is not the whole unit.
bool ParseUnit(const MRBUnicodeString& text, Factors& factors);
/// "kg*m/s^2"; what begins with a division is written with a negative power.
MRBUnicodeString UnitText(const Factors& factors);

/// What a unit measures, and how large it is: see `Unit`.
struct Scale {
  int powers[BaseCount] = {};
  double numerator = 1;
  double denominator = 1;
  int exponent = 0;
  int offset = 0;

  bool HasDimension() const;
};

/// The scale of the unit. Throws where `unit` is none.
Scale ScaleOf(const MRBUnicodeString& unit);
Scale ScaleOf(const Factors& factors);
bool HaveSameDimension(const Scale& a, const Scale& b);

/// `number`, of the scale `from`, on the scale `to`, which has the same dimension. Throws where a
/// finite number becomes too large.
double Converted(double number, const Scale& from, const Scale& to);
/// The same, but what becomes too large is infinite.
double ConvertedOrInfinite(double number, const Scale& from, const Scale& to);

/// Reads "12.5 mm" or "12.5mm".
bool Parse(const MRBUnicodeString& text, Quantity& quantity);
MRBUnicodeString Print(const Quantity& quantity);

}  // namespace eta

KVL_TYPE_TRAITS(eta::Quantity, "quantity", eta::Parse, eta::Print);

#endif
