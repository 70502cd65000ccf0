// The options are listed in the help text, in the manual page and in three completion files.

#include <gtest/gtest.h>

#include <cctype>
#include <set>
#include <sstream>

#include "KVLRunKvl.h"

namespace {

using Options = std::set<std::string>;

std::string Source(const std::string& file) {
  return ReadFile(std::string(KVL_SOURCE) + "/" + file);
}

bool IsOptionByte(char byte) {
  return (byte >= 'a' && byte <= 'z') || byte == '-';
}

// Adds the words of `text` that begin with "-".
void Collect(const std::string& text, Options& options) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '-') continue;
    const std::size_t first = i;
    while (i < text.size() && IsOptionByte(text[i]))
      ++i;
    if (i - first > 1) options.insert(text.substr(first, i - first));
  }
}

Options OfHelp() {
  const std::string help = RunKvl("--help").output;
  Options options;
  std::istringstream lines(help.substr(help.find("\nOptions:\n")));
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("  -", 0) == 0) Collect(line.substr(0, line.find(' ', 2)), options);
  }
  return options;
}

TEST(KVLOptionLists, TheHelpTextListsThem) {
  const Options options = OfHelp();
  EXPECT_EQ(options.count("-c"), 1u);
  EXPECT_EQ(options.count("--no-modules"), 1u);
  EXPECT_EQ(options.size(), 12u);
}

TEST(KVLOptionLists, TheManualPageHasTheSame) {
  Options options;
  std::istringstream lines(Source("docs/kvl.1"));
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind(".It Fl ", 0) != 0) continue;
    // "Fl Fl json" is "--json" there.
    std::istringstream words(line.substr(4));
    std::string dashes;
    for (std::string word; words >> word;) {
      if (word == "Fl") {
        dashes += "-";
      } else {
        if (!dashes.empty()) options.insert(dashes + word);
        dashes.clear();
      }
    }
  }
  EXPECT_EQ(options, OfHelp());
}

TEST(KVLOptionLists, TheCompletionOfBashHasTheSame) {
  const std::string file = Source("host/completion/kvl.bash");
  const std::size_t first = file.find("_kvl_options='");
  ASSERT_NE(first, std::string::npos);
  Options options;
  Collect(file.substr(first, file.find('\n', first) - first), options);
  EXPECT_EQ(options, OfHelp());
}

TEST(KVLOptionLists, TheCompletionOfZshHasTheSame) {
  const std::string file = Source("host/completion/_kvl");
  Options options;
  std::istringstream lines(file.substr(file.find("_arguments -s")));
  std::string line;
  std::getline(lines, line);
  while (std::getline(lines, line))
    Collect(line.substr(0, line.find('[')), options);
  EXPECT_EQ(options, OfHelp());
}

TEST(KVLOptionLists, TheCompletionOfFishHasTheSame) {
  Options options;
  std::istringstream lines(Source("host/completion/kvl.fish"));
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("complete -c kvl", 0) != 0) continue;
    std::istringstream words(line.substr(15));
    std::string before;
    for (std::string word; words >> word; before = word) {
      if (before == "-s") options.insert("-" + word);
      if (before == "-l") options.insert("--" + word);
    }
  }
  EXPECT_EQ(options, OfHelp());
}

}  // namespace
