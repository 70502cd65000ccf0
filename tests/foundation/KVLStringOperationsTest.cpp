#include "KVLStringOperations.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "support/FailingAllocations.h"

namespace {

using String = MRBUnicodeString;
using Ops = KVLStringOperations;
using Pieces = std::vector<std::string>;

static_assert(Ops::DepthParentheses == 1 && Ops::DepthBraces == 2);
static_assert(Ops::DepthBrackets == 4 && Ops::DepthQuotes == 8);
static_assert(Ops::DepthNone == 0 && Ops::DepthAll == 15 && sizeof(Ops::DepthChars) == 4);
static_assert(!std::is_default_constructible_v<Ops>);

Ops::DepthChars Depth(int flags) {
  return static_cast<Ops::DepthChars>(flags);
}

// Every piece; the iteration must then be at its end, and stay there.
Pieces Collect(KVLIter<String> iter) {
  Pieces pieces;
  String piece;
  while (iter.Next(piece) == 0)
    pieces.emplace_back(piece.ConvertToChar(), static_cast<std::size_t>(piece.GetLengthInByte()));
  EXPECT_EQ(iter.GetStatus(), 1);
  const String last = piece;
  EXPECT_EQ(iter.Next(piece), 1);
  EXPECT_EQ(piece, last);
  return pieces;
}

TEST(KVLStringOperations, StartsWithTellsPrefixes) {
  EXPECT_TRUE(Ops::StartsWith("KVLCodeEnv_Alpha", "KVLCodeEnv_"));
  EXPECT_TRUE(Ops::StartsWith("abc", "abc"));
  EXPECT_TRUE(Ops::StartsWith("abc", ""));
  EXPECT_TRUE(Ops::StartsWith("", ""));
  EXPECT_FALSE(Ops::StartsWith("abc", "abcd"));
  EXPECT_FALSE(Ops::StartsWith("abc", "b"));
  EXPECT_FALSE(Ops::StartsWith("abc", "A"));
  EXPECT_FALSE(Ops::StartsWith("", "a"));
}

TEST(KVLStringOperations, EndsWithTellsSuffixes) {
  EXPECT_TRUE(Ops::EndsWith("abc", "bc"));
  EXPECT_TRUE(Ops::EndsWith("abc", "abc"));
  EXPECT_TRUE(Ops::EndsWith("abc", ""));
  EXPECT_TRUE(Ops::EndsWith("", ""));
  EXPECT_FALSE(Ops::EndsWith("ab", "xab"));
  EXPECT_FALSE(Ops::EndsWith("abc", "b"));
  EXPECT_FALSE(Ops::EndsWith("abc", "C"));
  EXPECT_FALSE(Ops::EndsWith("", "a"));
  EXPECT_FALSE(Ops::EndsWith("a", "a much longer suffix"));
}

TEST(KVLStringOperations, FromNumWritesIntegers) {
  EXPECT_EQ(Ops::FromNum(0), "0");
  EXPECT_EQ(Ops::FromNum(-3), "-3");
  EXPECT_EQ(Ops::FromNum(INT_MIN), "-2147483648");
  EXPECT_EQ(Ops::FromNum(INT_MAX), "2147483647");
  EXPECT_EQ(Ops::FromNum(UINT_MAX), "4294967295");
  EXPECT_EQ(Ops::FromNum(LONG_MIN), std::to_string(LONG_MIN).c_str());
  EXPECT_EQ(Ops::FromNum(LONG_MAX), std::to_string(LONG_MAX).c_str());
  EXPECT_EQ(Ops::FromNum(ULONG_MAX), std::to_string(ULONG_MAX).c_str());
}

TEST(KVLStringOperations, FromNumWritesFloatingPointNumbersWithSixDigits) {
  EXPECT_EQ(Ops::FromNum(1.5), "1.5");
  EXPECT_EQ(Ops::FromNum(2.0), "2");
  EXPECT_EQ(Ops::FromNum(1.0 / 3), "0.333333");
  EXPECT_EQ(Ops::FromNum(1e10), "1e+10");
  EXPECT_EQ(Ops::FromNum(-0.00001), "-1e-05");
  EXPECT_EQ(Ops::FromNum(0.1f), "0.1");
  EXPECT_EQ(Ops::FromNum(-1.25f), "-1.25");
  EXPECT_EQ(Ops::FromNum(16777216.0f), "1.67772e+07");
}

TEST(KVLStringOperations, GetCharAtGivesNulOutsideTheText) {
  const String text("ab\xFF");
  EXPECT_EQ(Ops::GetCharAt(text, 0), 'a');
  EXPECT_EQ(Ops::GetCharAt(text, 2), '\xFF');
  for (const int outside : {3, 4, INT_MAX, -1, INT_MIN})
    EXPECT_EQ(Ops::GetCharAt(text, outside), '\0');
  EXPECT_EQ(Ops::GetCharAt("", 0), '\0');
}

TEST(KVLStringOperations, SplitGivesThePiecesBetweenSeparators) {
  struct Case {
    const char* text;
    const char* separator;
    Pieces pieces;
  };
  const Case cases[] = {{"", ";", {}},
                        {"a", ";", {"a"}},
                        {"a;b;", ";", {"a", "b"}},
                        {"a;;b", ";", {"a", "", "b"}},
                        {"a;", ";", {"a"}},
                        {";a", ";", {"", "a"}},
                        {";", ";", {""}},
                        {";;", ";", {"", ""}},
                        {" a ; b ", ";", {" a ", " b "}},
                        {"a::b::c", "::", {"a", "b", "c"}},
                        {"a:::b", "::", {"a", ":b"}},
                        {"a:b", "::", {"a:b"}},
                        {"a::", "::", {"a"}},
                        {"a:", "::", {"a:"}},
                        {"aaaa", "aa", {"", ""}},
                        {"abc", "abc", {""}},
                        {"ab", "abc", {"ab"}}};
  for (const Case& one : cases)
    EXPECT_EQ(Collect(Ops::Split(one.text, one.separator)), one.pieces) << one.text;
}

TEST(KVLStringOperations, SplitKeepsEmbeddedNuls) {
  EXPECT_EQ(Collect(Ops::Split(String("a\0b;\0", 5), ";")),
            (Pieces{std::string("a\0b", 3), std::string("\0", 1)}));
}

TEST(KVLStringOperations, JoiningAndSlicingKeepEmbeddedNuls) {
  EXPECT_EQ(Ops::Join(Ops::Split(String("a\0b;\0", 5), ";"), String("\0", 1)),
            String("a\0b\0\0", 5));
  EXPECT_EQ(Ops::SubStringBetween(String("ab\0cd", 5), 1, -1), String("b\0c", 3));
  EXPECT_TRUE(Ops::StartsWith(String("\0a", 2), String("\0", 1)));
  EXPECT_FALSE(Ops::EndsWith(String("a\0", 2), "a"));
}

TEST(KVLStringOperations, SplitPiecesOutliveTheirSource) {
  String first;
  String second;
  {
    auto text = std::make_unique<String>("a first piece of some length;a second piece");
    auto separator = std::make_unique<String>(";");
    KVLIter<String> iter = Ops::Split(*text, *separator);
    EXPECT_EQ(iter.GetStatus(), 0);
    text->Remove(0, 5);
    *separator = ",";
    EXPECT_EQ(iter.Next(first), 0);
    text.reset();
    separator.reset();
    EXPECT_EQ(iter.Next(second), 0);
  }
  EXPECT_EQ(first, "a first piece of some length");
  EXPECT_EQ(second, "a second piece");
}

TEST(KVLStringOperations, SplitMayWriteIntoItsOwnSource) {
  String text("one;two;three");
  KVLIter<String> iter = Ops::Split(text, ";");
  EXPECT_EQ(iter.Next(text), 0);
  EXPECT_EQ(text, "one");
  EXPECT_EQ(iter.Next(text), 0);
  EXPECT_EQ(text, "two");
}

TEST(KVLStringOperations, SplitWithDepthKeepsNestedPiecesWhole) {
  struct Case {
    const char* text;
    int depth;
    Pieces pieces;
  };
  const Case cases[] = {{"f(a,b),{c,d},e", 15, {"f(a,b)", "{c,d}", "e"}},
                        {"f(a,b),{c,d},e", 0, {"f(a", "b)", "{c", "d}", "e"}},
                        {"a,(b,c),[d]", 15, {"a", "(b,c)", "[d]"}},
                        {"", 15, {}},
                        {",", 15, {""}},
                        {"a,,b", 15, {"a", "", "b"}},
                        {",a", 15, {"", "a"}},
                        {"a,", 15, {"a"}},
                        {"(a,b),", 15, {"(a,b)"}},
                        {" a , b ", 15, {" a ", " b "}},
                        // Each kind alone: the openers of the others are ordinary characters.
                        {"(a,b),[c,d],{e,f}", 1, {"(a,b)", "[c", "d]", "{e", "f}"}},
                        {"(a,b),[c,d],{e,f}", 2, {"(a", "b)", "[c", "d]", "{e,f}"}},
                        {"(a,b),[c,d],{e,f}", 4, {"(a", "b)", "[c,d]", "{e", "f}"}},
                        {"\"a,b\",(c,d)", 8, {"\"a,b\"", "(c", "d)"}},
                        {"\"a,b\",(c,d)", 7, {"\"a", "b\"", "(c,d)"}},
                        // Nesting.
                        {"([{a,b},c],d),e", 15, {"([{a,b},c],d)", "e"}},
                        {"((a,b),c),d", 15, {"((a,b),c)", "d"}},
                        // A closer that does not match the innermost opener changes nothing.
                        {"(a],b),c", 15, {"(a],b)", "c"}},
                        {"([a),b],c)", 15, {"([a),b],c)"}},
                        {"a),b", 15, {"a)", "b"}},
                        {"]},a", 15, {"]}", "a"}},
                        // An opener without closer takes the rest.
                        {"a,(b,c", 15, {"a", "(b,c"}},
                        {"a,(b,c],d,e", 15, {"a", "(b,c],d,e"}},
                        {"a,\"b,c", 15, {"a", "\"b,c"}},
                        {"a,\"b,c\\\"", 15, {"a", "\"b,c\\\""}},
                        // Quotes.
                        {"\"a\\\"b,\",c", 8, {"\"a\\\"b,\"", "c"}},
                        {"\"a\\\\\",b", 15, {"\"a\\\\\"", "b"}},
                        {"\"(\",a", 15, {"\"(\"", "a"}},
                        {"\"\",a", 15, {"\"\"", "a"}},
                        {"\"\\\",\",a", 15, {"\"\\\",\"", "a"}},
                        {"(\")\",a),b", 15, {"(\")\",a)", "b"}},
                        {"(\"a,\\\")\",b),c", 15, {"(\"a,\\\")\",b)", "c"}},
                        {"a\\,b", 15, {"a\\", "b"}},
                        {"\\\"a,b\",c", 15, {"\\\"a,b\"", "c"}},
                        {"x\"a,b\"y\"c,d\"z,e", 15, {"x\"a,b\"y\"c,d\"z", "e"}}};
  for (const Case& one : cases)
    EXPECT_EQ(Collect(Ops::SplitWithDepth(one.text, ',', Depth(one.depth))), one.pieces)
        << one.text << " with " << one.depth;
}

TEST(KVLStringOperations, SplitWithDepthStopsAtASeparatorThatIsABracketOrAQuote) {
  EXPECT_EQ(Collect(Ops::SplitWithDepth("a(b(c", '(', Ops::DepthAll)), (Pieces{"a", "b", "c"}));
  EXPECT_EQ(Collect(Ops::SplitWithDepth("a\"b\"c", '"', Ops::DepthAll)), (Pieces{"a", "b", "c"}));
  EXPECT_EQ(Collect(Ops::SplitWithDepth("(a)b)c", ')', Ops::DepthAll)), (Pieces{"(a)b", "c"}));
}

TEST(KVLStringOperations, SplitWithDepthSplitsAtNulAndAtBytesAbove127) {
  EXPECT_EQ(Collect(Ops::SplitWithDepth(String("a\0b", 3), '\0', Ops::DepthAll)),
            (Pieces{"a", "b"}));
  EXPECT_EQ(Collect(Ops::SplitWithDepth("a\xFF(b\xFF)", '\xFF', Ops::DepthAll)),
            (Pieces{"a", "(b\xFF)"}));
  EXPECT_EQ(Collect(Ops::SplitWithDepth(String("(\0,b),c", 7), ',', Ops::DepthAll)),
            (Pieces{std::string("(\0,b)", 5), "c"}));
}

TEST(KVLStringOperations, SplitWithDepthCopesWithDeepNesting) {
  const std::string deep = std::string(10000, '(') + "a,b" + std::string(10000, ')');
  EXPECT_EQ(Collect(Ops::SplitWithDepth((deep + ",c").c_str(), ',', Ops::DepthAll)),
            (Pieces{deep, "c"}));
}

TEST(KVLStringOperations, SplitWithDepthPiecesOutliveTheirSource) {
  String piece;
  {
    auto text = std::make_unique<String>("(a first piece, of some length),b");
    KVLIter<String> iter = Ops::SplitWithDepth(*text, ',', Ops::DepthAll);
    text.reset();
    EXPECT_EQ(iter.GetStatus(), 0);
    EXPECT_EQ(iter.Next(piece), 0);
  }
  EXPECT_EQ(piece, "(a first piece, of some length)");
}

TEST(KVLStringOperations, ASplitterThatCannotBeAllocatedCarriesTheFailure) {
  if (!FailingAllocations::IsAvailable()) GTEST_SKIP();
  const auto ExpectFailure = [](KVLIter<String> iter) {
    EXPECT_EQ(iter.GetStatus(), -2147467259L);
    String untouched("untouched");
    EXPECT_EQ(iter.Next(untouched), -2147467259L);
    EXPECT_EQ(iter.Next(untouched), -2147467259L);
    EXPECT_EQ(untouched, "untouched");
    EXPECT_EQ(Ops::Join(std::move(iter), ","), "");
  };
  {
    const FailingAllocations failing(1);
    ExpectFailure(Ops::Split("a;b", ";"));
    EXPECT_TRUE(failing.HasFailed());
  }
  {
    const FailingAllocations failing(1);
    ExpectFailure(Ops::SplitWithDepth("a,b", ',', Ops::DepthAll));
    EXPECT_TRUE(failing.HasFailed());
  }
}

TEST(KVLStringOperations, JoinPutsTheSeparatorBetweenPieces) {
  EXPECT_EQ(Ops::Join(Ops::Split("x;y;z", ";"), ", "), "x, y, z");
  EXPECT_EQ(Ops::Join(Ops::Split("x", ";"), ", "), "x");
  EXPECT_EQ(Ops::Join(Ops::Split("", ";"), ", "), "");
  EXPECT_EQ(Ops::Join(Ops::Split(";;x", ";"), ","), ",,x");
  EXPECT_EQ(Ops::Join(Ops::Split("x;y", ";"), ""), "xy");
  EXPECT_EQ(Ops::Join(KVLIter<String>(KVLResult_False), ","), "");
  EXPECT_EQ(Ops::Join(KVLIter<String>(KVLResult_Success), ","), "");
}

// Yields "a", "b" and "c", then a failure; counts how many of its kind live.
class FailingPieces : public KVLIterCursor<String> {
 public:
  explicit FailingPieces(int& liveCounter) : live(liveCounter) { ++live; }
  ~FailingPieces() override { --live; }
  long Next(String& piece) override {
    if (letter > 'c') return KVLResult_OutOfMemory;
    piece = String(&letter, 1);
    ++letter;
    return KVLResult_Success;
  }

