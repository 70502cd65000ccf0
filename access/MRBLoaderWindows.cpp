#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "KVLVector.h"
#include "MRBHost.h"
#include "MRBLoader.h"

namespace {

using WideText = KVLVector<wchar_t>;  // NUL-terminated

// Empty when `text` is no UTF-8.
WideText Widen(const MRBUnicodeString& text) {
  WideText wide;
  const int count =
      MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.ConvertToChar(), -1, nullptr, 0);
  if (count <= 0) return wide;
  wide.Resize(count);
  MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.ConvertToChar(), -1, wide.GetData(),
                      count);
  return wide;
}

// The path of `file` in the folder of the kernel library; empty when the folder is not known.
WideText BesideKernel(const WideText& file) {
  HMODULE kernel = nullptr;
  const DWORD flags =
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  WideText path;
  if (!GetModuleHandleExW(flags, reinterpret_cast<LPCWSTR>(&MRBGetEntryPoint), &kernel)) {
    return path;
  }
  DWORD length = 0;
  do {
    path.Resize(path.GetCount() + MAX_PATH);
    length = GetModuleFileNameW(kernel, path.GetData(), static_cast<DWORD>(path.GetCount()));
  } while (length == static_cast<DWORD>(path.GetCount()));
  while (length > 0 && path[static_cast<int>(length) - 1] != L'\\')
    --length;
  path.Resize(static_cast<int>(length));
  if (path.IsEmpty()) return path;
  for (const wchar_t character : file)
    path.Append(character);
  return path;
}

}  // namespace

// The folders are named one by one, so that the current directory is never searched.
void* MRBLoader::Open(const MRBUnicodeString& name) {
  // A name with a drive would lead to the current directory of that drive.
  if (name.FindPosition(":", 0) != 0) return nullptr;
  const WideText file = Widen(name + ".dll");
  if (file.IsEmpty()) return nullptr;
  const DWORD programAndSystem = LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32;
  if (HMODULE const library = LoadLibraryExW(file.GetData(), nullptr, programAndSystem)) {
    return library;
  }
  const WideText path = BesideKernel(file);
  if (path.IsEmpty()) return nullptr;
  return LoadLibraryExW(path.GetData(), nullptr,
                        programAndSystem | LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR);
}

void* MRBLoader::FindSymbol(void* library, const char* symbol) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), symbol));
}

bool MRBLoader::Close(void* library) {
  return FreeLibrary(static_cast<HMODULE>(library)) != 0;
}

extern "C" BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) DisableThreadLibraryCalls(library);
  return TRUE;
}
