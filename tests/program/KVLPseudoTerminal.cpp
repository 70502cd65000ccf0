#include "KVLPseudoTerminal.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds Patience(30);
constexpr int EndedBySignal = 1000;

[[noreturn]] void Start(const std::string& program, const std::vector<std::string>& arguments,
                        const std::vector<KVLPseudoTerminal::Setting>& settings,
                        const std::vector<KVLPseudoTerminal::Redirection>& redirections) {
  for (const char* const name : {"NO_COLOR", "KVL_HISTORY", "EDITRC", "KVLCodeEnv_Modules"})
    (void)unsetenv(name);
  (void)setenv("TERM", "xterm", 1);
  (void)setenv("HOME", KVL_SCRATCH, 1);
  (void)setenv("XDG_STATE_HOME", KVL_SCRATCH, 1);
  for (const KVLPseudoTerminal::Setting& setting : settings)
    (void)setenv(setting.name.c_str(), setting.value.c_str(), 1);
  for (const KVLPseudoTerminal::Redirection& redirection : redirections) {
    const int file = open(redirection.file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    (void)dup2(file, redirection.descriptor);
  }
  std::vector<char*> words{const_cast<char*>(program.c_str())};
  for (const std::string& argument : arguments)
    words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  (void)execv(program.c_str(), words.data());
  _exit(127);
}

struct winsize ToWindow(KVLWindowSize size) {
  struct winsize window = {};
  window.ws_col = size.columns;
  window.ws_row = size.rows;
  return window;
}

}  // namespace

KVLPseudoTerminal::KVLPseudoTerminal(const std::vector<std::string>& arguments,
                                     const std::vector<Setting>& settings, KVLWindowSize size,
                                     const std::vector<Redirection>& redirections,
                                     const std::string& program) {
  const struct winsize window = ToWindow(size);
  process = forkpty(&terminal, nullptr, nullptr, &window);
  if (process == 0) Start(program, arguments, settings, redirections);
}

KVLPseudoTerminal::~KVLPseudoTerminal() {
  if (process > 0) {
    (void)kill(process, SIGKILL);
    (void)waitpid(process, nullptr, 0);
  }
  (void)close(terminal);
}

void KVLPseudoTerminal::Type(const std::string& keys) {
  for (std::size_t written = 0; written < keys.size();) {
    const ssize_t count = write(terminal, keys.data() + written, keys.size() - written);
    if (count < 0) return;
    written += static_cast<std::size_t>(count);
  }
}

void KVLPseudoTerminal::Resize(KVLWindowSize size) {
  const struct winsize window = ToWindow(size);
  (void)ioctl(terminal, TIOCSWINSZ, &window);
}

void KVLPseudoTerminal::Signal(int signal) {
  (void)kill(process, signal);
}

// False at the end, and when nothing comes for a while.
bool KVLPseudoTerminal::ReadMore() {
  struct pollfd waiting = {terminal, POLLIN, 0};
  constexpr int milliseconds =
      static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(Patience).count());
  if (poll(&waiting, 1, milliseconds) != 1) return false;
  char bytes[4096];
  const ssize_t count = read(terminal, bytes, sizeof(bytes));
  hasEnded = count <= 0;
  if (hasEnded) return false;
  shown.append(bytes, static_cast<std::size_t>(count));
  return true;
}

bool KVLPseudoTerminal::Expect(const std::string& text) {
  const Clock::time_point end = Clock::now() + Patience;
  std::size_t position = shown.find(text, found);
  while (position == std::string::npos) {
    if (Clock::now() > end || !ReadMore()) return false;
    position = shown.find(text, found);
  }
  found = position + text.size();
  return true;
}

int KVLPseudoTerminal::Wait() {
  const Clock::time_point end = Clock::now() + Patience;
  // The terminal ends with the program.
  while (!hasEnded) {
    if (!ReadMore() && !hasEnded) return -1;
    if (Clock::now() > end) return -1;
  }
  int status = 0;
  if (waitpid(process, &status, 0) != process) return -1;
  process = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : EndedBySignal + WTERMSIG(status);
}

void KVLPseudoTerminal::WaitForProgram() {
  (void)waitpid(process, nullptr, 0);
  process = -1;
}

bool KVLPseudoTerminal::Echoes() const {
  struct termios modes = {};
  return tcgetattr(terminal, &modes) == 0 && (modes.c_lflag & ECHO) != 0;
}
