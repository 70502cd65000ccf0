#include <random>

#include "KVLCodeFunctionCaller.h"
#include "KVLCodeListValue.h"
#include "LoadedModules.h"

namespace {

class Epsilon : public LoadedModules {
 protected:
  Epsilon() : LoadedModules({"Alpha", "Beta", "Gamma", "Epsilon", "Zeta"}) {}
};

TEST_F(Epsilon, Texts) {
  EXPECT_EQ(Result("text/length", {"a\xC3\xA9"}), "3");
  EXPECT_EQ(Result("text/upper", {"a\xC3\xA9z0{`"}), "A\xC3\xA9Z0{`");
  EXPECT_EQ(Result("text/lower", {"A@[Z"}), "a@[z");
  EXPECT_EQ(Result("text/strip", {" \t a b \n"}), "a b");
  EXPECT_EQ(Result("text/concat", {"a", "b"}), "ab");
  EXPECT_EQ(Result("text/repeat", {"ab"}), "abab");
  EXPECT_EQ(Result("text/repeat", {"ab", "0"}), "");
  EXPECT_EQ(Result("text/repeat", {"", "2147483647"}), "");
  EXPECT_EQ(Thrown("text/repeat", {"ab", "-1"}), "count must not be negative");
  EXPECT_EQ(Thrown("text/repeat", {"ab", "2147483647"}), "the text would be longer than 16 MiB");
  EXPECT_EQ(Result("text/find", {"abcabc", "c"}), "2");
  EXPECT_EQ(Result("text/find", {"abc", "x"}), "-1");
}

TEST_F(Epsilon, JoinWritesEveryElementAsText) {
  EXPECT_EQ(Result("text/join", {"[1, 2.0, true, \"a, b\", Point(1,2), [x, 1]]"}),
            "1, 2, true, a, b, (1, 2), [\"x\",1]");
  EXPECT_EQ(Result("text/join", {"[a, b]", ""}), "ab");
  EXPECT_EQ(Result("text/join", {"[]"}), "");
  EXPECT_EQ(Result("text/join", {"NULL"}), "");
}

TEST_F(Epsilon, CharactersAreThoseOfUtf8) {
  EXPECT_EQ(Result("text/characters", {""}), "0");
  EXPECT_EQ(Result("text/characters", {"a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"}), "4");
  EXPECT_EQ(Result("text/characters", {"\xFF\xFF"}), "2");
  EXPECT_EQ(Result("text/characters", {"\x80\x80"}), "1");
  EXPECT_EQ(Result("text/characters", {"\xC3"}), "1");
}

TEST_F(Epsilon, TrimTakesWholeCharactersAway) {
  EXPECT_EQ(Result("text/trim", {" \t a b\r\n"}), "a b");
  EXPECT_EQ(Result("text/trim", {"xyaxbyx", "xy"}), "axb");
  EXPECT_EQ(Result("text/trim", {"xx", "x"}), "");
  EXPECT_EQ(Result("text/trim", {"abc", "\"\""}), "abc");
  EXPECT_EQ(Result("text/trim", {"\xC3\xA9"
                                 "a\xC3\xA9",
                                 "\xC3\xA9"}),
            "a");
  EXPECT_EQ(Result("text/trim", {"\xC3\xA8", "\xC3\xA9"}), "\xC3\xA8");
}

TEST_F(Epsilon, ReplaceGoesFromLeftToRight) {
  EXPECT_EQ(Result("text/replace", {"aaa", "aa", "b"}), "ba");
  EXPECT_EQ(Result("text/replace", {"a.b.c", "."}), "abc");
  EXPECT_EQ(Result("text/replace", {"abc", "x", "y"}), "abc");
  EXPECT_EQ(Result("text/replace", {"ab", "b", "bb"}), "abb");
  EXPECT_EQ(Thrown("text/replace", {"abc", "", "y"}), "the part must not be empty");
  const std::string many(1 << 16, 'a');
  EXPECT_EQ(Thrown("text/replace", {many.c_str(), "a", many.c_str()}),
            "the text would be longer than 16 MiB");
}

TEST_F(Epsilon, SplitGivesEveryPiece) {
  EXPECT_EQ(Result("text/split", {"a,b,,c,"}), "[\"a\",\"b\",\"\",\"c\",\"\"]");
  EXPECT_EQ(Result("text/split", {""}), "[\"\"]");
  EXPECT_EQ(Result("text/split", {"a::b:c", "::"}), "[\"a\",\"b:c\"]");
  EXPECT_EQ(Result("text/split", {":::", "::"}), "[\"\",\":\"]");
  EXPECT_EQ(Result("text/split", {" a , b ", ","}), "[\" a \",\" b \"]");
  EXPECT_EQ(Thrown("text/split", {"a", "\"\""}), "the separator must not be empty");
  EXPECT_EQ(Thrown("text/split", {std::string(1000000, ',').c_str()}),
            "the list would have more than 1000000 elements");
  const auto caller =
      KVLCodeEnv::GetDefault().FindObject("text/split")->AsFunction()->CreateCaller(context);
  ASSERT_EQ(caller->SetArgStr(0, std::string(999999, ',').c_str()), KVLResult_Success);
  ASSERT_EQ(caller->Call(), KVLResult_Success);
  const auto* const pieces =
      static_cast<const KVLCodeListValue::Elements*>(caller->GetReturnedValue()->GetValuePtr());
  EXPECT_EQ(pieces->GetCount(), 1000000);
}

TEST_F(Epsilon, JoinAndConcatRefuseTextsThatAreTooLong) {
  const std::string half = std::string(8 * 1024 * 1024 + 1, 'a');
  EXPECT_EQ(Thrown("text/concat", {half.c_str(), half.c_str()}),
            "the text would be longer than 16 MiB");
  EXPECT_EQ(Thrown("text/join", {"[a, b, c]", half.c_str()}),
            "the text would be longer than 16 MiB");
}

TEST_F(Epsilon, PadCountsCharacters) {
  EXPECT_EQ(Result("text/pad", {"ab", "5"}), "ab   ");
  EXPECT_EQ(Result("text/pad", {"ab", "5", "right"}), "   ab");
  EXPECT_EQ(Result("text/pad", {"ab", "5", "center", "*"}), "*ab**");
  EXPECT_EQ(Result("text/pad", {"ab", "2"}), "ab");
  EXPECT_EQ(Result("text/pad", {"abc", "2", "right", "*"}), "abc");
  EXPECT_EQ(Result("text/pad", {"\xC3\xA9", "3", "right", "\xE2\x82\xAC"}),
            "\xE2\x82\xAC\xE2\x82\xAC\xC3\xA9");
  EXPECT_EQ(Thrown("text/pad", {"a", "-1"}), "width must not be negative");
  EXPECT_EQ(Thrown("text/pad", {"a", "3", "left", "\"\""}), "fill must be one character");
  EXPECT_EQ(Thrown("text/pad", {"a", "3", "left", "ab"}), "fill must be one character");
  EXPECT_EQ(Thrown("text/pad", {"a", "2147483647"}), "the text would be longer than 16 MiB");
  EXPECT_EQ(Refused("text/pad", {"a", "3", "middle"}), KVLResult_InvalidArgument);
}

TEST_F(Epsilon, MatchReadsThePatternAsAWhole) {
  const struct {
    const char* text;
    const char* pattern;
    const char* isMatch;
  } cases[] = {{"", "", "true"},
               {"", "*", "true"},
               {"", "?", "false"},
               {"abc", "abc", "true"},
               {"abc", "ab", "false"},
               {"ab", "abc", "false"},
               {"abc", "ABC", "false"},
               {"abc", "a?c", "true"},
               {"abc", "a*", "true"},
               {"abc", "*c", "true"},
               {"abc", "*b", "false"},
               {"abc", "**", "true"},
               {"abcbc", "a*bc", "true"},
               {"abab", "*ab", "true"},
               {"aab", "*b?b", "false"},
               {"aXbXc", "a*b*c", "true"},
               {"aXbXd", "a*b*c", "false"},
               {"\xC3\xA9", "?", "true"},
               {"\xC3\xA9", "??", "false"},
               {"a*c", "a\\*c", "true"},
               {"abc", "a\\*c", "false"},
               {"a?", "a\\?", "true"},
               {"a\\b", "a\\\\b", "true"},
               {"x", "\\x", "true"},
               {"[a]", "[a]", "true"}};
  for (const auto& match : cases) {
    EXPECT_EQ(Result("text/match", {match.text, match.pattern}), match.isMatch)
        << match.text << " " << match.pattern;
  }
  EXPECT_EQ(Thrown("text/match", {"a", "a\\"}), "a backslash ends the pattern");
  EXPECT_EQ(Thrown("text/match", {"x", "a\\"}), "a backslash ends the pattern");
}

TEST_F(Epsilon, MatchIsQuickForManyStars) {
  const std::string text(20000, 'a');
  EXPECT_EQ(Result("text/match", {text.c_str(), "*a*a*a*a*a*a*a*a*a*a*b"}), "false");
}

// Against the plain recursive meaning of a pattern.
bool MatchesByDefinition(const char* text, const char* pattern) {
  if (*pattern == '\0') return *text == '\0';
  if (*pattern == '*') {
    return MatchesByDefinition(text, pattern + 1) ||
           (*text != '\0' && MatchesByDefinition(text + 1, pattern));
  }
  return *text != '\0' && (*pattern == '?' || *pattern == *text) &&
         MatchesByDefinition(text + 1, pattern + 1);
}

TEST_F(Epsilon, MatchAgreesWithTheDefinition) {
  constexpr unsigned int Seed = 11;
  SCOPED_TRACE("seed " + std::to_string(Seed));
  std::mt19937 random(Seed);
  const auto some = [&](const char* letters, unsigned int count, unsigned int longest) {
    std::string text;
    for (auto length = random() % (longest + 1); length > 0; --length)
      text += letters[random() % count];
    return text;
  };
  int matches = 0;
  for (int i = 0; i < 5000; ++i) {
    const std::string text = some("ab", 2, 8);
    const std::string pattern = some("ab?*", 4, 6);
    const bool isMatch = MatchesByDefinition(text.c_str(), pattern.c_str());
    matches += isMatch ? 1 : 0;
    ASSERT_EQ(Result("text/match", {text.c_str(), pattern.c_str()}), isMatch ? "true" : "false")
        << text << " " << pattern;
  }
  EXPECT_GT(matches, 500);
}

}  // namespace
