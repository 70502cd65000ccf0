#ifndef MRB_UNICODE_STRING_H
#define MRB_UNICODE_STRING_H

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <iosfwd>

#include "KVLExport.h"

/// One character of an `MRBUnicodeString`: one byte.
class MRBUnicodeChar {
 public:
  constexpr MRBUnicodeChar(char c) noexcept : character(c) {}
  ~MRBUnicodeChar() = default;

  /// The character's 8-bit value.
  constexpr operator char() const noexcept { return character; }

 private:
  char character;
};

/// The text of every name, path, signature, message and value: a value type with deep copies.
///
/// A character is one byte, positions and lengths count bytes, and UTF-8 passes through unharmed.
/// Positions count from 0. A text may hold NUL bytes; it is always followed by one.
///
/// Texts of up to 15 bytes live inside the object, so that identifiers allocate nothing. The object
/// never points into itself: containers may move it bit by bit. Longer texts live on the process
/// heap; `std::bad_alloc` is thrown when it is exhausted or a text would pass 2^31 - 2 bytes, and
/// the text is then as it was.
///
/// A null `const char*` stands for the empty text wherever text is taken.
///
/// Thread rule: as for a plain value; concurrent reads are fine, a write excludes all else.
class KVL_EXPORT MRBUnicodeString {
 public:
  /// Which occurrence `SearchSubString` finds.
  enum MRBSearchMode {
    MRBSearchForward = 1,  ///< the first occurrence
    MRBSearchBackward = 2  ///< the last occurrence
  };

  /// Which ends `Strip` cleans.
  enum MRBStripMode { MRBStripLeading = 1, MRBStripTrailing = 2, MRBStripBoth = 3 };

  /// The empty text. A zero-filled object is an empty text too.
  constexpr MRBUnicodeString() noexcept : length(0), capacity(0), local{} {}
  /// Copies a NUL-terminated text.
  MRBUnicodeString(const char* text);
  /// Copies `count` bytes from `text`, NUL bytes included; empty when `count` is below 1.
  MRBUnicodeString(const char* text, int count);
  inline MRBUnicodeString(const MRBUnicodeString& other);
  /// Takes over the text of `other`, which is left empty.
  MRBUnicodeString(MRBUnicodeString&& other) noexcept { TakeBitsOf(other); }
  ~MRBUnicodeString() {
    if (!IsLocal()) std::free(heap);
  }

  inline MRBUnicodeString& operator=(const MRBUnicodeString& other);
  /// Takes over the text of `other`, which is left empty (a text moved into itself stays).
  inline MRBUnicodeString& operator=(MRBUnicodeString&& other) noexcept;
  /// `text` may point into this very text.
  MRBUnicodeString& operator=(const char* text);

  /// Replaces the text by `source.SubString(start, count)`, without an allocation where the room
  /// that this text has suffices. `source` may be this very text.
  void AssignSubString(const MRBUnicodeString& source, int start, int count);

  /// Exchanges the two texts in constant time.
  inline void Swap(MRBUnicodeString& other) noexcept;

  /// Exact comparison, byte by byte.
  bool operator==(const MRBUnicodeString& other) const {
    return length == other.length &&
           (HasSameBits(other) || std::memcmp(ConvertToChar(), other.ConvertToChar(),
                                              static_cast<std::size_t>(length)) == 0);
  }
  bool operator==(const char* text) const;
  bool operator!=(const MRBUnicodeString& other) const { return !(*this == other); }
  bool operator!=(const char* text) const { return !(*this == text); }
  friend bool operator==(const char* text, const MRBUnicodeString& string) {
    return string == text;
  }
  friend bool operator!=(const char* text, const MRBUnicodeString& string) {
    return !(string == text);
  }
  /// The order of the bytes taken as unsigned numbers; a prefix comes first.
  bool operator<(const MRBUnicodeString& other) const;

  MRBUnicodeString operator+(const MRBUnicodeString& other) const;
  MRBUnicodeString operator+(const char* text) const;

  /// Appends in place, in amortised time linear in what is appended. A text may be appended to
  /// itself.
  MRBUnicodeString& operator+=(const MRBUnicodeString& other) { return Append(other); }
  MRBUnicodeString& Append(const MRBUnicodeString& other);

  /// Inserts `other`, which may be this very text, before position `position`, which is limited to
  /// 0 .. length.
  MRBUnicodeString& Insert(int position, const MRBUnicodeString& other);
  /// Removes the characters position .. position + count - 1, as far as they lie inside the text.
  MRBUnicodeString& Remove(int position, int count);

  /// The characters start .. start + count - 1, as far as they lie inside the text.
  MRBUnicodeString SubString(int start, int count) const;

  /// The position of the first (forward) or last (backward) occurrence of `sub` that begins at or
  /// after `from`; a negative `from` means 0. Returns -1 when there is none. The empty text occurs
  /// at every position, the end included.
  int SearchSubString(const MRBUnicodeString& sub, int from, MRBSearchMode mode) const;
  /// The position, counted from 1, of the first occurrence of `sub` at or after `from` (counted
  /// from 0); 0 when there is none.
  int FindPosition(const MRBUnicodeString& sub, int from) const;

