#include "MRBUnicodeString.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <iomanip>
#include <new>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>

#include "support/AllocationCounter.h"

namespace {

using String = MRBUnicodeString;

static_assert(std::is_nothrow_default_constructible_v<String>);
static_assert(std::is_nothrow_move_constructible_v<String>);
static_assert(std::is_nothrow_move_assignable_v<String>);
static_assert(std::is_nothrow_destructible_v<String>);
static_assert(noexcept(std::declval<String&>().Swap(std::declval<String&>())));
static_assert(std::is_copy_constructible_v<String> && std::is_copy_assignable_v<String>);
static_assert(std::is_convertible_v<const char*, String>);
static_assert(std::is_convertible_v<String, const char*>);
static_assert(!std::is_constructible_v<String, int>);
static_assert(std::is_convertible_v<MRBUnicodeChar, char>);

static_assert(String::MRBSearchForward == 1 && String::MRBSearchBackward == 2);
static_assert(String::MRBStripLeading == 1 && String::MRBStripTrailing == 2);
static_assert(String::MRBStripBoth == 3);

// Below, at, and above what fits inside the object.
const char* const Short = "identifier";
const char* const Fifteen = "123456789012345";
const char* const Sixteen = "1234567890123456";
const char* const Long = "a text that is far too long to fit inside of the object itself";

TEST(MRBUnicodeString, IsEmptyByDefault) {
  const String text;
  EXPECT_TRUE(text.IsEmpty());
  EXPECT_EQ(text.GetLengthInChar(), 0);
  EXPECT_EQ(text.GetLengthInByte(), 0);
  EXPECT_STREQ(text.ConvertToChar(), "");
}

TEST(MRBUnicodeString, CopiesANulTerminatedText) {
  for (const char* const source : {"", "a", Short, Fifteen, Sixteen, Long}) {
    const std::string original(source);
    char buffer[128];
    std::strcpy(buffer, source);
    const String text(buffer);
    std::memset(buffer, 'x', sizeof buffer);
    EXPECT_STREQ(text.ConvertToChar(), original.c_str());
    EXPECT_EQ(text.GetLengthInChar(), static_cast<int>(original.size()));
    EXPECT_EQ(text.IsEmpty(), original.empty());
  }
}

TEST(MRBUnicodeString, TakesNullAsTheEmptyText) {
  const char* const null = nullptr;
  String text(null);
  EXPECT_TRUE(text.IsEmpty());
  EXPECT_TRUE(String(null, 5).IsEmpty());
  EXPECT_TRUE(text == null);
  EXPECT_TRUE(null == text);
  EXPECT_FALSE(text != null);
  EXPECT_FALSE(String("a") == null);
  text = "something";
  text = null;
  EXPECT_TRUE(text.IsEmpty());
  EXPECT_EQ(String("a") + null, "a");
  EXPECT_EQ(null + String("a"), "a");
  EXPECT_EQ(String("a").Append(null), "a");
  EXPECT_EQ(String("a").Insert(0, null), "a");
  EXPECT_EQ(String("a").SearchSubString(null, 0, String::MRBSearchForward), 0);
}

TEST(MRBUnicodeString, CopiesAsManyBytesAsAskedFor) {
  EXPECT_EQ(String("abcdef", 3), "abc");
  EXPECT_TRUE(String("abcdef", 0).IsEmpty());
  EXPECT_TRUE(String("abcdef", -1).IsEmpty());
  EXPECT_TRUE(String("abcdef", INT_MIN).IsEmpty());
}

TEST(MRBUnicodeString, KeepsEmbeddedNuls) {
  const String text("a\0b\0", 4);
  EXPECT_EQ(text.GetLengthInChar(), 4);
  EXPECT_EQ(text[1], '\0');
  EXPECT_EQ(text[2], 'b');
  EXPECT_FALSE(text == "a");
  EXPECT_FALSE(text == String("a\0c\0", 4));
  EXPECT_TRUE(text == String("a\0b\0", 4));
  EXPECT_EQ((text + text).GetLengthInChar(), 8);
  EXPECT_EQ(text.SearchSubString("b", 0, String::MRBSearchForward), 2);
  EXPECT_EQ(text.SearchSubString(String("\0", 1), 2, String::MRBSearchForward), 3);
  EXPECT_EQ(text.SubString(1, 2), String("\0b", 2));
  EXPECT_NE(text.ComputeHashKey(), String("a").ComputeHashKey());
  String assigned("former");
  assigned = text;
  EXPECT_EQ(assigned, text);
  assigned.Insert(1, String("\0x", 2));
  EXPECT_EQ(assigned, String("a\0x\0b\0", 6));
  EXPECT_EQ(assigned.Remove(0, 3), String("\0b\0", 3));
  const String copy(assigned);
  EXPECT_EQ(copy, String("\0b\0", 3));
}

TEST(MRBUnicodeString, CountsBytesAndPassesUtf8Through) {
  const String text("\xC3\xA9t\xC3\xA9");
  EXPECT_EQ(text.GetLengthInChar(), 5);
  EXPECT_EQ(text.GetLengthInByte(), 5);
  EXPECT_EQ(text[0], static_cast<char>(0xC3));
  EXPECT_EQ(text.SubString(2, 3), "t\xC3\xA9");
  EXPECT_STREQ(text, "\xC3\xA9t\xC3\xA9");
}

TEST(MRBUnicodeString, CopiesDeeply) {
  for (const char* const source : {"", Short, Fifteen, Sixteen, Long}) {
    String original(source);
    const String copy(original);
    original.Append("!");
    EXPECT_EQ(copy, source);
    EXPECT_NE(copy, original);
  }
}

TEST(MRBUnicodeString, AssignsOverEveryFormerLength) {
  for (const char* const former : {"", Short, Fifteen, Sixteen, Long}) {
    for (const char* const next : {"", Short, Fifteen, Sixteen, Long}) {
      String text(former);
      const String source(next);
      EXPECT_EQ(&(text = source), &text);
      EXPECT_EQ(text, next);
      EXPECT_EQ(source, next);
      text = former;
      EXPECT_EQ(&(text = next), &text);
      EXPECT_EQ(text, next);
      text = former;
      EXPECT_EQ(&(text = String(next)), &text);
      EXPECT_EQ(text, next);
    }
  }
}

TEST(MRBUnicodeString, AssignedToItselfStays) {
  for (const char* const source : {"", Short, Fifteen, Sixteen, Long}) {
    String text(source);
    const String& same = text;
    text = same;
    EXPECT_EQ(text, source);
    text = std::move(const_cast<String&>(same));
    EXPECT_EQ(text, source);
    text = text.ConvertToChar();
    EXPECT_EQ(text, source);
    text.Swap(text);
    EXPECT_EQ(text, source);
  }
}

TEST(MRBUnicodeString, IsAssignedAPartOfItself) {
  for (const char* const source : {Short, Fifteen, Sixteen, Long}) {
    String text(source);
    text = text.ConvertToChar() + 3;
    EXPECT_EQ(text, source + 3);
  }
}

TEST(MRBUnicodeString, IsAssignedASliceOfAnyText) {
  for (const char* const former : {"", Short, Fifteen, Sixteen, Long}) {
    for (const char* const source : {"", Short, Fifteen, Sixteen, Long}) {
      const String whole(source);
      for (int start = -2; start <= whole.GetLengthInChar() + 2; ++start) {
        for (const int count : {INT_MIN, -1, 0, 1, 2, 14, 15, 16, 17, 40, INT_MAX}) {
          String text(former);
          text.AssignSubString(whole, start, count);
          EXPECT_EQ(text, whole.SubString(start, count)) << source << start << ' ' << count;
          EXPECT_EQ(text.ConvertToChar()[text.GetLengthInChar()], '\0');
          String itself(source);
          itself.AssignSubString(itself, start, count);
          EXPECT_EQ(itself, text) << source << start << ' ' << count;
        }
      }
    }
  }
}

TEST(MRBUnicodeString, ASliceThatFitsIsAssignedWithoutAnAllocation) {
  if (!AllocationCounter::IsAvailable()) GTEST_SKIP();
  const String source(Long);
  String text;
  const AllocationCounter counter;
  for (int start = 0; start < source.GetLengthInChar(); ++start)
    text.AssignSubString(source, start, 15);
  EXPECT_EQ(counter.GetCount(), 0);
  text = source;
  for (int count = source.GetLengthInChar(); count > 0; --count)
    text.AssignSubString(source, 0, count);
  EXPECT_EQ(counter.GetCount(), 1);
}

TEST(MRBUnicodeString, MovingLeavesTheSourceEmpty) {
  for (const char* const source : {"", Short, Fifteen, Sixteen, Long}) {
    String first(source);
    String second(std::move(first));
    EXPECT_TRUE(first.IsEmpty());
    EXPECT_EQ(second, source);
    String third("former text");
    third = std::move(second);
    EXPECT_TRUE(second.IsEmpty());
    EXPECT_EQ(third, source);
    second = "usable again";
    EXPECT_EQ(second, "usable again");
  }
}

TEST(MRBUnicodeString, SwapsTextsOfEveryLength) {
  for (const char* const left : {"", Short, Fifteen, Sixteen, Long}) {
    for (const char* const right : {"", Short, Fifteen, Sixteen, Long}) {
      String first(left);
      String second(right);
      first.Swap(second);
      EXPECT_EQ(first, right);
      EXPECT_EQ(second, left);
    }
  }
}

TEST(MRBUnicodeString, SurvivesBeingMovedBitByBit) {
  for (const char* const source : {"", Short, Fifteen, Sixteen, Long}) {
    alignas(String) unsigned char before[sizeof(String)];
    alignas(String) unsigned char after[sizeof(String)];
    ::new (static_cast<void*>(before)) String(source);
    std::memcpy(after, before, sizeof(String));
    std::memset(before, 0xEE, sizeof before);
    String* const moved = std::launder(reinterpret_cast<String*>(after));
    EXPECT_EQ(*moved, source);
    moved->Append("+");
    EXPECT_EQ(*moved, String(source) + "+");
    moved->~String();
  }
}

TEST(MRBUnicodeString, TextsOfUpTo15BytesAllocateNothing) {
  if (!AllocationCounter::IsAvailable()) GTEST_SKIP();
  const AllocationCounter counter;
  String text(Fifteen);
  String copy(text);
  copy = text;
  copy = Fifteen;
  String moved(std::move(text));
  moved.Swap(copy);
  moved = moved.SubString(0, 7);
  moved.Append(String("/").Append(String("member")));
  moved.Insert(0, "+");
  moved.Remove(0, 1);
  moved.BuildFromNum(INT_MIN, "%d");
  const unsigned int hash = moved.ComputeHashKey() ^ copy.ComputeHashKey();
  const long count = counter.GetCount();
  EXPECT_EQ(count, 0);
  EXPECT_NE(hash, 0u);
  EXPECT_EQ(moved, "-2147483648");
}

TEST(MRBUnicodeString, ALongerTextAllocatesOnceAndMovesForNothing) {
  if (!AllocationCounter::IsAvailable()) GTEST_SKIP();
  const AllocationCounter counter;
  String text(Sixteen);
  EXPECT_EQ(counter.GetCount(), 1);
  String moved(std::move(text));
  text = std::move(moved);
  text.Swap(moved);
  EXPECT_EQ(counter.GetCount(), 1);
}

TEST(MRBUnicodeString, AppendingByteByByteAllocatesSeldom) {
  if (!AllocationCounter::IsAvailable()) GTEST_SKIP();
  const String piece("x");
  String text;
  const AllocationCounter counter;
  for (int i = 0; i < 100000; ++i)
    text.Append(piece);
  EXPECT_LE(counter.GetCount(), 16);
  EXPECT_EQ(text.GetLengthInChar(), 100000);
}

TEST(MRBUnicodeString, ALengthBeyondTheLimitThrows) {
  EXPECT_THROW(String("x", INT_MAX), std::bad_alloc);
}

TEST(MRBUnicodeString, ComparesExactlyAndCaseSensitively) {
  const String text("Name");
  EXPECT_TRUE(text == "Name");
  EXPECT_TRUE("Name" == text);
  EXPECT_TRUE(text == String("Name"));
  EXPECT_FALSE(text != "Name");
  EXPECT_FALSE("Name" != text);
  EXPECT_FALSE(text != String("Name"));
  for (const char* const other : {"", "name", "Nam", "Names", "Name "}) {
    EXPECT_FALSE(text == other);
    EXPECT_FALSE(text == String(other));
    EXPECT_TRUE(text != other);
    EXPECT_TRUE(other != text);
    EXPECT_TRUE(text != String(other));
  }
}

TEST(MRBUnicodeString, OrdersByUnsignedBytesAPrefixFirst) {
  const String ordered[] = {"", String("\0", 1), "A", "a", "aa", "ab", "b", "\x7F", "\x80", "\xFF"};
  const int count = sizeof ordered / sizeof *ordered;
  for (int i = 0; i < count; ++i) {
    for (int j = 0; j < count; ++j)
      EXPECT_EQ(ordered[i] < ordered[j], i < j) << i << " and " << j;
  }
}

TEST(MRBUnicodeString, ConcatenatesAndLeavesTheOperandsUnchanged) {
  for (const char* const left : {"", Short, Fifteen, Long}) {
    for (const char* const right : {"", Short, Fifteen, Long}) {
      const std::string expected = std::string(left) + right;
      const String first(left);
      const String second(right);
      EXPECT_EQ(first + second, expected.c_str());
      EXPECT_EQ(first + right, expected.c_str());
      EXPECT_EQ(left + second, expected.c_str());
      EXPECT_EQ(first, left);
      EXPECT_EQ(second, right);
    }
  }
}

TEST(MRBUnicodeString, AppendsInPlaceAndReturnsItself) {
  String text("a");
  EXPECT_EQ(&(text += "b"), &text);
  EXPECT_EQ(&text.Append("c"), &text);
  EXPECT_EQ(text, "abc");
  text += Long;
  EXPECT_EQ(text, String("abc") + Long);
}

TEST(MRBUnicodeString, AppendsItself) {
  for (const char* const source : {"", "a", Short, Fifteen, Sixteen, Long}) {
    const String doubled = String(source) + source;
    String text(source);
    text.Append(text);
    EXPECT_EQ(text, doubled);
    text += text;
    EXPECT_EQ(text, doubled + doubled);
  }
}

TEST(MRBUnicodeString, ConvertsToTheSame8BitTextBothWays) {
  const String text(Long);
  const char* const converted = text;
  EXPECT_STREQ(converted, Long);
  EXPECT_STREQ(text.ConvertToChar(), Long);
}

TEST(MRBUnicodeString, IndexesItsCharacters) {
  const String text("a\xFF");
  EXPECT_EQ(static_cast<char>(text[0]), 'a');
  EXPECT_EQ(static_cast<char>(text[1]), '\xFF');
}

TEST(MRBUnicodeString, BuildsFromNumbersAsPrintfWould) {
  String text("replaced");
  EXPECT_EQ(text.BuildFromNum(1.5, "%g"), 3);
  EXPECT_EQ(text, "1.5");
  EXPECT_EQ(text.BuildFromNum(-3, "%d"), 2);
  EXPECT_EQ(text, "-3");
  text.BuildFromNum(4000000000u, "%u");
  EXPECT_EQ(text, "4000000000");
  text.BuildFromNum(-2147483647L, "%ld");
  EXPECT_EQ(text, "-2147483647");
  text.BuildFromNum(4294967295UL, "%lu");
  EXPECT_EQ(text, "4294967295");
  text.BuildFromNum(7, "%05d|");
  EXPECT_EQ(text, "00007|");
}

TEST(MRBUnicodeString, BuildsTextsOfAnyLengthFromNumbers) {
  for (const int width : {62, 63, 64, 65, 1000}) {
    String format("%");
    String digits;
    digits.BuildFromNum(width, "%d");
    format += digits + "d";
    String text;
    EXPECT_EQ(text.BuildFromNum(7, format), width);
    EXPECT_EQ(text, String(std::string(static_cast<std::size_t>(width) - 1, ' ').c_str()) + "7");
  }
  String text;
  text.BuildFromNum(1e300, "%.0f");
  EXPECT_EQ(text.GetLengthInChar(), 301);
}

TEST(MRBUnicodeString, BuildingFromNoFormatGivesTheEmptyText) {
  String text("replaced");
  EXPECT_LT(text.BuildFromNum(1, nullptr), 0);
  EXPECT_TRUE(text.IsEmpty());
}

TEST(MRBUnicodeString, EqualTextsHashAlike) {
  for (const char* const source : {"", "a", Short, Fifteen, Sixteen, Long}) {
    String built;
    for (const char* c = source; *c; ++c)
      built.Append(String(c, 1));
    String shrunk = String(source) + "rest";
    shrunk.Remove(shrunk.GetLengthInChar() - 4, 4);
    const unsigned int hash = String(source).ComputeHashKey();
    EXPECT_EQ(built.ComputeHashKey(), hash);
    EXPECT_EQ(shrunk.ComputeHashKey(), hash);
    EXPECT_EQ(String::ComputeHashKey(source, static_cast<int>(std::strlen(source))), hash);
  }
}

TEST(MRBUnicodeString, ASliceHashesAsTheTextItHolds) {
  const char* const path = "one/twelve-bytes/three";
  EXPECT_EQ(String::ComputeHashKey(path + 4, 12), String("twelve-bytes").ComputeHashKey());
  EXPECT_EQ(String::ComputeHashKey(path, 0), String().ComputeHashKey());
}

TEST(MRBUnicodeString, HashesOfSimilarNamesDiffer) {
  unsigned int hashes[1000];
  for (int i = 0; i < 1000; ++i) {
    String text;
    text.BuildFromNum(i, "Param_%d");
    hashes[i] = text.ComputeHashKey();
    for (int j = 0; j < i; ++j)
      ASSERT_NE(hashes[j], hashes[i]) << i << " and " << j;
  }
}

TEST(MRBUnicodeString, EveryByteCountsInTheHash) {
  for (int length = 1; length <= 40; ++length) {
    const std::string text(static_cast<std::size_t>(length), 'a');
    const unsigned int hash = String(text.c_str()).ComputeHashKey();
    EXPECT_NE(String(text.c_str(), length - 1).ComputeHashKey(), hash) << length;
    for (int place = 0; place < length; ++place) {
      std::string changed = text;
      changed[static_cast<std::size_t>(place)] = 'b';
      EXPECT_NE(String(changed.c_str()).ComputeHashKey(), hash) << place << " of " << length;
    }
  }
}

TEST(MRBUnicodeString, WritesItselfToAStream) {
  std::ostringstream stream;
  stream << String("a\0b", 3) << '|' << std::setw(5) << std::setfill('.') << String("x") << '|'
         << String();
  EXPECT_EQ(stream.str(), std::string("a\0b|....x|", 10));
}

TEST(MRBUnicodeString, AZeroFilledObjectIsAnEmptyText) {
  alignas(String) unsigned char place[sizeof(String)] = {};
  String* const text = std::launder(reinterpret_cast<String*>(place));
  EXPECT_TRUE(text->IsEmpty());
  EXPECT_STREQ(text->ConvertToChar(), "");
  *text = Long;
  EXPECT_EQ(*text, Long);
  text->~String();
}

}  // namespace
