#include <gtest/gtest.h>
#include <signal.h>

#include "KVLShellResult.h"
#include "KVLTyping.h"

namespace {

TEST(KVLInterrupt, ControlCAbandonsTheLine) {
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
  EXPECT_EQ(ReadFile(ScratchFile("history")), "call math/add 1 2\n");
}

TEST(KVLInterrupt, ControlCAtAnEmptyPromptAnyNumberOfTimesEndsNothing) {
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

TEST(KVLInterrupt, ControlCEndsACallThatAsksAndThePromptGoesOn) {
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
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type(ControlD);
  EXPECT_EQ(terminal.Wait(), KVLExit_Done);
}

TEST(KVLInterrupt, ASecondControlCEndsTheProgramDuringACallThatDoesNotAsk) {
  Terminal terminal({"-q"}, WithSlowModule());
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("call slow/deaf\r");
  EXPECT_SHOWN(terminal, "started\r\n");
  terminal.Type(ControlC);
  EXPECT_SHOWN(terminal, "kvl: asked to end; Ctrl-C again ends the program");
  terminal.Type(ControlC);
  EXPECT_EQ(terminal.Wait(), KVLExit_Interrupted);
}

TEST(KVLInterrupt, AOneShotTextEndsWith130WhenInterrupted) {
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

TEST(KVLInterrupt, AFileIsLeftAtTheInterruptedLine) {
  WriteFile(ScratchFile("slow.kvl"), "call slow/asking\ncall math/add 1 2\n");
  Terminal terminal({ScratchFile("slow.kvl")}, WithSlowModule());
  EXPECT_SHOWN(terminal, "started\r\n");
  terminal.Type(ControlC);
  EXPECT_SHOWN(terminal, "slow.kvl:1: stopped here (exit code 130)");
  EXPECT_EQ(terminal.Wait(), KVLExit_Interrupted);
}

TEST(KVLInterrupt, ATerminationLeavesTheTerminalAsItWas) {
  Terminal terminal({"-q"}, {FreshHistory()});
  EXPECT_SHOWN(terminal, Prompt);
  EXPECT_FALSE(terminal.Echoes());
  terminal.Signal(SIGTERM);
  terminal.WaitForProgram();
  EXPECT_TRUE(terminal.Echoes());
}

}  // namespace
