#include <dlfcn.h>

#include "MRBLoader.h"

namespace {

// An address inside the kernel library; that of an exported function may lie in the program.
const char insideKernel = 0;

// The folder of the kernel library with its "/", or empty.
MRBUnicodeString KernelFolder() {
  Dl_info info;
  if (!dladdr(&insideKernel, &info) || !info.dli_fname) return "";
  const MRBUnicodeString path = info.dli_fname;
  const int separator = path.SearchSubString("/", 0, MRBUnicodeString::MRBSearchBackward);
  return path.SubString(0, separator + 1);
}

void* OpenFile(const MRBUnicodeString& file) {
  return dlopen(file, RTLD_NOW | RTLD_LOCAL);
}

}  // namespace

void* MRBLoader::Open(const MRBUnicodeString& name) {
  const MRBUnicodeString file = "lib" + name + ".so";
  if (void* const library = OpenFile(file)) return library;
  const MRBUnicodeString folder = KernelFolder();
  return folder.IsEmpty() ? nullptr : OpenFile(folder + file);
}

void* MRBLoader::FindSymbol(void* library, const char* symbol) {
  return dlsym(library, symbol);
}

bool MRBLoader::Close(void* library) {
  return dlclose(library) == 0;
}
