#include "KVLScript.h"

#include <cerrno>
#include <cstring>
#include <limits>

#include "KVLCodeEnvAccess.h"
#include "KVLShellResult.h"

namespace {

constexpr char Utf8Mark[] = "\xEF\xBB\xBF";

// Reads up to and without the next newline. False at the end of the stream.
bool ReadLine(std::FILE* stream, std::string& line) {
  line.clear();
  int character = std::getc(stream);
  if (character == EOF) return false;
  for (; character != EOF && character != '\n'; character = std::getc(stream))
    line += static_cast<char>(character);
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return true;
}

}  // namespace

long KVLRunText(const std::string& text) {
  if (text.size() >= static_cast<std::size_t>(std::numeric_limits<int>::max())) {
    std::fprintf(stderr, "kvl: the text is too long\n");
    return KVLShellResult_Usage;
  }
  const long result = KVLCodeEnvRun(MRBUnicodeString(text.data(), static_cast<int>(text.size())));
  if (result == KVLResult_NotImplemented) {
    std::fprintf(stderr, "kvl: the shell library 'KVLCodeEnvShell' cannot be loaded\n");
  }
  return result;
}

long KVLRunLines(std::FILE* stream, const std::string& streamName) {
  std::string line;
  for (long number = 1; ReadLine(stream, line); ++number) {
    if (number == 1 && line.compare(0, std::strlen(Utf8Mark), Utf8Mark) == 0) {
      line.erase(0, std::strlen(Utf8Mark));
    }
    const long result = KVLRunText(line);
    if (result == KVLResult_Success) continue;
    std::fprintf(stderr, "%s:%ld: stopped here (exit code %d)\n", streamName.c_str(), number,
                 static_cast<int>(KVLExitCodeOf(result)));
    return result;
  }
  if (!std::ferror(stream)) return KVLResult_Success;
  std::fprintf(stderr, "kvl: cannot read '%s': %s\n", streamName.c_str(), std::strerror(errno));
  return KVLShellResult_NotFound;
}

long KVLRunFile(const std::string& path) {
  // As bytes: what a line ends with is dealt with above.
  std::FILE* const stream = std::fopen(path.c_str(), "rb");
  if (!stream) {
    std::fprintf(stderr, "kvl: cannot open '%s': %s\n", path.c_str(), std::strerror(errno));
    return KVLShellResult_NotFound;
  }
  const long result = KVLRunLines(stream, path);
  (void)std::fclose(stream);  // read only: nothing can be lost
  return result;
}

void KVLRunPrompt() {
  std::fprintf(stderr, "Type 'help' for the commands; an end of file ends the session.\n");
  std::string line;
  while (true) {
    std::fprintf(stderr, "kvl> ");
    if (!ReadLine(stdin, line)) break;
    (void)KVLRunText(line);  // the user has been told
  }
  std::fprintf(stderr, "\n");
}
