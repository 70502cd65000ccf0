#define WIN32_LEAN_AND_MEAN
#include <windows.h>
// After what it builds on.
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "KVLInterrupt.h"
#include "KVLPlatform.h"

namespace {

constexpr int UsualWidth = 80;  // columns
// An interrupt is told on a thread of its own, shortly after the reading of a line has ended.
constexpr DWORD InterruptDelay = 100;  // milliseconds

void (*interruptHandler)() = nullptr;

HANDLE HandleOf(KVLStandardStream stream) {
  switch (stream) {
    case KVLStandardInput:
      return GetStdHandle(STD_INPUT_HANDLE);
    case KVLStandardOutput:
      return GetStdHandle(STD_OUTPUT_HANDLE);
    case KVLStandardError:
      break;
  }
  return GetStdHandle(STD_ERROR_HANDLE);
}

BOOL WINAPI OnControl(DWORD event) {
  if (event != CTRL_C_EVENT) return FALSE;
  interruptHandler();
  return TRUE;
}

std::string ToUtf8(const wchar_t* text) {
  const int length = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  if (length <= 0) return "";
  std::string bytes(static_cast<std::size_t>(length), '\0');
  (void)WideCharToMultiByte(CP_UTF8, 0, text, -1, bytes.data(), length, nullptr, nullptr);
  bytes.pop_back();  // the terminator
  return bytes;
}

std::wstring FromUtf8(const std::string& text) {
  const int length = MultiByteToWideChar(CP_UTF8, 0, text.c_str(), -1, nullptr, 0);
  if (length <= 0) return L"";
  std::wstring wide(static_cast<std::size_t>(length), L'\0');
  (void)MultiByteToWideChar(CP_UTF8, 0, text.c_str(), -1, wide.data(), length);
  wide.pop_back();  // the terminator
  return wide;
}

}  // namespace

void KVLPrepareStreams() {
  // A script that is piped in is bytes: one of them may be what ends a file of texts.
  if (!KVLIsTerminal(KVLStandardInput)) (void)_setmode(_fileno(stdin), _O_BINARY);
  (void)SetConsoleCP(CP_UTF8);
  (void)SetConsoleOutputCP(CP_UTF8);
}

std::vector<std::string> KVLArguments(int, char**) {
  std::vector<std::string> arguments;
  int count = 0;
  wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
  if (!words) return arguments;
  for (int i = 1; i < count; ++i)
    arguments.push_back(ToUtf8(words[i]));
  (void)LocalFree(words);
  return arguments;
}

bool KVLIsTerminal(KVLStandardStream stream) {
  // Every character device passes for a terminal with the C library; a console alone has a mode.
  DWORD mode = 0;
  return GetConsoleMode(HandleOf(stream), &mode) != 0;
}

bool KVLTerminalTakesCodes() {
  for (const KVLStandardStream stream : {KVLStandardOutput, KVLStandardError}) {
    DWORD mode = 0;
    const HANDLE console = HandleOf(stream);
    if (!GetConsoleMode(console, &mode)) return false;
    if (!SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING)) return false;
  }
  return true;
}

int KVLTerminalWidth() {
  CONSOLE_SCREEN_BUFFER_INFO info;
  if (!GetConsoleScreenBufferInfo(HandleOf(KVLStandardError), &info)) return UsualWidth;
  return info.srWindow.Right - info.srWindow.Left + 1;
}

// A console is set up by nobody but its own programs' reading.
void KVLGuardTerminal() {}

std::FILE* KVLOpenToRead(const std::string& path) {
  return _wfopen(FromUtf8(path).c_str(), L"rb");
}

std::string KVLWhyNotLoaded(const std::string&) {
  return "";
}

bool KVLIsReaderGone(int error) {
  return error == EPIPE || error == EINVAL;
}

void KVLOnInterrupt(void (*handler)()) {
  interruptHandler = handler;
  (void)SetConsoleCtrlHandler(OnControl, TRUE);
}

void KVLWriteErrorNow(const char* text) {
  DWORD written = 0;
  (void)WriteFile(HandleOf(KVLStandardError), text, static_cast<DWORD>(std::strlen(text)), &written,
                  nullptr);
}

void KVLEndNow(int exitCode) {
  _exit(exitCode);
}

KVLTyped KVLReadTyped(char& byte) {
  const int character = std::getc(stdin);
  if (character != EOF) {
    byte = static_cast<char>(character);
    return KVLTyped::Byte;
  }
  Sleep(InterruptDelay);
  if (!KVLInterrupt::Take()) return KVLTyped::End;
  std::clearerr(stdin);
  return KVLTyped::Interrupt;
}
