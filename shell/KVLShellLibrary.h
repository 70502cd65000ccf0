#ifndef KVL_SHELL_LIBRARY_H
#define KVL_SHELL_LIBRARY_H

#include <vector>

#include "KVLCodeFunction.h"
#include "KVLCodeValue.h"

/// What the shell asks of the platform's loader: which library an object's class comes from, and to
/// keep that library as long as an object of it is held. One .cpp a platform.

/// The name of the library that `address` lies in, as it is loaded by: "KVLCodeEnv_Alpha"; of the
/// program itself, the name of its file. Empty when it lies in none.
MRBUnicodeString KVLShellLibraryAt(const void* address);

/// Keeps a library in the process, whoever else closes it.
class KVLShellLibraryHold {
 public:
  /// Holds the library that `address` lies in; nothing when it is in none, in the program or in the
  /// shell itself, which could never be closed otherwise.
  explicit KVLShellLibraryHold(const void* address);
  KVLShellLibraryHold(KVLShellLibraryHold&& other) noexcept;
  KVLShellLibraryHold& operator=(KVLShellLibraryHold&& other) noexcept;
  ~KVLShellLibraryHold();

 private:
  void* library;  // null when nothing is held
};

/// Why the platform's loader refused the last library, in its words.
MRBUnicodeString KVLShellLoadError();

/// Addresses that lie in the libraries that an object depends on: those of its class, of its type's
/// and of what it holds or calls. For a value that may hold values of any type, those of all types.
std::vector<const void*> KVLShellLibrariesOf(const KVLCodeValue& value);
std::vector<const void*> KVLShellLibrariesOf(const KVLCodeFunction& function);

/// The library that an object's class, or that of the function behind a binding, comes from.
MRBUnicodeString KVLShellLibraryOf(const KVLCodeObject& object);

#endif
