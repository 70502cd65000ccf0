#ifndef KVL_SHELL_DESCRIPTION_H
#define KVL_SHELL_DESCRIPTION_H

#include "KVLCodeObject.h"

/// What an object is, in one word: "function", "type", "variable", "env" or "object".
MRBUnicodeString KVLShellKind(const KVLCodeObject& object);

/// The object in one line: the declaration of a function, the name of a type, the declaration of a
/// variable with the beginning of its text. Empty for an environment.
MRBUnicodeString KVLShellSignature(const KVLCodeObject& object);

#endif
