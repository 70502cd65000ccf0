#include "MRBUnicodeString.h"

#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <ostream>
#include <string_view>

#include "KVLTextHash.h"

// Invariants: `length` <= `capacity` or the text is in `local`, where up to LocalCapacity bytes fit
// whatever `capacity` (at most LocalCapacity then) says; the byte behind the text is NUL; `heap`
// has capacity + 1 bytes.

namespace {

std::size_t LengthOf(const char* text) {
  return text ? std::strlen(text) : 0;
}

// The room for `count` bytes and their NUL.
char* Allocate(std::size_t count) {
  // One byte short of the limit, so that neither a length nor a capacity with its NUL overflows.
  if (count > static_cast<std::size_t>(INT_MAX) - 1) throw std::bad_alloc();
  void* const block = std::malloc(count + 1);
  if (!block) throw std::bad_alloc();
  return static_cast<char*>(block);
}

void CopyBytes(char* to, const char* from, std::size_t count) {
  if (count > 0) std::memmove(to, from, count);
}

// The place next to `place` in a text of that length.
int Limited(std::int64_t place, int length) {
  return place < 0 ? 0 : place < length ? static_cast<int>(place) : length;
}

bool IsSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

// Whether the first of two numbers that lie side by side is the lower half of the two together.
constexpr bool FirstIsLow = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__;

// From 16 - n on, bits that keep the first n bytes of 16.
constexpr unsigned char Kept[32] = {0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff,
                                    0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff};

// The two numbers at the beginning of a text. In one write: a processor that soon after reads both
// together would have to wait for two.
void WriteSizes(void* text, int length, int capacity) {
  const std::uint64_t first = static_cast<std::uint32_t>(FirstIsLow ? length : capacity);
  const std::uint64_t second = static_cast<std::uint32_t>(FirstIsLow ? capacity : length);
  const std::uint64_t both = second << 32 | first;
  std::memcpy(text, &both, sizeof both);
}

template <class T>
int Print(MRBUnicodeString& text, T value, const char* format) {
  char buffer[64];
  const int count = format ? std::snprintf(buffer, sizeof buffer, format, value) : -1;
  if (count < static_cast<int>(sizeof buffer)) {
    text = MRBUnicodeString(buffer, count);
    return count;
  }
  const std::unique_ptr<char, void (*)(void*)> block(Allocate(static_cast<std::size_t>(count)),
                                                     &std::free);
  std::snprintf(block.get(), static_cast<std::size_t>(count) + 1, format, value);
  text = MRBUnicodeString(block.get(), count);
  return count;
}

}  // namespace

MRBUnicodeString::MRBUnicodeString(const char* text) {
  InitFrom(text, LengthOf(text));
}

MRBUnicodeString::MRBUnicodeString(const char* text, int count) {
  InitFrom(text, text && count > 0 ? static_cast<std::size_t>(count) : 0);
}

void MRBUnicodeString::AssignSubString(const MRBUnicodeString& source, int start, int count) {
  // Where as many bytes as fit inside lie behind `start`, all of them come, and go as far as they
  // are not wanted.
  const bool fits = count >= 0 && count <= LocalCapacity && IsLocal();
  if (fits && start >= 0 && start <= source.length - LocalCapacity) {
    std::uint64_t bytes[2];
    std::uint64_t kept[2];
    static_assert(sizeof bytes == sizeof local && sizeof Kept == 2 * sizeof local);
    std::memcpy(bytes, source.ConvertToChar() + start, sizeof bytes);
    std::memcpy(kept, Kept + sizeof local - count, sizeof kept);
    bytes[0] &= kept[0];
    bytes[1] &= kept[1];
    std::memcpy(local, bytes, sizeof local);
    WriteSizes(this, count, 0);
    return;
  }
  const int first = Limited(start, source.length);
  const int last = Limited(std::int64_t{start} + count, source.length);
  if (first < last) {
    AssignFrom(source.ConvertToChar() + first, static_cast<std::size_t>(last - first));
  } else {
    AssignFrom(nullptr, 0);
  }
}

MRBUnicodeString& MRBUnicodeString::operator=(const char* text) {
  AssignFrom(text, LengthOf(text));
  return *this;
}

bool MRBUnicodeString::operator==(const char* text) const {
  const std::size_t count = LengthOf(text);
  return static_cast<std::size_t>(length) == count &&
         (count == 0 || std::memcmp(ConvertToChar(), text, count) == 0);
}

bool MRBUnicodeString::operator<(const MRBUnicodeString& other) const {
  const int common = length < other.length ? length : other.length;
  const int order =
      std::memcmp(ConvertToChar(), other.ConvertToChar(), static_cast<std::size_t>(common));
  return order < 0 || (order == 0 && length < other.length);
}

MRBUnicodeString MRBUnicodeString::operator+(const MRBUnicodeString& other) const {
  MRBUnicodeString sum(*this);
  sum.Append(other);
  return sum;
}

MRBUnicodeString MRBUnicodeString::operator+(const char* text) const {
  MRBUnicodeString sum(*this);
  sum.InsertFrom(sum.length, text, LengthOf(text));
  return sum;
}

MRBUnicodeString& MRBUnicodeString::Append(const MRBUnicodeString& other) {
  InsertFrom(length, other.ConvertToChar(), static_cast<std::size_t>(other.length));
  return *this;
}

