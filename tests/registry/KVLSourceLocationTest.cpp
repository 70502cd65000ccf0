#include "KVLSourceLocation.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <type_traits>
#include <utility>

namespace {

static_assert(std::is_nothrow_move_constructible_v<KVLSourceLocation>);
static_assert(std::is_nothrow_move_assignable_v<KVLSourceLocation>);
static_assert(std::is_same_v<decltype(KVLSourceLocation::line), int>);

const char* const Long = "/a/path/that/is/longer/than/any/short/text/could/be.cpp";

TEST(KVLSourceLocation, StartsWithoutPathLineAndDetail) {
  const KVLSourceLocation location;
  EXPECT_EQ(location.path, "");
  EXPECT_EQ(location.line, 0);
  EXPECT_EQ(location.detail, "");
}

TEST(KVLSourceLocation, HoldsWhatItIsMadeFrom) {
  const KVLSourceLocation location("a\\b", -3, "d");
  EXPECT_EQ(location.path, "a\\b");
  EXPECT_EQ(location.line, -3);
  EXPECT_EQ(location.detail, "d");
}

TEST(KVLSourceLocation, IsEqualWhenPathLineAndDetailAre) {
  const KVLSourceLocation location("a", 1, "d");
  EXPECT_TRUE(location == KVLSourceLocation("a", 1, "d"));
  EXPECT_FALSE(location == KVLSourceLocation("A", 1, "d"));
  EXPECT_FALSE(location == KVLSourceLocation("a", 2, "d"));
  EXPECT_FALSE(location == KVLSourceLocation("a", 1, ""));
  EXPECT_FALSE(location == KVLSourceLocation("a", 1, "D"));
  EXPECT_TRUE(location != KVLSourceLocation("a", 1, ""));
}

TEST(KVLSourceLocation, CopiesAreEqualAndLeaveTheSource) {
  KVLSourceLocation source(Long, 7, Long);
  const KVLSourceLocation copy(source);
  KVLSourceLocation assigned("x", 1, "y");
  assigned = source;
  EXPECT_TRUE(copy == source);
  EXPECT_TRUE(assigned == source);
  source.path = "changed";
  EXPECT_EQ(copy.path, Long);
  EXPECT_EQ(assigned.path, Long);
}

TEST(KVLSourceLocation, MovingLeavesTheTextsOfTheSourceEmptyAndItsLineUnchanged) {
  for (const char* const text : {"short", Long}) {
    KVLSourceLocation source(text, 7, text);
    KVLSourceLocation moved(std::move(source));
    EXPECT_TRUE(moved == KVLSourceLocation(text, 7, text));
    EXPECT_TRUE(source == KVLSourceLocation("", 7, ""));

    KVLSourceLocation assigned("x", 1, "y");
    assigned = std::move(moved);
    EXPECT_TRUE(assigned == KVLSourceLocation(text, 7, text));
    EXPECT_TRUE(moved == KVLSourceLocation("", 7, ""));
  }
}

TEST(KVLSourceLocation, AssignedToItselfStaysAsItWas) {
  KVLSourceLocation location(Long, 7, "d");
  KVLSourceLocation& same = location;
  location = same;
  EXPECT_TRUE(location == KVLSourceLocation(Long, 7, "d"));
}

TEST(KVLSourceLocation, PrintsPathLineAndDetailAsFarAsKnown) {
  const struct {
    const char* path;
    int line;
    const char* detail;
    const char* text;
  } cases[] = {
      {"a/b.cpp", 12, "", "a/b.cpp:12"},
      {"a/b.cpp", 12, "init", "a/b.cpp:12<init>"},
      {"a/b.cpp", 1, "", "a/b.cpp:1"},
      {"a/b.cpp", 0, "", "a/b.cpp"},
      {"a/b.cpp", -1, "", "a/b.cpp"},
      {"a/b.cpp", 0, "init", "a/b.cpp<init>"},
      {"", 7, "", "Line 7"},
      {"", 7, "init", "Line 7<init>"},
      {"", 0, "init", "<init>"},
      {"", -7, "", ""},
      {"", 0, "", ""},
      {"a\\Fw\\PublicInterfaces\\x.h", 3, "", "a\\Fw\\PublicInterfaces\\x.h:3"},
      {"a", std::numeric_limits<int>::max(), "", "a:2147483647"},
      {"a", std::numeric_limits<int>::min(), "", "a"},
      {" ", 1, " ", " :1< >"},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(KVLSourceLocation(each.path, each.line, each.detail).ToString(), each.text);
  }
}

struct PathCase {
  const char* path;
  const char* separator;
  const char* expected;
};

TEST(KVLSourceLocation, GivesTheWholePathWithTheSeparatorAskedFor) {
  const PathCase cases[] = {
      {"a\\b", "", "a\\b"},
      {"a/b", "", "a/b"},
      {"a\\b", "/", "a/b"},
      {"a/b", "\\", "a\\b"},
      {"a/b/c", "::", "a::b::c"},
      {"a\\b/c", "", "a\\b/c"},  // one backslash decides for all
      {"a\\b/c", "|", "a|b/c"},
      {"\\a", "/", "/a"},
      {"/a/b", "\\", "\\a\\b"},
      {"a//b", "\\", "a\\\\b"},
      {"a/b/", "/", "a/b"},  // as `Split` yields no last empty piece
      {"/", "/", ""},
      {"a", "/", "a"},
      {"", "/", ""},
      {"", "", ""},
      {"a\\b\\Fw\\PublicInterfaces\\x.h", "/", "a/b/Fw/PublicInterfaces/x.h"},
  };
  for (const PathCase& each : cases) {
    EXPECT_EQ(KVLSourceLocation(each.path, 0, "").GetPath(false, each.separator), each.expected)
        << each.path;
  }
}

TEST(KVLSourceLocation, ShortensToTheFolderBeforeTheFirstLandmark) {
  const PathCase cases[] = {
      {"a\\b\\Fw\\PublicInterfaces\\x.h", "/", "Fw/PublicInterfaces/x.h"},
      {"a\\b\\Fw\\PublicInterfaces\\x.h", "", "Fw\\PublicInterfaces\\x.h"},
      {"a/b/Fw/ProtectedInterfaces/x.h", "/", "Fw/ProtectedInterfaces/x.h"},
      {"a/b/Fw/PrivateInterfaces/x.h", "/", "Fw/PrivateInterfaces/x.h"},
      {"a/b/Fw/IdentityCard/x.h", "/", "Fw/IdentityCard/x.h"},
      {"a/Mod.m/src/x.cpp", "/", "a/Mod.m/src/x.cpp"},
      {"w/a/Mod.m/src/x.cpp", "/", "a/Mod.m/src/x.cpp"},
      {"w/a/.m/src/x.cpp", "/", "a/.m/src/x.cpp"},
      {"PublicInterfaces/x.h", "/", "PublicInterfaces/x.h"},
      {"Mod.m/x.h", "\\", "Mod.m\\x.h"},
      {"w/Fw/Mod.m/PublicInterfaces/x.h", "/", "Fw/Mod.m/PublicInterfaces/x.h"},
      {"w/Fw/PublicInterfaces/Mod.m/x.h", "/", "Fw/PublicInterfaces/Mod.m/x.h"},
      {"w/Fw/publicinterfaces/x.h", "/", "w/Fw/publicinterfaces/x.h"},
      {"w/Fw/MyPublicInterfaces/x.h", "/", "w/Fw/MyPublicInterfaces/x.h"},
      {"w/Fw/PublicInterfaces2/x.h", "/", "w/Fw/PublicInterfaces2/x.h"},
      {"w/Fw/MyProtectedInterfaces/x.h", "/", "w/Fw/MyProtectedInterfaces/x.h"},
      {"w/Fw/ProtectedInterfaces2/x.h", "/", "w/Fw/ProtectedInterfaces2/x.h"},
      {"w/Fw/MyPrivateInterfaces/x.h", "/", "w/Fw/MyPrivateInterfaces/x.h"},
      {"w/Fw/PrivateInterfaces2/x.h", "/", "w/Fw/PrivateInterfaces2/x.h"},
      {"w/Fw/MyIdentityCard/x.h", "/", "w/Fw/MyIdentityCard/x.h"},
      {"w/Fw/IdentityCard.h", "/", "w/Fw/IdentityCard.h"},
      {"w/Fw/Mod.mm/x.h", "/", "w/Fw/Mod.mm/x.h"},
      {"w/Fw/Mod.M/x.h", "/", "w/Fw/Mod.M/x.h"},
      {"w/a/x.m", "/", "a/x.m"},  // the last component counts as well
      {"/PublicInterfaces/x.h", "/", "/PublicInterfaces/x.h"},
      {"a/b", "", "a/b"},
      {"", "/", ""},
  };
  for (const PathCase& each : cases) {
    EXPECT_EQ(KVLSourceLocation(each.path, 0, "").GetPath(true, each.separator), each.expected)
        << each.path;
  }
}

TEST(KVLSourceLocation, ShorteningIgnoresTheLineAndTheDetail) {
  EXPECT_EQ(KVLSourceLocation("w/a/Mod.m/x", 3, "d").GetPath(true, ""), "a/Mod.m/x");
}

TEST(KVLSourceLocation, CopesWithAPathOfVeryManyComponents) {
  std::string path;
  for (int i = 0; i < 100000; ++i)
    path += "a/";
  const KVLSourceLocation location((path + "Fw/PublicInterfaces/x.h").c_str(), 0, "");
  EXPECT_EQ(location.GetPath(true, "\\"), "Fw\\PublicInterfaces\\x.h");
  EXPECT_EQ(location.GetPath(false, ""), location.path);
}

}  // namespace
