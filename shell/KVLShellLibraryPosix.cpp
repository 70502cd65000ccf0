#include <dlfcn.h>

#include <utility>

#include "KVLShellLibrary.h"
#include "KVLStringOperations.h"

namespace {

// An address inside the shell.
const char insideShell = 0;

}  // namespace

MRBUnicodeString KVLShellLibraryAt(const void* address) {
  Dl_info info;
  if (!dladdr(address, &info) || !info.dli_fname) return "";
  MRBUnicodeString name = info.dli_fname;
  const int slash = name.SearchSubString("/", 0, MRBUnicodeString::MRBSearchBackward);
  name.Remove(0, slash + 1);
  const int extension = name.SearchSubString(".so", 0, MRBUnicodeString::MRBSearchForward);
  if (extension < 0 || !KVLStringOperations::StartsWith(name, "lib")) return name;
  return name.SubString(3, extension - 3);
}

KVLShellLibraryHold::KVLShellLibraryHold(const void* address) : library(nullptr) {
  Dl_info held;
  Dl_info shell;
  if (!dladdr(address, &held) || !dladdr(&insideShell, &shell)) return;
  if (!held.dli_fname || held.dli_fbase == shell.dli_fbase) return;
  library = dlopen(held.dli_fname, RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD);
}

KVLShellLibraryHold::KVLShellLibraryHold(KVLShellLibraryHold&& other) noexcept
    : library(std::exchange(other.library, nullptr)) {}

KVLShellLibraryHold& KVLShellLibraryHold::operator=(KVLShellLibraryHold&& other) noexcept {
  std::swap(library, other.library);
  return *this;
}

KVLShellLibraryHold::~KVLShellLibraryHold() {
  if (library) (void)dlclose(library);  // whether it goes is the loader's affair
}

MRBUnicodeString KVLShellLoadError() {
  const char* const error = dlerror();
  return error ? error : "";
}
