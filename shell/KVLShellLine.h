#ifndef KVL_SHELL_LINE_H
#define KVL_SHELL_LINE_H

#include "KVLVector.h"
#include "MRBUnicodeString.h"

/// One word of a command, and where it stands.
struct KVLShellWord {
  MRBUnicodeString text;  ///< without the quotes and escapes that it was written with
  int position = 0;       ///< of its first byte in the text, from 0
  bool isQuoted = false;  ///< it begins with a double quote
};

/// The words of one command; never empty.
using KVLShellCommandWords = KVLVector<KVLShellWord>;

/// Why a text could not be cut into words.
struct KVLShellSyntaxError {
  MRBUnicodeString message;
  int position = 0;  ///< of the byte that the message is about, from 0
};

/// Cuts `text` into commands and these into words. Returns false, and fills `error`, when a quote
/// or bracket is left open or an escape is not known; `commands` then holds what came before.
///
/// - Blanks (space, tab, carriage return, vertical tab, form feed) separate words; ";" and a
/// newline
///   separate commands; "#" where a word would begin starts a comment up to the end of its line.
/// - Between double quotes everything is taken as it is, but \", \\, \n, \r and \t, which stand for
///   a double quote, a backslash, a newline, a carriage return and a tab. A quoted part joins what
///   touches it, and "" makes an empty word.
/// - Between brackets - (), [] and {} - everything is taken as it is, quotes and escapes included,
///   so that `[1, "a b"]` is one word: the text of a list. Quotes protect brackets there.
/// - Every other byte stands for itself: NUL bytes and bytes above 127 are ordinary.
bool KVLShellParseLine(const MRBUnicodeString& text, KVLVector<KVLShellCommandWords>& commands,
                       KVLShellSyntaxError& error);

#endif
