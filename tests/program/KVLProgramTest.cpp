#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "KVLRunKvl.h"
#include "KVLShellResult.h"

namespace {

TEST(KVLProgram, ACallTravelsThroughShellAndModuleAndBack) {
  const KVLEnded ended = RunText("call math/add 3.5 4.25");
  EXPECT_EQ(ended.output, "7.75\n");
  EXPECT_EQ(ended.error, "");
  EXPECT_EQ(ended.exitCode, KVLExit_Done);
}

TEST(KVLProgram, AnElementOfAListKeepsItsType) {
  const auto typeOfFirst = [](const std::string& list) {
    return RunText("scalar/typeof(list/get(" + list + ", 0))").output;
  };
  EXPECT_EQ(typeOfFirst("[geom/between((0,0),(1,1)), 1]"), "Point\n");
  EXPECT_EQ(typeOfFirst("[math/add(1,2), 1]"), "double\n");
  EXPECT_EQ(typeOfFirst("[1, math/add(1,2)]"), "int\n");
  EXPECT_EQ(RunText("l = [geom/axis/direction(X)]; scalar/typeof(list/get($l))").output,
            "Direction\n");
}

TEST(KVLProgram, TheTourPrintsWhatItAlwaysPrinted) {
  const KVLEnded ended = RunKvl(Quoted(std::string(KVL_SOURCE) + "/examples/tour.kvl"));
  EXPECT_EQ(ended.error, "");
  EXPECT_EQ(ended.exitCode, KVLExit_Done);
  EXPECT_EQ(ended.output, ReadFile(std::string(KVL_SOURCE) + "/examples/tour.out"));
}

TEST(KVLProgram, AnArgumentOfTheWrongFormExitsWith4) {
  const KVLEnded ended = RunText("call math/add x 1");
  EXPECT_EQ(ended.exitCode, KVLExit_Argument);
  EXPECT_EQ(ended.output, "");
  EXPECT_EQ(ended.error,
            "error: math/add: argument 'a' expects double, got 'x'\n"
            "  call math/add x 1\n"
            "                ^\n");
}

TEST(KVLProgram, AMissingOrSurplusArgumentExitsWith4) {
  EXPECT_EQ(RunText("call math/add 1").exitCode, KVLExit_Argument);
  EXPECT_EQ(RunText("call math/add 1").error,
            "error: math/add: argument 'b' (double) is missing\n"
            "  call math/add 1\n"
            "                 ^\n");
  EXPECT_EQ(RunText("call math/add 1 2 3").exitCode, KVLExit_Argument);
  EXPECT_EQ(RunText("call math/add 1 2 3").error,
            "error: math/add: takes 2 arguments, got 3\n"
            "  call math/add 1 2 3\n"
            "                    ^\n");
}

TEST(KVLProgram, ARefusedConversionExitsWith4) {
  const KVLEnded lossy = RunText("convert 2.5 int");
  EXPECT_EQ(lossy.exitCode, KVLExit_Argument);
  EXPECT_EQ(lossy.error,
            "error: convert: '2.5' (double) is refused by the conversion to int, with 0x80070057\n"
            "  convert 2.5 int\n"
            "          ^\n");
  const KVLEnded missing = RunText("convert 2 Point");
  EXPECT_EQ(missing.exitCode, KVLExit_Argument);
  EXPECT_EQ(missing.error,
            "error: convert: no conversion from int to Point\n"
            "  convert 2 Point\n"
            "            ^\n");
  const KVLEnded unread = RunText("convert abc double int");
  EXPECT_EQ(unread.exitCode, KVLExit_Argument);
  EXPECT_EQ(unread.error,
            "error: convert: 'abc' is no double\n"
            "  convert abc double int\n"
            "          ^\n");
}

TEST(KVLProgram, WhatIsNotThereExitsWith3) {
  const KVLEnded function = RunText("call math/ad 1 2");
  EXPECT_EQ(function.exitCode, KVLExit_NotFound);
  EXPECT_EQ(function.error,
            "error: no function 'math/ad': 'math/' holds no 'ad'; did you mean 'math/add'?\n"
            "  call math/ad 1 2\n"
            "       ^\n");
  const KVLEnded type = RunText("convert 2 doubel");
  EXPECT_EQ(type.exitCode, KVLExit_NotFound);
  EXPECT_EQ(type.error,
            "error: convert: no type 'doubel'; did you mean 'double'?\n"
            "  convert 2 doubel\n"
            "            ^\n");
  EXPECT_EQ(RunText("ls nowhere").exitCode, KVLExit_NotFound);
  EXPECT_EQ(RunText("help nothing").exitCode, KVLExit_NotFound);
}

TEST(KVLProgram, AFailedCallExitsWith1) {
  const KVLEnded ended = RunText("call math/div 1 0");
  EXPECT_EQ(ended.exitCode, KVLExit_No);
  EXPECT_EQ(ended.error,
            "error: math/div: division by zero\n"
            "  call math/div 1 0\n"
            "       ^\n");
}

TEST(KVLProgram, WhatIsNotUnderstoodExitsWith2) {
  EXPECT_EQ(RunText("frobnicate").exitCode, KVLExit_Usage);
  EXPECT_EQ(RunText("call [1").exitCode, KVLExit_Usage);
  EXPECT_EQ(RunText("call [1").error,
            "error: missing closing ']'\n"
            "  call [1\n"
            "       ^\n");
  EXPECT_EQ(RunText("check math twice").exitCode, KVLExit_Usage);
}

TEST(KVLProgram, TheRegistryOfTheShippedModulesIsInOrder) {
  const KVLEnded ended = RunText("check");
  EXPECT_EQ(ended.exitCode, KVLExit_Done);
  EXPECT_EQ(ended.output + ended.error, "");
}

TEST(KVLProgram, AFileRunsLineByLineUpToTheFirstFailure) {
  const std::string script =
      ScriptWith("\xEF\xBB\xBF# comment\r\ncall math/add 1 2\r\n\r\ncall math/add 1 z\r\nls\r\n");
  const KVLEnded ended = RunKvl(Quoted(script));
  EXPECT_EQ(ended.output, "3\n");
  EXPECT_EQ(ended.exitCode, KVLExit_Argument);
  EXPECT_EQ(ended.error,
            "error: math/add: argument 'b' expects double, got 'z'\n"
            "  call math/add 1 z\n"
            "                  ^\n" +
                script + ":4: stopped here (exit code 4)\n");
}

TEST(KVLProgram, TheLastLineOfAFileNeedsNoNewline) {
  EXPECT_EQ(RunKvl(Quoted(ScriptWith("call math/add 1 2\ncall math/add 3 4"))).output, "3\n7\n");
}

TEST(KVLProgram, AnEmptyFileDoesNothing) {
  const KVLEnded ended = RunKvl(Quoted(ScriptWith("")));
  EXPECT_EQ(ended.exitCode, KVLExit_Done);
  EXPECT_EQ(ended.output + ended.error, "");
}

TEST(KVLProgram, AQuoteMayNotSpanLines) {
  const std::string script = ScriptWith("call text/length \"a\nb\"\n");
  const KVLEnded ended = RunKvl(Quoted(script));
  EXPECT_EQ(ended.exitCode, KVLExit_Usage);
  EXPECT_NE(ended.error.find(script + ":1: "), std::string::npos) << ended.error;
}

TEST(KVLProgram, AMissingFileExitsWith3) {
  const KVLEnded ended = RunKvl(Quoted(ScratchFile("no such file.kvl")));
  EXPECT_EQ(ended.exitCode, KVLExit_NotFound);
  EXPECT_EQ(ended.error.find("kvl: cannot open '"), 0u) << ended.error;
}

TEST(KVLProgram, ADashMeansStandardInput) {
  const KVLEnded ended = RunKvl("-", "call math/add 1 2\ncall nothing\ncall math/add 3 4\n");
  EXPECT_EQ(ended.output, "3\n");
  EXPECT_EQ(ended.exitCode, KVLExit_NotFound);
  EXPECT_NE(ended.error.find("<stdin>:2: stopped here (exit code 3)\n"), std::string::npos);
}

TEST(KVLProgram, WithoutArgumentsAPipeIsReadWithoutAPrompt) {
  const KVLEnded ended = RunKvl("", "call math/add 1 2\n");
  EXPECT_EQ(ended.output, "3\n");
  EXPECT_EQ(ended.error, "");
  EXPECT_EQ(ended.exitCode, KVLExit_Done);
}

TEST(KVLProgram, HostileInputIsAnswered) {
  const std::string nul(1, '\0');
  const std::string megabyte(1 << 20, 'x');
  const std::string inputs[] = {"call " + nul + "\n", "\xFF\xFE\x80\n", "call " + megabyte + "\n",
                                "\"" + megabyte + "\n", std::string(1 << 20, '[') + "\n"};
  for (const std::string& input : inputs) {
    const KVLEnded ended = RunKvl("-", input);
    EXPECT_TRUE(ended.exitCode == KVLExit_Usage || ended.exitCode == KVLExit_NotFound)
        << ended.exitCode;
    EXPECT_EQ(ended.error.find("error: "), 0u) << ended.error;
    EXPECT_NE(ended.error.find("<stdin>:1: stopped here"), std::string::npos) << ended.error;
  }
  const KVLEnded longText = RunKvl("-", "call text/length " + megabyte + "\n");
  EXPECT_EQ(longText.output, "1048576\n");
  const KVLEnded deepList =
      RunKvl("-", "call list/size " + std::string(200000, '[') + std::string(200000, ']') + "\n");
  EXPECT_EQ(deepList.exitCode, KVLExit_Argument);
}

TEST(KVLProgram, HelpBeginsWithExamples) {
  const KVLEnded ended = RunKvl("--help");
  EXPECT_EQ(ended.exitCode, KVLExit_Done);
  EXPECT_EQ(ended.output.find("Examples:\n  kvl "), 0u) << ended.output;
  EXPECT_EQ(ended.error, "");
}

TEST(KVLProgram, TheVersionIsPrinted) {
  const KVLEnded ended = RunKvl("--version");
  EXPECT_EQ(ended.exitCode, KVLExit_Done);
  EXPECT_EQ(ended.output, "kvl " KVL_VERSION "\n");
}

TEST(KVLProgram, ACommandLineThatIsNotUnderstoodExitsWith2) {
  for (const char* const arguments :
       {"--bogus", "-z", "-c", "one two", "-c ls file", "--color=blue", "--color",
        "--modules -c ls", "--modules file", "--modules --no-modules", "complete a b",
        "-c ls -c ls", "--json=maybe"}) {
    const KVLEnded ended = RunKvl(arguments);
    EXPECT_EQ(ended.exitCode, KVLExit_Usage) << arguments;
    EXPECT_EQ(ended.output, "") << arguments;
    EXPECT_EQ(ended.error.find("kvl: "), 0u) << ended.error;
    EXPECT_NE(ended.error.find("Run 'kvl --help'"), std::string::npos) << ended.error;
  }
}

TEST(KVLProgram, AnUnknownOptionBringsTheNearest) {
  constexpr char End[] = "\nRun 'kvl --help' for what it takes.\n";
  EXPECT_EQ(RunKvl("--jsno").error,
            std::string("kvl: unknown option '--jsno'; did you mean '--json'?") + End);
  EXPECT_EQ(RunKvl("--colour=always").error,
            std::string("kvl: unknown option '--colour=always'; did you mean '--color'?") + End);
  EXPECT_EQ(RunKvl("-c ls --hlep").error,
            std::string("kvl: unknown option '--hlep'; did you mean '--help'?") + End);
  EXPECT_EQ(RunKvl("--" + std::string(5000, 'x')).exitCode, KVLExit_Usage);
  EXPECT_EQ(RunKvl("--bogus").error, std::string("kvl: unknown option '--bogus'") + End);
  EXPECT_EQ(RunKvl("-z").error, std::string("kvl: unknown option '-z'") + End);
  EXPECT_EQ(RunKvl("--color=blue").error,
            std::string("kvl: --color takes auto, always or never, not 'blue'") + End);
  EXPECT_EQ(RunKvl("one two").error,
            std::string("kvl: one file at a time: 'two' is too many") + End);
}

// Texts that mean something to the reading of the command line.
TEST(KVLProgram, ATextArrivesAsItIs) {
  for (const char* const text :
       {"[1,2]", "[]", "{}", "a,b", "%%", "-5", "--help", "-", "--", "@x"}) {
    const KVLEnded ended = RunText("call text/length \"" + std::string(text) + "\"");
    EXPECT_EQ(ended.output, std::to_string(std::string(text).size()) + "\n") << ended.error;
    const KVLEnded whole = RunKvl("-c " + Quoted(text));
    EXPECT_EQ(whole.exitCode, RunKvl("-", std::string(text) + "\n").exitCode) << text;
    EXPECT_EQ(whole.error.find("Run 'kvl --help'"), std::string::npos) << whole.error;
  }
  EXPECT_EQ(RunText("call text/length \xC3\xA9\xE2\x82\xAC").output, "5\n");
}

TEST(KVLProgram, AnEmptyTextDoesNothing) {
  for (const char* const text : {"", " ", "# nothing", ";"}) {
    const KVLEnded ended = RunText(text);
    EXPECT_EQ(ended.exitCode, KVLExit_Done) << text;
    EXPECT_EQ(ended.output + ended.error, "") << text;
  }
}

TEST(KVLProgram, OptionsMayFollowTheText) {
  EXPECT_EQ(RunKvl("-c ls --no-modules").exitCode, KVLExit_Done);
  EXPECT_EQ(RunKvl("--no-modules -c ls").output.find("math"), std::string::npos);
}

TEST(KVLProgram, JsonAnswersWithOneObjectACommand) {
  const KVLEnded good = RunKvl("--json -c " + Quoted("call math/add 1 2"));
  EXPECT_EQ(good.output.find("{\"kvl\":1,\"ok\":true,"), 0u) << good.output;
  EXPECT_EQ(good.output.find('\n'), good.output.size() - 1) << good.output;
  EXPECT_EQ(good.error, "");
  const KVLEnded bad = RunKvl("--json -c " + Quoted("call math/add x 2"));
  EXPECT_EQ(bad.output.find("{\"kvl\":1,\"ok\":false,"), 0u) << bad.output;
  EXPECT_EQ(bad.exitCode, KVLExit_Argument);
}

// A file and a pipe add where they stopped; all else is the same.
TEST(KVLProgram, ATextAFileAndAPipeHaveTheSameResults) {
  for (const char* const text :
       {"call math/add 1 2", "ls math", "call math/div 1 0", "ls nowhere", "call math/add x 1",
        "frobnicate", "call [1", "a = 3; call math/add 1 $a", "call math/add 1 2; quit 7"}) {
    for (const char* const form : {"", "--json "}) {
      const KVLEnded oneShot = RunKvl(form + ("-c " + Quoted(text)));
      const std::string script = ScriptWith(std::string(text) + "\n");
      const KVLEnded file = RunKvl(form + Quoted(script));
      const KVLEnded pipe = RunKvl(form + std::string("-"), std::string(text) + "\n");
      EXPECT_EQ(file.output, oneShot.output) << text;
      EXPECT_EQ(pipe.output, oneShot.output) << text;
      EXPECT_EQ(file.exitCode, oneShot.exitCode) << text;
      EXPECT_EQ(pipe.exitCode, oneShot.exitCode) << text;
      const bool hasStopped = oneShot.exitCode != 0 && oneShot.exitCode != 7;
      const std::string stopped =
          ":1: stopped here (exit code " + std::to_string(oneShot.exitCode) + ")\n";
      EXPECT_EQ(file.error, oneShot.error + (hasStopped ? script + stopped : "")) << text;
      EXPECT_EQ(pipe.error, oneShot.error + (hasStopped ? "<stdin>" + stopped : "")) << text;
    }
  }
}

TEST(KVLProgram, QuitEndsAFileWithItsCode) {
  const KVLEnded ended = RunKvl(Quoted(ScriptWith("call math/add 1 2\nquit 9\nls\n")));
  EXPECT_EQ(ended.output, "3\n");
  EXPECT_EQ(ended.error, "");
  EXPECT_EQ(ended.exitCode, 9);
  EXPECT_EQ(RunText("quit").exitCode, KVLExit_Done);
  EXPECT_EQ(RunText("quit 255").exitCode, 255);
}

TEST(KVLProgram, SessionValuesLastFromLineToLine) {
  EXPECT_EQ(RunKvl("-", "a = math/add(1, 2)\nmath/add($a, $a)\n").output, "6\n");
}

TEST(KVLProgram, AFileThatIsCalledLikeACommandOfTheProgramIsReachedByItsPath) {
  WriteFile("complete", "call math/add 1 2\n");
  EXPECT_EQ(RunKvl("./complete").output, "3\n");
  EXPECT_EQ(RunKvl("-- complete").output, "3\n");
  EXPECT_EQ(RunKvl("-q complete").output, "3\n");
  EXPECT_EQ(std::remove("complete"), 0);
}

TEST(KVLProgram, ALibraryThatCannotBeLoadedExitsWith5) {
  const KVLEnded ended = RunText("load KVLCodeEnv_Gone");
  EXPECT_EQ(ended.exitCode, KVLExit_Load);
  EXPECT_EQ(ended.output, "");
  EXPECT_EQ(ended.error.find("error: "), 0u) << ended.error;
}

}  // namespace
