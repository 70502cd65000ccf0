#ifndef KVL_SHELL_ENTRIES_H
#define KVL_SHELL_ENTRIES_H

#include <string>
#include <vector>

#include "KVLCodeEnvShell.h"

/// The shell library, found by its name when the program runs: a program without it can say so.
class KVLShellEntries {
 public:
  /// What a text may go on with.
  struct Completion {
    int replaceFrom = 0;             ///< the words stand in place of the bytes from here on
    std::vector<std::string> words;  ///< sorted
  };

  /// Loads the library and resolves its entries. Says on standard error when that fails.
  KVLShellEntries();
  /// Closes it, which ends its session. What was loaded by `KVLCodeEnvAccess::Load` is to be
  /// unloaded afterwards, since the session holds objects of it.
  ~KVLShellEntries();
  KVLShellEntries(const KVLShellEntries&) = delete;
  KVLShellEntries& operator=(const KVLShellEntries&) = delete;

  bool IsLoaded() const { return run && interrupt; }

  /// As `KVLCodeShellRunTo`; `KVLResult_NotImplemented` when the library is not loaded.
  long Run(const std::string& text, unsigned int flags, KVLShellSink sink, void* receiver) const;
  /// As `KVLCodeShellComplete`; nothing when the library does not complete.
  Completion Complete(const std::string& text) const;
  /// `KVLCodeShellInterrupt`; null when the library is not loaded.
  void (*GetInterrupt() const)() { return interrupt; }

 private:
  template <class Entry>
  Entry Resolve(const char* name);

  std::vector<struct LibraryHandler> handles;
  decltype(&KVLCodeShellRunTo) run;
  decltype(&KVLCodeShellInterrupt) interrupt;
};

#endif
