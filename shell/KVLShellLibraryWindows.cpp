#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <utility>

#include "KVLShellLibrary.h"
#include "KVLVector.h"

namespace {

// An address inside the shell.
const char insideShell = 0;

HMODULE ModuleAt(const void* address, DWORD flags) {
  HMODULE module = nullptr;
  const BOOL isFound = GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | flags,
                                          static_cast<LPCWSTR>(address), &module);
  return isFound ? module : nullptr;
}

HMODULE BorrowModuleAt(const void* address) {
  return ModuleAt(address, GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT);
}

MRBUnicodeString Narrow(const wchar_t* text, int length) {
  KVLVector<char> bytes;
  bytes.Resize(WideCharToMultiByte(CP_UTF8, 0, text, length, nullptr, 0, nullptr, nullptr));
  const int count = WideCharToMultiByte(CP_UTF8, 0, text, length, bytes.GetData(), bytes.GetCount(),
                                        nullptr, nullptr);
  return MRBUnicodeString(bytes.GetData(), count);
}

}  // namespace

MRBUnicodeString KVLShellLibraryAt(const void* address) {
  const HMODULE module = BorrowModuleAt(address);
  if (!module) return "";
  KVLVector<wchar_t> path;
  DWORD length = 0;
  do {
    path.Resize(path.GetCount() + MAX_PATH);
    length = GetModuleFileNameW(module, path.GetData(), static_cast<DWORD>(path.GetCount()));
  } while (length == static_cast<DWORD>(path.GetCount()));
  MRBUnicodeString name = Narrow(path.GetData(), static_cast<int>(length));
  const int slash = name.SearchSubString("\\", 0, MRBUnicodeString::MRBSearchBackward);
  name.Remove(0, slash + 1);
  const int extension = name.SearchSubString(".", 0, MRBUnicodeString::MRBSearchBackward);
  return extension < 0 ? name : name.SubString(0, extension);
}

KVLShellLibraryHold::KVLShellLibraryHold(const void* address) : library(nullptr) {
  if (BorrowModuleAt(address) != BorrowModuleAt(&insideShell)) library = ModuleAt(address, 0);
}

KVLShellLibraryHold::KVLShellLibraryHold(KVLShellLibraryHold&& other) noexcept
    : library(std::exchange(other.library, nullptr)) {}

KVLShellLibraryHold& KVLShellLibraryHold::operator=(KVLShellLibraryHold&& other) noexcept {
  std::swap(library, other.library);
  return *this;
}

KVLShellLibraryHold::~KVLShellLibraryHold() {
  // Whether it goes is the loader's affair.
  if (library) (void)FreeLibrary(static_cast<HMODULE>(library));
}

MRBUnicodeString KVLShellLoadError() {
  const DWORD code = GetLastError();
  wchar_t* text = nullptr;
  const DWORD length = FormatMessageW(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
      nullptr, code, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
  const MRBUnicodeString message = length ? Narrow(text, static_cast<int>(length)) : "";
  LocalFree(text);
  return message.Strip(MRBUnicodeString::MRBStripBoth);
}
