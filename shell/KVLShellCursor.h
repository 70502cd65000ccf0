#ifndef KVL_SHELL_CURSOR_H
#define KVL_SHELL_CURSOR_H

#include "KVLShellSyntax.h"

/// An open bracket, and what was written in it so far.
struct KVLShellFrame {
  char opener;
  bool isCall;
  MRBUnicodeString path;              ///< of the function called
  int nbArguments = 0;                ///< that are complete
  MRBUnicodeString parameter;         ///< named before the argument at the cursor
  KVLVector<MRBUnicodeString> named;  ///< all that were named
};

/// What stands at a cursor.
enum class KVLShellCursorPlace { Nothing, Start, Word, Expression, Argument };

/// Where the end of a text stands in its last statement.
struct KVLShellCursor {
  KVLShellCursorPlace place = KVLShellCursorPlace::Start;
  int tokenStart = 0;
  const KVLShellCommand* command = nullptr;
  KVLVector<MRBUnicodeString> words;  ///< complete ones, the command's name among them
  KVLShellFrame frame{};              ///< the innermost bracket
};

/// Reads `text`, written up to the cursor, as far as it goes. Unlike the parser, it takes every
/// text.
KVLShellCursor KVLShellFindCursor(const MRBUnicodeString& text);

#endif
