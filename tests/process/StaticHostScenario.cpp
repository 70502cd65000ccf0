// A host that publishes objects of its own for as long as it lives, and that puts the registry away
// from the destructor of a static object, after `main`. What it writes to standard output is
// compared by the test.

#include <cstdio>
#include <cstdlib>

#include "KVLCodeEnv.h"
#include "KVLCodeEnvAccess.h"
#include "KVLCodeObjectRegisterer.h"
#include "KVLResult.h"
#include "MRBHost.h"

namespace {

void Expect(long expected, long result, const char* operation) {
  if (result == expected) return;
  std::fprintf(stderr, "%s returned %ld instead of %ld\n", operation, result, expected);
  std::_Exit(1);
}

struct Host {
  ~Host() {
    std::printf("host: last words\n");
    Expect(KVLResult_Success, KVLCodeEnvAccess::Unload(), "Unload");
    Expect(KVLResult_False, KVLCodeEnvAccess::Unload(), "the second Unload");
    Expect(KVLResult_Failure, KVLCodeEnvAccess::CheckAndDump(), "CheckAndDump");
    std::printf("host: end\n");
  }
};

// Constructed first, hence the last to go.
const Host host;

const KVLCodeObjectRegisterer first(KVLCodeEnv::GetDefault(), new KVLCodeObject("first"),
                                    "host/Name", KVLSourceLocation("host.cpp", 1, ""));
const KVLCodeObjectRegisterer second(KVLCodeEnv::GetDefault(), new KVLCodeObject("second"),
                                     "host/Name", KVLSourceLocation("host.cpp", 2, ""));
// A copy withdraws what its source has withdrawn already.
const KVLCodeObjectRegisterer third(first);

void IgnoreTrace(int, const char*, int) {}

}  // namespace

int main() {
  static const KVLCodeObjectRegisterer late(KVLCodeEnv::GetDefault(), new KVLCodeObject("late"),
                                            "host/Late", KVLSourceLocation("host.cpp", 3, ""));
  MRBSetTraceSink(IgnoreTrace);
  Expect(KVLResult_Success, KVLCodeEnvAccess::Load(), "Load");
  std::printf("host: loaded\n");
  Expect(KVLResult_Failure, KVLCodeEnvAccess::CheckAndDump(), "CheckAndDump");
  std::printf("host: checked\n");
  return 0;
}
