#ifndef IOTA_FILE_H
#define IOTA_FILE_H

#include "KVLCodeContext.h"
#include "KVLCodeValue.h"

/// Named values as text that brings back the same values, types of elements included:
///
///     kvl-variables 1
///     x "double" "5"
///     points "KVLVector<Point>" ["Point" "(0, 0)", "Point" "(1, 2)"]
///     nothing "any" -
///     something "any" {"int" "7"}
///
/// One variable a line: its name and its value. A value is its type and its text, both quoted as
/// the kit quotes; for a list "[", the elements separated by ", ", and "]"; for an "any" what it
/// holds between "{" and "}"; for a list or an "any" without content "-".
namespace iota {

struct Variable {
  MRBUnicodeString name;
  KVLSmartPtr<KVLCodeValue> value;
};

/// Throws, naming the variable, where a value has no text, or one that does not read back.
MRBUnicodeString Write(const KVLCodeContext& context, const KVLVector<Variable>& variables);

/// Throws, with the number of the line, where the text has another form, a type is not known or a
/// value is refused.
KVLVector<Variable> Read(const KVLCodeContext& context, const MRBUnicodeString& text);

/// True for a letter or "_", then letters, digits and "_".
bool IsName(const MRBUnicodeString& text);

/// Reads the whole file. Throws where that fails.
MRBUnicodeString ReadFile(const MRBUnicodeString& file);

/// Puts a file with the text in the place of `file`: whoever opens it finds the former content or
/// the new one. Throws where that fails, and then the former file is as it was.
void ReplaceFile(const MRBUnicodeString& file, const MRBUnicodeString& text);

}  // namespace iota

#endif
