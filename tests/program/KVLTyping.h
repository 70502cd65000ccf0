#ifndef KVL_TYPING_H
#define KVL_TYPING_H

#include <cstdio>
#include <string>
#include <vector>

#include "KVLPseudoTerminal.h"
#include "KVLRunKvl.h"

/// What the tests at a terminal type and look for.

using Terminal = KVLPseudoTerminal;

constexpr char Up[] = "\x1b[A";
constexpr char Left[] = "\x1b[D";
constexpr char ControlA[] = "\x01";
constexpr char ControlC[] = "\x03";
constexpr char ControlD[] = "\x04";
constexpr char ControlR[] = "\x12";
constexpr char Prompt[] = "kvl> ";

#define EXPECT_SHOWN(terminal, text) ASSERT_TRUE((terminal).Expect(text)) << (terminal).GetShown()

/// A file for the history that is not there yet.
inline Terminal::Setting FreshHistory() {
  (void)std::remove(ScratchFile("history").c_str());
  return {"KVL_HISTORY", ScratchFile("history")};
}

/// The module whose functions run for long.
inline std::vector<Terminal::Setting> WithSlowModule() {
  return {FreshHistory(), {"KVLCodeEnv_Modules", "KVLCodeEnv_Slow"}};
}

#endif
