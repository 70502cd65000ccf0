#ifndef MODULES_SHARED_SCALAR_H
#define MODULES_SHARED_SCALAR_H

#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "KVLKitValue.h"

/// For modules that order values of types that they learn at run time only.
namespace scalar {

/// What a value of a scalar type holds.
struct Scalar {
  enum Kind { Truth, Whole, Real, Text, None } kind = None;
  std::int64_t whole = 0;  ///< for a truth value too
  double real = 0;
  const MRBUnicodeString* text = nullptr;  ///< lives as long as the value

  bool IsNumber() const { return kind == Whole || kind == Real; }
  bool IsNan() const { return kind == Real && std::isnan(real); }
};

/// `None` for a value of another type, and for none.
inline Scalar Read(const KVLCodeValue* value) {
  Scalar scalar;
  const KVLCodeValue* const inner = value ? kvl::Unwrapped(*value) : nullptr;
  const void* const data = inner ? inner->GetValuePtr() : nullptr;
  if (!data) return scalar;
  const MRBUnicodeString& type = inner->GetTypeName();
  if (type == "bool") {
    scalar.kind = Scalar::Truth;
    scalar.whole = *static_cast<const bool*>(data) ? 1 : 0;
  } else if (type == "int" || type == "long") {
    scalar.kind = Scalar::Whole;
    scalar.whole = *static_cast<const std::int32_t*>(data);
  } else if (type == "int64") {
    scalar.kind = Scalar::Whole;
    scalar.whole = *static_cast<const std::int64_t*>(data);
  } else if (type == "double") {
    scalar.kind = Scalar::Real;
    scalar.real = *static_cast<const double*>(data);
  } else if (type == "string") {
    scalar.kind = Scalar::Text;
    scalar.text = static_cast<const MRBUnicodeString*>(data);
  }
  return scalar;
}

/// Whether the two can be compared: both are numbers, both truth values or both texts.
inline bool AreAlike(const Scalar& a, const Scalar& b) {
  return a.kind != Scalar::None && (a.kind == b.kind || (a.IsNumber() && b.IsNumber()));
}

template <class T>
int Sign(const T& a, const T& b) {
  return a < b ? -1 : b < a ? 1 : 0;
}

// Exact, where a conversion to double would round.
inline int CompareWholeWithReal(std::int64_t whole, double real) {
  constexpr double bound = 9223372036854775808.0;
  if (real >= bound) return -1;
  if (real < -bound) return 1;
  const auto truncated = static_cast<std::int64_t>(real);
  if (whole != truncated) return Sign(whole, truncated);
  return Sign(static_cast<double>(truncated), real);
}

/// -1, 0 or 1 as `a` comes before, with or behind `b`, which is to be alike: numbers by their
/// value, whatever their types; false before true; texts by their bytes. A NaN comes behind every
/// other number.
inline int Compare(const Scalar& a, const Scalar& b) {
  if (a.kind == Scalar::Text) return Sign(*a.text, *b.text);
  if (a.IsNan() || b.IsNan()) return Sign(a.IsNan(), b.IsNan());
  if (a.kind == Scalar::Real) {
    return b.kind == Scalar::Real ? Sign(a.real, b.real) : -CompareWholeWithReal(b.whole, a.real);
  }
  return b.kind == Scalar::Real ? CompareWholeWithReal(a.whole, b.real) : Sign(a.whole, b.whole);
}

/// The type's name of what the value is or, being of type "any", holds; "void" for nothing.
inline MRBUnicodeString TypeNameOf(const KVLCodeValue* value) {
  const KVLCodeValue* const inner = value ? kvl::Unwrapped(*value) : nullptr;
  return inner ? inner->GetTypeName() : MRBUnicodeString("void");
}

/// An exception that says that the two values are not alike.
inline std::invalid_argument NotAlike(const KVLCodeValue* a, const KVLCodeValue* b) {
  return std::invalid_argument(std::string("cannot compare ") + TypeNameOf(a).ConvertToChar() +
                               " with " + TypeNameOf(b).ConvertToChar());
}

}  // namespace scalar

#endif
