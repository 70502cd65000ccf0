#ifndef EPSILON_TEXT_H
#define EPSILON_TEXT_H

#include <cstdint>
#include <stdexcept>

/// No function makes a text of more bytes.
constexpr std::int64_t EpsilonLongestText = 16 * 1024 * 1024;

/// Throws when a text of so many bytes would be too long.
inline void EpsilonExpectRoom(std::int64_t length) {
  if (length > EpsilonLongestText) {
    throw std::length_error("the text would be longer than 16 MiB");
  }
}

#endif
