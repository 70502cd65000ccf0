#include "KVLCodeEnvAccess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <type_traits>
#include <vector>

#include "KVLCodeEnv.h"
#include "KVLResult.h"
#include "LoadedLibraries.h"
#include "support/TraceCapture.h"

namespace {

using Texts = std::vector<std::string>;
using Names = std::vector<std::string>;

const Names BuiltIn = {"KVLCodeEnv_Alpha", "KVLCodeEnv_Beta",    "KVLCodeEnv_Gamma",
                       "KVLCodeEnv_Delta", "KVLCodeEnv_Epsilon", "KVLCodeEnv_Zeta",
                       "KVLCodeEnv_Eta",   "KVLCodeEnv_Theta",   "KVLCodeEnv_Iota",
                       "KVLCodeEnv_Kappa", "KVLCodeEnv_Lambda"};

std::string Failure(const std::string& name) {
  return "KVLCodeEnvAccessImpl::Load : Failed to load module '" + name + "'.";
}

Texts Failures(const Names& names) {
  Texts texts;
  for (const std::string& name : names)
    texts.push_back(Failure(name));
  return texts;
}

Texts Loads(const Names& names) {
  Texts texts;
  for (const std::string& name : names)
    texts.push_back("+" + name);
  return texts;
}

// A module withdraws its object, which nobody else holds, before its other globals go.
Texts Unloads(const Names& names) {
  Texts texts;
  for (const std::string& name : names) {
    texts.push_back("~" + name);
    texts.push_back("-" + name);
  }
  return texts;
}

Texts operator+(Texts left, const Texts& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

const char* ModulesVariable() {
  return std::getenv("KVLCodeEnv_Modules");
}

void SetModulesVariable(const char* value) {
#if defined(_WIN32)
  _putenv_s("KVLCodeEnv_Modules", value);
#else
  setenv("KVLCodeEnv_Modules", value, 1);
#endif
}

bool IsPublished(const std::string& name) {
  return !KVLCodeEnv::GetDefault().FindObject(("modules/" + name).c_str()).IsNull();
}

bool IsMappedAndPublished(const std::string& name) {
  EXPECT_EQ(IsLoaded(name), IsPublished(name)) << name;
  return IsLoaded(name);
}

}  // namespace

static_assert(std::is_empty_v<KVLCodeEnvAccess>);
static_assert(std::is_copy_assignable_v<KVLCodeEnvAccess>);
static_assert(std::is_move_assignable_v<KVLCodeEnvAccess>);

// Folder "none": no library but the kernel.

TEST(NoModules, LoadTriesTheElevenBuiltInNamesInOrderAndReportsEachAtLevelOne) {
  ASSERT_EQ(ModulesVariable(), nullptr);
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvAccess::Load(), -2147467259L);
  std::vector<TraceCapture::Report> expected;
  for (const std::string& name : BuiltIn)
    expected.push_back({1, Failure(name), 0});
  EXPECT_EQ(trace.GetReports(), expected);
}

TEST(NoModules, AnEmptyVariableAddsNothing) {
  ASSERT_STREQ(ModulesVariable(), "");
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Failure);
  EXPECT_EQ(trace.GetTexts(), Failures(BuiltIn));
}

TEST(NoModules, ASecondLoadReturnsOneAndTriesNothingAlthoughAllFailed) {
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Failure);
  trace.Clear();
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_False);
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_False);
  EXPECT_EQ(trace.GetTexts(), Texts());
}

TEST(NoModules, UnloadReturnsOneBeforeAnyLoadAndSuccessAfterALoadThatFailed) {
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_False);
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Failure);
  EXPECT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_Success);
  EXPECT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_False);
  trace.Clear();
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Failure);
  EXPECT_EQ(trace.GetTexts(), Failures(BuiltIn));
}

TEST(NoModules, AnEmptyNameFailsAndIsReported) {
  ASSERT_STREQ(ModulesVariable(), "a;;b");
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Failure);
  EXPECT_EQ(trace.GetTexts(), Failures(BuiltIn) + Failures({"a", "", "b"}));
  EXPECT_EQ(trace.GetTexts()[12], "KVLCodeEnvAccessImpl::Load : Failed to load module ''.");
}

