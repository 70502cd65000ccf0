#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "MRBUnicodeString.h"

namespace {

using String = MRBUnicodeString;

// Below, at, and above what fits inside the object.
const char* const Short = "identifier";
const char* const Fifteen = "123456789012345";
const char* const Sixteen = "1234567890123456";
const char* const Long = "a text that is far too long to fit inside of the object itself";

TEST(MRBUnicodeString, InsertsBeforeThePosition) {
  EXPECT_EQ(String("bc").Insert(0, "a"), "abc");
  EXPECT_EQ(String("ac").Insert(1, "b"), "abc");
  EXPECT_EQ(String("ab").Insert(2, "c"), "abc");
  EXPECT_EQ(String("").Insert(0, "abc"), "abc");
  EXPECT_EQ(String("abc").Insert(1, ""), "abc");
  EXPECT_EQ(String("<>").Insert(1, Long), String("<") + Long + ">");
  EXPECT_EQ(String(Long).Insert(1, Short), String("a") + Short + (Long + 1));
}

TEST(MRBUnicodeString, InsertLimitsThePosition) {
  for (const int position : {-1, -100, INT_MIN})
    EXPECT_EQ(String("b").Insert(position, "a"), "ab");
  for (const int position : {2, 100, INT_MAX})
    EXPECT_EQ(String("a").Insert(position, "b"), "ab");
}

TEST(MRBUnicodeString, InsertsItself) {
  for (const char* const source : {"", "ab", Short, Fifteen, Sixteen, Long}) {
    const int length = static_cast<int>(std::strlen(source));
    for (int position = 0; position <= length; ++position) {
      String text(source);
      const String expected = text.SubString(0, position) + source + (source + position);
      EXPECT_EQ(&text.Insert(position, text), &text);
      EXPECT_EQ(text, expected);
    }
  }
}

TEST(MRBUnicodeString, RemovesWhatLiesInsideTheText) {
  struct Case {
    int position;
    int count;
    const char* expected;
  };
  const Case cases[] = {{0, 1, "bcde"},
                        {4, 1, "abcd"},
                        {1, 3, "ae"},
                        {0, 5, ""},
                        {0, 6, ""},
                        {3, 100, "abc"},
                        {5, 1, "abcde"},
                        {100, 1, "abcde"},
                        {1, 0, "abcde"},
                        {1, -1, "abcde"},
                        {-1, 2, "bcde"},
                        {-2, 2, "abcde"},
                        {-5, 100, ""},
                        {1, INT_MAX, "a"},
                        {INT_MAX, INT_MAX, "abcde"},
                        {INT_MIN, 1, "abcde"},
                        {INT_MIN, INT_MAX, "abcde"},
                        {INT_MIN, INT_MIN, "abcde"},
                        {-2, INT_MIN, "abcde"},
                        {2, INT_MIN, "abcde"}};
  for (const Case& one : cases) {
    String text("abcde");
    EXPECT_EQ(&text.Remove(one.position, one.count), &text);
    EXPECT_EQ(text, one.expected) << one.position << ", " << one.count;
    EXPECT_EQ(std::strlen(text), std::strlen(one.expected));
  }
}

TEST(MRBUnicodeString, SubStringGivesThePartInsideTheText) {
  struct Case {
    int start;
    int length;
    const char* expected;
  };
  const Case cases[] = {{2, 0, ""},
                        {0, 10, "abc"},
                        {-1, 2, "a"},
                        {0, 3, "abc"},
                        {1, 1, "b"},
                        {3, 1, ""},
                        {4, 1, ""},
                        {-1, 1, ""},
                        {-3, 2, ""},
                        {-2, 5, "abc"},
                        {1, -1, ""},
                        {-1, -1, ""},
                        {1, INT_MAX, "bc"},
                        {INT_MAX, INT_MAX, ""},
                        {INT_MIN, INT_MAX, ""},
                        {INT_MIN, INT_MIN, ""},
                        {-2, INT_MIN, ""},
                        {0, INT_MIN, ""}};
  const String text("abc");
  for (const Case& one : cases)
    EXPECT_EQ(text.SubString(one.start, one.length), one.expected)
        << one.start << ", " << one.length;
  EXPECT_EQ(text, "abc");
  EXPECT_TRUE(String().SubString(0, 1).IsEmpty());
  EXPECT_EQ(String(Long).SubString(2, 20), String(Long + 2, 20));
}

TEST(MRBUnicodeString, SearchesForwardAndBackward) {
  const String path("a/b/c");
  EXPECT_EQ(path.SearchSubString("/", 0, String::MRBSearchForward), 1);
  EXPECT_EQ(path.SearchSubString("/", 0, String::MRBSearchBackward), 3);
  EXPECT_EQ(path.SearchSubString("/", 1, String::MRBSearchForward), 1);
  EXPECT_EQ(path.SearchSubString("/", 2, String::MRBSearchForward), 3);
  EXPECT_LT(path.SearchSubString("/", 4, String::MRBSearchForward), 0);
  EXPECT_EQ(path.SearchSubString("b/c", 0, String::MRBSearchForward), 2);
  EXPECT_EQ(path.SearchSubString("b/c", 0, String::MRBSearchBackward), 2);
  EXPECT_EQ(String("aaa").SearchSubString("aa", 0, String::MRBSearchForward), 0);
  EXPECT_EQ(String("aaa").SearchSubString("aa", 0, String::MRBSearchBackward), 1);
}

TEST(MRBUnicodeString, SearchGivesANegativeNumberWhenAbsent) {
  for (const auto mode : {String::MRBSearchForward, String::MRBSearchBackward}) {
    EXPECT_LT(String("abc").SearchSubString("/", 0, mode), 0);
    EXPECT_LT(String("abc").SearchSubString("abcd", 0, mode), 0);
    EXPECT_LT(String("abc").SearchSubString("B", 0, mode), 0);
    EXPECT_LT(String("").SearchSubString("a", 0, mode), 0);
  }
}

TEST(MRBUnicodeString, SearchLimitsItsStart) {
  const String text("abcabc");
  for (const int from : {-1, -100, INT_MIN}) {
    EXPECT_EQ(text.SearchSubString("abc", from, String::MRBSearchForward), 0);
    EXPECT_EQ(text.SearchSubString("abc", from, String::MRBSearchBackward), 3);
  }
  for (const int from : {4, 6, 7, 100, INT_MAX}) {
    EXPECT_LT(text.SearchSubString("abc", from, String::MRBSearchForward), 0);
    EXPECT_LT(text.SearchSubString("abc", from, String::MRBSearchBackward), 0);
  }
}

TEST(MRBUnicodeString, FindPositionCountsFrom1AndGives0WhenAbsent) {
  const String text("a\\b\\c");
  EXPECT_EQ(text.FindPosition("\\", 0), 2);
  EXPECT_EQ(text.FindPosition("\\", 1), 2);
  EXPECT_EQ(text.FindPosition("\\", 2), 4);
  EXPECT_EQ(text.FindPosition("\\", 4), 0);
  EXPECT_EQ(text.FindPosition("a", 0), 1);
  EXPECT_EQ(text.FindPosition("/", 0), 0);
  EXPECT_EQ(text.FindPosition("a", -7), 1);
  EXPECT_EQ(text.FindPosition("a", 100), 0);
}

TEST(MRBUnicodeString, StripsTheEndsThatTheModeNames) {
  const String text("  x y  ");
  EXPECT_EQ(text.Strip(String::MRBStripBoth), "x y");
  EXPECT_EQ(text.Strip(String::MRBStripLeading), "x y  ");
  EXPECT_EQ(text.Strip(String::MRBStripTrailing), "  x y");
  EXPECT_EQ(text, "  x y  ");
}

TEST(MRBUnicodeString, StripsTheWhiteSpaceOfTheCLocaleAndNothingElse) {
  EXPECT_EQ(String(" \t\n\v\f\rx\r\f\v\n\t ").Strip(String::MRBStripBoth), "x");
  EXPECT_EQ(String(" \t ").Strip(String::MRBStripBoth), "");
  EXPECT_EQ(String("").Strip(String::MRBStripBoth), "");
  for (const char* const kept : {"\x01", "\x1F", "\x7F", "\x80", "\x85", "\xA0", "\xFF", "\b"})
    EXPECT_EQ(String(kept).Strip(String::MRBStripBoth), kept);
  EXPECT_EQ(String("\0 ", 2).Strip(String::MRBStripBoth), String("\0", 1));
}

}  // namespace
