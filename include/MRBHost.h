#ifndef MRB_HOST_H
#define MRB_HOST_H

#include "KVLExport.h"

/// What the kernel asks of its host: environment variables, the library loader, the trace channel
/// and the counted base of host objects. The kernel brings these along, so that a host without a
/// framework of its own can use it as it is.

/// A loaded library, copied by value.
struct LibraryHandler {
  void* entry;    ///< the address of the resolved entry; null when none was asked for or found
  void* library;  ///< the platform's handle; null when the library could not be loaded
};

/// The value of the environment variable `name`, or null when it is not set or `name` is null.
/// The text is a copy: it stays valid and unchanged while the kernel is loaded, also when the
/// variable changes later. Safe to call from several threads, as far as the C library's `getenv`
/// is.
KVL_EXPORT const char* MRBGetEnv(const char* name);

/// Loads the library `library` at once, with all its symbols resolved and none of them offered to
/// other libraries, and resolves `entry` in it when `entry` is not null.
///
/// The name carries no folder and no extension: "Name" stands for `libName.so` on Linux and
/// `Name.dll` on Windows, searched where the platform's loader searches and beside the kernel
/// library. A null or empty name, and one that holds "/" or "\", fails.
///
/// `reserved` and the three flags are the host interface's; they change nothing here.
/// Returns both words null when the library cannot be loaded; the caller closes what was loaded
/// with `MRBCloseLibrary`.
KVL_EXPORT LibraryHandler MRBGetEntryPoint(const char* library, const char* entry,
                                           const char* reserved, int flag1, int flag2, int flag3);

/// Loads the library `library` as `MRBGetEntryPoint` does and resolves `function`. Returns both
/// words null when either step fails; nothing stays loaded then.
KVL_EXPORT LibraryHandler MRBGetFunctionAddress(const char* library, const char* function,
                                                const char* reserved, int flag1, int flag2,
                                                int flag3);

/// Gives back one load of the library. Returns 0, or a number other than 0 when the handle is null
/// or the platform refuses.
KVL_EXPORT int MRBCloseLibrary(LibraryHandler handler);

/// Reports `text` (null stands for the empty text) to the trace sink. Level 1 is a failure that
/// the host should hear of, level 100 an error in the calling program.
KVL_EXPORT void MRBSysBftier(int level, const char* text, int flags);

/// Receives what `MRBSysBftier` reports. `text` is borrowed for the call.
using MRBTraceSink = void (*)(int level, const char* text, int flags);

/// Installs `sink` and returns the former one. Null stands for the default sink, which writes the
/// text as one line to standard error, and is returned for it. Safe to call from any thread.
KVL_EXPORT MRBTraceSink MRBSetTraceSink(MRBTraceSink sink);

/// Counted base of the host's own objects. A new object starts at 0 references; the count is not
/// atomic.
class KVL_EXPORT MRBBaseUnknown {
 public:
  MRBBaseUnknown() noexcept : referenceCount(0) {}
  /// A copy starts at 0 references; assignment leaves the count alone.
  MRBBaseUnknown(const MRBBaseUnknown&) noexcept : referenceCount(0) {}
  MRBBaseUnknown& operator=(const MRBBaseUnknown&) noexcept { return *this; }
  virtual ~MRBBaseUnknown();

  virtual void AddRef();
  /// Gives back one reference; the last one destroys the object.
  virtual void Release();

 private:
  int referenceCount;
};

/// Counted handle of a host object, possibly empty: holds one reference.
class KVL_EXPORT MRBBaseUnknown_var {
 public:
  MRBBaseUnknown_var() noexcept : object(nullptr) {}
  /// Shares `object`, which may be null.
  MRBBaseUnknown_var(MRBBaseUnknown* object);
  MRBBaseUnknown_var(const MRBBaseUnknown_var& other);
  ~MRBBaseUnknown_var();
  MRBBaseUnknown_var& operator=(const MRBBaseUnknown_var& other);

  /// True when both designate the same object.
  bool operator==(const MRBBaseUnknown_var& other) const { return object == other.object; }
  bool operator!=(const MRBBaseUnknown_var& other) const { return object != other.object; }

  /// Borrowed; valid while a reference is held.
  MRBBaseUnknown* Get() const { return object; }
  MRBBaseUnknown* operator->() const { return object; }

 private:
  MRBBaseUnknown* object;
};

#endif
