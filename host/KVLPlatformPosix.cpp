#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/select.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "KVLInterrupt.h"
#include "KVLPlatform.h"
#include "MRBHost.h"

namespace {

constexpr int UsualWidth = 80;  // columns

void (*interruptHandler)() = nullptr;
volatile sig_atomic_t windowChanged = 0;
volatile sig_atomic_t continued = 0;

void OnSignal(int signal) {
  const int error = errno;
  if (signal == SIGINT) {
    interruptHandler();
  } else if (signal == SIGWINCH) {
    windowChanged = 1;
  } else {
    continued = 1;
  }
  errno = error;
}

struct termios usualModes;

// The signal is caught once, so that it now does what it does by itself.
void OnEnd(int signal) {
  (void)tcsetattr(STDIN_FILENO, TCSANOW, &usualModes);
  (void)raise(signal);
}

// Whoever started the program may have seen to it that a signal does nothing.
void Catch(int signal, void (*handler)(int), int flags) {
  struct sigaction action = {};
  if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN) return;
  action = {};
  action.sa_handler = handler;
  action.sa_flags = flags;
  sigemptyset(&action.sa_mask);
  (void)sigaction(signal, &action, nullptr);
}

// True, once, when the flag was set.
bool Take(volatile sig_atomic_t& flag) {
  const bool isSet = flag != 0;
  flag = 0;
  return isSet;
}

}  // namespace

void KVLPrepareStreams() {
  (void)signal(SIGPIPE, SIG_IGN);
  // A result that is written where nothing was to be read from fails.
  int descriptor = 0;
  do {
    descriptor = open("/dev/null", O_RDONLY);
  } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
  if (descriptor > STDERR_FILENO) (void)close(descriptor);
}

std::vector<std::string> KVLArguments(int argc, char** argv) {
  return argc > 0 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
}

bool KVLIsTerminal(KVLStandardStream stream) {
  return isatty(stream) != 0;
}

bool KVLTerminalTakesCodes() {
  const char* const terminal = std::getenv("TERM");
  return terminal && *terminal && std::strcmp(terminal, "dumb") != 0;
}

int KVLTerminalWidth() {
  struct winsize size = {};
  if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return UsualWidth;
  return size.ws_col;
}

void KVLGuardTerminal() {
  if (tcgetattr(STDIN_FILENO, &usualModes) != 0) return;
  for (const int signal : {SIGTERM, SIGHUP, SIGQUIT})
    Catch(signal, OnEnd, static_cast<int>(SA_RESETHAND));
}

std::FILE* KVLOpenToRead(const std::string& path) {
  return std::fopen(path.c_str(), "rbe");
}

std::string KVLWhyNotLoaded(const std::string& library) {
  // The kernel never asks the platform for such a one.
  if (library.empty() || library.find_first_of("/\\") != std::string::npos) {
    return "no library is called so";
  }
  Dl_info kernel;
  const void* const inKernel = reinterpret_cast<const void*>(&MRBGetEntryPoint);
  if (dladdr(inKernel, &kernel) == 0 || !kernel.dli_fname) return "";
  const std::string kernelFile = kernel.dli_fname;
  const std::string folder = kernelFile.substr(0, kernelFile.rfind('/') + 1);
  void* const handle = dlopen((folder + "lib" + library + ".so").c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!handle) {
    const char* const reason = dlerror();
    return reason ? reason : "";
  }
  (void)dlclose(handle);
  return "";
}

bool KVLIsReaderGone(int error) {
  return error == EPIPE;
}

void KVLOnInterrupt(void (*handler)()) {
  interruptHandler = handler;
  // Calls of the platform that a signal falls into go on by themselves, for the sake of the
  // functions that are called; waiting for input does not.
  for (const int signal : {SIGINT, SIGWINCH, SIGCONT})
    Catch(signal, OnSignal, SA_RESTART);
}

void KVLWriteErrorNow(const char* text) {
  // There is nowhere to tell that this failed.
  const ssize_t written = write(STDERR_FILENO, text, std::strlen(text));
  (void)written;
}

void KVLEndNow(int exitCode) {
  _exit(exitCode);
}

KVLTyped KVLReadTyped(char& byte) {
  // Signals come while the program waits and at no other moment, so that none comes between the
  // question whether there was one and the waiting.
  sigset_t caught;
  sigset_t before;
  sigemptyset(&caught);
  sigaddset(&caught, SIGINT);
  sigaddset(&caught, SIGWINCH);
  sigaddset(&caught, SIGCONT);
  (void)sigprocmask(SIG_BLOCK, &caught, &before);
  KVLTyped typed = KVLTyped::End;
  for (bool isDone = false; !isDone;) {
    isDone = true;
    fd_set input;
    FD_ZERO(&input);
    FD_SET(STDIN_FILENO, &input);
    if (KVLInterrupt::Take()) {
      typed = KVLTyped::Interrupt;
    } else if (Take(continued)) {
      typed = KVLTyped::Continue;
    } else if (Take(windowChanged)) {
      typed = KVLTyped::WindowChange;
    } else if (pselect(STDIN_FILENO + 1, &input, nullptr, nullptr, nullptr, &before) < 0) {
      isDone = errno != EINTR;
    } else {
      const ssize_t nbRead = read(STDIN_FILENO, &byte, 1);
      if (nbRead == 1) typed = KVLTyped::Byte;
      isDone = nbRead >= 0 || (errno != EINTR && errno != EAGAIN);
    }
  }
  (void)sigprocmask(SIG_SETMASK, &before, nullptr);
  return typed;
}
