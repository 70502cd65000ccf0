// Replays what the pages show: lines of the form
//
//     kvl> math/hypot(3, 4)
//     5
//
// Each "kvl> " line runs in one session a page; the lines below it, up to the next one or the end
// of the block, are what it says. A comment "# exit 3" at its end is the exit code of a program
// that ends with it; without one it is 0.

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "KVLCodeEnvAccess.h"
#include "KVLCodeEnvShell.h"
#include "KVLShellResult.h"
#include "MRBHost.h"

namespace {

constexpr char Prompt[] = "    kvl> ";
constexpr char Indent[] = "    ";
constexpr char Exit[] = "# exit ";
constexpr char Heading[] = "#";
constexpr char NumberedHeading[] = "### ";
constexpr char SourceFile[] = ".cpp:";

using RunTo = long (*)(const MRBUnicodeString&, unsigned int, KVLShellSink, void*);

struct Step {
  std::string text;
  std::string expected;
  int line;
  int exitCode;
};

void Collect(void* receiver, int, const char* text, int length) {
  static_cast<std::string*>(receiver)->append(text, static_cast<std::size_t>(length));
}

bool StartsWith(const std::string& line, const char* start) {
  return line.compare(0, std::char_traits<char>::length(start), start) == 0;
}

int NumberAt(const std::string& text, std::size_t position) {
  int number = 0;
  for (; position < text.size() && text[position] >= '0' && text[position] <= '9'; ++position)
    number = 10 * number + (text[position] - '0');
  return number;
}

int ExitCodeOf(const std::string& text, int codeOfSection) {
  const std::size_t comment = text.rfind(Exit);
  return comment == std::string::npos ? codeOfSection : NumberAt(text, comment + sizeof(Exit) - 1);
}

// Without the folders and lines of source files.
std::string WithoutPlaces(std::string text) {
  for (std::size_t at = text.find(SourceFile); at != std::string::npos;
       at = text.find(SourceFile, at + 1)) {
    const std::size_t number = at + sizeof(SourceFile) - 1;
    std::size_t end = number;
    while (end < text.size() && text[end] >= '0' && text[end] <= '9')
      ++end;
    text.erase(number, end - number);
    const std::size_t start = text.find_last_of(" \n", at) + 1;
    const std::size_t slash = text.rfind('/', at);
    if (slash == std::string::npos || slash < start) continue;
    text.erase(start, slash + 1 - start);
    at -= slash + 1 - start;
  }
  return text;
}

std::vector<Step> StepsOf(const std::string& path) {
  std::vector<Step> steps;
  std::FILE* const file = std::fopen(path.c_str(), "rb");
  EXPECT_NE(file, nullptr) << path;
  if (!file) return steps;
  std::string line;
  bool isInBlock = false;
  int number = 1;
  int codeOfSection = 0;
  for (int character = std::getc(file); character != EOF; character = std::getc(file)) {
    if (character != '\n') {
      if (character != '\r') line += static_cast<char>(character);
      continue;
    }
    if (StartsWith(line, Prompt)) {
      const std::string text = line.substr(sizeof(Prompt) - 1);
      steps.push_back(Step{text, "", number, ExitCodeOf(text, codeOfSection)});
      isInBlock = true;
    } else if (isInBlock && StartsWith(line, Indent)) {
      steps.back().expected += line.substr(sizeof(Indent) - 1) + "\n";
    } else {
      isInBlock = false;
      if (StartsWith(line, Heading)) {
        codeOfSection =
            StartsWith(line, NumberedHeading) ? NumberAt(line, sizeof(NumberedHeading) - 1) : 0;
      }
    }
    line.clear();
    ++number;
  }
  (void)std::fclose(file);  // read only
  return steps;
}

class KVLShellTranscript : public testing::TestWithParam<const char*> {
 protected:
  static void SetUpTestSuite() {
    EXPECT_EQ(KVLCodeEnvAccess::Load(), KVLResult_Success);
    const LibraryHandler shell =
        MRBGetFunctionAddress("KVLCodeEnvShell", "KVLCodeShellRunTo", nullptr, -1, 1, 0);
    runTo = reinterpret_cast<RunTo>(shell.entry);
  }

  static RunTo runTo;
};

RunTo KVLShellTranscript::runTo = nullptr;

TEST_P(KVLShellTranscript, ShowsWhatTheShellSays) {
  ASSERT_NE(runTo, nullptr);
  const std::string page = std::string(KVL_DOCS) + "/" + GetParam();
  const std::vector<Step> steps = StepsOf(page);
  EXPECT_FALSE(steps.empty()) << page;
  for (const Step& step : steps) {
    std::string said;
    const MRBUnicodeString text(step.text.data(), static_cast<int>(step.text.size()));
    const long code = runTo(text, 0, Collect, &said);
    EXPECT_EQ(WithoutPlaces(said), WithoutPlaces(step.expected))
        << page << ":" << step.line << ": " << step.text;
    EXPECT_EQ(KVLExitCodeOf(code), step.exitCode) << page << ":" << step.line;
  }
}

INSTANTIATE_TEST_SUITE_P(Pages, KVLShellTranscript, testing::Values("shell.md", "errors.md"));

}  // namespace
