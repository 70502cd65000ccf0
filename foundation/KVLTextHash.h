#ifndef KVL_TEXT_HASH_H
#define KVL_TEXT_HASH_H

#include <cstddef>
#include <cstdint>
#include <cstring>

/// The hash of texts in all tables of the kernel, inlined there. It reads eight bytes at a time,
/// the last ones over again where they do not fill a word.
struct KVLTextHash {
  static std::uint64_t LoadWord(const char* bytes) {
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof(word));
    return word;
  }
  static std::uint64_t LoadHalf(const char* bytes) {
    std::uint32_t half;
    std::memcpy(&half, bytes, sizeof(half));
    return half;
  }

  static std::uint64_t Of(const char* bytes, std::size_t count) {
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

 private:
  // Both halves of the product, one laid over the other: every bit of the factors reaches every
  // bit.
  static std::uint64_t Mix(std::uint64_t left, std::uint64_t right) {
    __extension__ using Product = unsigned __int128;
    const Product product = static_cast<Product>(left) * right;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
  }
};

#endif
