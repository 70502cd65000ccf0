#include "KVLShellLine.h"

#include <utility>

namespace {

bool IsBlank(char character) {
  return character == ' ' || character == '\t' || character == '\r' || character == '\v' ||
         character == '\f';
}

bool IsCommandEnd(char character) {
  return character == ';' || character == '\n';
}

// The closer of a bracket, or NUL for any other character.
char CloserOf(char character) {
  switch (character) {
    case '(':
      return ')';
    case '[':
      return ']';
    case '{':
      return '}';
    default:
      return '\0';
  }
}

// What "\letter" stands for between quotes, or NUL when it stands for nothing.
char Unescape(char letter) {
  switch (letter) {
    case '"':
    case '\\':
      return letter;
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case 't':
      return '\t';
    default:
      return '\0';
  }
}

// Reads one text from its start to its end. `position` is the byte to be read next; a word is
// copied run by run, so that its cost is linear however long it is.
class Reader {
 public:
  Reader(const MRBUnicodeString& source, KVLShellSyntaxError& problem)
      : bytes(source.ConvertToChar()), length(source.GetLengthInByte()), error(problem) {}

  bool ReadCommands(KVLVector<KVLShellCommandWords>& commands) {
    KVLShellCommandWords words;
    while (position < length) {
      const char character = bytes[position];
      if (IsBlank(character)) {
        ++position;
      } else if (character == '#') {
        SkipComment();
      } else if (IsCommandEnd(character)) {
        ++position;
        Close(words, commands);
      } else {
        KVLShellWord word;
        if (!ReadWord(word)) return false;
        words.Append(std::move(word));
      }
    }
    Close(words, commands);
    return true;
  }

 private:
  static void Close(KVLShellCommandWords& words, KVLVector<KVLShellCommandWords>& commands) {
    if (!words.IsEmpty()) commands.Append(std::move(words));
    words = KVLShellCommandWords();
  }

  void SkipComment() {
    while (position < length && bytes[position] != '\n')
      ++position;
  }

  bool ReadWord(KVLShellWord& word) {
    word.position = position;
    word.isQuoted = bytes[position] == '"';
    while (position < length) {
      const char character = bytes[position];
      if (IsBlank(character) || IsCommandEnd(character)) break;
      const bool isRead = character == '"'      ? ReadQuoted(word.text)
                          : CloserOf(character) ? ReadBracketed(word.text)
                                                : ReadPlain(word.text);
      if (!isRead) return false;
    }
    return true;
  }

  bool ReadPlain(MRBUnicodeString& word) {
    const int start = position;
    while (position < length && !IsBlank(bytes[position]) && !IsCommandEnd(bytes[position]) &&
           bytes[position] != '"' && !CloserOf(bytes[position])) {
      ++position;
    }
    AppendRun(word, start);
    return true;
  }

  bool ReadQuoted(MRBUnicodeString& word) {
    const int quote = position;
    ++position;
    int start = position;
    while (position < length && bytes[position] != '"') {
      if (bytes[position] != '\\') {
        ++position;
        continue;
      }
      AppendRun(word, start);
      if (position + 1 == length) break;
      const char meant = Unescape(bytes[position + 1]);
      if (!meant) return Fail("unknown escape; known are \\\" \\\\ \\n \\r \\t", position);
      word += MRBUnicodeString(&meant, 1);
      position += 2;
      start = position;
    }
    if (position == length || bytes[position] != '"') return Fail("missing closing '\"'", quote);
    AppendRun(word, start);
    ++position;
    return true;
  }

  // Copies a bracket, what it holds and its closer. The open brackets lie in a vector, not on the
  // machine's stack: a text may nest as deep as it is long.
  bool ReadBracketed(MRBUnicodeString& word) {
    const int start = position;
    KVLVector<int> open;
    do {
      const char character = bytes[position];
      if (character == '"') {
        if (!SkipQuoted()) return false;
        continue;
      }
      if (CloserOf(character)) {
        open.Append(position);
      } else if (character == CloserOf(bytes[open[open.GetCount() - 1]])) {
        open.Erase(open.GetCount() - 1);
      }
      ++position;
    } while (!open.IsEmpty() && position < length);
    if (!open.IsEmpty()) {
      const int innermost = open[open.GetCount() - 1];
      const char closer = CloserOf(bytes[innermost]);
      return Fail("missing closing '" + MRBUnicodeString(&closer, 1) + "'", innermost);
    }
    AppendRun(word, start);
    return true;
  }

  bool SkipQuoted() {
    const int quote = position;
    for (++position; position < length; ++position) {
      if (bytes[position] == '"') {
        ++position;
        return true;
      }
      if (bytes[position] == '\\') ++position;
    }
    return Fail("missing closing '\"'", quote);
  }

  void AppendRun(MRBUnicodeString& word, int start) const {
    word += MRBUnicodeString(bytes + start, position - start);
  }

  bool Fail(const MRBUnicodeString& message, int where) {
    error.message = message;
    error.position = where;
    return false;
  }

  const char* const bytes;
  const int length;
  int position = 0;
  KVLShellSyntaxError& error;
};

}  // namespace

bool KVLShellParseLine(const MRBUnicodeString& text, KVLVector<KVLShellCommandWords>& commands,
                       KVLShellSyntaxError& error) {
  return Reader(text, error).ReadCommands(commands);
}
