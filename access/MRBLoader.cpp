#include "MRBLoader.h"

#include "MRBHost.h"

namespace {

// The platform's loader would take an empty name for the program itself, and a name with a folder
// for a path.
bool IsLibraryName(const MRBUnicodeString& name) {
  return !name.IsEmpty() && name.FindPosition("/", 0) == 0 && name.FindPosition("\\", 0) == 0;
}

LibraryHandler Open(const char* library, const char* entry) {
  LibraryHandler handler{nullptr, nullptr};
  const MRBUnicodeString name(library);
  if (!IsLibraryName(name)) return handler;
  handler.library = MRBLoader::Open(name);
  if (handler.library && entry) handler.entry = MRBLoader::FindSymbol(handler.library, entry);
  return handler;
}

}  // namespace

LibraryHandler MRBGetEntryPoint(const char* library, const char* entry, const char*, int, int,
                                int) {
  return Open(library, entry);
}

LibraryHandler MRBGetFunctionAddress(const char* library, const char* function, const char*, int,
                                     int, int) {
  const LibraryHandler handler = Open(library, function);
  if (handler.entry || !handler.library) return handler;
  // Whether it closes does not matter to who asked for the function.
  (void)MRBCloseLibrary(handler);
  return LibraryHandler{nullptr, nullptr};
}

int MRBCloseLibrary(LibraryHandler handler) {
  return handler.library && MRBLoader::Close(handler.library) ? 0 : 1;
}
