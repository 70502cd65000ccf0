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

/// A list as text.
struct KVLShellListTexts {
  MRBUnicodeString typed;            ///< for a list whose type tells what its elements are
  MRBUnicodeString any;              ///< for a list of anything: an element's text tells its type
  MRBUnicodeString elementTypeName;  ///< of the elements; empty when they differ
};

/// The list that texts stand for where no type is expected: a list of anything where there is no
/// list of the elements' type. Null when no list type is registered that reads them.
KVLSmartPtr<KVLCodeValue> KVLShellReadList(const KVLCodeContext& context,
                                           const KVLShellListTexts& texts);

/// True for a type whose parent, its parent and so on come back to one of them: to assign values of
/// such a type to others would never end.
bool KVLShellDescendsInALoop(const MRBUnicodeString& typeName);

/// True for a type that holds values of any type.
bool KVLShellHoldsAny(const KVLCodeContext& context, const MRBUnicodeString& typeName);

/// The text of a value inside a list: quoted where it would not read back otherwise.
MRBUnicodeString KVLShellElementText(const KVLCodeValue& value, const MRBUnicodeString& text);

/// The text of a value inside a list of anything, which tells its type where the type "any" writes
/// it so. `elementText`: what it is inside a list of its own type.
MRBUnicodeString KVLShellAnyElementText(const KVLCodeContext& context, const KVLCodeValue& value,
                                        const MRBUnicodeString& elementText);

/// True for a type of lists that hold values of any type.
bool KVLShellIsListOfAny(const KVLCodeContext& context, const MRBUnicodeString& typeName);

/// The value as an answer shows it; without a text where it cannot be written.
KVLShellNode KVLShellValueNode(const KVLCodeContext& context, const KVLCodeValue& value);

#endif
