#ifndef KVL_NAME_H
#define KVL_NAME_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "MRBUnicodeString.h"

/// A name or a path, or a stretch of one, with its hash: hashed once, looked for in any number of
/// tables. The text is borrowed.
///
/// The hash never leaves the kernel; it reads eight bytes at a time, the last ones over again where
/// they do not fill a word.
struct KVLName {
  KVLName(const char* start, std::size_t count)
      : text(start), length(count), hash(HashOf(start, count)) {}
  explicit KVLName(const MRBUnicodeString& string)
      : KVLName(string.ConvertToChar(), static_cast<std::size_t>(string.GetLengthInByte())) {}

  bool operator==(const MRBUnicodeString& string) const {
    return Is(string.ConvertToChar(), static_cast<std::size_t>(string.GetLengthInByte()));
  }
  bool Is(const char* other, std::size_t count) const {
    return length == count && AreSame(text, other, count);
  }

  const char* text;
  std::size_t length;
  std::uint64_t hash;

  static std::uint64_t LoadWord(const char* bytes) {
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof(word));
    return word;
  }

 private:
  static std::uint64_t LoadHalf(const char* bytes) {
    std::uint32_t half;
    std::memcpy(&half, bytes, sizeof(half));
    return half;
  }

  // Both halves of the product, one laid over the other: every bit of the factors reaches every
  // bit.
  static std::uint64_t Mix(std::uint64_t left, std::uint64_t right) {
    __extension__ using Product = unsigned __int128;
    const Product product = static_cast<Product>(left) * right;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
  }

  static std::uint64_t HashOf(const char* bytes, std::size_t count) {
    constexpr std::uint64_t First = 0x9E3779B97F4A7C15u;
    constexpr std::uint64_t Second = 0xD1B54A32D192ED03u;
    std::uint64_t state = Second ^ count;
    std::uint64_t front = 0;
    std::uint64_t back = 0;
    if (count > 16) {
      std::size_t rest = count;
      for (; rest > 16; rest -= 16, bytes += 16)
        state = Mix(LoadWord(bytes) ^ First, LoadWord(bytes + 8) ^ state);
      front = LoadWord(bytes + rest - 16);
      back = LoadWord(bytes + rest - 8);
    } else if (count >= 8) {
      front = LoadWord(bytes);
      back = LoadWord(bytes + count - 8);
    } else if (count >= 4) {
      front = LoadHalf(bytes);
      back = LoadHalf(bytes + count - 4);
    } else if (count > 0) {
      front = static_cast<unsigned char>(bytes[0]);
      back = static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[count / 2])) << 8 |
             static_cast<unsigned char>(bytes[count - 1]);
    }
    return Mix(front ^ First, back ^ state);
  }

  static bool AreSame(const char* left, const char* right, std::size_t count) {
    if (count > 16) return std::memcmp(left, right, count) == 0;
    if (count >= 8) {
      return ((LoadWord(left) ^ LoadWord(right)) |
              (LoadWord(left + count - 8) ^ LoadWord(right + count - 8))) == 0;
    }
    if (count >= 4) {
      return ((LoadHalf(left) ^ LoadHalf(right)) |
              (LoadHalf(left + count - 4) ^ LoadHalf(right + count - 4))) == 0;
    }
    return count == 0 || (left[0] == right[0] && left[count / 2] == right[count / 2] &&
                          left[count - 1] == right[count - 1]);
  }
};

#endif
