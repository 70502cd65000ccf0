#ifndef KVL_SHELL_DESCRIPTION_H
#define KVL_SHELL_DESCRIPTION_H

#include "KVLCodeObject.h"

/// What an object is, in one word: "function", "type", "variable", "env" or "object".
const char* KVLShellKind(const KVLCodeObject& object);

/// The object in one line: the declaration of a function, the name of a type, the declaration of a
/// variable with the beginning of its text. Empty for an environment.
MRBUnicodeString KVLShellSignature(const KVLCodeObject& object);

/// Where the doc of what `path` leads to would be: "doc/members/Point/Distance" for
/// "_members/Point/Distance".
MRBUnicodeString KVLShellDocPath(const MRBUnicodeString& path);

/// The paths below what the session uses that lead to the same as `path`: "math/hypot" for "hypot".
KVLVector<MRBUnicodeString> KVLShellUsedPaths(const MRBUnicodeString& path);

/// The doc of what `path` leads to; empty when there is none.
MRBUnicodeString KVLShellDoc(const MRBUnicodeString& path);

#endif
