// A program that knows the kernel only at run time: it opens the library, uses it, and closes it
// again. The kernel then leaves the process, and whatever it allocated has been freed.

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "LoadedLibraries.h"

namespace {

constexpr long Success = 0;
constexpr long Failure = -2147467259;
constexpr long NotImplemented = -2147467263;

void Check(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", what);
  std::exit(1);
}

void IgnoreTrace(int, const char*, int) {}

/// The kernel library, while it is open.
class Kernel {
 public:
  Kernel() : library(dlopen(KernelPath().c_str(), RTLD_NOW | RTLD_LOCAL)) {
    Check(library != nullptr, "the kernel can be opened");
    using Sink = void (*)(int, const char*, int);
    Find<Sink (*)(Sink)>("_Z15MRBSetTraceSinkPFviPKciE")(IgnoreTrace);
  }
  ~Kernel() { Check(dlclose(library) == 0, "the kernel can be closed"); }
  Kernel(const Kernel&) = delete;
  Kernel& operator=(const Kernel&) = delete;

  long Load() const { return Find<long (*)()>("_ZN16KVLCodeEnvAccess4LoadEv")(); }
  long Unload() const { return Find<long (*)()>("_ZN16KVLCodeEnvAccess6UnloadEv")(); }
  long CheckAndDump() const { return Find<long (*)()>("_ZN16KVLCodeEnvAccess12CheckAndDumpEv")(); }
  long Run(const char* command) const {
    return Find<long (*)(const char*)>("_Z13KVLCodeEnvRunPKc")(command);
  }

 private:
  static std::string KernelPath() { return ProgramFolder() + "/" + KERNEL_FILE; }

  template <class Function>
  Function Find(const char* symbol) const {
    void* const address = dlsym(library, symbol);
    Check(address != nullptr, symbol);
    return reinterpret_cast<Function>(address);
  }

  void* library;
};

void CheckThatItLeft() {
  Check(!IsLoaded("KVLKernel"), "the kernel leaves the process");
  Check(!IsLoaded("KVLCodeEnv_Alpha"), "the modules leave the process");
}

void Open() {
  const Kernel kernel;
  Check(IsLoaded("KVLKernel"), "the kernel is in the process");
}

void LoadAndUnload(long loaded) {
  const Kernel kernel;
  Check(kernel.Load() == loaded, "Load");
  Check(kernel.CheckAndDump() == Success, "CheckAndDump");
  Check(kernel.Run("5") == NotImplemented, "Run");
  Check(kernel.Unload() == Success, "Unload");
}

void LoadNothing() {
  const Kernel kernel;
  Check(kernel.Load() == Failure, "Load");
}

void RunInShell() {
  const Kernel kernel;
  Check(kernel.Run("5") == 5, "Run");
}

void LoadAndLeave() {
  const Kernel kernel;
  Check(kernel.Load() == Success, "Load");
}

}  // namespace

int main(int argc, char** argv) {
  const char* const scenario = argc == 2 ? argv[1] : "";
  Check(!IsLoaded("KVLKernel"), "the program starts without the kernel");
  if (std::strcmp(scenario, "nothing-found") == 0) {
    for (int round = 0; round < 10; ++round) {
      Open();
      CheckThatItLeft();
      LoadNothing();
      CheckThatItLeft();
      LoadAndUnload(Failure);
      CheckThatItLeft();
    }
  } else if (std::strcmp(scenario, "all-found") == 0) {
    for (int round = 0; round < 10; ++round) {
      LoadAndUnload(Success);
      CheckThatItLeft();
    }
  } else if (std::strcmp(scenario, "still-needed") == 0) {
    // Its modules and its shell need the kernel, and so keep it.
    LoadAndLeave();
    RunInShell();
    Check(IsLoaded("KVLKernel"), "the modules keep the kernel");
  } else {
    Check(false, "the scenario is known");
  }
  return 0;
}
