#ifndef KVL_SHELL_RESULT_H
#define KVL_SHELL_RESULT_H

#include "KVLResult.h"

/// What the shell returns for a text, and what a program that runs texts ends with.
///
/// Besides these codes the shell returns `KVLResult_Success`, and `KVLResult_Failure` for a command
/// that was understood and carried out and went wrong: a call that failed, a registry that is not
/// in order. It never returns `KVLResult_NotImplemented`, which is what the kernel returns when it
/// finds no shell.

/// The text is no command line: a quote or a bracket is left open, the command or an option is not
/// known, or words are missing or too many.
constexpr long KVLShellResult_Usage = static_cast<std::int32_t>(0x80040202u);
/// A path, a type or a help topic is not there.
constexpr long KVLShellResult_NotFound = static_cast<std::int32_t>(0x80040203u);
/// An argument of a call does not fit its parameter, is missing or too many; or a value cannot be
/// converted.
constexpr long KVLShellResult_Argument = static_cast<std::int32_t>(0x80040204u);

/// A library was not loaded or not unloaded.
constexpr long KVLShellResult_Load = static_cast<std::int32_t>(0x80040205u);
/// The user interrupted the text.
constexpr long KVLShellResult_Interrupted = static_cast<std::int32_t>(0x80040206u);

/// The text asked for the session to end, and the program with it, by `quit`. No failure: the exit
/// code asked for, 0 to 255, is in the low byte.
constexpr long KVLShellResult_Quit = 0x00040300;
inline constexpr bool KVLShellIsQuit(long result) {
  return (result & ~0xFFL) == KVLShellResult_Quit;
}

enum KVLExitCode {
  KVLExit_Done = 0,
  KVLExit_No = 1,        ///< the answer is "no", or what was asked for failed
  KVLExit_Usage = 2,     ///< not understood
  KVLExit_NotFound = 3,  ///< something that is named is not there
  KVLExit_Argument = 4,  ///< an argument or a conversion
  KVLExit_Load = 5,      ///< a library cannot be loaded or unloaded
  KVLExit_Interrupted = 130
};

/// The exit code of a program whose last text returned `result`.
inline constexpr int KVLExitCodeOf(long result) {
  if (KVLShellIsQuit(result)) return static_cast<int>(result & 0xFF);
  switch (result) {
    case KVLResult_Success:
      return KVLExit_Done;
    case KVLShellResult_Usage:
      return KVLExit_Usage;
    case KVLShellResult_NotFound:
      return KVLExit_NotFound;
    case KVLShellResult_Argument:
      return KVLExit_Argument;
    case KVLShellResult_Load:
    case KVLResult_NotImplemented:
      return KVLExit_Load;
    case KVLShellResult_Interrupted:
      return KVLExit_Interrupted;
    default:
      return KVLExit_No;
  }
}

#endif
