#include "KVLOutput.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "KVLCodeEnvShell.h"
#include "KVLPlatform.h"

bool KVLOutput::Write(int channel, const char* text, int length) {
  const std::size_t size = static_cast<std::size_t>(length);
  if (channel == KVLShellChannel_Error) {
    (void)Flush();
    (void)std::fwrite(text, 1, size, stderr);  // there is nowhere to tell that this failed
  } else if (!hasFailed && std::fwrite(text, 1, size, stdout) != size) {
    Fail(errno);
  }
  return !hasFailed;
}

bool KVLOutput::Flush() {
  errno = 0;
  // A function that was called may have written to the stream as well.
  if (!hasFailed && (std::fflush(stdout) != 0 || std::ferror(stdout))) Fail(errno);
  return !hasFailed;
}

void KVLOutput::Fail(int error) {
  hasFailed = true;
  if (KVLIsReaderGone(error)) return;
  const char* const reason = error != 0 ? std::strerror(error) : "a write failed";
  std::fprintf(stderr, "kvl: cannot write to standard output: %s\n", reason);
}
