#ifndef KVL_CODE_ENV_ACCESS_H
#define KVL_CODE_ENV_ACCESS_H

#include "KVLExport.h"
#include "MRBUnicodeString.h"

/// The door to the kernel's sibling libraries: loads the modules that publish into the default
/// environment, hands command texts to the shell library, and checks the registry.
///
/// Thread rule: `Load` and `Unload` exclude each other and all work with the registry. `Run` may be
/// called from any thread, as far as the shell bears it.
class KVL_EXPORT KVLCodeEnvAccess {
 public:
  /// Loads the modules "KVLCodeEnv_Alpha", "Beta", "Gamma", "Delta", "Epsilon", "Zeta", "Eta",
  /// "Theta", "Iota", "Kappa" and "Lambda" in this order, then the libraries that the environment
  /// variable "KVLCodeEnv_Modules" names, separated by ";". The variable is read once a process, by
  /// the first `Load`.
  ///
  /// Each failure is reported to the trace sink at level 1, and the rest is loaded all the same.
  /// Returns 0 when every library was loaded, 0x80004005 when one was not, and 1, without doing
  /// anything, when `Load` has been called since the last `Unload`.
  static long Load();

  /// Closes the libraries that `Load` loaded and whose names begin with "KVLCodeEnv_", in the order
  /// of loading; others stay. Whoever holds objects of a module must have let go of them before.
  /// Returns 0, 0x80004005 when one could not be closed, and 1 when nothing is loaded.
  static long Unload();

  /// Hands `command` to the entry "KVLCodeShellStaticRun" of the library "KVLCodeEnvShell" and
  /// returns its result. The entry is resolved once a process; without it every call returns
  /// 0x80004001. Needs no `Load`.
  static long Run(const MRBUnicodeString& command);

  /// Checks the default environment (`KVLCodeEnv::ComputeAnomalies`) and writes what was found to
  /// standard output. Returns 0, and writes nothing, when all is well, else 0x80004005.
  static long CheckAndDump();
};

/// What the shell library exports under the name "KVLCodeShellStaticRun".
using KVLCodeShellEntry = long (*)(const MRBUnicodeString& command);

/// As `KVLCodeEnvAccess::Run`.
KVL_EXPORT long KVLCodeEnvRun(const MRBUnicodeString& command);
KVL_EXPORT long KVLCodeEnvRun(const char* command);

#endif