TEST(NoModules, ALeadingSeparatorNamesAnEmptyNameAndATrailingOneNothing) {
  ASSERT_STREQ(ModulesVariable(), ";a;");
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Failure);
  EXPECT_EQ(trace.GetTexts(), Failures(BuiltIn) + Failures({"", "a"}));
}

TEST(NoModules, AModuleListThatIsSetLaterIsNotSeen) {
  ASSERT_EQ(ModulesVariable(), nullptr);
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Failure);
  SetModulesVariable("Late");
  EXPECT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_Success);
  trace.Clear();
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Failure);
  EXPECT_EQ(trace.GetTexts(), Failures(BuiltIn));
}

TEST(NoModules, TheModuleListIsNotReadBeforeTheFirstLoad) {
  ASSERT_EQ(ModulesVariable(), nullptr);
  EXPECT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_False);
  EXPECT_EQ(KVLCodeEnvRun(""), KVLResult_NotImplemented);
  KVLCodeEnv::GetDefault();
  SetModulesVariable("InTime");
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Failure);
  EXPECT_EQ(trace.GetTexts(), Failures(BuiltIn) + Failures({"InTime"}));
}

// Folder "all": the built-in modules, KVLCodeEnv_Extra, Other, and kvlCodeEnv_Lower.

TEST(AllModules, LoadReturnsSuccessAndLoadsInTableOrder) {
  ASSERT_EQ(ModulesVariable(), nullptr);
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Success);
  EXPECT_EQ(trace.GetTexts(), Loads(BuiltIn));
  for (const std::string& name : BuiltIn)
    EXPECT_TRUE(IsMappedAndPublished(name)) << name;
}

TEST(AllModules, UnloadClosesInTheOrderOfLoading) {
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Success);
  trace.Clear();
  EXPECT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_Success);
  EXPECT_EQ(trace.GetTexts(), Unloads(BuiltIn));
  for (const std::string& name : BuiltIn)
    EXPECT_FALSE(IsMappedAndPublished(name)) << name;
}

TEST(AllModules, LoadLoadUnloadUnloadLoad) {
  ASSERT_STREQ(ModulesVariable(), "KVLCodeEnv_Extra");
  const Names names = BuiltIn + Names{"KVLCodeEnv_Extra"};
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Success);
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_False);
  EXPECT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_Success);
  EXPECT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_False);
  SetModulesVariable("Changed");
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Success);
  EXPECT_EQ(trace.GetTexts(), Loads(names) + Unloads(names) + Loads(names));
}

TEST(AllModules, FurtherLibrariesFollowTheBuiltInOnesAndOnlyTheirPrefixMakesThemModules) {
  ASSERT_STREQ(ModulesVariable(), "KVLCodeEnv_Extra;Other");
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Success);
  EXPECT_EQ(trace.GetTexts(), Loads(BuiltIn + Names{"KVLCodeEnv_Extra", "Other"}));
  trace.Clear();
  EXPECT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_Success);
  EXPECT_EQ(trace.GetTexts(), Unloads(BuiltIn + Names{"KVLCodeEnv_Extra"}));
  EXPECT_FALSE(IsMappedAndPublished("KVLCodeEnv_Extra"));
  EXPECT_TRUE(IsMappedAndPublished("Other"));
}

TEST(AllModules, ALibraryWithoutThePrefixStaysLoadedHoweverOftenItIsUnloaded) {
  ASSERT_STREQ(ModulesVariable(), "Other");
  TraceCapture trace;
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Success);
    EXPECT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_Success);
  }
  EXPECT_EQ(trace.GetTexts(), Loads(BuiltIn + Names{"Other"}) + Unloads(BuiltIn) + Loads(BuiltIn) +
                                  Unloads(BuiltIn) + Loads(BuiltIn) + Unloads(BuiltIn));
  EXPECT_TRUE(IsMappedAndPublished("Other"));
}

