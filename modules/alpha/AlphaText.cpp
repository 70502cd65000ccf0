#include "AlphaText.h"

#include <charconv>
#include <system_error>

#include "AlphaScalars.h"
#include "KVLStringOperations.h"

namespace {

// Longest texts: "-2147483648", and a double of 17 digits with sign, point and exponent.
constexpr int NumberTextSize = 32;

template <class Number>
long ReadNumber(const MRBUnicodeString& text, Number& data) {
  const char* const first = text.ConvertToChar();
  const char* const end = first + text.GetLengthInByte();
  Number number{};
  const std::from_chars_result read = std::from_chars(first, end, number);
  if (read.ec != std::errc() || read.ptr != end) return KVLResult_InvalidArgument;
  data = number;
  return KVLResult_Success;
}

template <class Number>
MRBUnicodeString NumberText(Number number) {
  char buffer[NumberTextSize];
  const std::to_chars_result written = std::to_chars(buffer, buffer + sizeof(buffer), number);
  return MRBUnicodeString(buffer, static_cast<int>(written.ptr - buffer));
}

struct Escape {
  char letter;
  char character;
};
constexpr Escape Escapes[] = {{'"', '"'}, {'\\', '\\'}, {'n', '\n'}, {'r', '\r'}, {'t', '\t'}};

const Escape* FindEscapeByLetter(char letter) {
  for (const Escape& escape : Escapes)
    if (escape.letter == letter) return &escape;
  return nullptr;
}

const Escape* FindEscapeByCharacter(char character) {
  for (const Escape& escape : Escapes)
    if (escape.character == character) return &escape;
  return nullptr;
}

bool BeginsWithQuote(const MRBUnicodeString& text) {
  return KVLStringOperations::GetCharAt(text, 0) == '"';
}

// Appends what `text` holds between its first character, a quote, and its last, which must be one.
bool Unquote(const MRBUnicodeString& text, MRBUnicodeString& data) {
  const int last = text.GetLengthInByte() - 1;
  MRBUnicodeString content;
  int runStart = 1;
  int i = 1;
  for (; i < last; ++i) {
    const char character = text[static_cast<std::size_t>(i)];
    if (character == '"') return false;
    if (character != '\\') continue;
    const Escape* const escape =
        i + 1 < last ? FindEscapeByLetter(text[static_cast<std::size_t>(i) + 1]) : nullptr;
    if (!escape) return false;
    content += text.SubString(runStart, i - runStart);
    content += MRBUnicodeString(&escape->character, 1);
    runStart = i + 2;
    ++i;
  }
  if (last < 1 || i != last || text[static_cast<std::size_t>(last)] != '"') return false;
  data = content + text.SubString(runStart, last - runStart);
  return true;
}

}  // namespace

long AlphaRead(const MRBUnicodeString& text, bool& data) {
  if (text != "true" && text != "false") return KVLResult_InvalidArgument;
  data = text == "true";
  return KVLResult_Success;
}

long AlphaRead(const MRBUnicodeString& text, std::int32_t& data) {
  return ReadNumber(text, data);
}

long AlphaRead(const MRBUnicodeString& text, double& data) {
  return ReadNumber(text, data);
}

long AlphaRead(const MRBUnicodeString& text, MRBUnicodeString& data) {
  if (!BeginsWithQuote(text)) {
    data = text;
    return KVLResult_Success;
  }
  return Unquote(text, data) ? KVLResult_Success : KVLResult_InvalidArgument;
}

void AlphaWrite(bool data, MRBUnicodeString& text) {
  text = data ? "true" : "false";
}

void AlphaWrite(std::int32_t data, MRBUnicodeString& text) {
  text = NumberText(data);
}

void AlphaWrite(double data, MRBUnicodeString& text) {
  text = NumberText(data);
}

void AlphaWrite(const MRBUnicodeString& data, MRBUnicodeString& text) {
  text = BeginsWithQuote(data) ? AlphaQuote(data) : data;
}

MRBUnicodeString AlphaQuote(const MRBUnicodeString& data) {
  MRBUnicodeString quoted = "\"";
  const int length = data.GetLengthInByte();
  int runStart = 0;
  for (int i = 0; i < length; ++i) {
    const Escape* const escape = FindEscapeByCharacter(data[static_cast<std::size_t>(i)]);
    if (!escape) continue;
    const char escaped[] = {'\\', escape->letter};
    quoted += data.SubString(runStart, i - runStart) + MRBUnicodeString(escaped, 2);
    runStart = i + 1;
  }
  return quoted + data.SubString(runStart, length - runStart) + "\"";
}
