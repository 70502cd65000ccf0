#include "MRBHost.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <type_traits>
#include <vector>

#include "support/TraceCapture.h"

#if !defined(_WIN32)
#include <dlfcn.h>
#endif

namespace {

using Texts = std::vector<std::string>;

// Lies beside the kernel library, and notes when it comes and goes.
constexpr const char* Library = "KVLHostTestLibrary";
constexpr const char* Entry = "KVLHostTestTwice";
const Texts Came = {"+KVLHostTestLibrary"};
const Texts CameAndWent = {"+KVLHostTestLibrary", "-KVLHostTestLibrary"};

LibraryHandler Load(const char* library, const char* entry) {
  return MRBGetEntryPoint(library, entry, nullptr, 1, 1, 0);
}

LibraryHandler Resolve(const char* library, const char* function) {
  return MRBGetFunctionAddress(library, function, nullptr, -1, 1, 0);
}

int CallTwice(const LibraryHandler& handler, int number) {
  return reinterpret_cast<int (*)(int)>(handler.entry)(number);
}

std::vector<const char*> WrongNames() {
  return {nullptr,
          "",
          "KVLNoSuchLibrary",
          "/KVLHostTestLibrary",
          "./KVLHostTestLibrary",
          "KVLHostTestLibrary/",
          "\\KVLHostTestLibrary",
          ".\\KVLHostTestLibrary",
          "KVLHostTestLibrary\\",
          "../bin/KVLHostTestLibrary",
          " KVLHostTestLibrary",
          "libKVLHostTestLibrary.so",
          "KVLHostTestLibrary.so",
          "libKVLHostTestLibrary"};
}

}  // namespace

TEST(MRBGetEntryPoint, WithoutAnEntryLoadsTheLibraryAndLeavesTheEntryNull) {
  TraceCapture trace;
  const LibraryHandler handler = Load(Library, nullptr);
  EXPECT_NE(handler.library, nullptr);
  EXPECT_EQ(handler.entry, nullptr);
  EXPECT_EQ(trace.GetTexts(), Came);
  EXPECT_EQ(MRBCloseLibrary(handler), 0);
  EXPECT_EQ(trace.GetTexts(), CameAndWent);
}

TEST(MRBGetEntryPoint, WithAnEntryResolvesIt) {
  TraceCapture trace;
  const LibraryHandler handler = Load(Library, Entry);
  ASSERT_NE(handler.library, nullptr);
  ASSERT_NE(handler.entry, nullptr);
  EXPECT_EQ(CallTwice(handler, 21), 42);
  EXPECT_EQ(MRBCloseLibrary(handler), 0);
  EXPECT_EQ(trace.GetTexts(), CameAndWent);
}

TEST(MRBGetEntryPoint, WithAnEntryThatIsMissingKeepsTheLibrary) {
  TraceCapture trace;
  const LibraryHandler handler = Load(Library, "KVLHostTestMissing");
  EXPECT_NE(handler.library, nullptr);
  EXPECT_EQ(handler.entry, nullptr);
  EXPECT_EQ(trace.GetTexts(), Came);
  EXPECT_EQ(MRBCloseLibrary(handler), 0);
}

TEST(MRBGetEntryPoint, OfAWrongNameGivesTwoNullsAndReportsNothing) {
  TraceCapture trace;
  for (const char* const name : WrongNames()) {
    const LibraryHandler handler = Load(name, Entry);
    EXPECT_EQ(handler.library, nullptr) << (name ? name : "null");
    EXPECT_EQ(handler.entry, nullptr) << (name ? name : "null");
  }
  EXPECT_EQ(trace.GetTexts(), Texts());
}

TEST(MRBGetEntryPoint, EachLoadIsClosedOnItsOwn) {
  TraceCapture trace;
  const LibraryHandler first = Load(Library, nullptr);
  const LibraryHandler second = Load(Library, Entry);
  EXPECT_EQ(first.library, second.library);
  EXPECT_EQ(MRBCloseLibrary(first), 0);
  EXPECT_EQ(trace.GetTexts(), Came);
  EXPECT_EQ(CallTwice(second, 3), 6);
  EXPECT_EQ(MRBCloseLibrary(second), 0);
  EXPECT_EQ(trace.GetTexts(), CameAndWent);
}

