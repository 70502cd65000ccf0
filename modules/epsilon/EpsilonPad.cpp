#include "EpsilonText.h"
#include "KVLKit.h"
#include "shared/Utf8.h"

namespace {

enum class Align { left, right, center };

std::string Pad(const std::string& text, int width, Align align, const std::string& fill) {
  if (width < 0) throw std::invalid_argument("width must not be negative");
  if (fill.empty() || utf8::EndOfCharacter(fill, 0) != fill.size()) {
    throw std::invalid_argument("fill must be one character");
  }
  const std::size_t length = utf8::CountCharacters(text);
  const auto wanted = static_cast<std::size_t>(width);
  const std::size_t missing = wanted > length ? wanted - length : 0;
  EpsilonExpectRoom(static_cast<std::int64_t>(text.size() + missing * fill.size()));
  const std::size_t before = align == Align::left    ? 0
                             : align == Align::right ? missing
                                                     : missing / 2;
  std::string padded;
  for (std::size_t i = 0; i < before; ++i)
    padded += fill;
  padded += text;
  for (std::size_t i = before; i < missing; ++i)
    padded += fill;
  return padded;
}

}  // namespace

KVL_ENUM(Align, "Align", left, right, center);
KVL_DOC("_types/Align", "Where a text stands in a wider field: left, right or center.");
KVL_CONVERSION(Align, MRBUnicodeString);
KVL_CONVERSION(MRBUnicodeString, Align);
KVL_FUNCTION(
    "text/pad", "text, width, align = left, fill = \" \"",
    "The text in a field of so many characters, filled up with the fill character; a longer "
    "text stays as it is. Fails for a negative width, a fill that is not one character, "
    "and beyond 16 MiB.",
    Pad);
