#ifndef ALPHA_LIST_H
#define ALPHA_LIST_H

#include "KVLCodeListValue.h"

/// The name of the type of a list of values.
constexpr const char* AlphaListTypeName = "KVLVector<KVLCodeValue_var>";

/// The type of lists whose elements are of any type. Its text is "[", the elements separated by
/// ",", and "]"; blanks around an element do not count. Each element's text decides its type; the
/// first of these that reads it:
///
/// - text that begins with a double quote: "string", quoted; it must be well formed;
/// - text that begins with "[": a list;
/// - "NULL": a list without elements of its own, as the list value itself writes one;
/// - "true" or "false": "bool";
/// - a decimal number without point and exponent that fits 32 bits: "int";
/// - another number: "double";
/// - any other text: "string".
///
/// What is written reads back: a double is written with a point or an exponent, a string always
/// between quotes, and a value of a type that has no form of its own above as a string. A "long"
/// reads back as an "int". Lists nest 100 deep.
class AlphaListType : public KVLCodeListType {
 public:
  AlphaListType();
  ~AlphaListType() override;

  /// True; the elements' type is not known beforehand.
  bool IsList(MRBUnicodeString* elementTypeName) const override;
  /// Returns 0, or 0x80070057, and `value` is untouched, when the text is no list. "NULL" resets
  /// the value.
  long Parse(const KVLCodeContext& context, const MRBUnicodeString& text,
             KVLCodeValue& value) const override;
  /// Returns 0, or the code of the element that could not be written, and `text` is untouched.
  long Render(const KVLCodeContext& context, const void* data,
              MRBUnicodeString& text) const override;
};

#endif
