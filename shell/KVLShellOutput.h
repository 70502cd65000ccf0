#ifndef KVL_SHELL_OUTPUT_H
#define KVL_SHELL_OUTPUT_H

#include "KVLCodeEnvShell.h"
#include "KVLShellAnswer.h"
#include "KVLShellOutcome.h"

/// Where the shell writes.
class KVLShellOutput {
 public:
  /// `outputFlags`: `KVLShellFlag` bits.
  KVLShellOutput(KVLShellSink shellSink, void* sinkReceiver, unsigned int outputFlags)
      : sink(shellSink), receiver(sinkReceiver), flags(outputFlags) {}

  /// Writes how a command of `text` ended: its answer, then what is wrong, with a caret under the
  /// culprit; or both as one JSON object.
  void Write(const MRBUnicodeString& text, const KVLShellAnswer& answer,
             const KVLShellOutcome& outcome) const;
  /// Hands whole lines to the sink; an empty text is not handed on.
  void WriteText(int channel, const MRBUnicodeString& lines) const;

  /// The same place with other flags.
  KVLShellOutput WithFlags(unsigned int otherFlags) const {
    return KVLShellOutput(sink, receiver, otherFlags);
  }
  unsigned int GetFlags() const { return flags; }
  bool IsJson() const { return (flags & KVLShellFlag_Json) != 0; }
  bool IsColored() const { return (flags & KVLShellFlag_Color) != 0; }

 private:
  const KVLShellSink sink;
  void* const receiver;
  const unsigned int flags;
};

/// The place of byte `position` in `text`, as people count: both from 1, the column in characters.
struct KVLShellColumn {
  int line = 0;
  int column = 0;
};
KVLShellColumn KVLShellColumnOf(const MRBUnicodeString& text, int position);

/// What `outcome` tells the user about `text`: the message, and where its position is known the
/// line concerned with a caret under the culprit. Empty without a message.
MRBUnicodeString KVLShellReportOf(const MRBUnicodeString& text, const KVLShellOutcome& outcome,
                                  bool isColored);

#endif
