#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <sstream>

#include "KVLShellResult.h"
#include "KVLTyping.h"

namespace {

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
  EXPECT_NE(access(ScratchFile("history").c_str(), F_OK), 0);
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

TEST(KVLPrompt, ControlDInALineDoesNotEndTheProgram) {
  Terminal terminal({"-q"}, {FreshHistory()});
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("call math/add 1 25");
  // Deletes the character under the cursor.
  terminal.Type(std::string(Left) + ControlD + "\r");
  EXPECT_SHOWN(terminal, "\r\n3\r\n");
  EXPECT_SHOWN(terminal, Prompt);
}

TEST(KVLPrompt, QuitEndsWithItsCode) {
  Terminal terminal({"-q"}, {FreshHistory()});
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("quit 3\r");
  EXPECT_EQ(terminal.Wait(), 3);
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

TEST(KVLPrompt, ALineGoesOnAfterAStop) {
  Terminal terminal({"-q"}, {FreshHistory()});
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("call math/add 1");
  EXPECT_SHOWN(terminal, "add 1");
  terminal.Signal(SIGSTOP);
  terminal.Signal(SIGCONT);
  EXPECT_SHOWN(terminal, "call math/add 1");
  EXPECT_FALSE(terminal.Echoes());
  terminal.Type(" 2\r");
  EXPECT_SHOWN(terminal, "\r\n3\r\n");
}

TEST(KVLPrompt, CharactersOfSeveralBytesAreOneCharacterEach) {
  // In a language that has them and in one that does not.
  for (const char* const locale : {"C.UTF-8", "C"}) {
    Terminal terminal({"-q"}, {FreshHistory(), {"LC_ALL", locale}});
    EXPECT_SHOWN(terminal, Prompt);
    terminal.Type("call text/length \xC3\xA9\xE2\x82\xAC\x7F\r");
    EXPECT_SHOWN(terminal, "\r\n");
    EXPECT_SHOWN(terminal, Prompt);
    EXPECT_EQ(ReadFile(ScratchFile("history")), "call text/length \xC3\xA9\n") << locale;
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
  Terminal terminal({"-c", "ls nowhere"}, {}, {}, {{STDOUT_FILENO, ScratchFile("results.txt")}});
  EXPECT_EQ(terminal.Wait(), KVLExit_NotFound);
  EXPECT_EQ(terminal.GetShown().find('\x1b'), std::string::npos);
}

TEST(KVLPrompt, ResultsGoToStandardOutputAndAllElseToStandardError) {
  const std::string results = ScratchFile("results.txt");
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
  const std::string errors = ScratchFile("errors.txt");
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

// The terminal is what is typed at; what is written goes into files, to be compared.
TEST(KVLPrompt, ALineAndAOneShotTextHaveTheSameResults) {
  for (const char* const text : {"call math/add 1 2", "ls math", "call math/div 1 0", "ls nowhere",
                                 "call math/add x 1", "frobnicate", "a = 3; $a", "quit 7"}) {
    for (const char* const form : {"--color=never", "--json"}) {
      std::string written[2];
      for (const bool isOneShot : {false, true}) {
        std::vector<std::string> arguments = {"-q", form};
        if (isOneShot) arguments.insert(arguments.end(), {"-c", text});
        Terminal terminal(arguments, {FreshHistory()}, {},
                          {{STDOUT_FILENO, ScratchFile("results.txt")},
                           {STDERR_FILENO, ScratchFile("errors.txt")}});
        if (!isOneShot) terminal.Type(std::string(text) + "\n" + ControlD);
        EXPECT_GE(terminal.Wait(), 0);
        written[isOneShot ? 1 : 0] =
            ReadFile(ScratchFile("results.txt")) + "--\n" + ReadFile(ScratchFile("errors.txt"));
      }
      EXPECT_EQ(written[0], written[1]) << text;
      if (std::string(text) != "quit 7") {
        EXPECT_NE(written[0], "--\n") << text;
      }
    }
  }
}

}  // namespace
