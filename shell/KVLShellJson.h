#ifndef KVL_SHELL_JSON_H
#define KVL_SHELL_JSON_H

#include "KVLShellAnswer.h"
#include "KVLShellOutcome.h"

/// `node` as JSON, without a newline at its end: on one line when `indent` is negative, else with
/// that many blanks a level. Bytes that are no UTF-8 become U+FFFD.
MRBUnicodeString KVLShellJsonOf(const KVLShellNode& node, int indent);

/// How a command of `text` ended, as the object that every command answers with in JSON, on one
/// line: "kvl" is the version of the form, "ok" is true for a success, "result" is the answer's and
/// "error", in place of it or beside it, tells what is wrong:
///
/// - "code": the exit code of a program that ends with this; "kind": the same in a word;
///   "message": what a text says.
/// - "path", "parameter", "expected", "got", "suggestion": the object concerned, its parameter, the
///   type expected, the text given, and what was possibly meant.
/// - "line", "column": where in the text, in characters from 1; "offset": the same in bytes from 0.
/// - "cause": the code of the operation that failed, as "0x80004005".
///
/// Each is null when it does not apply. Within a version fields are only added.
MRBUnicodeString KVLShellJsonOf(const MRBUnicodeString& text, const KVLShellAnswer& answer,
                                const KVLShellOutcome& outcome);

#endif
