#ifndef KVL_NAME_H
#define KVL_NAME_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "KVLTextHash.h"
#include "MRBUnicodeString.h"

/// A name or a path, or a stretch of one. Borrowed.
struct KVLText {
  static KVLText Of(const MRBUnicodeString& string) {
    return KVLText{string.ConvertToChar(), static_cast<std::size_t>(string.GetLengthInByte())};
  }

  bool operator==(const KVLText& other) const {
    return length == other.length && AreSame(text, other.text, length);
  }

  const char* text;
  std::size_t length;

 private:
  static bool AreSame(const char* left, const char* right, std::size_t count) {
    constexpr auto Word = KVLTextHash::LoadWord;
    constexpr auto Half = KVLTextHash::LoadHalf;
    if (count > 16) return std::memcmp(left, right, count) == 0;
    if (count >= 8) {
      const std::size_t last = count - 8;
      return ((Word(left) ^ Word(right)) | (Word(left + last) ^ Word(right + last))) == 0;
    }
    if (count >= 4) {
      const std::size_t last = count - 4;
      return ((Half(left) ^ Half(right)) | (Half(left + last) ^ Half(right + last))) == 0;
    }
    return count == 0 || (left[0] == right[0] && left[count / 2] == right[count / 2] &&
                          left[count - 1] == right[count - 1]);
  }
};

/// The same with its hash: hashed once, looked for in any number of tables.
struct KVLName : KVLText {
  KVLName(const char* start, std::size_t count)
      : KVLText{start, count}, hash(KVLTextHash::Of(start, count)) {}
  explicit KVLName(const KVLText& hashed) : KVLName(hashed.text, hashed.length) {}
  explicit KVLName(const MRBUnicodeString& string) : KVLName(KVLText::Of(string)) {}

  std::uint64_t hash;
};

#endif
