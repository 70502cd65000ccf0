#include "KVLShellCursor.h"

#include "KVLShellCommand.h"

namespace {

class Scanner {
 public:
  explicit Scanner(const MRBUnicodeString& source)
      : bytes(source.ConvertToChar()), length(source.GetLengthInByte()) {}

  KVLShellCursor Scan() {
    while (position < length)
      ScanByte();
    KVLShellCursor cursor;
    cursor.place = PlaceOfCursor();
    cursor.tokenStart = tokenStart < 0 ? length : tokenStart;
    cursor.command = command;
    cursor.words = words;
    if (!frames.empty()) cursor.frame = frames.back();
    return cursor;
  }

 private:
  KVLShellCursorPlace PlaceOfCursor() const {
    if (isInQuote || isInComment || isTokenClosed) return KVLShellCursorPlace::Nothing;
    if (!frames.empty()) {
      if (mode == Mode::Words) return KVLShellCursorPlace::Nothing;
      return frames.back().isCall ? KVLShellCursorPlace::Argument : PlaceInBracket();
    }
    if (mode == Mode::Expression) return KVLShellCursorPlace::Expression;
    return words.IsEmpty() ? KVLShellCursorPlace::Start : KVLShellCursorPlace::Word;
  }
  KVLShellCursorPlace PlaceInBracket() const {
    return frames.back().opener == '[' ? KVLShellCursorPlace::Expression
                                       : KVLShellCursorPlace::Nothing;
  }

  void ScanByte() {
    const char character = bytes[position];
    if (isInComment) {
      if (character == '\n') isInComment = false;
      if (character == '\n' && frames.empty()) EndStatement();
      ++position;
    } else if (isInQuote) {
      if (character == '"') EndQuote();
      position += character == '\\' ? 2 : 1;
    } else if (character == '"') {
      BeginToken();
      isInQuote = true;
      ++position;
    } else if (character == '#' && tokenStart < 0) {
      isInComment = true;
      ++position;
    } else if (KVLShellIsStatementEnd(character) && frames.empty()) {
      EndStatement();
      ++position;
    } else if (KVLShellIsBlank(character) || character == '\n') {
      EndToken();
      ++position;
    } else {
      ScanPart(character);
      ++position;
    }
  }

  void ScanPart(char character) {
    switch (character) {
      case '(':
      case '[':
      case '{':
        Open(character);
        break;
      case ')':
      case ']':
      case '}':
        Close();
        break;
      case ',':
        if (!frames.empty()) {
          EndToken();
          ++frames.back().nbArguments;
          frames.back().parameter = "";
        } else {
          BeginToken();
        }
        break;
      case '=':
        Assign();
        break;
      default:
        BeginToken();
    }
  }

  void BeginToken() {
    if (tokenStart < 0) tokenStart = position;
  }
  MRBUnicodeString Token() const {
    return tokenStart < 0 ? MRBUnicodeString()
                          : MRBUnicodeString(bytes + tokenStart, position - tokenStart);
  }
  void EndQuote() {
    isInQuote = false;
    isTokenClosed = true;
  }

  void EndToken() {
    if (tokenStart >= 0) lastToken = Token();
    const bool isWord = frames.empty() && mode != Mode::Expression && tokenStart >= 0;
    if (isWord) EndWord();
    tokenStart = -1;
    isTokenClosed = false;
  }

  void EndWord() {
    words.Append(Token());
    if (words.GetCount() > 1) return;
    command = KVLShellLookUpCommand(words[0]);
    const bool takesExpression = command && command->style == KVLShellStyle_Expression;
    mode = takesExpression ? Mode::Expression : Mode::Words;
  }

  void Open(char opener) {
    const MRBUnicodeString token = Token();
    // In the words of a command, brackets belong to the word; but `call f(` begins a call.
    const bool isCallOfCommand = command && command->style == KVLShellStyle_WordsOrCall &&
                                 words.GetCount() == 1 && !token.IsEmpty();
    if (frames.empty() && (words.IsEmpty() || isCallOfCommand)) mode = Mode::Expression;
    KVLShellFrame frame{};
    frame.opener = opener;
    frame.isCall = opener == '(' && !token.IsEmpty() && !isTokenClosed && mode != Mode::Words;
    frame.path = token;
    BeginToken();
    tokenStarts.push_back(tokenStart);
    frames.push_back(frame);
    tokenStart = -1;
    isTokenClosed = false;
  }

  // Whatever the closer: the parser will tell.
  void Close() {
    if (frames.empty()) {
      BeginToken();
      return;
    }
    frames.pop_back();
    tokenStart = tokenStarts.back();
    tokenStarts.pop_back();
    isTokenClosed = true;
  }

  void Assign() {
    if (!frames.empty() && frames.back().isCall) {
      frames.back().parameter = Token();
      // The name may stand before a blank.
      if (frames.back().parameter.IsEmpty()) frames.back().parameter = lastToken;
      frames.back().named.Append(frames.back().parameter);
      tokenStart = -1;
      return;
    }
    const bool isBinding = command && command->style == KVLShellStyle_Binding;
    const int nbWords = words.GetCount() + (tokenStart >= 0 ? 1 : 0);
    if (frames.empty() && (nbWords == 1 || (isBinding && nbWords == 2))) {
      mode = Mode::Expression;
      tokenStart = -1;
    } else {
      BeginToken();
    }
  }

  void EndStatement() {
    words.Resize(0);
    command = nullptr;
    mode = Mode::Unknown;
    tokenStart = -1;
    isTokenClosed = false;
  }

  enum class Mode { Unknown, Words, Expression };

  const char* const bytes;
  const int length;
  int position = 0;
  int tokenStart = -1;
  bool isTokenClosed = false;  // by a quote or bracket: nothing can be added to it
  bool isInQuote = false;
  bool isInComment = false;
  Mode mode = Mode::Unknown;
  const KVLShellCommand* command = nullptr;
  KVLVector<MRBUnicodeString> words;
  std::vector<KVLShellFrame> frames;
  std::vector<int> tokenStarts;  // of the words that the open brackets belong to
  MRBUnicodeString lastToken;    // the one before a blank
};

}  // namespace

KVLShellCursor KVLShellFindCursor(const MRBUnicodeString& text) {
  return Scanner(text).Scan();
}
