// The shell as a library of its own, with libraries that come and go around it.

#include <gtest/gtest.h>

#include <string>

#include "KVLCodeEnvAccess.h"
#include "KVLCodeEnvShell.h"
#include "KVLShellResult.h"
#include "MRBHost.h"
#include "ShellSupport.h"

namespace {

using kvltest::Bytes;
using kvltest::Collect;
using kvltest::Said;

using RunTo = long (*)(const MRBUnicodeString&, unsigned int, KVLShellSink, void*);

// The shell, loaded as a host does, for the length of a test.
class LoadedShell {
 public:
  LoadedShell()
      : handler(MRBGetEntryPoint("KVLCodeEnvShell", "KVLCodeShellRunTo", nullptr, 1, 1, 0)),
        runTo(reinterpret_cast<RunTo>(handler.entry)) {}
  ~LoadedShell() { EXPECT_EQ(MRBCloseLibrary(handler), 0); }

  Said Ask(const std::string& text) const {
    Said said;
    said.code = runTo(Bytes(text), 0, Collect, &said);
    return said;
  }

 private:
  LibraryHandler handler;
  RunTo runTo;
};

std::string ListingOf(const LoadedShell& shell) {
  return shell.Ask("ls -r").output;
}

TEST(KVLShellLibrary, AModuleComesAndGoes) {
  const LoadedShell shell;
  const Said loaded = shell.Ask("load Zeta");
  EXPECT_EQ(loaded.code, KVLResult_Success) << loaded.error;
  EXPECT_EQ(loaded.output.find("library:     KVLCodeEnv_Zeta\nobjects:     "), 0u) << loaded.output;
  EXPECT_EQ(shell.Ask("geom/length((3, 4))").output, "5\n");
  EXPECT_NE(shell.Ask("modules").output.find("KVLCodeEnv_Zeta     loaded by 'load'"),
            std::string::npos);
  EXPECT_EQ(shell.Ask("load KVLCodeEnv_Zeta").error,
            "error: load: 'KVLCodeEnv_Zeta' is loaded already\n"
            "  load KVLCodeEnv_Zeta\n"
            "       ^\n");
  const Said unloaded = shell.Ask("unload Zeta");
  EXPECT_EQ(unloaded.code, KVLResult_Success) << unloaded.error;
  EXPECT_NE(unloaded.output.find(" objects\n"), std::string::npos) << unloaded.output;
  EXPECT_EQ(shell.Ask("geom/length((3, 4))").code, KVLShellResult_NotFound);
  EXPECT_NE(shell.Ask("modules").output.find("KVLCodeEnv_Zeta     not loaded"), std::string::npos);
}

TEST(KVLShellLibrary, WhatIsHeldIsNotUnloaded) {
  const LoadedShell shell;
  (void)shell.Ask("load Zeta; p = geom/normalize((3, 4)); bind far = geom/distance((0, 0))");
  const Said held = shell.Ask("unload Zeta");
  EXPECT_EQ(held.code, KVLShellResult_Load);
  EXPECT_EQ(held.error,
            "error: unload: 'Zeta' is held by session value $p, binding far\n"
            "  unload Zeta\n"
            "         ^\n");
  EXPECT_EQ(shell.Ask("$p; far((3, 4))").output.find("(0.6, 0.8"), 0u);
  EXPECT_EQ(shell.Ask("unset p; unset far; unload Zeta").code, KVLResult_Success);
}

TEST(KVLShellLibrary, ARefusedRegistrationIsTold) {
  const LoadedShell shell;
  (void)shell.Ask("load Alpha; load Zeta");
  (void)shell.Ask("bind math/sqrt = geom/length((3, 4))");
  const Said said = shell.Ask("load Delta");
  EXPECT_NE(said.output.find("\nrefused:     Tried to add two times object with name 'sqrt'."),
            std::string::npos)
      << said.output;
  EXPECT_EQ(shell.Ask("math/sqrt()").output, "5\n");
  (void)shell.Ask("unset math/sqrt; unload Delta; unload Zeta; unload Alpha");
}

TEST(KVLShellLibrary, ValuesOutliveTheUnloadingOfTheirModules) {
  ASSERT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Success);
  const LoadedShell shell;
  EXPECT_EQ(shell.Ask("n = 3; p = geom/normalize((3, 4)); l = [1, \"a\"]").code, KVLResult_Success);
  EXPECT_EQ(shell.Ask("bind far = geom/distance((0, 0))").code, KVLResult_Success);
  ASSERT_EQ(KVLCodeEnvAccess::Unload(), KVLResult_Success);
  EXPECT_EQ(shell.Ask("$n").output, "3\n");
  EXPECT_EQ(shell.Ask("$p").output.find("(0.6, 0.8"), 0u);
  EXPECT_EQ(shell.Ask("far((3, 4))").output, "5\n");
  EXPECT_EQ(shell.Ask("unset n; unset p; unset l; unset far").code, KVLResult_Success);
}

TEST(KVLShellLibrary, ClosingTheShellWithdrawsItsSession) {
  {
    const LoadedShell shell;
    (void)shell.Ask("load Alpha; load Zeta; use geom; n = 3");
    EXPECT_EQ(shell.Ask("bind far = geom/distance((0, 0)); far((3, 4))").output, "5\n");
  }
  const LoadedShell shell;
  const std::string listing = ListingOf(shell);
  EXPECT_EQ(listing.find("far"), std::string::npos) << listing;
  EXPECT_EQ(listing.find("function"), std::string::npos) << listing;
  EXPECT_EQ(shell.Ask("vars; use").output, "");
}

TEST(KVLShellLibrary, AThousandTimesChangeNothing) {
  const LoadedShell shell;
  (void)shell.Ask("load Zeta; unload Zeta");
  const std::string before = ListingOf(shell);
  for (int i = 0; i < 1000; ++i) {
    ASSERT_EQ(shell.Ask("load Zeta; p = geom/normalize((3, 4)); unset p; unload Zeta").code,
              KVLResult_Success);
  }
  EXPECT_EQ(ListingOf(shell), before);
}

}  // namespace
