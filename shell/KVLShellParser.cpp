#include <utility>

#include "KVLShellCommand.h"
#include "KVLShellResult.h"
#include "KVLShellSyntax.h"

namespace {

// A deeper text is refused, for the reader and the evaluation go down with it.
constexpr int DeepestNesting = 200;

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

bool IsDigit(char character) {
  return character >= '0' && character <= '9';
}

// Reads one text from its start to its end. `position` is the byte to be read next; what a word
// holds is copied run by run, so that its cost is linear however long it is.
class Reader {
 public:
  explicit Reader(const MRBUnicodeString& source)
      : bytes(source.ConvertToChar()), length(source.GetLengthInByte()) {}

  KVLShellOutcome Read(std::vector<KVLShellStatement>& statements) {
    while (position < length) {
      if (KVLShellIsBlank(bytes[position]) || KVLShellIsStatementEnd(bytes[position])) {
        ++position;
      } else if (bytes[position] == '#') {
        SkipComment();
      } else {
        KVLShellStatement statement;
        statement.position = position;
        if (!ReadStatement(statement)) return problem;
        statement.end = position;
        statements.push_back(std::move(statement));
      }
    }
    return KVLShellOutcome();
  }

 private:
  bool At(char character) const { return position < length && bytes[position] == character; }
  // At the end of a statement; blanks before it do not count.
  bool AtStatementEnd() {
    SkipBlanks();
    return position == length || KVLShellIsStatementEnd(bytes[position]) || bytes[position] == '#';
  }
  MRBUnicodeString Slice(int start, int end) const {
    return MRBUnicodeString(bytes + start, end - start);
  }

  void SkipBlanks() {
    while (position < length && KVLShellIsBlank(bytes[position]))
      ++position;
  }
  void SkipComment() {
    while (position < length && bytes[position] != '\n')
      ++position;
  }
  // Between brackets.
  void SkipSpace() {
    while (position < length) {
      if (KVLShellIsBlank(bytes[position]) || bytes[position] == '\n') {
        ++position;
      } else if (bytes[position] == '#') {
        SkipComment();
      } else {
        return;
      }
    }
  }
  MRBUnicodeString ReadRun() {
    const int start = position;
    while (position < length && KVLShellIsWordByte(bytes[position]))
      ++position;
    return Slice(start, position);
  }

  bool ReadStatement(KVLShellStatement& statement) {
    const int start = position;
    const MRBUnicodeString run = ReadRun();
    const int runEnd = position;
    const bool isCall = At('(');
    SkipBlanks();
    const bool isAssignment = !run.IsEmpty() && At('=');
    const bool isFollowed = !isAssignment && !AtStatementEnd();
    position = start;
    if (isAssignment) return ReadAssignment(statement);
    const bool isWhole =
        runEnd == length || KVLShellIsBlank(bytes[runEnd]) || KVLShellIsStatementEnd(bytes[runEnd]);
    statement.command = isWhole ? KVLShellLookUpCommand(run) : nullptr;
    if (statement.command) return ReadCommand(statement);
    const bool isWord = !run.IsEmpty() && !StartsExpression(run);
    if (isWord && !isCall && isFollowed) return ReadWords(statement);
    statement.kind = KVLShellStatement::Expression;
    return ReadWholeExpression(statement);
  }

  // True for a run that can be nothing but the start of an expression, whatever follows it.
  static bool StartsExpression(const MRBUnicodeString& run) {
    const char* const start = run.ConvertToChar();
    const bool isSigned = start[0] == '-' || start[0] == '+' || start[0] == '.';
    return start[0] == '$' || start[0] == '&' || IsDigit(start[0]) ||
           (isSigned && IsDigit(start[1]));
  }

  bool ReadAssignment(KVLShellStatement& statement) {
    statement.kind = KVLShellStatement::Assignment;
    return ReadTarget(statement) && ReadWholeExpression(statement);
  }

