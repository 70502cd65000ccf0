// Memory runs out in the first `Load` and the first `Run`: what was to be done once a process is
// then done by a later call. The program stands in for the C library's allocation function.

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include "KVLCodeEnvAccess.h"
#include "KVLResult.h"
#include "MRBHost.h"

namespace {

// Which of the kernel's allocations of at least `sizeOfFailing` bytes is to fail, from 1; 0 for
// none.
int untilFailure;
std::size_t sizeOfFailing;

bool IsInKernel(void* address) {
  Dl_info info;
  return dladdr(address, &info) && info.dli_fname && std::strstr(info.dli_fname, "libKVLKernel");
}

void Check(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", what);
  std::exit(1);
}

void IgnoreTrace(int, const char*, int) {}

// The further module that was reported as missing, up to its padding.
std::string further;

void NoteFurther(int, const char* text, int) {
  const char* const found = std::strstr(text, "Try");
  if (found) further.assign(found, 4);
}

// False when memory ran out. The list is longer than anything else that the kernel allocates here.
bool LoadWith(const char* list, int failing) {
  constexpr std::size_t Length = 5000;
  std::string padded = list;
  padded.resize(Length, '_');
  setenv("KVLCodeEnv_Modules", padded.c_str(), 1);
  sizeOfFailing = Length;
  untilFailure = failing;
  try {
    Check(KVLCodeEnvAccess::Load() == KVLResult_Failure, "no module is found");
    return true;
  } catch (const std::bad_alloc&) {
    Check(KVLCodeEnvAccess::Unload() == KVLResult_False, "a Load that threw has loaded nothing");
    return false;
  }
}

void AModuleListThatCouldNotBeReadIsReadByTheNextLoad() {
  MRBSetTraceSink(NoteFurther);
  Check(!LoadWith("Try1", 1), "the first attempt has no memory for the list");
  Check(!LoadWith("Try2", 2), "the second one keeps it, and fails behind that");
  Check(LoadWith("Try3", 0), "the third one has memory");
  Check(further == "Try2", "the list is that of the first attempt that could read it");
}

void AShellThatCouldNotBeResolvedIsResolvedByTheNextRun() {
  MRBSetTraceSink(IgnoreTrace);
  bool thrown = false;
  untilFailure = 1;
  try {
    (void)KVLCodeEnvRun("5");
  } catch (const std::bad_alloc&) {
    thrown = true;
  }
  untilFailure = 0;
  Check(thrown, "the first Run had no memory");
  Check(KVLCodeEnvRun("5") == 5, "the next one finds the shell");
}

}  // namespace

extern "C" {

void* __libc_malloc(std::size_t size);

void* malloc(std::size_t size) {
  if (untilFailure > 0 && size >= sizeOfFailing && IsInKernel(__builtin_return_address(0)) &&
      --untilFailure == 0) {
    return nullptr;
  }
  return __libc_malloc(size);
}

}  // extern "C"

int main(int argc, char** argv) {
  const char* const scenario = argc == 2 ? argv[1] : "";
  if (std::strcmp(scenario, "load") == 0) {
    AModuleListThatCouldNotBeReadIsReadByTheNextLoad();
  } else if (std::strcmp(scenario, "run") == 0) {
    AShellThatCouldNotBeResolvedIsResolvedByTheNextRun();
  } else {
    Check(false, "the scenario is known");
  }
  return 0;
}