MRBUnicodeString& MRBUnicodeString::Insert(int position, const MRBUnicodeString& other) {
  const int place = Limited(position, length);
  if (this == &other) {
    const MRBUnicodeString copy(other);
    return Insert(place, copy);
  }
  InsertFrom(place, other.ConvertToChar(), static_cast<std::size_t>(other.length));
  return *this;
}

MRBUnicodeString& MRBUnicodeString::Remove(int position, int count) {
  const int first = Limited(position, length);
  const int last = Limited(std::int64_t{position} + count, length);
  if (first >= last) return *this;
  char* const text = Data();
  CopyBytes(text + first, text + last, static_cast<std::size_t>(length - last) + 1);
  length -= last - first;
  return *this;
}

MRBUnicodeString MRBUnicodeString::SubString(int start, int count) const {
  MRBUnicodeString slice;
  slice.AssignSubString(*this, start, count);
  return slice;
}

int MRBUnicodeString::SearchSubString(const MRBUnicodeString& sub, int from,
                                      MRBSearchMode mode) const {
  const std::string_view text(ConvertToChar(), static_cast<std::size_t>(length));
  const std::string_view wanted(sub.ConvertToChar(), static_cast<std::size_t>(sub.length));
  const std::size_t first = from < 0 ? 0 : static_cast<std::size_t>(from);
  std::size_t found = mode == MRBSearchBackward ? text.rfind(wanted) : text.find(wanted, first);
  if (found == std::string_view::npos || found < first) return -1;
  return static_cast<int>(found);
}

int MRBUnicodeString::FindPosition(const MRBUnicodeString& sub, int from) const {
  return SearchSubString(sub, from, MRBSearchForward) + 1;
}

MRBUnicodeString MRBUnicodeString::Strip(MRBStripMode mode) const {
  const char* const text = ConvertToChar();
  int first = 0;
  int last = length;
  if (mode & MRBStripLeading) {
    while (first < last && IsSpace(text[first]))
      ++first;
  }
  if (mode & MRBStripTrailing) {
    while (last > first && IsSpace(text[last - 1]))
      --last;
  }
  return MRBUnicodeString(text + first, last - first);
}

int MRBUnicodeString::BuildFromNum(int value, const char* format) {
  return Print(*this, value, format);
}

int MRBUnicodeString::BuildFromNum(unsigned int value, const char* format) {
  return Print(*this, value, format);
}

int MRBUnicodeString::BuildFromNum(long value, const char* format) {
  return Print(*this, value, format);
}

int MRBUnicodeString::BuildFromNum(unsigned long value, const char* format) {
  return Print(*this, value, format);
}

int MRBUnicodeString::BuildFromNum(double value, const char* format) {
  return Print(*this, value, format);
}

unsigned int MRBUnicodeString::ComputeHashKey(const char* text, int count) noexcept {
  return static_cast<unsigned int>(KVLTextHash::Of(text, static_cast<std::size_t>(count)) >> 32);
}

void MRBUnicodeString::InitFrom(const char* text, std::size_t count) {
  char* place = local;
  std::memset(local, 0, sizeof local);  // so that equal texts have equal bits
  const bool isLong = count > LocalCapacity;
  if (isLong) {
    place = Allocate(count);
    heap = place;
  }
  CopyBytes(place, text, count);
  place[count] = '\0';
  WriteSizes(this, static_cast<int>(count), isLong ? static_cast<int>(count) : 0);
}

// `text` may lie inside this text.
void MRBUnicodeString::AssignFrom(const char* text, std::size_t count) {
  const std::size_t room = static_cast<std::size_t>(IsLocal() ? LocalCapacity : capacity);
  if (count > room) {
    MRBUnicodeString fresh;
    fresh.InitFrom(text, count);
    Swap(fresh);
    return;
  }
  char* const place = Data();
  CopyBytes(place, text, count);
  place[count] = '\0';
  length = static_cast<int>(count);
}

// `text` may lie inside this text when it goes to the end.
void MRBUnicodeString::InsertFrom(int position, const char* text, std::size_t count) {
  if (count == 0) return;
  const std::size_t before = static_cast<std::size_t>(position);
  const std::size_t after = static_cast<std::size_t>(length - position);
  const std::size_t total = before + count + after;
  const std::size_t room = static_cast<std::size_t>(IsLocal() ? LocalCapacity : capacity);
  if (total <= room) {
    char* const place = Data();
    CopyBytes(place + before + count, place + before, after);
    CopyBytes(place + before, text, count);
    place[total] = '\0';
    length = static_cast<int>(total);
    return;
  }
  std::size_t places = total;
  if (places < 2 * room && 2 * room < static_cast<std::size_t>(INT_MAX)) places = 2 * room;
  char* const place = Allocate(places);
  CopyBytes(place, ConvertToChar(), before);
  CopyBytes(place + before, text, count);
  CopyBytes(place + before + count, ConvertToChar() + before, after);
  place[total] = '\0';
  if (!IsLocal()) std::free(heap);
  heap = place;
  length = static_cast<int>(total);
  capacity = static_cast<int>(places);
}

MRBUnicodeString operator+(const char* text, const MRBUnicodeString& string) {
  MRBUnicodeString sum(text);
  sum.Append(string);
  return sum;
}

std::ostream& operator<<(std::ostream& stream, const MRBUnicodeString& string) {
  return stream << std::string_view(string.ConvertToChar(),
                                    static_cast<std::size_t>(string.GetLengthInByte()));
}