TEST(MRBGetEntryPoint, TheFlagsAndTheReservedTextChangeNothing) {
  TraceCapture trace;
  const LibraryHandler handler = MRBGetEntryPoint(Library, Entry, "text", -7, 0, 99);
  ASSERT_NE(handler.entry, nullptr);
  EXPECT_EQ(CallTwice(handler, 4), 8);
  EXPECT_EQ(MRBCloseLibrary(handler), 0);
}

#if !defined(_WIN32)
TEST(MRBGetEntryPoint, OfALibraryThatCallsWhatIsNowhereFailsAtOnce) {
  TraceCapture trace;
  const LibraryHandler handler = Load("KVLHostTestUnresolved", nullptr);
  EXPECT_EQ(handler.library, nullptr);
  EXPECT_EQ(handler.entry, nullptr);
  EXPECT_EQ(trace.GetTexts(), Texts());
}

TEST(MRBGetEntryPoint, OffersTheLibrarysSymbolsToNoOther) {
  TraceCapture trace;
  const LibraryHandler handler = Load(Library, Entry);
  ASSERT_NE(handler.entry, nullptr);
  EXPECT_EQ(dlsym(RTLD_DEFAULT, Entry), nullptr);
  EXPECT_EQ(MRBCloseLibrary(handler), 0);
}
#endif

TEST(MRBGetFunctionAddress, GivesBothWords) {
  TraceCapture trace;
  const LibraryHandler handler = Resolve(Library, Entry);
  ASSERT_NE(handler.library, nullptr);
  ASSERT_NE(handler.entry, nullptr);
  EXPECT_EQ(CallTwice(handler, -5), -10);
  EXPECT_EQ(MRBCloseLibrary(handler), 0);
  EXPECT_EQ(trace.GetTexts(), CameAndWent);
}

TEST(MRBGetFunctionAddress, OfAMissingFunctionLeavesNothingLoaded) {
  for (const char* const function : {"KVLHostTestMissing", "", static_cast<const char*>(nullptr)}) {
    TraceCapture trace;
    const LibraryHandler handler = Resolve(Library, function);
    EXPECT_EQ(handler.library, nullptr);
    EXPECT_EQ(handler.entry, nullptr);
    EXPECT_EQ(trace.GetTexts(), CameAndWent) << (function ? function : "null");
  }
}

TEST(MRBGetFunctionAddress, OfAMissingFunctionLeavesAnotherLoadAlone) {
  TraceCapture trace;
  const LibraryHandler handler = Load(Library, Entry);
  ASSERT_NE(handler.entry, nullptr);
  EXPECT_EQ(Resolve(Library, "KVLHostTestMissing").library, nullptr);
  EXPECT_EQ(trace.GetTexts(), Came);
  EXPECT_EQ(CallTwice(handler, 1), 2);
  EXPECT_EQ(MRBCloseLibrary(handler), 0);
}

TEST(MRBGetFunctionAddress, OfAWrongNameGivesTwoNullsAndReportsNothing) {
  TraceCapture trace;
  for (const char* const name : WrongNames()) {
    const LibraryHandler handler = Resolve(name, Entry);
    EXPECT_EQ(handler.library, nullptr) << (name ? name : "null");
    EXPECT_EQ(handler.entry, nullptr) << (name ? name : "null");
  }
  EXPECT_EQ(trace.GetTexts(), Texts());
}

TEST(MRBGetFunctionAddress, TheEmptyNameIsNotTheProgramItself) {
  EXPECT_EQ(Resolve("", "main").library, nullptr);
  EXPECT_EQ(Resolve("", "malloc").entry, nullptr);
}

TEST(MRBCloseLibrary, OfANullHandleFails) {
  EXPECT_NE(MRBCloseLibrary(LibraryHandler{nullptr, nullptr}), 0);
  int entry = 0;
  EXPECT_NE(MRBCloseLibrary(LibraryHandler{&entry, nullptr}), 0);
}

TEST(LibraryHandler, IsTwoWordsTheEntryFirst) {
  static_assert(sizeof(LibraryHandler) == 2 * sizeof(void*));
  static_assert(std::is_trivially_copyable_v<LibraryHandler>);
  EXPECT_EQ(offsetof(LibraryHandler, entry), 0u);
  EXPECT_EQ(offsetof(LibraryHandler, library), sizeof(void*));
}
