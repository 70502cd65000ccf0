#include "KVLStandardOutput.h"

#include <cstdio>

#include "MRBUnicodeString.h"

// The C library's stream is the one that every C++ stream on standard output stays in step with,
// and it needs no start-up work.
void KVLWriteLine(const MRBUnicodeString& text) {
  const MRBUnicodeString line = text + "\n";
  std::fwrite(line.ConvertToChar(), 1, static_cast<std::size_t>(line.GetLengthInByte()), stdout);
  std::fflush(stdout);
}
