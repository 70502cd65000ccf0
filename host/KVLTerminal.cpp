#include "KVLTerminal.h"

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#else
#include <unistd.h>
#endif

bool KVLIsInputTerminal() {
#if defined(_WIN32)
  // Every character device passes for a terminal with the C library; a console alone has a mode.
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &mode) != 0;
#else
  return isatty(STDIN_FILENO) != 0;
#endif
}
