#ifndef KVL_CODE_ENV_SHELL_H
#define KVL_CODE_ENV_SHELL_H

#include "KVLExport.h"
#include "MRBUnicodeString.h"

/// The two entries of the shell library. A text is one or several command lines: see
/// `KVLShellLine.h` for its words, and the command `help` for the commands. The commands run in
/// their order up to the first that fails. Returns its code, or 0: see `KVLShellResult.h`. No
/// exception leaves the shell.
///
/// Thread rule: a call works with the registry: see `KVLCodeEnv`.

enum KVLShellChannel {
  KVLShellChannel_Output = 1,  ///< results
  KVLShellChannel_Error = 2    ///< what went wrong
};

/// Receives `length` bytes of text, borrowed for the call: whole lines, each with its newline.
using KVLShellSink = void (*)(void* receiver, int channel, const char* text, int length);

/// Writes to the process's standard output and standard error, and flushes them line by line.
extern "C" KVL_ENTRY_EXPORT long KVLCodeShellStaticRun(const MRBUnicodeString& text);

/// Hands what is written to `sink` instead, with `receiver` as its first argument. The report of
/// `check` still goes to the process's standard output: the kernel writes it.
extern "C" KVL_ENTRY_EXPORT long KVLCodeShellRunTo(const MRBUnicodeString& text, KVLShellSink sink,
                                                   void* receiver);

#endif