  // NAME =
  bool ReadTarget(KVLShellStatement& statement) {
    KVLShellWord name;
    name.position = position;
    name.text = ReadRun();
    name.end = position;
    SkipBlanks();
    if (!At('=')) return Fail("'=' is missing", position);
    ++position;
    statement.words.Append(std::move(name));
    return true;
  }

  bool ReadCommand(KVLShellStatement& statement) {
    switch (statement.command->style) {
      case KVLShellStyle_Words:
        return ReadWords(statement);
      case KVLShellStyle_WordsOrCall:
        return ReadWordsOrCall(statement);
      case KVLShellStyle_Expression:
        ReadName(statement);
        return AtStatementEnd() || ReadWholeExpression(statement);
      case KVLShellStyle_Binding:
        ReadName(statement);
        return AtStatementEnd() || (ReadTarget(statement) && ReadWholeExpression(statement));
      case KVLShellStyle_Rest:
        ReadName(statement);
        return ReadRest(statement);
    }
    return true;
  }

  void ReadName(KVLShellStatement& statement) {
    KVLShellWord name;
    name.position = position;
    name.text = ReadRun();
    name.end = position;
    statement.words.Append(std::move(name));
  }

  bool ReadWordsOrCall(KVLShellStatement& statement) {
    const int start = position;
    ReadName(statement);
    SkipBlanks();
    const int second = position;
    const bool isCall = !ReadRun().IsEmpty() && At('(');
    position = second;
    if (isCall) return ReadWholeExpression(statement);
    statement.words.Resize(0);
    position = start;
    return ReadWords(statement);
  }

  // The bytes up to the end of the line are one word; so is a quoted text that ends there.
  bool ReadRest(KVLShellStatement& statement) {
    if (position < length && KVLShellIsBlank(bytes[position])) ++position;
    KVLShellWord rest;
    rest.position = position;
    SkipComment();
    rest.end = position;
    rest.text = Slice(rest.position, rest.end);
    const bool isEmpty = rest.text.Strip(MRBUnicodeString::MRBStripBoth).IsEmpty();
    if (!isEmpty) statement.words.Append(std::move(rest));
    return true;
  }

  bool ReadWholeExpression(KVLShellStatement& statement) {
    SkipBlanks();
    statement.hasExpression = true;
    if (!ReadExpression(statement.expression, 0)) return false;
    if (AtStatementEnd()) return true;
    return Fail("what follows the expression is not understood", position);
  }

  // --- words ---

  bool ReadWords(KVLShellStatement& statement) {
    while (!AtStatementEnd()) {
      KVLShellWord word;
      if (!ReadWord(word)) return false;
      statement.words.Append(std::move(word));
    }
    if (!statement.command) statement.command = KVLShellLookUpCommand(statement.words[0].text);
    return true;
  }

  bool ReadWord(KVLShellWord& word) {
    word.position = position;
    word.isQuoted = bytes[position] == '"';
    while (position < length) {
      const char character = bytes[position];
      if (KVLShellIsBlank(character) || KVLShellIsStatementEnd(character)) break;
      const bool isRead = character == '"'      ? ReadQuoted(word.text)
                          : CloserOf(character) ? ReadBracketed(word.text)
                                                : ReadPlain(word.text);
      if (!isRead) return false;
    }
    word.end = position;
    return true;
  }

