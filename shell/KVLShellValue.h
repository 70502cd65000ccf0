#ifndef KVL_SHELL_VALUE_H
#define KVL_SHELL_VALUE_H

#include "KVLCodeContext.h"
#include "KVLCodeType.h"
#include "KVLCodeValue.h"
#include "KVLShellAnswer.h"
#include "KVLShellOutcome.h"

/// The type registered under `typeName`, or null. Creates nothing in the registry.
KVLSmartPtr<const KVLCodeType> KVLShellFindType(const MRBUnicodeString& typeName);

/// The outcome for the name of a type that is not registered.
KVLShellOutcome KVLShellUnknownType(const MRBUnicodeString& typeName, int position);

/// A fresh value of the type that holds what `text` says; null when the type is not registered or
/// does not read the text.
KVLSmartPtr<KVLCodeValue> KVLShellReadAs(const KVLCodeContext& context,
                                         const MRBUnicodeString& typeName,
                                         const MRBUnicodeString& text);

/// True for a word that is meant as a number: it begins with a digit, perhaps behind a sign or a
/// point.
bool KVLShellIsNumber(const MRBUnicodeString& word);

/// True for a word that is meant as a truth value.
bool KVLShellIsTruth(const MRBUnicodeString& word);

/// The value that a text stands for where no type is expected: a bool, an int, an int64 or a
/// double, whichever reads it first; null when none does.
KVLSmartPtr<KVLCodeValue> KVLShellReadScalar(const KVLCodeContext& context,
                                             const MRBUnicodeString& text);

/// The list that a text stands for where no type is expected. `elementTypeName`: of the elements,
/// where they are all of one type; a list of anything is made where there is no list of it. Null
/// when no list type is registered that reads the text.
KVLSmartPtr<KVLCodeValue> KVLShellReadList(const KVLCodeContext& context,
                                           const MRBUnicodeString& elementTypeName,
                                           const MRBUnicodeString& text);

/// True for a type whose parent, its parent and so on come back to one of them: to assign values of
/// such a type to others would never end.
bool KVLShellDescendsInALoop(const MRBUnicodeString& typeName);

/// True for a type that holds values of any type.
bool KVLShellHoldsAny(const KVLCodeContext& context, const MRBUnicodeString& typeName);

/// The text of a value inside a list: quoted where it would not read back otherwise.
MRBUnicodeString KVLShellElementText(const KVLCodeValue& value, const MRBUnicodeString& text);

/// The value as an answer shows it; without a text where it cannot be written.
KVLShellNode KVLShellValueNode(const KVLCodeContext& context, const KVLCodeValue& value);

#endif
