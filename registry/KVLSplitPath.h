#ifndef KVL_SPLIT_PATH_H
#define KVL_SPLIT_PATH_H

#include <cstddef>
#include <cstdint>

#include "KVLName.h"

constexpr char KVLPathSeparator = '/';

/// A path cut at its last separator. Borrows the path's text.
class KVLSplitPath {
 public:
  explicit KVLSplitPath(const MRBUnicodeString& path)
      : KVLSplitPath(path.ConvertToChar(), static_cast<std::size_t>(path.GetLengthInByte())) {}

  KVLName env;   ///< before the last separator; empty when there is none
  KVLName name;  ///< after it

  /// The bytes behind the last separator; all where there is none. Takes eight at a time.
  static std::size_t LengthOfName(const char* path, std::size_t length) {
    std::size_t rest = length;
    for (; rest >= 8; rest -= 8) {
      const std::uint64_t found = SeparatorsIn(KVLTextHash::LoadWord(path + rest - 8));
      if (found != 0) return length - rest + NbBytesBehind(found);
    }
    while (rest > 0 && path[rest - 1] != KVLPathSeparator)
      --rest;
    return length - rest;
  }

 private:
  KVLSplitPath(const char* path, std::size_t length)
      : KVLSplitPath(path, length, LengthOfName(path, length)) {}
  KVLSplitPath(const char* path, std::size_t length, std::size_t lengthOfName)
      : env(path, length == lengthOfName ? 0 : length - lengthOfName - 1),
        name(path + (length - lengthOfName), lengthOfName) {}

  // The high bit of each byte that is a separator.
  static std::uint64_t SeparatorsIn(std::uint64_t word) {
    constexpr std::uint64_t EachByte = 0x0101010101010101u;
    constexpr std::uint64_t LowBits = 0x7F * EachByte;
    const std::uint64_t others = word ^ KVLPathSeparator * EachByte;
    return ~(((others & LowBits) + LowBits) | others | LowBits);
  }

  // The last byte of a word in memory is its highest here, or its lowest.
  static std::size_t NbBytesBehind(std::uint64_t found) {
    constexpr bool IsLastHighest = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__;
    return static_cast<std::size_t>(IsLastHighest ? __builtin_clzll(found)
                                                  : __builtin_ctzll(found)) /
           8;
  }
};

#endif