  bool ReadPlain(MRBUnicodeString& word) {
    const int start = position;
    while (position < length && !KVLShellIsBlank(bytes[position]) &&
           !KVLShellIsStatementEnd(bytes[position]) && bytes[position] != '"' &&
           !CloserOf(bytes[position])) {
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
    if (!At('"')) return Fail("missing closing '\"'", quote);
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
    if (!open.IsEmpty()) return FailToClose(open[open.GetCount() - 1]);
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

  void AppendRun(MRBUnicodeString& word, int start) const { word += Slice(start, position); }

  // --- expressions ---

  bool ReadExpression(KVLShellExpression& expression, int depth) {
    expression.position = position;
    if (depth > DeepestNesting) return Fail("brackets nest too deep", position);
    const bool isRead = ReadExpressionStart(expression, depth);
    expression.end = position;
    return isRead;
  }

  bool ReadExpressionStart(KVLShellExpression& expression, int depth) {
    switch (position < length ? bytes[position] : '\0') {
      case '"':
        expression.kind = KVLShellExpression::Quoted;
        return ReadQuoted(expression.text);
      case '[':
        expression.kind = KVLShellExpression::List;
        return ReadItems(expression, depth);
      case '(':
      case '{':
        expression.kind = KVLShellExpression::Bracketed;
        return ReadBracketed(expression.text);
      case '$':
        expression.kind = KVLShellExpression::Session;
        return ReadIdentifier(expression.text);
      case '&':
        expression.kind = KVLShellExpression::Output;
        return ReadIdentifier(expression.text);
      default:
        break;
    }
    expression.text = ReadRun();
    if (expression.text.IsEmpty()) return FailToBegin();
    if (At('(')) {
      expression.kind = KVLShellExpression::Call;
      return ReadItems(expression, depth);
    }
    expression.kind = expression.text == "_" ? KVLShellExpression::Open : KVLShellExpression::Word;
    return true;
  }

  // The name behind a "$" or "&".
  bool ReadIdentifier(MRBUnicodeString& name) {
    const int sign = position;
    ++position;
    name = ReadRun();
    if (KVLShellIsIdentifier(name)) return true;
    return Fail("'" + Slice(sign, sign + 1) + "' is followed by the name of a session value", sign);
  }

  // What is between brackets, separated by ",".
  bool ReadItems(KVLShellExpression& expression, int depth) {
    const int opener = position;
    const char closer = CloserOf(bytes[opener]);
    ++position;
    SkipSpace();
    if (At(closer)) {
      ++position;
      return true;
    }
    while (true) {
      KVLShellExpression item;
      SkipSpace();
      if (position == length) return FailToClose(opener);
      if (expression.kind == KVLShellExpression::Call) ReadParameter(item.parameter);
      if (!ReadExpression(item, depth + 1)) return false;
      expression.items.push_back(std::move(item));
      SkipSpace();
      if (position == length) return FailToClose(opener);
      const bool isLast = At(closer);
      if (!isLast && !At(',')) {
        return Fail("missing ',' or '" + MRBUnicodeString(&closer, 1) + "'", position);
      }
      ++position;
      if (isLast) return true;
    }
  }

  // `name =` before an argument; leaves the position alone when there is none.
  void ReadParameter(KVLShellWord& parameter) {
    const int start = position;
    MRBUnicodeString run = ReadRun();
    const int end = position;
    SkipSpace();
    if (run.IsEmpty() || !At('=')) {
      position = start;
      return;
    }
    ++position;
    SkipSpace();
    parameter.position = start;
    parameter.end = end;
    parameter.text = std::move(run);
  }

  bool FailToBegin() {
    if (position == length || KVLShellIsStatementEnd(bytes[position])) {
      return Fail("a value is missing", position);
    }
    return Fail("unexpected '" + KVLShellPrintable(Slice(position, position + 1)) + "'", position);
  }

  bool FailToClose(int opener) {
    const char closer = CloserOf(bytes[opener]);
    return Fail("missing closing '" + MRBUnicodeString(&closer, 1) + "'", opener);
  }

  bool Fail(const MRBUnicodeString& message, int where) {
    problem = KVLShellOutcome(KVLShellResult_Usage, message, where);
    return false;
  }

  const char* const bytes;
  const int length;
  int position = 0;
  KVLShellOutcome problem;
};

}  // namespace

KVLShellOutcome KVLShellParse(const MRBUnicodeString& text,
                              std::vector<KVLShellStatement>& statements) {
  return Reader(text).Read(statements);
}
