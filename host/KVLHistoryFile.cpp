#include "KVLHistoryFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr mode_t OwnFile = 0600;
constexpr mode_t OwnFolder = 0700;
constexpr std::size_t LongestLine = 64 * 1024;  // bytes

std::string Variable(const char* name) {
  const char* const value = std::getenv(name);
  return value ? value : "";
}

std::string FindPath() {
  if (const char* const named = std::getenv("KVL_HISTORY")) return named;
  // A relative path there is no path at all.
  const std::string state = Variable("XDG_STATE_HOME");
  if (!state.empty() && state[0] == '/') return state + "/kvl/history";
  const std::string home = Variable("HOME");
  return home.empty() ? "" : home + "/.local/state/kvl/history";
}

// What may wait for another program, or leads to a device, is no history. -1 when it is none.
int Open(const std::string& path, int flags) {
  const int descriptor = open(path.c_str(), flags | O_NONBLOCK | O_CLOEXEC, OwnFile);
  struct stat status = {};
  if (descriptor < 0 || (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode))) {
    return descriptor;
  }
  (void)close(descriptor);
  return -1;
}

void MakeFolders(const std::string& path) {
  for (std::size_t i = path.find('/', 1); i != std::string::npos; i = path.find('/', i + 1)) {
    (void)mkdir(path.substr(0, i).c_str(), OwnFolder);  // mostly there already
  }
}

bool WriteAll(int descriptor, const std::string& text) {
  return write(descriptor, text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

// In one step, since other programs may read it meanwhile.
void Replace(const std::string& path, const std::vector<std::string>& lines) {
  const std::string draft = path + "." + std::to_string(getpid());
  const int descriptor = Open(draft, O_WRONLY | O_CREAT | O_EXCL);
  if (descriptor < 0) return;
  std::string text;
  for (const std::string& line : lines)
    text += line + "\n";
  const bool isWritten = WriteAll(descriptor, text);
  const bool isClosed = close(descriptor) == 0;
  const bool isReplaced = isWritten && isClosed && std::rename(draft.c_str(), path.c_str()) == 0;
  if (!isReplaced) (void)unlink(draft.c_str());
}

}  // namespace

KVLHistoryFile::KVLHistoryFile() : path(FindPath()) {}

std::vector<std::string> KVLHistoryFile::Read(std::size_t count) const {
  std::vector<std::string> lines;
  const int descriptor = path.empty() ? -1 : Open(path, O_RDONLY);
  std::FILE* const stream = descriptor < 0 ? nullptr : fdopen(descriptor, "r");
  if (!stream) return lines;
  std::string line;
  for (int character = std::getc(stream); character != EOF; character = std::getc(stream)) {
    if (character != '\n') {
      line += static_cast<char>(character);
      continue;
    }
    if (!line.empty() && line.find('\0') == std::string::npos) lines.push_back(line);
    line.clear();
  }
  (void)std::fclose(stream);  // read only: nothing can be lost
  const bool isLong = lines.size() > 2 * count;
  if (lines.size() > count) {
    lines.erase(lines.begin(), lines.end() - static_cast<std::ptrdiff_t>(count));
  }
  if (isLong) Replace(path, lines);
  return lines;
}

void KVLHistoryFile::Append(const std::string& line) const {
  if (path.empty() || line.size() > LongestLine) return;
  int descriptor = Open(path, O_WRONLY | O_APPEND | O_CREAT);
  if (descriptor < 0) {
    MakeFolders(path);
    descriptor = Open(path, O_WRONLY | O_APPEND | O_CREAT);
  }
  if (descriptor < 0) return;
  (void)WriteAll(descriptor, line + "\n");
  (void)close(descriptor);
}
