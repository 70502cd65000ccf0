#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>

#include "KVLShellResult.h"
#include "KVLTyping.h"

namespace {

TEST(KVLHistory, UpRecallsTheLineBefore) {
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

TEST(KVLHistory, HistoryOutlivesTheProgram) {
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
    // Before the prompt is there, the terminal itself takes the key for an end of what it collects.
    EXPECT_SHOWN(first, Prompt);
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

TEST(KVLHistory, ControlRFindsAnEarlierLine) {
  const Terminal::Setting history = FreshHistory();
  WriteFile(history.value, "call math/add 40 2\nls math\n");
  Terminal terminal({"-q"}, {history});
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type(ControlR);
  terminal.Type("add\x1b");
  terminal.Type("\r");
  EXPECT_SHOWN(terminal, "\r\n42\r\n");
}

TEST(KVLHistory, HistoryBelongsToItsUserAlone) {
  const std::string state = ScratchFile("state");
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

TEST(KVLHistory, WithoutAStateFolderHistoryLiesBelowHome) {
  const std::string file = ScratchFile("home/.local/state/kvl/history");
  (void)std::remove(file.c_str());
  // A relative folder would be another one in every working folder.
  Terminal terminal({"-q"}, {{"XDG_STATE_HOME", "relative"}, {"HOME", ScratchFile("home")}});
  EXPECT_SHOWN(terminal, Prompt);
  terminal.Type("call math/add 1 2\r");
  EXPECT_SHOWN(terminal, "\r\n3\r\n");
  EXPECT_EQ(ReadFile(file), "call math/add 1 2\n");
}

TEST(KVLHistory, AHistoryThatCannotBeWrittenIsDoneWithout) {
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

TEST(KVLHistory, ALongHistoryIsShortened) {
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

}  // namespace
