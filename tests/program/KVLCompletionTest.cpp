#include <gtest/gtest.h>

#include <sstream>

#include "KVLShellResult.h"
#include "KVLTyping.h"

namespace {

TEST(KVLCompletion, TabCompletesAWord) {
  Terminal terminal({"-q"}, {FreshHistory()});
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("hel\t");
  EXPECT_SHOWN(terminal, "p ");
  terminal.Type("quit\r");
  EXPECT_SHOWN(terminal, "\r\nquit");
}

TEST(KVLCompletion, TabListsWhatThereIsToChooseFrom) {
  Terminal terminal({"-q"}, {FreshHistory()});
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("c\t");
  EXPECT_SHOWN(terminal, "\r\n");
  EXPECT_SHOWN(terminal, "call ");
  EXPECT_SHOWN(terminal, "convert ");
  EXPECT_SHOWN(terminal, Prompt);
  EXPECT_SHOWN(terminal, "c");
  terminal.Type("onvert 2 double\r");
  EXPECT_SHOWN(terminal, "\r\n2\r\n");
}

TEST(KVLCompletion, TabBeforeWhatFollowsLeavesItAlone) {
  Terminal terminal({"-q"}, {FreshHistory()});
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type(" 2 double");
  terminal.Type(ControlA);
  terminal.Type("conv\t\r");
  EXPECT_SHOWN(terminal, "\r\n2\r\n");
}

TEST(KVLCompletion, TabCompletesPathsAndParametersToACall) {
  Terminal terminal({"-q"}, {FreshHistory()});
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("math/hyp\t");
  EXPECT_SHOWN(terminal, "ot(");
  terminal.Type("3, b\t");
  EXPECT_SHOWN(terminal, "=");
  terminal.Type("4)\r");
  EXPECT_SHOWN(terminal, "\r\n5\r\n");
}

TEST(KVLCompletion, TabCompletesSessionValues) {
  Terminal terminal({"-q"}, {FreshHistory()});
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("diameter = 42\r");
  EXPECT_SHOWN(terminal, "\r\n");
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("$dia\t");
  EXPECT_SHOWN(terminal, "meter");
  terminal.Type("\r");
  EXPECT_SHOWN(terminal, "\r\n42\r\n");
}

TEST(KVLCompletion, TabWhereNothingFitsChangesNothing) {
  Terminal terminal({"-q"}, {FreshHistory()});
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("call math/nosuch\t");
  EXPECT_SHOWN(terminal, "\a");
  terminal.Type("\r");
  EXPECT_SHOWN(terminal, "math/nosuch'");
}

TEST(KVLCompletion, TheListKeepsToANarrowWindow) {
  KVLWindowSize narrow;
  narrow.columns = 20;
  Terminal terminal({"-q"}, {FreshHistory()}, narrow);
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("ls math\t\t\t");
  EXPECT_SHOWN(terminal, "\r\n");
  EXPECT_SHOWN(terminal, Prompt);
  std::istringstream rows(terminal.GetShown());
  int nbRows = 0;
  for (std::string row; std::getline(rows, row); ++nbRows) {
    EXPECT_TRUE(row.find('\x1b') != std::string::npos || row.size() <= 21) << row;
  }
  EXPECT_GT(nbRows, 1);
}

TEST(KVLCompletion, WhatALineMayGoOnWithIsPrintedALineEach) {
  EXPECT_EQ(RunKvl("complete math/hyp").output, "math/hypot(\n");
  EXPECT_EQ(RunKvl("complete " + Quoted("call text/trim a; math/hyp")).output,
            "call text/trim a; math/hypot(\n");
  const std::string commands = RunKvl("complete").output;
  EXPECT_NE(("\n" + commands).find("\nconvert \n"), std::string::npos) << commands;
  EXPECT_EQ(RunKvl("complete " + Quoted("")).output, commands);
}

TEST(KVLCompletion, WhereNothingFitsNothingIsPrinted) {
  const KVLEnded ended = RunKvl("complete math/nosuch");
  EXPECT_EQ(ended.exitCode, KVLExit_Done);
  EXPECT_EQ(ended.output + ended.error, "");
}

}  // namespace
