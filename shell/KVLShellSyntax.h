#ifndef KVL_SHELL_SYNTAX_H
#define KVL_SHELL_SYNTAX_H

#include <vector>

#include "KVLShellOutcome.h"
#include "KVLVector.h"

struct KVLShellCommand;

/// A part of the text: its bytes are position .. end - 1, counted from 0.
struct KVLShellSpan {
  int position = 0;
  int end = 0;
};

/// One word of a command, and where it stands.
struct KVLShellWord : KVLShellSpan {
  MRBUnicodeString text;  ///< without the quotes and escapes that it was written with
  bool isQuoted = false;  ///< it begins with a double quote
};

/// What has a value: see `KVLShellParse` for how each kind is written.
struct KVLShellExpression : KVLShellSpan {
  enum Kind {
    Word,       ///< `text` as written: a number, a truth value, a path, the name of a value
    Quoted,     ///< `text` between double quotes, without them and its escapes
    Bracketed,  ///< `text` with the round brackets or braces around it, as written
    List,       ///< `items`
    Session,    ///< the session value named `text`
    Output,     ///< the session value named `text`, to be set by a call
    Open,       ///< what a binding leaves open
    Call        ///< the function at the path `text`, of the arguments `items`
  };

  Kind kind = Word;
  MRBUnicodeString text;
  std::vector<KVLShellExpression> items;
  KVLShellWord parameter;  ///< what an argument is for; empty when its place tells
};

/// One command, expression or assignment.
struct KVLShellStatement : KVLShellSpan {
  enum Kind {
    Command,     ///< `words`, the first of which is the command's name
    Expression,  ///< `expression`
    Assignment   ///< `expression` for the session value named by words[0]
  };

  Kind kind = Command;
  const KVLShellCommand* command = nullptr;  ///< null when there is none of that name
  KVLVector<KVLShellWord> words;
  bool hasExpression = false;
  KVLShellExpression expression;  ///< also of a command that takes one

  /// Where the statement begins that the user meant by the word `i`; -1 when there is none.
  int PositionOf(int i) const { return i < words.GetCount() ? words[i].position : -1; }
};

/// Reads `text` as statements. Returns 0, or the outcome that says what was not understood;
/// `statements` then holds what came before.
///
/// - Blanks (space, tab, carriage return, vertical tab, form feed) separate words; ";" and a
///   newline separate statements; "#" where a word would begin starts a comment up to the end of
///   its line.
/// - A statement whose first word is a command's name is a command; `NAME = EXPRESSION` is an
///   assignment; several words are a command that nobody knows; anything else is an expression.
/// - The words of a command: between double quotes everything is taken as it is, but \", \\, \n, \r
///   and \t, which stand for a double quote, a backslash, a newline, a carriage return and a tab; a
///   quoted part joins what touches it. Between brackets - (), [] and {} - everything is taken as
///   it is, quotes and escapes included, so that `[1, "a b"]` is one word. Every other byte stands
///   for itself: NUL bytes and bytes above 127 are ordinary.
/// - An expression is `"text"`, `[element, ...]`, `(anything in brackets)`, `$name`, or a word of
///   any bytes but blanks, quotes, brackets, ",", ";" and "=". A word with "(" right after it is a
///   call: `path(argument, name=argument, &name)`. Blanks and newlines between brackets do not
///   count. An identifier is a letter or "_", then letters, digits and "_".
KVLShellOutcome KVLShellParse(const MRBUnicodeString& text,
                              std::vector<KVLShellStatement>& statements);

/// True for what may name a session value: a letter or "_", then letters, digits and "_".
bool KVLShellIsIdentifier(const MRBUnicodeString& text);

/// `text` between double quotes, with the escapes that read back to it.
MRBUnicodeString KVLShellQuote(const MRBUnicodeString& text);

/// Which bytes separate words, and which end a statement.
bool KVLShellIsBlank(char character);
bool KVLShellIsStatementEnd(char character);
/// True for a byte that a word of an expression may hold.
bool KVLShellIsWordByte(char character);

#endif
