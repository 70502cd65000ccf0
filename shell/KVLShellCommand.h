#ifndef KVL_SHELL_COMMAND_H
#define KVL_SHELL_COMMAND_H

#include "KVLShellLine.h"
#include "KVLShellOutcome.h"

/// A command of the shell: its name, its help, and what it does with its words, the first of which
/// is its name.
struct KVLShellCommand {
  const char* name;
  const char* usage;    ///< the name and the words it takes
  const char* summary;  ///< one line
  const char* details;  ///< further lines, each with its newline
  KVLShellOutcome (*run)(const KVLShellCommandWords& words, KVLShellOutput& output);
};

/// The command of that name, or null. Borrowed, for ever.
const KVLShellCommand* KVLShellFindCommand(const MRBUnicodeString& commandName);

/// Runs one command: one of the functions below, or an outcome that says that there is none.
KVLShellOutcome KVLShellRunCommand(const KVLShellCommandWords& words, KVLShellOutput& output);

/// The outcome for words that the command does not take; `message` says why.
KVLShellOutcome KVLShellMisused(const KVLShellCommandWords& words, const MRBUnicodeString& message,
                                int position);

/// True when a word is meant as an option: it begins with "-", is not quoted and no number.
bool KVLShellIsOption(const KVLShellWord& word);

KVLShellOutcome KVLShellCall(const KVLShellCommandWords& words, KVLShellOutput& output);
KVLShellOutcome KVLShellConvert(const KVLShellCommandWords& words, KVLShellOutput& output);
KVLShellOutcome KVLShellInfo(const KVLShellCommandWords& words, KVLShellOutput& output);
KVLShellOutcome KVLShellLs(const KVLShellCommandWords& words, KVLShellOutput& output);

#endif