 private:
  int& live;
  char letter = 'a';
};

TEST(KVLStringOperations, JoinEndsAtAFailureAndLetsTheIterationGo) {
  int live = 0;
  KVLIter<String> pieces(new FailingPieces(live));
  EXPECT_EQ(Ops::Join(std::move(pieces), "-"), "a-b-c");
  EXPECT_EQ(live, 0);
  EXPECT_EQ(pieces.GetStatus(), KVLResult_False);
}

TEST(KVLStringOperations, SubStringBetweenCountsNegativePositionsFromTheEnd) {
  struct Case {
    int from;
    int to;
    const char* expected;
  };
  const Case cases[] = {{1, -1, "bcde"},
                        {-2, 100, "ef"},
                        {4, 2, ""},
                        {-100, 2, "ab"},
                        {0, 6, "abcdef"},
                        {0, 0, ""},
                        {2, 3, "c"},
                        {-3, -1, "de"},
                        {-1, -3, ""},
                        {6, 7, ""},
                        {100, 200, ""},
                        {0, -6, ""},
                        {0, -100, ""},
                        {3, INT_MAX, "def"},
                        {INT_MAX, INT_MAX, ""},
                        {INT_MIN, INT_MAX, "abcdef"},
                        {INT_MIN, INT_MIN, ""},
                        {INT_MAX, 0, ""},
                        {INT_MAX, INT_MIN, ""},
                        {-6, 6, "abcdef"},
                        {-7, 1, "a"}};
  for (const Case& one : cases)
    EXPECT_EQ(Ops::SubStringBetween("abcdef", one.from, one.to), one.expected)
        << one.from << ", " << one.to;
  EXPECT_EQ(Ops::SubStringBetween("", -1, 1), "");
}

TEST(KVLStringOperations, TrimTakesBlanksOffBothEnds) {
  EXPECT_EQ(Ops::Trim("  a b\t\n"), "a b");
  EXPECT_EQ(Ops::Trim("   "), "");
  EXPECT_EQ(Ops::Trim(""), "");
  EXPECT_EQ(Ops::Trim("a"), "a");
  EXPECT_EQ(Ops::Trim(" a"), "a");
  EXPECT_EQ(Ops::Trim("a "), "a");
}

TEST(KVLStringOperations, TrimTakesEveryByteThatIsAtMost32AsASignedNumber) {
  for (int value = -128; value <= 127; ++value) {
    const char c = static_cast<char>(value);
    const String one(&c, 1);
    const String text = one + "x" + one + "y" + one;
    EXPECT_EQ(Ops::Trim(text), value <= 32 ? "x" + one + "y" : text) << value;
    EXPECT_EQ(Ops::Trim(one), value <= 32 ? String() : one) << value;
  }
}

}  // namespace
