#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>

#include "KVLPseudoTerminal.h"
#include "KVLShellResult.h"

namespace {

using Terminal = KVLPseudoTerminal;

constexpr char Up[] = "\x1b[A";
constexpr char ControlA[] = "\x01";
constexpr char ControlC[] = "\x03";
constexpr char ControlD[] = "\x04";
constexpr char ControlR[] = "\x12";
constexpr char Prompt[] = "kvl> ";

#define EXPECT_SHOWN(terminal, text) ASSERT_TRUE((terminal).Expect(text)) << (terminal).GetShown()

std::string Scratch(const std::string& file) {
  return std::string(KVL_SCRATCH) + "/" + file;
}

std::string ReadFile(const std::string& path) {
  std::ostringstream content;
  content << std::ifstream(path, std::ios::binary).rdbuf();
  return content.str();
}

void WriteFile(const std::string& path, const std::string& content) {
  std::ofstream(path, std::ios::binary) << content;
}

/// A file for the history that is not there yet.
Terminal::Setting FreshHistory(const std::string& file = "history") {
  (void)std::remove(Scratch(file).c_str());
  return {"KVL_HISTORY", Scratch(file)};
}

std::vector<Terminal::Setting> WithSlowModule() {
  return {FreshHistory(), {"KVLCodeEnv_Modules", "KVLCodeEnv_Slow"}};
}

TEST(KVLPrompt, RunsALineAndAsksForTheNext) {
  Terminal terminal({"-q"}, {FreshHistory()});
  EXPECT_SHOWN(terminal, Prompt);
  EXPECT_EQ(terminal.GetShown().find(Prompt), terminal.GetShown().size() - sizeof(Prompt) + 1);
  terminal.Type("call math/add 1 2\r");
  EXPECT_SHOWN(terminal, "\r\n3\r\n");
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("call math/add 1 z\r");
  EXPECT_SHOWN(terminal, "expects double, got 'z'");
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type(ControlD);
  EXPECT_EQ(terminal.Wait(), KVLExit_Done);
  EXPECT_EQ(terminal.GetRest(), "^D\r\n");
}

TEST(KVLPrompt, AnEmptyLineDoesNothing) {
  Terminal terminal({"-q"}, {FreshHistory()});
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("\r");
  EXPECT_SHOWN(terminal, "\r\n" + std::string(Prompt));
  terminal.Type(ControlD);
  EXPECT_EQ(terminal.Wait(), KVLExit_Done);
  EXPECT_EQ(ReadFile(Scratch("history")), "");
}

TEST(KVLPrompt, TellsWhatWasLoadedAndRefused) {
  KVLWindowSize wide;
  wide.columns = 1000;
  Terminal terminal({}, {FreshHistory(), {"KVLCodeEnv_Modules", "KVLCodeEnv_Slow;KVLCodeEnv_Gone"}},
                    wide);
  EXPECT_SHOWN(terminal, "kvl " KVL_VERSION ": ");
  EXPECT_SHOWN(terminal, " modules loaded.\r\n");
  EXPECT_SHOWN(terminal, "module 'KVLCodeEnv_Gone' was not loaded: ");
  EXPECT_SHOWN(terminal, "No such file");
  EXPECT_SHOWN(terminal, "Ctrl-D to leave");
  EXPECT_SHOWN(terminal, Prompt);
}

TEST(KVLPrompt, TellsHowManyAnomaliesThereAre) {
  Terminal terminal({}, {FreshHistory(), {"KVLCodeEnv_Modules", "KVLCodeEnv_Flawed"}});
  EXPECT_SHOWN(terminal, "1 anomaly: see 'check'.");
  EXPECT_SHOWN(terminal, Prompt);
}

TEST(KVLPrompt, QuietBeginsWithThePrompt) {
  Terminal terminal({"--quiet"}, {FreshHistory(), {"KVLCodeEnv_Modules", "KVLCodeEnv_Gone"}});
  EXPECT_SHOWN(terminal, Prompt);
  EXPECT_EQ(terminal.GetShown().find("Gone"), std::string::npos) << terminal.GetShown();
  EXPECT_EQ(terminal.GetShown().find("loaded"), std::string::npos) << terminal.GetShown();
}

TEST(KVLPrompt, UpRecallsTheLineBefore) {
  Terminal terminal({"-q"}, {FreshHistory()});
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("call math/add 20 3\r");
  EXPECT_SHOWN(terminal, "\r\n23\r\n");
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type(Up);
  EXPECT_SHOWN(terminal, "call math/add 20 3");
  terminal.Type("4\r");
  EXPECT_SHOWN(terminal, "\r\n54\r\n");
}

TEST(KVLPrompt, HistoryOutlivesTheProgram) {
  const Terminal::Setting history = FreshHistory();
  {
    Terminal first({"-q"}, {history});
    EXPECT_SHOWN(first, Prompt);
    first.Type("call math/add 20 3\r");
    EXPECT_SHOWN(first, "\r\n23\r\n");
    first.Type("call math/add 20 3\r");
    EXPECT_SHOWN(first, "\r\n23\r\n");
    first.Type(" call math/add 8 8\r");
    EXPECT_SHOWN(first, "\r\n16\r\n");
    first.Type(ControlD);
    ASSERT_EQ(first.Wait(), KVLExit_Done);
  }
  // Once, and without the line that began with a blank.
  EXPECT_EQ(ReadFile(history.value), "call math/add 20 3\n");
  Terminal second({"-q"}, {history});
  EXPECT_SHOWN(second, Prompt);
  second.Type(Up);
  EXPECT_SHOWN(second, "call math/add 20 3");
  second.Type("\r");
  EXPECT_SHOWN(second, "\r\n23\r\n");
}

TEST(KVLPrompt, ControlRFindsAnEarlierLine) {
  const Terminal::Setting history = FreshHistory();
  WriteFile(history.value, "call math/add 40 2\nls math\n");
  Terminal terminal({"-q"}, {history});
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type(ControlR);
  terminal.Type("add\x1b");
  terminal.Type("\r");
  EXPECT_SHOWN(terminal, "\r\n42\r\n");
}

TEST(KVLPrompt, HistoryBelongsToItsUserAlone) {
  const std::string state = Scratch("state");
  (void)std::remove((state + "/deep/kvl/history").c_str());
  Terminal terminal({"-q"}, {{"XDG_STATE_HOME", state + "/deep"}});
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("call math/add 1 2\r");
  EXPECT_SHOWN(terminal, "\r\n3\r\n");
  struct stat file = {};
  ASSERT_EQ(stat((state + "/deep/kvl/history").c_str(), &file), 0);
  EXPECT_EQ(file.st_mode & 0777u, 0600u);
  struct stat folder = {};
  ASSERT_EQ(stat((state + "/deep/kvl").c_str(), &folder), 0);
  EXPECT_EQ(folder.st_mode & 0777u, 0700u);
}

TEST(KVLPrompt, WithoutAStateFolderHistoryLiesBelowHome) {
  const std::string file = Scratch("home/.local/state/kvl/history");
  (void)std::remove(file.c_str());
  // A relative folder would be another one in every working folder.
  Terminal terminal({"-q"}, {{"XDG_STATE_HOME", "relative"}, {"HOME", Scratch("home")}});
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("call math/add 1 2\r");
  EXPECT_SHOWN(terminal, "\r\n3\r\n");
  EXPECT_EQ(ReadFile(file), "call math/add 1 2\n");
}

TEST(KVLPrompt, AHistoryThatCannotBeWrittenIsDoneWithout) {
  // A folder, what lies below a file, a device, and none at all.
  for (const char* const path : {KVL_SCRATCH, KVL_PROGRAM "/history", "/dev/full", ""}) {
    Terminal terminal({"-q"}, {{"KVL_HISTORY", path}});
    EXPECT_SHOWN(terminal, Prompt);
    terminal.Type("call math/add 1 2\r");
    EXPECT_SHOWN(terminal, "math/add 1 2\r\n3\r\n");
    EXPECT_SHOWN(terminal, Prompt);
    terminal.Type(Up);
    EXPECT_SHOWN(terminal, "call math/add 1 2");
  }
}

TEST(KVLPrompt, ALongHistoryIsShortened) {
  const Terminal::Setting history = FreshHistory();
  std::string lines;
  for (int i = 0; i < 2001; ++i)
    lines += "line " + std::to_string(i) + "\n";
  WriteFile(history.value, lines);
  Terminal terminal({"-q"}, {history});
  EXPECT_SHOWN(terminal, Prompt);
  const std::string kept = ReadFile(history.value);
  EXPECT_EQ(kept.find("line 1001\n"), 0u) << kept.substr(0, 100);
  EXPECT_EQ(kept.rfind("line 2000\n"), kept.size() - 10);
}

TEST(KVLPrompt, ControlCAbandonsTheLine) {
  Terminal terminal({"-q"}, {FreshHistory()});
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("call math/add 7 7");
  EXPECT_SHOWN(terminal, "7 7");
  terminal.Type(ControlC);
  EXPECT_SHOWN(terminal, "^C\r\n");
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("call math/add 1 2\r");
  EXPECT_SHOWN(terminal, "\r\n3\r\n");
  EXPECT_EQ(terminal.GetShown().find("14"), std::string::npos);
  EXPECT_EQ(ReadFile(Scratch("history")), "call math/add 1 2\n");
}

TEST(KVLPrompt, ControlCAtAnEmptyPromptAnyNumberOfTimesEndsNothing) {
  Terminal terminal({"-q"}, {FreshHistory()});
  for (int i = 0; i < 3; ++i) {
    EXPECT_SHOWN(terminal, Prompt);
    terminal.Type(ControlC);
    EXPECT_SHOWN(terminal, "^C\r\n");
  }
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type(ControlD);
  EXPECT_EQ(terminal.Wait(), KVLExit_Done);
}

TEST(KVLPrompt, ControlCEndsACallThatAsksAndThePromptGoesOn) {
  Terminal terminal({"-q"}, WithSlowModule());
  EXPECT_SHOWN(terminal, Prompt);
  // A second time as well: what was asked the first time is forgotten.
  for (int i = 0; i < 2; ++i) {
    terminal.Type("call slow/asking; call math/add 1 1\r");
    EXPECT_SHOWN(terminal, "started\r\n");
    terminal.Type(ControlC);
    EXPECT_SHOWN(terminal, "kvl: asked to end; Ctrl-C again ends the program");
    EXPECT_SHOWN(terminal, "interrupted");
    EXPECT_SHOWN(terminal, Prompt);
  }
  terminal.Type("call math/add 40 2\r");
  EXPECT_SHOWN(terminal, "\r\n42\r\n");
  EXPECT_EQ(terminal.GetShown().find("\r\n2\r\n"), std::string::npos) << terminal.GetShown();
  terminal.Type(ControlD);
  EXPECT_EQ(terminal.Wait(), KVLExit_Done);
}

TEST(KVLPrompt, ASecondControlCEndsTheProgramDuringACallThatDoesNotAsk) {
  Terminal terminal({"-q"}, WithSlowModule());
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("call slow/deaf\r");
  EXPECT_SHOWN(terminal, "started\r\n");
  terminal.Type(ControlC);
  EXPECT_SHOWN(terminal, "kvl: asked to end; Ctrl-C again ends the program");
  terminal.Type(ControlC);
  EXPECT_EQ(terminal.Wait(), KVLExit_Interrupted);
}

TEST(KVLPrompt, AOneShotTextEndsWith130WhenInterrupted) {
  Terminal asking({"-c", "call slow/asking"}, WithSlowModule());
  EXPECT_SHOWN(asking, "started\r\n");
  asking.Type(ControlC);
  EXPECT_EQ(asking.Wait(), KVLExit_Interrupted);
  Terminal deaf({"-c", "call slow/deaf"}, WithSlowModule());
  EXPECT_SHOWN(deaf, "started\r\n");
  deaf.Type(ControlC);
  EXPECT_SHOWN(deaf, "Ctrl-C again");
  deaf.Type(ControlC);
  EXPECT_EQ(deaf.Wait(), KVLExit_Interrupted);
}

TEST(KVLPrompt, AFileIsLeftAtTheInterruptedLine) {
  WriteFile(Scratch("slow.kvl"), "call slow/asking\ncall math/add 1 2\n");
  Terminal terminal({Scratch("slow.kvl")}, WithSlowModule());
  EXPECT_SHOWN(terminal, "started\r\n");
  terminal.Type(ControlC);
  EXPECT_SHOWN(terminal, "slow.kvl:1: stopped here (exit code 130)");
  EXPECT_EQ(terminal.Wait(), KVLExit_Interrupted);
}

TEST(KVLPrompt, ControlDInALineDoesNotEndTheProgram) {
  Terminal terminal({"-q"}, {FreshHistory()});
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("call math/add 1 25");
  // Deletes the character under the cursor.
  terminal.Type(std::string("\x1b[D") + ControlD + "\r");
  EXPECT_SHOWN(terminal, "\r\n3\r\n");
  EXPECT_SHOWN(terminal, Prompt);
}

TEST(KVLPrompt, QuitEndsWithItsCode) {
  Terminal terminal({"-q"}, {FreshHistory()});
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("quit 3\r");
  EXPECT_EQ(terminal.Wait(), 3);
}

TEST(KVLPrompt, ATerminationLeavesTheTerminalAsItWas) {
  Terminal terminal({"-q"}, {FreshHistory()});
  EXPECT_SHOWN(terminal, Prompt);
  EXPECT_FALSE(terminal.Echoes());
  terminal.Signal(SIGTERM);
  terminal.WaitForProgram();
  EXPECT_TRUE(terminal.Echoes());
}

// The summary and the candidates, in rows that fit; and a line of several rows, edited and run.
TEST(KVLPrompt, ANarrowWindowIsKeptTo) {
  KVLWindowSize narrow;
  narrow.columns = 20;
  Terminal terminal({}, {FreshHistory()}, narrow);
  EXPECT_SHOWN(terminal, Prompt);
  std::istringstream summary(terminal.GetShown());
  int nbLines = 0;
  for (std::string line; std::getline(summary, line); ++nbLines) {
    const bool isOneWord = line.find(' ') == std::string::npos;
    EXPECT_TRUE(isOneWord || line.size() <= 21) << line;
  }
  EXPECT_GT(nbLines, 3);
  terminal.Type("        1000000001        2000000002");
  terminal.Type(ControlA);
  terminal.Type("call math/add");
  terminal.Type("\r");
  EXPECT_SHOWN(terminal, "\r\n3000000003\r\n");
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("call math/add          1000000001         2000000002");
  terminal.Type(ControlA);
  terminal.Type(ControlC);
  EXPECT_SHOWN(terminal, "^C\r\n");
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("call math/add 1 2\r");
  EXPECT_SHOWN(terminal, "\r\n3\r\n");
}

TEST(KVLPrompt, AWindowMayBeResizedInTheMiddleOfALine) {
  Terminal terminal({"-q"}, {FreshHistory()});
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("call math/add 100000");
  EXPECT_SHOWN(terminal, "100000");
  KVLWindowSize narrow;
  narrow.columns = 12;
  terminal.Resize(narrow);
  terminal.Type("00 2\r");
  EXPECT_SHOWN(terminal, "\r\n10000002\r\n");
}

TEST(KVLPrompt, CharactersOfSeveralBytesAreOneCharacterEach) {
  // In a language that has them and in one that does not.
  for (const char* const locale : {"C.UTF-8", "C"}) {
    Terminal terminal({"-q"}, {FreshHistory(), {"LC_ALL", locale}});
    EXPECT_SHOWN(terminal, Prompt);
    terminal.Type("call text/length \xC3\xA9\xE2\x82\xAC\x7F\r");
    EXPECT_SHOWN(terminal, "\r\n");
    EXPECT_SHOWN(terminal, Prompt);
    EXPECT_EQ(ReadFile(Scratch("history")), "call text/length \xC3\xA9\n") << locale;
  }
}

TEST(KVLPrompt, ColoursAreForTerminalsThatTakeThem) {
  struct Case {
    std::vector<std::string> options;
    Terminal::Setting setting;
    bool hasColors;
  };
  const Case cases[] = {{{}, {"NONE", ""}, true},
                        {{}, {"NO_COLOR", ""}, true},
                        {{}, {"NO_COLOR", "1"}, false},
                        {{}, {"TERM", "dumb"}, false},
                        {{}, {"TERM", ""}, false},
                        {{"--color=always"}, {"NO_COLOR", "1"}, true},
                        {{"--color=never"}, {"NONE", ""}, false},
                        {{"--color", "auto"}, {"NONE", ""}, true}};
  for (const Case& test : cases) {
    std::vector<std::string> arguments = {"-c", "ls nowhere"};
    arguments.insert(arguments.end(), test.options.begin(), test.options.end());
    Terminal terminal(arguments, {test.setting});
    EXPECT_EQ(terminal.Wait(), KVLExit_NotFound);
    EXPECT_EQ(terminal.GetShown().find('\x1b') != std::string::npos, test.hasColors)
        << test.setting.name << "=" << test.setting.value;
  }
}

TEST(KVLPrompt, ThereIsNoColourWhereOneOfTheStreamsIsNoTerminal) {
  Terminal terminal({"-c", "ls nowhere"}, {}, {}, {{STDOUT_FILENO, Scratch("results.txt")}});
  EXPECT_EQ(terminal.Wait(), KVLExit_NotFound);
  EXPECT_EQ(terminal.GetShown().find('\x1b'), std::string::npos);
}

// The terminal is what is typed at; what is written goes into files, to be compared.
TEST(KVLPrompt, ALineAndAOneShotTextHaveTheSameResults) {
  for (const char* const text : {"call math/add 1 2", "ls math", "call math/div 1 0", "ls nowhere",
                                 "call math/add x 1", "frobnicate", "a = 3; $a", "quit 7"}) {
    for (const char* const form : {"--color=never", "--json"}) {
      std::string written[2];
      for (const bool isOneShot : {false, true}) {
        std::vector<std::string> arguments = {"-q", form};
        if (isOneShot) arguments.insert(arguments.end(), {"-c", text});
        Terminal terminal(
            arguments, {FreshHistory()}, {},
            {{STDOUT_FILENO, Scratch("results.txt")}, {STDERR_FILENO, Scratch("errors.txt")}});
        if (!isOneShot) terminal.Type(std::string(text) + "\n" + ControlD);
        EXPECT_GE(terminal.Wait(), 0);
        written[isOneShot ? 1 : 0] =
            ReadFile(Scratch("results.txt")) + "--\n" + ReadFile(Scratch("errors.txt"));
      }
      EXPECT_EQ(written[0], written[1]) << text;
      if (std::string(text) != "quit 7") {
        EXPECT_NE(written[0], "--\n") << text;
      }
    }
  }
}

TEST(KVLPrompt, ResultsGoToStandardOutputAndAllElseToStandardError) {
  const std::string results = Scratch("results.txt");
  Terminal terminal({}, {FreshHistory()}, {}, {{STDOUT_FILENO, results}});
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("call math/add 1 2\r");
  EXPECT_SHOWN(terminal, "1 2\r\n");
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("ls nowhere\r");
  EXPECT_SHOWN(terminal, "error: ");
  EXPECT_SHOWN(terminal, Prompt);
  EXPECT_EQ(ReadFile(results), "3\n");
}

TEST(KVLPrompt, ThereIsNoPromptWhereStandardErrorIsNoTerminal) {
  const std::string errors = Scratch("errors.txt");
  Terminal terminal({"-q"}, {FreshHistory()}, {}, {{STDERR_FILENO, errors}});
  terminal.Type("ls nowhere\ncall math/add 1 2\n");
  EXPECT_SHOWN(terminal, "\r\n3\r\n");
  terminal.Type(ControlD);
  EXPECT_EQ(terminal.Wait(), KVLExit_Done);
  EXPECT_EQ(ReadFile(errors).find("error: "), 0u) << ReadFile(errors);
  EXPECT_EQ(ReadFile(errors).find(Prompt), std::string::npos);
}

TEST(KVLPrompt, ATerminalWithoutCodesReadsPlainLines) {
  Terminal terminal({"-q"}, {FreshHistory(), {"TERM", "dumb"}});
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("call math/ad");
  terminal.Type(ControlC);
  EXPECT_SHOWN(terminal, "^C\r\n");
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("call math/add 1 2\n");
  EXPECT_SHOWN(terminal, "\r\n3\r\n");
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type(ControlD);
  EXPECT_EQ(terminal.Wait(), KVLExit_Done);
  EXPECT_EQ(terminal.GetShown().find('\x1b'), std::string::npos);
}

}  // namespace
