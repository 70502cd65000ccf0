#ifndef KVL_SHELL_OUTCOME_H
#define KVL_SHELL_OUTCOME_H

#include "KVLCodeEnvShell.h"
#include "KVLResult.h"
#include "MRBUnicodeString.h"

/// How a command ended: with 0, or with a code and what the user is told.
struct KVLShellOutcome {
  long code = KVLResult_Success;
  MRBUnicodeString message;  ///< empty when the command has said already what there is to say
  int position = -1;         ///< of the byte in the text that the message is about; -1 for none
};

/// Where the shell writes, line by line.
class KVLShellOutput {
 public:
  KVLShellOutput(KVLShellSink shellSink, void* sinkReceiver)
      : sink(shellSink), receiver(sinkReceiver) {}

  /// Writes `line` and a newline as a result.
  void Print(const MRBUnicodeString& line);
  /// Writes what is wrong with `text` as an error: the message, and where its position is known the
  /// line concerned with a caret under the culprit.
  void Report(const MRBUnicodeString& text, const KVLShellOutcome& outcome);

 private:
  void Write(int channel, const MRBUnicodeString& line);

  const KVLShellSink sink;
  void* const receiver;
};

/// `text` for an error message: control characters as \xHH, and no more than 60 bytes, with "..."
/// for the rest.
MRBUnicodeString KVLShellPrintable(const MRBUnicodeString& text);

/// A result code as "0x80004005".
MRBUnicodeString KVLShellCodeText(long code);

#endif
