// What the kernel has the platform's loader close. The program stands in for the loader's closing
// operation: it notes every library that is to be closed, and refuses one where a case wants that.

#include <dlfcn.h>
#include <link.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "KVLCodeEnvAccess.h"
#include "KVLResult.h"
#include "LoadedLibraries.h"
#include "MRBHost.h"

namespace {

constexpr const char* AllModules =
    "KVLCodeEnv_Alpha KVLCodeEnv_Beta KVLCodeEnv_Gamma KVLCodeEnv_Delta KVLCodeEnv_Epsilon "
    "KVLCodeEnv_Zeta KVLCodeEnv_Eta KVLCodeEnv_Theta KVLCodeEnv_Iota KVLCodeEnv_Kappa "
    "KVLCodeEnv_Lambda ";

// Plain text and no strings: the libraries may be closed when the program's own objects are gone.
char closed[4096];
const char* refused = "";
bool mainHasEnded = false;

void Check(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s; closed: %s\n", what, closed);
  std::_Exit(1);
}

void IgnoreTrace(int, const char*, int) {}

// "KVLCodeEnv_Beta" for the handle of ".../libKVLCodeEnv_Beta.so".
std::string NameOf(void* library) {
  link_map* map = nullptr;
  Check(dlinfo(library, RTLD_DI_LINKMAP, &map) == 0, "the handle is one of the loader's");
  const char* const separator = std::strrchr(map->l_name, '/');
  const std::string file = separator ? separator + 1 : map->l_name;
  return file.substr(3, file.size() - 6);
}

void ARefusedClosingIsAFailureAndTheOthersAreClosedAllTheSame() {
  Check(KVLCodeEnvAccess::Load() == KVLResult_Success, "all modules are loaded");
  refused = "KVLCodeEnv_Beta";
  Check(KVLCodeEnvAccess::Unload() == -2147467259L, "Unload reports the failure");
  Check(std::strcmp(closed, AllModules) == 0, "every module is closed, in the order of loading");
  Check(IsLoaded("KVLCodeEnv_Beta"), "the refused one stays");
  Check(!IsLoaded("KVLCodeEnv_Alpha") && !IsLoaded("KVLCodeEnv_Lambda"), "the others go");

  closed[0] = '\0';
  Check(KVLCodeEnvAccess::Unload() == KVLResult_False, "nothing counts as loaded any more");
  Check(closed[0] == '\0', "what was refused is not tried again");

  refused = "";
  Check(KVLCodeEnvAccess::Load() == KVLResult_Success, "all modules are loaded again");
  Check(KVLCodeEnvAccess::Unload() == KVLResult_Success, "Unload reports success");
  Check(std::strcmp(closed, AllModules) == 0, "each load is closed once");
}

void TheEndOfTheProcessClosesNothing() {
  Check(KVLCodeEnvAccess::Load() == KVLResult_Success, "all modules are loaded");
}

}  // namespace

extern "C" int dlclose(void* library) noexcept {
  Check(!mainHasEnded, "nothing is closed after main");
  const std::string name = NameOf(library);
  Check(std::strlen(closed) + name.size() + 2 < sizeof closed, "all of it was noted");
  std::strcat(std::strcat(closed, name.c_str()), " ");
  if (name == refused) return 1;
  using Close = int (*)(void*);
  return reinterpret_cast<Close>(dlsym(RTLD_NEXT, "dlclose"))(library);
}

int main(int argc, char** argv) {
  MRBSetTraceSink(IgnoreTrace);
  const char* const scenario = argc == 2 ? argv[1] : "";
  if (std::strcmp(scenario, "refused") == 0) {
    ARefusedClosingIsAFailureAndTheOthersAreClosedAllTheSame();
  } else if (std::strcmp(scenario, "at-exit") == 0) {
    TheEndOfTheProcessClosesNothing();
  } else {
    Check(false, "the scenario is known");
  }
  mainHasEnded = true;
  return 0;
}
