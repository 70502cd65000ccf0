// What the program reads from and writes to, where a system's shell sets it up.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>

#include "KVLRunKvl.h"
#include "KVLShellResult.h"

namespace {

// Runs `script` in the system's shell; "$KVL" is the program.
KVLEnded RunScript(const std::string& script) {
  const std::string output = ScratchFile("out.txt");
  const std::string error = ScratchFile("err.txt");
  (void)setenv("KVL", KVL_PROGRAM, 1);
  (void)setenv("SCRATCH", KVL_SCRATCH, 1);
  const std::string command = "{ " + script + "\n} >'" + output + "' 2>'" + error + "' </dev/null";
  const int status = std::system(command.c_str());
  return KVLEnded{WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadFile(output), ReadFile(error)};
}

TEST(KVLStreams, AReaderThatGoesEndsTheProgramQuietly) {
  const KVLEnded ended =
      RunScript("yes 'ls -r' | head -10000 | { \"$KVL\" -; echo \"exit code $?\" >&2; } | head -1");
  EXPECT_EQ(ended.output.find("_conversions/"), 0u) << ended.output;
  EXPECT_EQ(ended.output.find('\n'), ended.output.size() - 1) << ended.output;
  EXPECT_EQ(ended.error.rfind("<stdin>:", 0), 0u) << ended.error;
  EXPECT_NE(ended.error.find(": stopped here (exit code 1)\nexit code 1\n"), std::string::npos)
      << ended.error;
  EXPECT_EQ(ended.error.find("cannot write"), std::string::npos) << ended.error;
}

TEST(KVLStreams, ResultsThatCannotBeWrittenAreAFailure) {
  const KVLEnded full = RunScript("\"$KVL\" -c ls >/dev/full");
  EXPECT_EQ(full.exitCode, KVLExit_No);
  EXPECT_EQ(full.error, "kvl: cannot write to standard output: No space left on device\n");
  const KVLEnded help = RunScript("\"$KVL\" --help >/dev/full");
  EXPECT_EQ(help.exitCode, KVLExit_No);
  EXPECT_EQ(help.error, "kvl: cannot write to standard output: No space left on device\n");
  const KVLEnded modules = RunScript("\"$KVL\" --version >/dev/full");
  EXPECT_EQ(modules.exitCode, KVLExit_No);
}

TEST(KVLStreams, AFailureCountsMoreThanResultsThatCannotBeWritten) {
  EXPECT_EQ(RunScript("\"$KVL\" -c 'ls nowhere' >/dev/full").exitCode, KVLExit_NotFound);
}

TEST(KVLStreams, AClosedStandardOutputIsToldWhenThereAreResults) {
  const KVLEnded results = RunScript("\"$KVL\" -c ls >&-");
  EXPECT_EQ(results.exitCode, KVLExit_No);
  EXPECT_EQ(results.error, "kvl: cannot write to standard output: Bad file descriptor\n");
  const KVLEnded none = RunScript("\"$KVL\" -c '# nothing' >&-");
  EXPECT_EQ(none.exitCode, KVLExit_Done);
  EXPECT_EQ(none.error, "");
}

TEST(KVLStreams, AClosedStandardErrorChangesNoResult) {
  const KVLEnded ended = RunScript("\"$KVL\" -c 'call math/add 1 2; ls nowhere' 2>&-");
  EXPECT_EQ(ended.exitCode, KVLExit_NotFound);
  EXPECT_EQ(ended.output, "3\n");
}

TEST(KVLStreams, AClosedStandardInputIsEmpty) {
  const KVLEnded ended = RunScript("\"$KVL\" <&-");
  EXPECT_EQ(ended.exitCode, KVLExit_Done);
  EXPECT_EQ(ended.output + ended.error, "");
}

// The script would otherwise be opened as what is missing.
TEST(KVLStreams, AScriptIsNoSubstituteForAClosedStream) {
  WriteFile(ScratchFile("script.kvl"), "call math/add 1 2\n");
  const KVLEnded ended = RunScript("\"$KVL\" \"$SCRATCH/script.kvl\" <&- >&- 2>&-");
  EXPECT_EQ(ended.exitCode, KVLExit_No);
  EXPECT_EQ(ReadFile(ScratchFile("script.kvl")), "call math/add 1 2\n");
}

TEST(KVLStreams, ResultsAndErrorsKeepTheirOrder) {
  const KVLEnded ended = RunScript("printf 'call math/add 1 2\\nls nowhere\\n' | \"$KVL\" - 2>&1");
  EXPECT_EQ(ended.output.rfind("3\nerror: ", 0), 0u) << ended.output;
}

TEST(KVLStreams, WhatCannotBeReadExitsWith3) {
  const KVLEnded folder = RunScript("\"$KVL\" \"$SCRATCH\"");
  EXPECT_EQ(folder.exitCode, KVLExit_NotFound);
  EXPECT_EQ(folder.error, "kvl: cannot read '" KVL_SCRATCH "': Is a directory\n");
  const KVLEnded memory = RunScript("\"$KVL\" /proc/self/mem");
  EXPECT_EQ(memory.exitCode, KVLExit_NotFound);
  EXPECT_EQ(memory.error, "kvl: cannot read '/proc/self/mem': Input/output error\n");
  const KVLEnded input = RunScript("\"$KVL\" - <\"$SCRATCH\"");
  EXPECT_EQ(input.exitCode, KVLExit_NotFound);
  EXPECT_EQ(input.error, "kvl: cannot read '<stdin>': Is a directory\n");
}

TEST(KVLStreams, AFileThatMayNotBeReadExitsWith3) {
  const KVLEnded ended = RunScript(
      "touch \"$SCRATCH/closed.kvl\"; chmod 0 \"$SCRATCH/closed.kvl\"\n"
      "[ \"$(id -u)\" -ne 0 ] || exit 99\n"
      "\"$KVL\" \"$SCRATCH/closed.kvl\"");
  if (ended.exitCode == 99) GTEST_SKIP() << "the superuser may read every file";
  EXPECT_EQ(ended.exitCode, KVLExit_NotFound);
  EXPECT_NE(ended.error.find("Permission denied"), std::string::npos) << ended.error;
}

TEST(KVLStreams, WithoutTheShellLibraryEveryTextExitsWith5) {
  const std::string prepare =
      "rm -rf \"$SCRATCH/bare\"; mkdir \"$SCRATCH/bare\"\n"
      "cp \"$KVL\" \"$(dirname \"$KVL\")\"/libKVLKernel.so* \"$SCRATCH/bare\"\n";
  for (const char* const arguments : {"-c ls", "-", "", "complete l", "no/such/file"}) {
    const KVLEnded ended = RunScript(prepare + "\"$SCRATCH/bare/kvl\" " + arguments);
    EXPECT_EQ(ended.exitCode, KVLExit_Load) << arguments;
    EXPECT_EQ(ended.output, "") << arguments;
    EXPECT_EQ(ended.error,
              "kvl: the shell library 'KVLCodeEnvShell' cannot be used: " KVL_SCRATCH
              "/bare/libKVLCodeEnvShell.so: cannot open shared object file: No such file or "
              "directory\n");
  }
}

TEST(KVLStreams, ALibraryThatIsNoShellExitsWith5) {
  const KVLEnded ended = RunScript(
      "rm -rf \"$SCRATCH/other\"; mkdir \"$SCRATCH/other\"\n"
      "cp \"$KVL\" \"$(dirname \"$KVL\")\"/libKVLKernel.so* \"$SCRATCH/other\"\n"
      "cp \"$(dirname \"$KVL\")\"/libKVLCodeEnv_Slow.so \"$SCRATCH/other/libKVLCodeEnvShell.so\"\n"
      "\"$SCRATCH/other/kvl\" -c ls");
  EXPECT_EQ(ended.exitCode, KVLExit_Load);
  EXPECT_EQ(ended.error,
            "kvl: the shell library 'KVLCodeEnvShell' cannot be used: it is not there, or of "
            "another version\n");
}

TEST(KVLStreams, ModulesTellsWhatWasRefused) {
  const KVLEnded ended =
      RunScript("KVLCodeEnv_Modules='KVLCodeEnv_Slow;KVLCodeEnv_Gone' \"$KVL\" --modules");
  EXPECT_EQ(ended.exitCode, KVLExit_Load);
  EXPECT_EQ(ended.output.find(" loaded\n"), ended.output.size() - 8) << ended.output;
  EXPECT_NE(ended.error.find("kvl: module 'KVLCodeEnv_Gone' was not loaded: "), std::string::npos);
  EXPECT_EQ(ended.error.find("KVLCodeEnv_Slow"), std::string::npos);
}

TEST(KVLStreams, QuietModulesTellsTheExitCodeAlone) {
  const KVLEnded ended =
      RunScript("KVLCodeEnv_Modules='KVLCodeEnv_Slow;KVLCodeEnv_Gone' \"$KVL\" -q --modules");
  EXPECT_EQ(ended.exitCode, KVLExit_Load);
  EXPECT_EQ(ended.output + ended.error, "");
}

TEST(KVLStreams, AModuleIsNamedWithoutAFolder) {
  const KVLEnded ended =
      RunScript("KVLCodeEnv_Modules=\"../bin/libKVLCodeEnv_Slow\" \"$KVL\" -c 'ls slow'");
  EXPECT_EQ(ended.exitCode, KVLExit_NotFound);
  EXPECT_EQ(
      ended.error.find("kvl: module '../bin/libKVLCodeEnv_Slow' was not loaded: no library is "
                       "called so\n"),
      0u)
      << ended.error;
}

TEST(KVLStreams, AModuleThatTheUserNamedIsMissedAloud) {
  const std::string text = "KVLCodeEnv_Modules=KVLCodeEnv_Gone \"$KVL\" -c 'call math/add 1 2'";
  const KVLEnded ended = RunScript(text);
  EXPECT_EQ(ended.exitCode, KVLExit_Done);
  EXPECT_EQ(ended.output, "3\n");
  EXPECT_EQ(ended.error.find("kvl: module 'KVLCodeEnv_Gone' was not loaded: "), 0u) << ended.error;
  EXPECT_EQ(RunScript(text + " --quiet").error, "");
}

TEST(KVLStreams, AnInterruptThatTheCallerIgnoresIsIgnored) {
  const KVLEnded ended = RunScript(
      "trap '' INT\n"
      "\"$KVL\" - <<END\ncall math/add 1 2\nEND\n"
      "sh -c 'kill -INT $$; exec \"$KVL\" -c \"call math/add 3 4\"'");
  EXPECT_EQ(ended.output, "3\n7\n");
  EXPECT_EQ(ended.exitCode, KVLExit_Done);
}

TEST(KVLStreams, ThereIsNoColourInAPipeUnlessItIsAskedFor) {
  const std::string text = "\"$KVL\" -c 'ls nowhere' ";
  EXPECT_EQ(RunScript(text).error.find('\x1b'), std::string::npos);
  EXPECT_EQ(RunScript(text + "--color=auto").error.find('\x1b'), std::string::npos);
  EXPECT_NE(RunScript(text + "--color=always").error.find('\x1b'), std::string::npos);
  EXPECT_NE(RunScript("NO_COLOR=1 " + text + "--color always").error.find('\x1b'),
            std::string::npos);
}

}  // namespace
