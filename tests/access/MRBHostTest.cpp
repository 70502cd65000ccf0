#include "MRBHost.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "support/TraceCapture.h"

namespace {

using Reports = std::vector<TraceCapture::Report>;

constexpr const char* Variable = "KVL_HOST_TEST";

void Set(const char* value) {
#if defined(_WIN32)
  _putenv_s(Variable, value ? value : "");
#else
  if (value) {
    setenv(Variable, value, 1);
  } else {
    unsetenv(Variable);
  }
#endif
}

// Sets a variable of the environment for one case.
class MRBGetEnvTest : public testing::Test {
 protected:
  ~MRBGetEnvTest() override { Set(nullptr); }
};

void IgnoreTrace(int, const char*, int) {}

}  // namespace

TEST_F(MRBGetEnvTest, OfNoNameAndOfANameThatIsNotSetIsNull) {
  Set(nullptr);
  EXPECT_EQ(MRBGetEnv(nullptr), nullptr);
  EXPECT_EQ(MRBGetEnv(Variable), nullptr);
  EXPECT_EQ(MRBGetEnv(""), nullptr);
  EXPECT_EQ(MRBGetEnv("KVL_HOST_TEST=x"), nullptr);
}

TEST_F(MRBGetEnvTest, IsTheValue) {
  Set("a;b = c");
  EXPECT_STREQ(MRBGetEnv(Variable), "a;b = c");
}

#if !defined(_WIN32)
TEST_F(MRBGetEnvTest, OfAVariableThatIsSetToNothingIsTheEmptyText) {
  Set("");
  EXPECT_STREQ(MRBGetEnv(Variable), "");
}

TEST_F(MRBGetEnvTest, StaysWhenTheHostChangesTheVariableInPlace) {
  static char assignment[] = "KVL_HOST_TEST=before";
  ASSERT_EQ(putenv(assignment), 0);
  const char* const value = MRBGetEnv(Variable);
  ASSERT_STREQ(value, "before");
  std::memcpy(std::strchr(assignment, '=') + 1, "behind", 6);
  EXPECT_STREQ(value, "before");
  EXPECT_STREQ(MRBGetEnv(Variable), "behind");
}
#endif

TEST_F(MRBGetEnvTest, StaysWhenTheVariableIsSetAnewOrTakenAway) {
  Set("before");
  const char* const value = MRBGetEnv(Variable);
  Set("a text that is longer than the former one");
  EXPECT_STREQ(value, "before");
  EXPECT_STREQ(MRBGetEnv(Variable), "a text that is longer than the former one");
  Set(nullptr);
  EXPECT_EQ(MRBGetEnv(Variable), nullptr);
  EXPECT_STREQ(value, "before");
}

TEST_F(MRBGetEnvTest, OfALongValueIsWhole) {
  const std::string text(20000, 'x');
  Set(text.c_str());
  EXPECT_EQ(MRBGetEnv(Variable), text);
}

TEST(MRBSysBftier, WithoutASinkWritesTheTextAsOneLineToStandardError) {
  testing::internal::CaptureStderr();
  testing::internal::CaptureStdout();
  MRBSysBftier(1, "first", 0);
  MRBSysBftier(100, "100 %s %n %d", 7);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "first\n100 %s %n %d\n");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(MRBSysBftier, WithoutASinkWritesNoTextAsAnEmptyLine) {
  testing::internal::CaptureStderr();
  MRBSysBftier(1, nullptr, 0);
  MRBSysBftier(1, "", 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "\n\n");
}

TEST(MRBSysBftier, HandsLevelTextAndFlagsToTheSinkAndWritesNothing) {
  testing::internal::CaptureStderr();
  {
    TraceCapture trace;
    MRBSysBftier(1, "a", 0);
    MRBSysBftier(-3, "", 42);
    EXPECT_EQ(trace.GetReports(), (Reports{{1, "a", 0}, {-3, "", 42}}));
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(MRBSysBftier, HandsTheEmptyTextToTheSinkForNone) {
  static bool gotText = false;
  const MRBTraceSink former =
      MRBSetTraceSink([](int, const char* text, int) { gotText = text && *text == '\0'; });
  MRBSysBftier(1, nullptr, 0);
  MRBSetTraceSink(former);
  EXPECT_TRUE(gotText);
}

TEST(MRBSetTraceSink, ReturnsTheFormerSinkAndNullForTheDefault) {
  EXPECT_EQ(MRBSetTraceSink(IgnoreTrace), nullptr);
  EXPECT_EQ(MRBSetTraceSink(IgnoreTrace), &IgnoreTrace);
  EXPECT_EQ(MRBSetTraceSink(nullptr), &IgnoreTrace);
  EXPECT_EQ(MRBSetTraceSink(nullptr), nullptr);
}

TEST(MRBSetTraceSink, NullBringsTheDefaultBack) {
  MRBSetTraceSink(IgnoreTrace);
  MRBSetTraceSink(nullptr);
  testing::internal::CaptureStderr();
  MRBSysBftier(1, "heard", 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "heard\n");
}
