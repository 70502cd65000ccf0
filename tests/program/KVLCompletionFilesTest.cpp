// The completion files, each driven by the shell that it is for.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>

#include "KVLTyping.h"

namespace {

constexpr char Folder[] = KVL_SOURCE "/host/completion";

std::vector<Terminal::Setting> ShellSettings() {
  const std::string program = KVL_PROGRAM;
  const std::string path = program.substr(0, program.rfind('/')) + ":" + std::getenv("PATH");
  return {{"PATH", path}, {"PS1", "ready> "}, {"LC_ALL", "C.UTF-8"}};
}

bool IsThere(const std::string& program) {
  return access(program.c_str(), X_OK) == 0;
}

// What bash offers for the last of `words`, a line each.
std::string OfferedByBash(const std::vector<std::string>& words) {
  std::string script = "source " + std::string(Folder) + "/kvl.bash\nCOMP_WORDS=(";
  for (const std::string& word : words)
    script += " " + word;
  script += ")\nCOMP_CWORD=" + std::to_string(words.size() - 1) +
            "\n_kvl\nprintf '<%s>\\n' \"${COMPREPLY[@]}\"\n";
  WriteFile(ScratchFile("offer.bash"), script);
  Terminal terminal({"--norc", ScratchFile("offer.bash")}, ShellSettings(), {}, {}, "/bin/bash");
  EXPECT_EQ(terminal.Wait(), 0) << terminal.GetShown();
  std::string offered;
  for (const char character : terminal.GetShown()) {
    if (character != '\r') offered += character;
  }
  return offered;
}

TEST(KVLCompletionFiles, BashOffersOptions) {
  EXPECT_EQ(OfferedByBash({"kvl", "--mo"}), "<--modules>\n");
  EXPECT_EQ(OfferedByBash({"kvl", "-q", "--ver"}), "<--version>\n<--verbose>\n");
  EXPECT_EQ(OfferedByBash({"kvl", "--color", "a"}), "<auto>\n<always>\n");
  EXPECT_EQ(OfferedByBash({"kvl", "--color", "=", "n"}), "<never>\n");
  EXPECT_EQ(OfferedByBash({"kvl", "--color", "="}), "<auto>\n<always>\n<never>\n");
}

TEST(KVLCompletionFiles, BashOffersWhatATextMayGoOnWith) {
  // The second one keeps the quote open.
  EXPECT_EQ(OfferedByBash({"kvl", "-c", R"(\'math/hyp)"}), "<math/hypot(>\n<math/hypot( >\n");
  EXPECT_EQ(OfferedByBash({"kvl", "-c", R"('"call math/hyp')"}),
            "<call math/hypot >\n<call math/hypot  >\n");
  EXPECT_EQ(OfferedByBash({"kvl", "-c", "math/hyp"}), "<math/hypot\\(>\n");
  EXPECT_EQ(OfferedByBash({"kvl", "complete", "math/hyp"}), "<math/hypot\\(>\n");
  EXPECT_EQ(OfferedByBash({"kvl", "-c", "math/nosuch"}), "<>\n");
}

TEST(KVLCompletionFiles, BashOffersFiles) {
  WriteFile(ScratchFile("tour.kvl"), "");
  const std::string start = ScratchFile("tou");
  EXPECT_EQ(OfferedByBash({"kvl", start}), "<" + start + "r.kvl>\n");
}

TEST(KVLCompletionFiles, TabInBashCompletesAText) {
  Terminal terminal({"--norc", "-i"}, ShellSettings(), {}, {}, "/bin/bash");
  EXPECT_SHOWN(terminal, "ready> ");
  terminal.Type("source " + std::string(Folder) + "/kvl.bash\r");
  EXPECT_SHOWN(terminal, "ready> ");
  terminal.Type("kvl -c 'math/hyp\t");
  EXPECT_SHOWN(terminal, "ot(");
  terminal.Type("3, 4)'\r");
  EXPECT_SHOWN(terminal, "5\r\n");
}

TEST(KVLCompletionFiles, TabInZshCompletesATextAndAnOption) {
  if (!IsThere("/usr/bin/zsh")) GTEST_SKIP() << "zsh is not installed";
  Terminal terminal({"-f", "-i"}, ShellSettings(), {}, {}, "/usr/bin/zsh");
  EXPECT_SHOWN(terminal, "ready> ");
  terminal.Type("fpath=(" + std::string(Folder) +
                " $fpath); autoload -U compinit; compinit -u -D; print re''loaded\r");
  EXPECT_SHOWN(terminal, "reloaded");
  EXPECT_SHOWN(terminal, "ready> ");
  terminal.Type("kvl --js\t");
  EXPECT_SHOWN(terminal, "on");
  terminal.Type("-c 'math/hyp\t");
  EXPECT_SHOWN(terminal, "ot(");
  terminal.Type("3, 4)'\r");
  EXPECT_SHOWN(terminal, "{\"type\":\"double\",\"text\":\"5\"}");
}

TEST(KVLCompletionFiles, FishOffersTextsAndOptions) {
  if (!IsThere("/usr/bin/fish")) GTEST_SKIP() << "fish is not installed";
  const std::string source = "source " + std::string(Folder) + "/kvl.fish; ";
  Terminal text({"--no-config", "-c", source + R"(complete -C "kvl -c 'math/hyp")"},
                ShellSettings(), {}, {}, "/usr/bin/fish");
  EXPECT_EQ(text.Wait(), 0);
  EXPECT_EQ(text.GetShown().find("math/hypot(\t"), 0u) << text.GetShown();
  Terminal option({"--no-config", "-c", source + R"(complete -C "kvl --js")"}, ShellSettings(), {},
                  {}, "/usr/bin/fish");
  EXPECT_EQ(option.Wait(), 0);
  EXPECT_EQ(option.GetShown().find("--json\t"), 0u) << option.GetShown();
}

}  // namespace
