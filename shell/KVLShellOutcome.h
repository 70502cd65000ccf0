#ifndef KVL_SHELL_OUTCOME_H
#define KVL_SHELL_OUTCOME_H

#include "KVLResult.h"
#include "MRBUnicodeString.h"

/// How a command ended: with 0, or with a code and what the user is told. Texts and JSON show the
/// same fields; those that do not apply are empty.
struct KVLShellOutcome {
  KVLShellOutcome() = default;
  KVLShellOutcome(long outcomeCode, const MRBUnicodeString& outcomeMessage,
                  int outcomePosition = -1);

  long code = KVLResult_Success;
  MRBUnicodeString message;     ///< empty when the answer has said what there is to say
  int position = -1;            ///< of the byte in the text that the message is about; -1 for none
  MRBUnicodeString path;        ///< the object concerned
  MRBUnicodeString parameter;   ///< of a function: its name
  MRBUnicodeString expected;    ///< the type
  MRBUnicodeString got;         ///< the text
  bool isMissing = false;       ///< nothing was given, not even an empty text
  MRBUnicodeString suggestion;  ///< what was possibly meant
  MRBUnicodeString usage;       ///< of the command that was misused
  long cause = 0;               ///< the code of the operation that failed; 0 when there was none

  bool IsSuccess() const { return code == KVLResult_Success; }
};

/// The kind of a code, in one word: "usage", "not_found", "argument", "load", "interrupted", "no"
/// or "failed".
const char* KVLShellKindOf(long code);

/// The message with what was possibly meant, and the usage.
MRBUnicodeString KVLShellMessageOf(const KVLShellOutcome& outcome);

/// `text` for an error message: control characters as \xHH, and no more than 60 bytes, with "..."
/// for the rest.
MRBUnicodeString KVLShellPrintable(const MRBUnicodeString& text);

/// True when `text` holds control characters.
bool KVLShellNeedsEscapes(const MRBUnicodeString& text);

/// `text` with control characters as \xHH.
MRBUnicodeString KVLShellEscaped(const MRBUnicodeString& text);

/// A result code as "0x80004005".
MRBUnicodeString KVLShellCodeText(long code);

#endif
