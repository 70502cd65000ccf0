// What the fuzzer does, on its stored inputs and on pieces of them put together at random.

#include <gtest/gtest.h>

#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "../fuzz/ShellFuzz.h"

namespace {

std::vector<std::string> StoredInputs() {
  std::vector<std::string> inputs;
  for (const char* const name : {"bind", "bytes", "commands", "convert", "members", "open",
                                 "outputs", "texts", "unknown", "use", "values"}) {
    const std::string path = std::string(KVL_FUZZ_CORPUS) + "/" + name;
    std::FILE* const file = std::fopen(path.c_str(), "rb");
    EXPECT_NE(file, nullptr) << path;
    if (!file) continue;
    inputs.emplace_back();
    for (int character = std::getc(file); character != EOF; character = std::getc(file))
      inputs.back() += static_cast<char>(character);
    (void)std::fclose(file);  // read only
  }
  return inputs;
}

TEST(KVLShellFuzz, StoredInputsKeepTheShellsPromises) {
  for (const std::string& input : StoredInputs())
    KVLFuzzShell(input);
}

TEST(KVLShellFuzz, PiecesOfThemPutTogetherDoSo) {
  constexpr unsigned int Seed = 20240717;
  SCOPED_TRACE("seed " + std::to_string(Seed));
  std::mt19937 random(Seed);
  const std::vector<std::string> inputs = StoredInputs();
  ASSERT_FALSE(inputs.empty());
  for (int round = 0; round < 300; ++round) {
    std::string text;
    for (auto pieces = 1 + random() % 4; pieces > 0; --pieces) {
      const std::string& input = inputs[random() % inputs.size()];
      text += input.substr(random() % input.size(), 1 + random() % 40);
    }
    KVLFuzzShell(text);
  }
}

}  // namespace
