#include "EpsilonText.h"

#include <string>

#include "KVLKit.h"
#include "shared/Utf8.h"

namespace {

using Text = MRBUnicodeString;

template <char First, char Last, char NewFirst>
std::string ShiftLetters(std::string text) {
  for (char& character : text) {
    if (character >= First && character <= Last) {
      character = static_cast<char>(character - First + NewFirst);
    }
  }
  return text;
}

Text Concat(const Text& a, const Text& b) {
  EpsilonExpectRoom(std::int64_t{a.GetLengthInByte()} + b.GetLengthInByte());
  return a + b;
}

Text Repeat(const Text& text, int count) {
  if (count < 0) throw std::invalid_argument("count must not be negative");
  EpsilonExpectRoom(std::int64_t{count} * text.GetLengthInByte());
  Text repeated;
  for (int i = 0; i < count && !text.IsEmpty(); ++i)
    repeated += text;
  return repeated;
}

std::string Replace(const std::string& text, const std::string& part, const std::string& by) {
  if (part.empty()) throw std::invalid_argument("the part must not be empty");
  std::string result;
  std::size_t begin = 0;
  for (std::size_t found; (found = text.find(part, begin)) != std::string::npos;) {
    result.append(text, begin, found - begin);
    result += by;
    EpsilonExpectRoom(static_cast<std::int64_t>(result.size()));
    begin = found + part.size();
  }
  result.append(text, begin);
  EpsilonExpectRoom(static_cast<std::int64_t>(result.size()));
  return result;
}

// Takes whole characters away: one of several bytes is never cut.
std::string Trim(const std::string& text, const std::string& characters) {
  const auto isListed = [&](std::size_t begin, std::size_t end) {
    const std::string character = text.substr(begin, end - begin);
    for (std::size_t i = 0; i < characters.size(); i = utf8::EndOfCharacter(characters, i))
      if (characters.compare(i, utf8::EndOfCharacter(characters, i) - i, character) == 0)
        return true;
    return false;
  };
  std::size_t first = 0;
  while (first < text.size() && isListed(first, utf8::EndOfCharacter(text, first)))
    first = utf8::EndOfCharacter(text, first);
  std::size_t last = first;  // the end of the last character that stays
  for (std::size_t i = first; i < text.size(); i = utf8::EndOfCharacter(text, i)) {
    const std::size_t end = utf8::EndOfCharacter(text, i);
    if (!isListed(i, end)) last = end;
  }
  return text.substr(first, last - first);
}

}  // namespace

KVL_DOC("text",
        "Texts. Positions and lengths count bytes, from 0, where nothing else is said; a character "
        "may have several bytes (UTF-8). Upper and lower case are those of the 26 letters of "
        "ASCII. No function makes a text of more than 16 MiB.");
KVL_FUNCTION("text/length", "text", "The length in bytes.",
             [](const Text& text) { return text.GetLengthInByte(); });
KVL_FUNCTION("text/characters", "text",
             "The length in characters. Bytes that are no UTF-8 count as one each, and with them "
             "the continuation bytes behind them.",
             [](const std::string& text) { return static_cast<int>(utf8::CountCharacters(text)); });
KVL_FUNCTION("text/upper", "text", "The text with the letters a to z in upper case.",
             ShiftLetters<'a', 'z', 'A'>);
KVL_FUNCTION("text/lower", "text", "The text with the letters A to Z in lower case.",
             ShiftLetters<'A', 'Z', 'a'>);
KVL_FUNCTION("text/strip", "text", "The text without blanks at its ends.", kvl::Stripped);
KVL_FUNCTION("text/trim", "text, characters = \" \\t\\r\\n\"",
             "The text without the listed characters at its ends.", Trim);
KVL_FUNCTION("text/concat", "a, b", "The one text and behind it the other. Fails beyond 16 MiB.",
             Concat);
KVL_FUNCTION("text/repeat", "text, count = 2",
             "The text as many times. Fails for a negative count, and beyond 16 MiB.", Repeat);
KVL_FUNCTION("text/replace", "text, part, by = \"\"",
             "The text with another in place of each occurrence of the part, from left to right. "
             "Fails for an empty part, and beyond 16 MiB.",
             Replace);
KVL_FUNCTION("text/find", "text, part",
             "Where the part begins for the first time, counted in bytes from 0; -1 where it does "
             "not occur.",
             [](const Text& text, const Text& part) {
               return text.SearchSubString(part, 0, Text::MRBSearchForward);
             });
