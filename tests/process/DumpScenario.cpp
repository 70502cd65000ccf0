// Ends the process without flushing anything: what `CheckAndDump` reports has been written by
// then, and so has what the program wrote before it. The test compares standard output.

#include <cstdio>
#include <cstdlib>

#include "KVLCodeEnv.h"
#include "KVLCodeEnvAccess.h"
#include "KVLResult.h"

int main() {
  std::setvbuf(stdout, nullptr, _IOFBF, 65536);
  KVLCodeEnv::GetDefault().GetSubEnv("host");
  if (KVLCodeEnvAccess::CheckAndDump() != KVLResult_Success) return 1;
  KVLCodeEnv::GetDefault().GetSubEnv("_host");
  std::printf("host: before\n");
  if (KVLCodeEnvAccess::CheckAndDump() != KVLResult_Failure) return 1;
#if !defined(_WIN32)
  // Shows that the end flushes nothing; on Windows it may.
  std::printf("host: not flushed\n");
#endif
  std::_Exit(0);
}
