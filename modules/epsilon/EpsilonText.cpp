#include <cstdint>
#include <stdexcept>
#include <string>

#include "KVLKit.h"

namespace {

using Text = MRBUnicodeString;
using Elements = KVLCodeListValue::Elements;

constexpr std::int64_t LongestText = 16 * 1024 * 1024;

void ExpectRoom(std::int64_t length) {
  if (length > LongestText) throw std::length_error("the text would be longer than 16 MiB");
}

template <char First, char Last, char NewFirst>
Text ShiftLetters(const Text& text) {
  std::string shifted(text.ConvertToChar(), static_cast<std::size_t>(text.GetLengthInByte()));
  for (char& character : shifted) {
    if (character >= First && character <= Last) {
      character = static_cast<char>(character - First + NewFirst);
    }
  }
  return Text(shifted.data(), static_cast<int>(shifted.size()));
}

Text Repeat(const Text& text, int count) {
  if (count < 0) throw std::invalid_argument("count must not be negative");
  ExpectRoom(std::int64_t{count} * text.GetLengthInByte());
  Text repeated;
  for (int i = 0; i < count && !text.IsEmpty(); ++i)
    repeated += text;
  return repeated;
}

// A text as it is; another value as it is written.
Text TextOf(const KVLCodeContext& context, const KVLCodeValue& value) {
  kvl::Value converted(kvl::TableOf<Text>, "");
  Text text;
  if (!KVLFailed(converted.AssignFrom(context, value))) return converted.Get<Text>();
  if (!KVLFailed(value.GetValueStr(context, text))) return text;
  throw std::invalid_argument("an element cannot be written");
}

Text Join(const KVLCodeContext& context, const Elements& list, const Text& separator) {
  Text joined;
  for (int i = 0; i < list.GetCount(); ++i) {
    if (i > 0) joined += separator;
    joined += TextOf(context, *list[i]);
    ExpectRoom(joined.GetLengthInByte());
  }
  return joined;
}

}  // namespace

KVL_DOC("text",
        "Texts. Positions and lengths count bytes, from 0, where nothing else is said; upper and "
        "lower case are those of the 26 letters of ASCII.");
KVL_FUNCTION("text/length", "text", "The length in bytes.",
             [](const Text& text) { return text.GetLengthInByte(); });
KVL_FUNCTION("text/upper", "text", "The text with the letters a to z in upper case.",
             ShiftLetters<'a', 'z', 'A'>);
KVL_FUNCTION("text/lower", "text", "The text with the letters A to Z in lower case.",
             ShiftLetters<'A', 'Z', 'a'>);
KVL_FUNCTION("text/strip", "text", "The text without blanks at its ends.", kvl::Stripped);
KVL_FUNCTION("text/concat", "a, b", "The one text and behind it the other.",
             [](const Text& a, const Text& b) { return a + b; });
KVL_FUNCTION("text/repeat", "text, count = 2",
             "The text as many times. Fails for a negative count, and beyond 16 MiB.", Repeat);
KVL_FUNCTION("text/join", "list, separator = \", \"",
             "The elements as text, the separator between them. Fails beyond 16 MiB.", Join);
KVL_FUNCTION("text/find", "text, part",
             "Where the part begins for the first time, counted in bytes from 0; -1 where it does "
             "not occur.",
             [](const Text& text, const Text& part) {
               return text.SearchSubString(part, 0, Text::MRBSearchForward);
             });
