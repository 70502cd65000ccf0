#ifndef KVL_SHELL_WORK_H
#define KVL_SHELL_WORK_H

#include "KVLCodeContext.h"
#include "KVLShellOutput.h"
#include "KVLShellSession.h"

/// What the commands of one text work with.
struct KVLShellWork {
  const MRBUnicodeString& text;
  KVLShellSession& session;
  const KVLCodeContext& context;  ///< with the session set; of one statement
  const KVLShellOutput& output;   ///< for what a command writes while it is at work
};

/// Runs `text` in `session`: parses it whole, then runs its statements in their order up to the
/// first that fails. Writes every answer and outcome to `output`. Returns the code of what failed,
/// or 0. Exceptions of functions are outcomes.
long KVLShellRunText(const MRBUnicodeString& text, KVLShellSession& session,
                     const KVLShellOutput& output);

#endif