TEST(AllModules, ThePrefixIsCaseSensitive) {
  ASSERT_STREQ(ModulesVariable(), "kvlCodeEnv_Lower");
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Success);
  EXPECT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_Success);
  EXPECT_TRUE(IsMappedAndPublished("kvlCodeEnv_Lower"));
}

TEST(AllModules, ThePrefixIsTakenWholeAndAtTheFrontOnly) {
  ASSERT_STREQ(ModulesVariable(), "KVLCodeEnvNear;Inner_KVLCodeEnv_");
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Success);
  trace.Clear();
  EXPECT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_Success);
  EXPECT_EQ(trace.GetTexts(), Unloads(BuiltIn));
  EXPECT_TRUE(IsMappedAndPublished("KVLCodeEnvNear"));
  EXPECT_TRUE(IsMappedAndPublished("Inner_KVLCodeEnv_"));
}

TEST(AllModules, ABuiltInNameThatIsListedAgainIsLoadedAndClosedTwice) {
  ASSERT_STREQ(ModulesVariable(), "KVLCodeEnv_Beta;KVLCodeEnv_Beta");
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Success);
  EXPECT_EQ(trace.GetTexts(), Loads(BuiltIn));
  trace.Clear();
  // The handles kept for its two repetitions are closed last, and only the last closing unmaps it.
  EXPECT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_Success);
  Names order = BuiltIn;
  order.erase(order.begin() + 1);
  order.push_back("KVLCodeEnv_Beta");
  EXPECT_EQ(trace.GetTexts(), Unloads(order));
  EXPECT_FALSE(IsMappedAndPublished("KVLCodeEnv_Beta"));
}

TEST(AllModules, ATrailingSeparatorAddsNoName) {
  ASSERT_STREQ(ModulesVariable(), "KVLCodeEnv_Extra;");
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Success);
  EXPECT_EQ(trace.GetTexts(), Loads(BuiltIn + Names{"KVLCodeEnv_Extra"}));
}

TEST(AllModules, NamesAreNotTrimmed) {
  ASSERT_STREQ(ModulesVariable(), " KVLCodeEnv_Extra;KVLCodeEnv_Extra ");
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Failure);
  EXPECT_EQ(trace.GetTexts(),
            Loads(BuiltIn) + Failures({" KVLCodeEnv_Extra", "KVLCodeEnv_Extra "}));
}

TEST(AllModules, NamesWithAFolderFailAlthoughTheFileIsThere) {
  const std::string path = ProgramFolder() + "/" + LibraryFile("KVLCodeEnv_Extra");
  const Names names = {path,
                       "./" + LibraryFile("KVLCodeEnv_Extra"),
                       "../all/KVLCodeEnv_Extra",
                       "/KVLCodeEnv_Extra",
                       "KVLCodeEnv_Extra/",
                       ".\\KVLCodeEnv_Extra",
                       "KVLCodeEnv_Extra\\",
                       LibraryFile("KVLCodeEnv_Extra")};
  std::string list;
  for (const std::string& name : names)
    list += name + ";";
  SetModulesVariable(list.c_str());
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Failure);
  EXPECT_EQ(trace.GetTexts(), Loads(BuiltIn) + Failures(names));
  EXPECT_FALSE(IsMappedAndPublished("KVLCodeEnv_Extra"));
}

TEST(AllModules, ManyFurtherNamesAreAllTried) {
  std::string list;
  Names names;
  for (int i = 0; i < 1000; ++i) {
    names.push_back("KVLCodeEnv_Absent" + std::to_string(i));
    list += names.back() + ";";
  }
  list += "KVLCodeEnv_Extra";
  SetModulesVariable(list.c_str());
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Failure);
  EXPECT_EQ(trace.GetTexts(), Loads(BuiltIn) + Failures(names) + Loads({"KVLCodeEnv_Extra"}));
}

#if !defined(_WIN32)
TEST(AllModules, AModuleListThatTheHostChangesInPlaceIsNotSeen) {
  ASSERT_EQ(ModulesVariable(), nullptr);
  static char variable[] = "KVLCodeEnv_Modules=KVLCodeEnv_Extra";
  ASSERT_EQ(putenv(variable), 0);
  const Names names = BuiltIn + Names{"KVLCodeEnv_Extra"};
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Success);
  *std::strrchr(variable, 'E') = 'X';
  ASSERT_STREQ(ModulesVariable(), "KVLCodeEnv_Xxtra");
  EXPECT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_Success);
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Success);
  EXPECT_EQ(trace.GetTexts(), Loads(names) + Unloads(names) + Loads(names));
}

