#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <random>
#include <string>

#include "KVLCodeEnv.h"
#include "ShellSupport.h"
#include "support/TestObjects.h"

namespace {

using kvltest::Ask;
using kvltest::Completed;
using kvltest::SessionGuard;

TEST(KVLShellComplete, AStatementBeginsWithACommandAPathOrASessionValue) {
  const SessionGuard guard;
  EXPECT_EQ(Completed("un"), "unload |unset |unuse |");
  EXPECT_EQ(Completed("va"), "vars|");
  EXPECT_EQ(Completed("nu"), "num/|");
  EXPECT_EQ(Completed("hu"), "hue/|");
  (void)Ask("total = 1; other = 2");
  EXPECT_EQ(Completed("$"), "$other|$total|");
  EXPECT_EQ(Completed("$t"), "$total|");
  const std::string all = Completed("");
  EXPECT_NE(all.find("|num/|"), std::string::npos) << all;
  EXPECT_EQ(all.find("_types/"), std::string::npos) << all;
  EXPECT_EQ(Completed("_t"), "_types/|");
}

TEST(KVLShellComplete, APathIsCompletedOneComponentAtATime) {
  EXPECT_EQ(Completed("num/"),
            "num/add(|num/big(|num/count(|num/divmod(|num/hypot(|num/increment(|num/pi|"
            "num/written|");
  EXPECT_EQ(Completed("num/h"), "num/hypot(|");
  EXPECT_EQ(Completed("/num/h"), "/num/hypot(|");
  EXPECT_EQ(Completed("num/zzz"), "");
  EXPECT_EQ(Completed("nowhere/"), "");
  EXPECT_EQ(Completed("_members/"), "_members/Spot/|");
}

TEST(KVLShellComplete, AWordReplacesTheTextFromItsStart) {
  int from = -1;
  EXPECT_EQ(Completed("x = num/h", &from), "num/hypot(|");
  EXPECT_EQ(from, 4);
  EXPECT_EQ(Completed("num/add(1, num/h", &from), "num/hypot(|");
  EXPECT_EQ(from, 11);
  (void)Completed("num/add(", &from);
  EXPECT_EQ(from, 8);
  (void)Completed("vars; un", &from);
  EXPECT_EQ(from, 6);
}

TEST(KVLShellComplete, ACallOffersItsParametersAndTheirValues) {
  const std::string first = Completed("num/add(");
  EXPECT_NE(first.find("a=|"), std::string::npos) << first;
  EXPECT_NE(first.find("b=|"), std::string::npos) << first;
  EXPECT_NE(first.find("num/|"), std::string::npos) << first;
  EXPECT_EQ(Completed("num/divmod(1, d"), "divisor=|doc/|");
  EXPECT_EQ(Completed("num/divmod(divisor=1, d"), "dividend=|doc/|");
  EXPECT_EQ(Completed("hue/next(R"), "Red|");
  EXPECT_EQ(Completed("hue/next(hue=G"), "Green|");
  EXPECT_EQ(Completed("hue/next(hue = G"), "Green|");
  EXPECT_EQ(Completed("hue/mix(t"), "true|");
  EXPECT_EQ(Completed("hue/mix(true, B"), "Blue|");
  EXPECT_EQ(Completed("num/add(hue/mix(f"), "false|");
  EXPECT_EQ(Completed("num/add(hue/mix(false), b"), "b=|");
}

TEST(KVLShellComplete, OutputsAreSessionValues) {
  const SessionGuard guard;
  (void)Ask("quotient = 1");
  EXPECT_EQ(Completed("num/divmod(1, 2, &"), "&quotient|");
  EXPECT_EQ(Completed("num/divmod(1, 2, $q"), "$quotient|");
}

TEST(KVLShellComplete, ListsHoldExpressions) {
  EXPECT_EQ(Completed("[1, num/p"), "num/pi|");
  EXPECT_EQ(Completed("list/sum([num/p"), "num/pi|");
}

TEST(KVLShellComplete, CommandsOfferWhatTheyTake) {
  const SessionGuard guard;
  EXPECT_EQ(Completed("ls -"), "--json|-k |-r|");
  EXPECT_EQ(Completed("ls -k "), "env|function|type|variable|");
  EXPECT_EQ(Completed("ls -k f"), "function|");
  EXPECT_EQ(Completed("ls num/h"), "num/hypot|");
  EXPECT_EQ(Completed("ls -r num/h"), "num/hypot|");
  EXPECT_EQ(Completed("ls -k function num/h"), "num/hypot|");
  EXPECT_EQ(Completed("ls num num/h"), "");
  EXPECT_EQ(Completed("use w"), "word/|");
  EXPECT_EQ(Completed("use num/h"), "");
  EXPECT_EQ(Completed("convert 1 d"), "double|");
  EXPECT_EQ(Completed("convert --explain 1 S"), "Spot|");
  EXPECT_EQ(Completed("find x -t H"), "Hue|");
  EXPECT_EQ(Completed("help qu"), "quit|");
  EXPECT_EQ(Completed("help expr"), "expressions|");
  EXPECT_EQ(Completed("load Z"), "Zeta|");
  (void)Ask("total = 1; bind third = num/add(3)");
  EXPECT_EQ(Completed("unset t"), "third|total|");
  (void)Ask("unset third");
  EXPECT_EQ(Completed("quit "), "");
  EXPECT_EQ(Completed("nothing num/"), "");
}

TEST(KVLShellComplete, ACallInWordsOffersPathsThenTexts) {
  EXPECT_EQ(Completed("call num/h"), "num/hypot |");
  EXPECT_EQ(Completed("call num/p"), "");
  EXPECT_EQ(Completed("call hue/next R"), "Red|");
  EXPECT_EQ(Completed("call hue/mix "), "false|true|");
  EXPECT_EQ(Completed("call hue/mix true "), "Blue|Green|Red|");
  EXPECT_EQ(Completed("call hue/next(R"), "Red|");
}

TEST(KVLShellComplete, ExpressionsOfCommandsAreCompleted) {
  EXPECT_EQ(Completed("time num/h"), "num/hypot(|");
  EXPECT_EQ(Completed("bind x = num/h"), "num/hypot(|");
  EXPECT_EQ(Completed("bind x = hue/next(R"), "Red|");
  EXPECT_EQ(Completed("x=num/h"), "num/hypot(|");
}

TEST(KVLShellComplete, WhereNothingCanFollowNothingIsOffered) {
  EXPECT_EQ(Completed("\"num/"), "");
  EXPECT_EQ(Completed("# num/"), "");
  EXPECT_EQ(Completed("num/add(1)"), "");
  EXPECT_EQ(Completed("spot/x((n"), "");
  EXPECT_EQ(Completed("ls [num/"), "");
}

TEST(KVLShellComplete, TheCommandTellsTheSame) {
  EXPECT_EQ(Ask("complete num/h").output, "num/hypot(\n");
  EXPECT_EQ(Ask("complete vars; un").output, "unload \nunset \nunuse \n");
  EXPECT_EQ(Ask("complete  num/h").output, "num/hypot(\n");
  EXPECT_EQ(Ask("complete").output, Ask("complete ").output);
}

TEST(KVLShellComplete, NothingIsCreated) {
  const std::string before = Ask("ls -r").output;
  for (const char* const text : {"a/b/c", "a/b/", "a/b(", "ls a/b/", "call a/b/c x", "x = a/b/"})
    (void)Completed(text);
  EXPECT_EQ(Ask("ls -r").output, before);
}

TEST(KVLShellComplete, EveryTextIsTakenAndNothingLiesOutsideIt) {
  constexpr unsigned int Seed = 7;
  SCOPED_TRACE("seed " + std::to_string(Seed));
  std::mt19937 random(Seed);
  const char* const pieces[] = {"num/", "add",  "(",  ")",    "[", "]", ",", "=",
                                "\"",   "\\",   " ",  ";",    "#", "$", "&", "ls",
                                "-k",   "call", "\n", "\xFF", "_", "{", "}"};
  for (int round = 0; round < 5000; ++round) {
    std::string text;
    for (auto length = random() % 12; length > 0; --length)
      text += pieces[random() % (sizeof(pieces) / sizeof(pieces[0]))];
    int from = -1;
    (void)Completed(text, &from);
    ASSERT_GE(from, 0) << text;
    ASSERT_LE(from, static_cast<int>(text.size())) << text;
  }
}

// In processor time, generous for slow machines and slow builds; what grew with the square of the
// number would need hours.
TEST(KVLShellComplete, AHundredThousandObjectsAreListedAndCompletedAtOnce) {
  constexpr int Count = 100000;
  KVLCodeEnv& env = KVLCodeEnv::GetDefault().GetSubEnv("shellcrowd");
  for (int i = 0; i < Count; ++i) {
    const MRBUnicodeString name = ("object" + std::to_string(i)).c_str();
    (void)env.Add(KVLSmartPtr<KVLCodeObject>(new kvltest::TextValue(name, "string", "x")), name);
  }
  const std::clock_t start = std::clock();
  const std::string listed = Ask("ls shellcrowd").output;
  const std::clock_t listedAt = std::clock();
  const std::string all = Completed("shellcrowd/");
  const std::clock_t completedAt = std::clock();
  const std::string some = Completed("shellcrowd/object9999");
  const std::clock_t end = std::clock();
  EXPECT_EQ(std::count(listed.begin(), listed.end(), '\n'), Count);
  EXPECT_EQ(std::count(all.begin(), all.end(), '|'), Count);
  EXPECT_EQ(std::count(some.begin(), some.end(), '|'), 11);
  const auto milliseconds = [](std::clock_t ticks) {
    return static_cast<int>(1000.0 * static_cast<double>(ticks) / CLOCKS_PER_SEC);
  };
  RecordProperty("ls_ms", milliseconds(listedAt - start));
  RecordProperty("complete_ms", milliseconds(completedAt - listedAt));
  RecordProperty("complete_one_ms", milliseconds(end - completedAt));
  EXPECT_LT(milliseconds(end - start), 10000);
  for (int i = 0; i < Count; ++i)
    (void)env.Remove(("object" + std::to_string(i)).c_str());
}

}  // namespace
