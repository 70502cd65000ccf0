#include <KVLCodeEnvAccess.h>
#include <KVLResult.h>
#include <MRBHost.h>

#include <cstdio>

namespace {

int nbReports = 0;

void CountReports(int level, const char*, int) {
  if (level == 1) ++nbReports;
}

}  // namespace

int main() {
  // One report for each library that cannot be loaded; the others are loaded all the same.
  MRBSetTraceSink(CountReports);
  const long result = KVLCodeEnvAccess::Load();
  std::puts(KVLFailed(result) == (nbReports > 0) ? "every failure reported" : "silent failure");

  // What a command is, the shell library decides.
  std::printf("%ld\n", KVLCodeEnvRun("call math/add 3.5 4.25"));

  // A second load, or unload, has nothing to do, which is no failure.
  std::printf("%ld\n", KVLCodeEnvAccess::Load());
  std::printf("%ld\n", KVLCodeEnvAccess::Unload());
  std::printf("%ld\n", KVLCodeEnvAccess::Unload());
}
