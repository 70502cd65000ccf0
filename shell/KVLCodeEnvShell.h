#ifndef KVL_CODE_ENV_SHELL_H
#define KVL_CODE_ENV_SHELL_H

#include "KVLExport.h"
#include "MRBUnicodeString.h"

/// The entries of the shell library. A text is one or several lines of commands and expressions:
/// the command `help` tells them. They run in their order up to the first that fails; a text that
/// is not understood as a whole runs not at all. No exception leaves the shell.
///
/// The shell keeps one session for the process: named values and bindings stay from one text to the
/// next, and go when the library is closed.
///
/// Thread rule: a call works with the registry: see `KVLCodeEnv`. `KVLCodeShellInterrupt` may be
/// called at any time, also from a signal handler or another thread.

enum KVLShellChannel {
  KVLShellChannel_Output = 1,  ///< results
  KVLShellChannel_Error = 2    ///< what went wrong
};

enum KVLShellFlag : unsigned int {
  /// Every command answers, on the output channel, with one JSON object on one line.
  KVLShellFlag_Json = 1,
  /// Texts carry colours, as terminals understand them.
  KVLShellFlag_Color = 2
};

/// Receives `length` bytes of text, borrowed for the call: whole lines, each with its newline.
using KVLShellSink = void (*)(void* receiver, int channel, const char* text, int length);

/// Runs `text`. Writes to the process's standard output and standard error, and flushes them after
/// each command. Returns the code of what failed, or 0: see `KVLShellResult.h`.
extern "C" KVL_ENTRY_EXPORT long KVLCodeShellStaticRun(const MRBUnicodeString& text);

/// The same, but hands what is written to `sink`, with `receiver` as its first argument. `flags`:
/// `KVLShellFlag` bits.
extern "C" KVL_ENTRY_EXPORT long KVLCodeShellRunTo(const MRBUnicodeString& text, unsigned int flags,
                                                   KVLShellSink sink, void* receiver);

/// What `text`, written up to the cursor, may go on with: hands the whole words that may stand in
/// place of its bytes from `*replaceFrom` on, sorted, one a line, to `sink` on the output channel.
/// A word that ends with "/", "(", "=" or a blank is to be gone on with. Creates nothing in the
/// registry. Returns 0, also when there is nothing to offer.
extern "C" KVL_ENTRY_EXPORT long KVLCodeShellComplete(const MRBUnicodeString& text,
                                                      int* replaceFrom, KVLShellSink sink,
                                                      void* receiver);

/// Asks the text that is running to end: before its next command, or within one that asks. It then
/// returns `KVLShellResult_Interrupted`. Does nothing when none is running.
extern "C" KVL_ENTRY_EXPORT void KVLCodeShellInterrupt();

#endif
