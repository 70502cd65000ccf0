#include "EpsilonText.h"
#include "KVLKit.h"

namespace {

using Text = MRBUnicodeString;
using Elements = KVLCodeListValue::Elements;

constexpr int MostPieces = 1000000;

KVLVector<Text> Split(const Text& text, const Text& separator) {
  if (separator.IsEmpty()) throw std::invalid_argument("the separator must not be empty");
  KVLVector<Text> pieces;
  int begin = 0;
  for (bool isLast = false; !isLast;) {
    if (pieces.GetCount() == MostPieces) {
      throw std::length_error("the list would have more than 1000000 elements");
    }
    const int found = text.SearchSubString(separator, begin, Text::MRBSearchForward);
    isLast = found < 0;
    const int end = isLast ? text.GetLengthInByte() : found;
    pieces.Append(text.SubString(begin, end - begin));
    begin = end + separator.GetLengthInByte();
  }
  return pieces;
}

// A text as it is; another value as it is written.
Text TextOf(const KVLCodeContext& context, const KVLCodeValue* value) {
  kvl::Value converted(kvl::TableOf<Text>, "");
  Text text;
  if (value && !KVLFailed(converted.AssignFrom(context, *value))) return converted.Get<Text>();
  if (value && !KVLFailed(value->GetValueStr(context, text))) return text;
  throw std::invalid_argument("an element cannot be written");
}

Text Join(const KVLCodeContext& context, const Elements& list, const Text& separator) {
  Text joined;
  for (int i = 0; i < list.GetCount(); ++i) {
    if (i > 0) joined += separator;
    joined += TextOf(context, list[i].Get());
    EpsilonExpectRoom(joined.GetLengthInByte());
  }
  return joined;
}

}  // namespace

KVL_FUNCTION("text/split", "text, separator = \",\"",
             "The pieces between the separators, the empty ones too, as they are: one more than "
             "there are separators. Fails for an empty separator, and for more than 1000000 "
             "pieces.",
             Split);
KVL_FUNCTION("text/join", "list, separator = \", \"",
             "The elements as text, the separator between them. Fails beyond 16 MiB.", Join);
