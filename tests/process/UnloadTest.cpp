// Run in the folders "gaps" and "nested": KVLCodeEnv_Alpha, _Gamma and _Lambda alone.

#include "KVLCodeEnvAccess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "KVLCodeEnv.h"
#include "KVLCodeObjectRegisterer.h"
#include "KVLResult.h"
#include "LoadedLibraries.h"
#include "support/TraceCapture.h"

namespace {

constexpr const char* ModuleNames[] = {"KVLCodeEnv_Alpha", "KVLCodeEnv_Gamma", "KVLCodeEnv_Lambda"};

// The program's own, for as long as the process lives.
const KVLCodeObjectRegisterer programRegisterer(KVLCodeEnv::GetDefault(),
                                                new KVLCodeObject("program"), "modules/Program",
                                                KVLSourceLocation("program.cpp", 1, ""));
// Takes the name of a module's object before the module comes.
const KVLCodeObjectRegisterer firstRegisterer(KVLCodeEnv::GetDefault(), new KVLCodeObject("first"),
                                              "modules/KVLCodeEnv_Gamma",
                                              KVLSourceLocation("program.cpp", 2, ""));

MRBUnicodeString NameAt(const MRBUnicodeString& path) {
  const KVLSmartPtr<KVLCodeObject> object = KVLCodeEnv::GetDefault().FindObject(path);
  return object ? object->GetName() : MRBUnicodeString("absent");
}

int CountObjects() {
  int count = 0;
  for (const auto& entry : KVLCodeEnv::GetDefault().GetSubEnv("modules").IterOnObjects()) {
    (void)entry;
    ++count;
  }
  return count;
}

}  // namespace

TEST(Unload, TakesTheModulesObjectsOutOfTheTreeAndItsLibraryOutOfTheProcess) {
  TraceCapture trace;
  EXPECT_FALSE(IsLoaded("KVLCodeEnv_Alpha"));
  EXPECT_EQ(NameAt("modules/KVLCodeEnv_Alpha"), "absent");

  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Failure);
  EXPECT_TRUE(IsLoaded("KVLCodeEnv_Alpha"));
  {
    const auto object = KVLCodeEnv::GetDefault().FindObject("modules/KVLCodeEnv_Alpha");
    ASSERT_FALSE(object.IsNull());
    EXPECT_EQ(object->ToString(), "published by KVLCodeEnv_Alpha");
  }

  EXPECT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_Success);
  for (const char* const name : ModuleNames)
    EXPECT_FALSE(IsLoaded(name)) << name;
  EXPECT_EQ(NameAt("modules/KVLCodeEnv_Alpha"), "absent");
  EXPECT_EQ(NameAt("modules/KVLCodeEnv_Lambda"), "absent");
}

TEST(Unload, RegisterersOfModuleProgramAndCallerWithdrawExactlyTheirOwn) {
  TraceCapture trace;
  {
    const KVLCodeObjectRegisterer own(KVLCodeEnv::GetDefault(), new KVLCodeObject("own"),
                                      "modules/Own", KVLSourceLocation("caller.cpp", 1, ""));
    EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Failure);
    EXPECT_EQ(CountObjects(), 5);  // program, first, own, and those of Alpha and Lambda
    EXPECT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_Success);
    EXPECT_EQ(CountObjects(), 3);
    EXPECT_EQ(NameAt("modules/Own"), "own");
    EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Failure);
  }
  EXPECT_EQ(NameAt("modules/Own"), "absent");
  EXPECT_EQ(NameAt("modules/Program"), "program");
  EXPECT_EQ(NameAt("modules/KVLCodeEnv_Alpha"), "KVLCodeEnv_Alpha");
  EXPECT_EQ(NameAt("modules/KVLCodeEnv_Lambda"), "KVLCodeEnv_Lambda");
  EXPECT_EQ(CountObjects(), 4);
  EXPECT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_Success);
  EXPECT_EQ(CountObjects(), 2);
}

TEST(Unload, AModuleWhoseNameWasTakenLeavesTheFirstObjectAndTheMessageAboutIt) {
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Failure);
  EXPECT_TRUE(IsLoaded("KVLCodeEnv_Gamma"));
  EXPECT_EQ(NameAt("modules/KVLCodeEnv_Gamma"), "first");
  EXPECT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_Success);
  EXPECT_FALSE(IsLoaded("KVLCodeEnv_Gamma"));
  EXPECT_EQ(NameAt("modules/KVLCodeEnv_Gamma"), "first");

  const KVLVector<MRBUnicodeString> messages =
      KVLCodeEnv::GetDefault().GetSubEnv("modules").Check();
  ASSERT_EQ(messages.GetCount(), 1);
  EXPECT_EQ(messages[0],
            "Tried to add two times object with name 'KVLCodeEnv_Gamma'. First (effective) "
            "registration done at 'program.cpp:2'. Second (uneffective) registration done at "
            "'KVLCodeEnv_Gamma.cpp:1'.");
}

TEST(Unload, AModuleWhoseObjectTheHostReplacedLeavesTheReplacement) {
  TraceCapture trace;
  KVLCodeEnv& env = KVLCodeEnv::GetDefault();
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Failure);
  EXPECT_EQ(env.Remove("modules/KVLCodeEnv_Alpha"), KVLResult_Success);
  EXPECT_EQ(env.Add(KVLSmartPtr<KVLCodeObject>(new KVLCodeObject("replacement")),
                    "modules/KVLCodeEnv_Alpha"),
            KVLResult_Success);
  EXPECT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_Success);
  EXPECT_EQ(NameAt("modules/KVLCodeEnv_Alpha"), "replacement");
}

TEST(Unload, AHundredTimesLoadedAndUnloadedLeavesNothingBehind) {
  TraceCapture trace;
  for (int round = 0; round < 100; ++round) {
    ASSERT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Failure) << round;
    ASSERT_EQ(CountObjects(), 4) << round;
    for (const char* const name : ModuleNames)
      ASSERT_TRUE(IsLoaded(name)) << name << round;
    ASSERT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_Success) << round;
    ASSERT_EQ(CountObjects(), 2) << round;
    for (const char* const name : ModuleNames)
      ASSERT_FALSE(IsLoaded(name)) << name << round;
  }
}

// In the folder "nested", KVLCodeEnv_Gamma calls `Load` when it comes and `Unload` when it goes,
// and notes what they returned.
TEST(Nested, WhatAModuleLoadsWhileItIsLoadedIsClosedWithTheRest) {
  using Report = TraceCapture::Report;
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Failure);
  // Only at the end of a `Load` the modules count as loaded.
  const std::vector<Report> loading = trace.GetReports();
  const Report nested{7, "+KVLCodeEnv_Gamma", static_cast<int>(KVLResult_Failure)};
  EXPECT_EQ(std::count(loading.begin(), loading.end(), nested), 1);
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_False);
  trace.Clear();
  EXPECT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_Success);
  EXPECT_EQ(trace.GetReports(), (std::vector<Report>{{7, "~KVLCodeEnv_Alpha", 0},
                                                     {7, "-KVLCodeEnv_Alpha", 0},
                                                     {7, "-KVLCodeEnv_Gamma", 0},
                                                     {7, "~KVLCodeEnv_Lambda", 0},
                                                     {7, "-KVLCodeEnv_Lambda", 0}}));
  for (const char* const name : ModuleNames)
    EXPECT_FALSE(IsLoaded(name)) << name;
  EXPECT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_False);
}