  /// A copy without the white space of the C locale's `isspace` at the ends that `mode` names.
  MRBUnicodeString Strip(MRBStripMode mode) const;

  int GetLengthInChar() const noexcept { return length; }
  int GetLengthInByte() const noexcept { return length; }
  bool IsEmpty() const noexcept { return length == 0; }

  /// The text followed by a NUL; borrowed, valid until the text changes, moves or dies.
  const char* ConvertToChar() const noexcept { return IsLocal() ? local : heap; }
  operator const char*() const noexcept { return ConvertToChar(); }

  /// The character at `index`, which must lie inside the text.
  MRBUnicodeChar operator[](std::size_t index) const { return ConvertToChar()[index]; }

  /// Replaces the text by `value` as `printf` formats it with `format`. Returns the number of
  /// characters; a negative number, and the text is empty, when `format` is null or the C library
  /// refuses it.
  int BuildFromNum(int value, const char* format);
  int BuildFromNum(unsigned int value, const char* format);
  int BuildFromNum(long value, const char* format);
  int BuildFromNum(unsigned long value, const char* format);
  int BuildFromNum(double value, const char* format);

  /// A hash of the text, the same in every library of the process. The static form hashes a slice
  /// of a longer text without copying it.
  unsigned int ComputeHashKey() const { return ComputeHashKey(ConvertToChar(), length); }
  static unsigned int ComputeHashKey(const char* text, int count) noexcept;

  /// For `KVLVector`.
  using MovesBitByBit = void;

 private:
  static constexpr int LocalCapacity = 15;

  bool IsLocal() const noexcept { return capacity <= LocalCapacity; }
  char* Data() noexcept { return IsLocal() ? local : heap; }
  // True for most equal texts that live inside their objects, which costs no call; false for all
  // others.
  bool HasSameBits(const MRBUnicodeString& other) const noexcept {
    return std::memcmp(static_cast<const void*>(this), &other, sizeof *this) == 0;
  }
  // The former text must need no destruction.
  inline void CopyBitsOf(const MRBUnicodeString& other) noexcept;
  inline void TakeBitsOf(MRBUnicodeString& other) noexcept;
  void InitFrom(const char* text, std::size_t count);
  void AssignFrom(const char* text, std::size_t count);
  void InsertFrom(int position, const char* text, std::size_t count);

  int length;    // bytes, without the NUL
  int capacity;  // bytes that fit without the NUL; up to LocalCapacity the text is in `local`
  union {
    char* heap;
    char local[LocalCapacity + 1];
  };
};

// In the two parts in which a text is written: a processor that copies what it wrote just now waits
// where its reads straddle its writes.
inline void MRBUnicodeString::CopyBitsOf(const MRBUnicodeString& other) noexcept {
  std::memcpy(static_cast<void*>(this), &other, sizeof(int) * 2);
  std::memcpy(local, other.local, sizeof local);
}

inline void MRBUnicodeString::TakeBitsOf(MRBUnicodeString& other) noexcept {
  CopyBitsOf(other);
  other.length = 0;
  other.capacity = 0;
  other.local[0] = '\0';
}

inline MRBUnicodeString::MRBUnicodeString(const MRBUnicodeString& other) {
  if (other.IsLocal()) {
    CopyBitsOf(other);
  } else {
    InitFrom(other.heap, static_cast<std::size_t>(other.length));
  }
}

inline MRBUnicodeString& MRBUnicodeString::operator=(const MRBUnicodeString& other) {
  if (this != &other) AssignFrom(other.ConvertToChar(), static_cast<std::size_t>(other.length));
  return *this;
}

inline MRBUnicodeString& MRBUnicodeString::operator=(MRBUnicodeString&& other) noexcept {
  if (this != &other) {
    if (!IsLocal()) std::free(heap);
    TakeBitsOf(other);
  }
  return *this;
}

inline void MRBUnicodeString::Swap(MRBUnicodeString& other) noexcept {
  char bytes[sizeof(MRBUnicodeString)];
  char otherBytes[sizeof(MRBUnicodeString)];
  std::memcpy(bytes, static_cast<void*>(this), sizeof bytes);
  std::memcpy(otherBytes, static_cast<void*>(&other), sizeof bytes);
  std::memcpy(static_cast<void*>(this), otherBytes, sizeof bytes);
  std::memcpy(static_cast<void*>(&other), bytes, sizeof bytes);
}

KVL_EXPORT MRBUnicodeString operator+(const char* text, const MRBUnicodeString& string);

/// Writes the whole text, NUL bytes included; width and fill of the stream apply.
KVL_EXPORT std::ostream& operator<<(std::ostream& stream, const MRBUnicodeString& string);

#endif
