#include "KVLCodeEnvAccess.h"

#include <gtest/gtest.h>

#include <atomic>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "KVLResult.h"
#include "LoadedLibraries.h"
#include "support/TraceCapture.h"

namespace {

using Reports = std::vector<TraceCapture::Report>;
using Texts = std::vector<std::string>;

}  // namespace

// Folder "none": no shell library.

TEST(NoShell, EveryRunReturnsNotImplementedAndNothingIsReported) {
  TraceCapture trace;
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(KVLCodeEnvRun("5"), -2147467263L);
    EXPECT_EQ(KVLCodeEnvRun(MRBUnicodeString("5")), KVLResult_NotImplemented);
    EXPECT_EQ(KVLCodeEnvAccess::Run("5"), KVLResult_NotImplemented);
  }
  EXPECT_EQ(trace.GetReports(), Reports());
}

// Folder "late": none either, until the case puts it there.
TEST(LateShell, AShellThatAppearsAfterTheFirstRunIsNotFound) {
  const std::string shell = ProgramFolder() + "/" + LibraryFile("KVLCodeEnvShell");
  std::filesystem::remove(shell);
  EXPECT_EQ(KVLCodeEnvRun("5"), KVLResult_NotImplemented);
  std::filesystem::copy_file(std::getenv("KVL_TEST_SHELL"), shell);

  EXPECT_EQ(KVLCodeEnvRun("5"), KVLResult_NotImplemented);
  EXPECT_EQ(KVLCodeEnvRun("5"), KVLResult_NotImplemented);
  EXPECT_FALSE(IsLoaded("KVLCodeEnvShell"));

  // It would be found now, were it looked for.
  TraceCapture trace;
  const LibraryHandler late =
      MRBGetFunctionAddress("KVLCodeEnvShell", "KVLCodeShellStaticRun", nullptr, -1, 1, 0);
  EXPECT_NE(late.entry, nullptr);
  EXPECT_EQ(KVLCodeEnvRun("5"), KVLResult_NotImplemented);
  EXPECT_EQ(MRBCloseLibrary(late), 0);
  std::filesystem::remove(shell);
}

// Folder "mute": a shell library without the entry.
TEST(MuteShell, AShellWithoutTheEntryIsAsNoneAndDoesNotStayLoaded) {
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvRun("5"), KVLResult_NotImplemented);
  EXPECT_FALSE(IsLoaded("KVLCodeEnvShell"));
  EXPECT_EQ(KVLCodeEnvRun("5"), KVLResult_NotImplemented);
  EXPECT_EQ(trace.GetReports(), Reports());
}

// Folder "shell": a shell library that returns the number which the command's text is.

TEST(Shell, ResultsArePassedBackUnchanged) {
  TraceCapture trace;
  for (const long code : {0L, 1L, 42L, -1L, KVLResult_Failure, KVLResult_NotImplemented,
                          KVLResult_OutOfMemory, LONG_MAX, LONG_MIN}) {
    const std::string command = std::to_string(code);
    EXPECT_EQ(KVLCodeEnvRun(command.c_str()), code);
    EXPECT_EQ(KVLCodeEnvRun(MRBUnicodeString(command.c_str())), code);
    EXPECT_EQ(KVLCodeEnvAccess::Run(command.c_str()), code);
  }
}

TEST(Shell, TheCommandArrivesAsItWasGiven) {
  TraceCapture trace;
  EXPECT_EQ(KVLCodeEnvRun(" call math/add 1 2 \n"), 0);
  EXPECT_EQ(KVLCodeEnvRun(""), 0);
  EXPECT_EQ(KVLCodeEnvRun(static_cast<const char*>(nullptr)), 0);
  EXPECT_EQ(KVLCodeEnvRun(MRBUnicodeString("7\0x", 3)), 7);
  EXPECT_EQ(trace.GetReports(), (Reports{{7, "+KVLCodeEnvShell", 0},
                                         {7, " call math/add 1 2 \n", 20},
                                         {7, "", 0},
                                         {7, "", 0},
                                         {7, "7", 3}}));
}

TEST(Shell, IsLoadedByTheFirstRunAndNeverClosed) {
  TraceCapture trace;
  EXPECT_FALSE(IsLoaded("KVLCodeEnvShell"));
  EXPECT_EQ(KVLCodeEnvRun("1"), 1);
  EXPECT_EQ(KVLCodeEnvRun("2"), 2);
  EXPECT_EQ(trace.GetTexts(), (Texts{"+KVLCodeEnvShell", "1", "2"}));

  EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Failure);
  EXPECT_EQ(KVLCodeEnvRun("3"), 3);
  EXPECT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_Success);
  EXPECT_TRUE(IsLoaded("KVLCodeEnvShell"));
  EXPECT_EQ(KVLCodeEnvRun("4"), 4);
}

TEST(Shell, OfEightThreadsThatRunFirstAtTheSameMomentOneResolvesTheEntry) {
  constexpr int NbThreads = 8;
  constexpr int NbRuns = 200;
  TraceCapture trace;
  std::atomic<int> waiting{NbThreads};
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < NbThreads; ++i) {
    threads.emplace_back([&waiting, &wrong, i] {
      const std::string command = std::to_string(i + 1);
      --waiting;
      while (waiting.load() != 0)
        std::this_thread::yield();
      for (int run = 0; run < NbRuns; ++run) {
        if (KVLCodeEnvRun(command.c_str()) != i + 1) ++wrong;
      }
    });
  }
  for (std::thread& thread : threads)
    thread.join();

  EXPECT_EQ(wrong.load(), 0);
  const Texts texts = trace.GetTexts();
  ASSERT_EQ(texts.size(), 1u + NbThreads * NbRuns);
  EXPECT_EQ(texts[0], "+KVLCodeEnvShell");
}

// Folder "none".
TEST(NoShell, OfEightThreadsThatRunFirstAtTheSameMomentAllAreRefused) {
  std::atomic<int> waiting{8};
  std::atomic<int> refused{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&waiting, &refused] {
      --waiting;
      while (waiting.load() != 0)
        std::this_thread::yield();
      if (KVLCodeEnvRun("1") == KVLResult_NotImplemented) ++refused;
    });
  }
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(refused.load(), 8);
}

TEST(Environment, TextsAreHandedOutToManyThreadsAtTheSameMoment) {
  ASSERT_STREQ(std::getenv("KVLCodeEnv_Modules"), "one;two");
  std::atomic<int> waiting{8};
  std::vector<std::thread> threads;
  std::vector<const char*> values(8);
  for (std::size_t i = 0; i < 8; ++i) {
    threads.emplace_back([&waiting, &values, i] {
      --waiting;
      while (waiting.load() != 0)
        std::this_thread::yield();
      values[i] = MRBGetEnv("KVLCodeEnv_Modules");
    });
  }
  for (std::thread& thread : threads)
    thread.join();
  for (const char* const value : values)
    EXPECT_STREQ(value, "one;two");
}
