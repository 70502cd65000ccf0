#ifndef MODULES_SHARED_UTF8_H
#define MODULES_SHARED_UTF8_H

#include <cstddef>
#include <string>

/// Characters of UTF-8 texts. A character is one byte and the continuation bytes behind it, so that
/// every text has characters, well formed or not.
namespace utf8 {

inline bool IsContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// Where the character that begins at `i`, inside the text, ends.
inline std::size_t EndOfCharacter(const std::string& text, std::size_t i) {
  ++i;
  while (i < text.size() && IsContinuation(text[i]))
    ++i;
  return i;
}

inline std::size_t CountCharacters(const std::string& text) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < text.size(); i = EndOfCharacter(text, i))
    ++count;
  return count;
}

/// The first `count` characters, or all when there are fewer.
inline std::string FirstCharacters(const std::string& text, std::size_t count) {
  std::size_t i = 0;
  for (; count > 0 && i < text.size(); --count)
    i = EndOfCharacter(text, i);
  return text.substr(0, i);
}

}  // namespace utf8

#endif
