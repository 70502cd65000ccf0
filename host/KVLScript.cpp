#include "KVLScript.h"

#include <cerrno>
#include <cstring>

#include "KVLPlatform.h"
#include "KVLSession.h"
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

long KVLRunLines(KVLSession& session, std::FILE* stream, const std::string& streamName) {
  std::string line;
  for (long number = 1; ReadLine(stream, line); ++number) {
    if (number == 1 && line.compare(0, std::strlen(Utf8Mark), Utf8Mark) == 0) {
      line.erase(0, std::strlen(Utf8Mark));
    }
    const long result = session.Run(line);
    if (result == KVLResult_Success) continue;
    if (KVLShellIsQuit(result)) return result;
    std::fprintf(stderr, "%s:%ld: stopped here (exit code %d)\n", streamName.c_str(), number,
                 KVLExitCodeOf(result));
    return result;
  }
  if (!std::ferror(stream)) return KVLResult_Success;
  std::fprintf(stderr, "kvl: cannot read '%s': %s\n", streamName.c_str(), std::strerror(errno));
  return KVLShellResult_NotFound;
}

long KVLRunFile(KVLSession& session, const std::string& path) {
  std::FILE* const stream = KVLOpenToRead(path);
  if (!stream) {
    std::fprintf(stderr, "kvl: cannot open '%s': %s\n", path.c_str(), std::strerror(errno));
    return KVLShellResult_NotFound;
  }
  const long result = KVLRunLines(session, stream, path);
  (void)std::fclose(stream);  // read only: nothing can be lost
  return result;
}
