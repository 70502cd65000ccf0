#ifndef KVL_SESSION_H
#define KVL_SESSION_H

#include <string>

#include "KVLShellEntries.h"

class KVLOutput;

/// The one road on which the program runs texts, wherever they come from.
class KVLSession {
 public:
  /// `flags`: `KVLShellFlag` bits. `output` is borrowed.
  KVLSession(unsigned int flags, KVLOutput& output);

  /// Runs one text and returns the shell's result; what it wrote has been written out by then.
  /// `KVLResult_Failure`, and the text is asked to end, when results are lost.
  long Run(const std::string& text);

  const KVLShellEntries& GetShell() const { return shell; }

 private:
  static void Sink(void* session, int channel, const char* text, int length);

  KVLShellEntries shell;
  KVLOutput& output;
  unsigned int shellFlags;
};

#endif