TEST(AllModules, AModuleListThatIsTakenAwayLaterIsKept) {
  ASSERT_STREQ(ModulesVariable(), "KVLCodeEnv_Extra");
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Success);
  unsetenv("KVLCodeEnv_Modules");
  EXPECT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_Success);
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Success);
  EXPECT_TRUE(IsMappedAndPublished("KVLCodeEnv_Extra"));
}
#endif

// Folder "gaps": KVLCodeEnv_Alpha, _Gamma and _Lambda alone.

TEST(SomeModules, AFailureIsReportedInItsPlaceAndTheRestIsLoaded) {
  Names absent = BuiltIn;
  absent.erase(absent.begin(), absent.begin() + 3);
  absent.pop_back();
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Failure);
  EXPECT_EQ(trace.GetTexts(), Loads({"KVLCodeEnv_Alpha"}) + Failures({"KVLCodeEnv_Beta"}) +
                                  Loads({"KVLCodeEnv_Gamma"}) + Failures(absent) +
                                  Loads({"KVLCodeEnv_Lambda"}));
  trace.Clear();
  EXPECT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_Success);
  EXPECT_EQ(trace.GetTexts(),
            Unloads({"KVLCodeEnv_Alpha", "KVLCodeEnv_Gamma", "KVLCodeEnv_Lambda"}));
}

TEST(SomeModules, LoadCallsNothingInsideAModule) {
  // Whatever is published is there because the platform ran the module's own initialisation.
  TraceCapture trace;
  const LibraryHandler early = MRBGetEntryPoint("KVLCodeEnv_Gamma", nullptr, nullptr, 1, 1, 0);
  ASSERT_NE(early.library, nullptr);
  EXPECT_EQ(trace.GetTexts(), Loads({"KVLCodeEnv_Gamma"}));
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Failure);
  const Texts texts = trace.GetTexts();
  EXPECT_EQ(std::count(texts.begin(), texts.end(), "+KVLCodeEnv_Gamma"), 1);
  trace.Clear();
  EXPECT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_Success);
  EXPECT_EQ(trace.GetTexts(), Unloads({"KVLCodeEnv_Alpha", "KVLCodeEnv_Lambda"}));
  EXPECT_TRUE(IsMappedAndPublished("KVLCodeEnv_Gamma"));
  EXPECT_EQ(MRBCloseLibrary(early), 0);
  EXPECT_FALSE(IsMappedAndPublished("KVLCodeEnv_Gamma"));
}

// Folder "traps": KVLCodeEnv_Extra, and what the case puts there.

TEST(Traps, EmptyNamesAndNamesWithAFolderFailAlthoughTheFilesTheyWouldMapToAreThere) {
  const Names names = {"", "x/KVLCodeEnv_Extra", "x\\KVLCodeEnv_Extra"};
  const std::filesystem::path folder = ProgramFolder();
  std::filesystem::create_directory((folder / LibraryFile("x/KVLCodeEnv_Extra")).parent_path());
  for (const std::string& name : names) {
    std::filesystem::remove(folder / LibraryFile(name));
    std::filesystem::copy_file(folder / LibraryFile("KVLCodeEnv_Extra"),
                               folder / LibraryFile(name));
  }
  SetModulesVariable(";x/KVLCodeEnv_Extra;x\\KVLCodeEnv_Extra");
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Failure);
  EXPECT_EQ(trace.GetTexts(), Failures(BuiltIn) + Failures(names));
}

#if !defined(_WIN32)
// Run in the folder "none", with the folder "all" in LD_LIBRARY_PATH.
TEST(SearchedByThePlatform, ModulesAreFoundWhereThePlatformsLoaderSearches) {
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Success);
  EXPECT_EQ(trace.GetTexts(), Loads(BuiltIn));
}
#endif
