#ifndef KVL_SHELL_SESSION_H
#define KVL_SHELL_SESSION_H

#include <map>
#include <memory>
#include <vector>

#include "KVLCodeEnv.h"
#include "KVLCodeFunction.h"
#include "KVLCodeObjectRegisterer.h"
#include "KVLCodeSession.h"
#include "KVLShellLibrary.h"
#include "MRBHost.h"

/// What stays from one text to the next: named values, bindings, environments in use, libraries
/// loaded, and the texts that were run.
///
/// It is destroyed when the shell's library is closed, or at the end of the process, which comes
/// before the kernel's own end: what it has published is withdrawn then. As long as it holds an
/// object, it holds the libraries that the object's code lies in: a host may unload the modules
/// while values of theirs are still here.
class KVLShellSession final : public KVLCodeSession {
 public:
  /// A function published by `bind`.
  struct Binding {
    MRBUnicodeString path;
    KVLSmartPtr<KVLCodeFunction> function;
  };
  /// A library loaded by `load`.
  struct Library {
    MRBUnicodeString name;
    LibraryHandler handler;
  };
  /// An environment that the default environment aggregates, by `use`.
  struct Use {
    MRBUnicodeString path;
    KVLSmartPtr<KVLCodeEnv> env;
  };

  KVLShellSession();
  KVLShellSession(const KVLShellSession&) = delete;
  KVLShellSession& operator=(const KVLShellSession&) = delete;
  ~KVLShellSession();

  KVLSmartPtr<KVLCodeValue> FindVariable(const MRBUnicodeString& name) const override;
  long SetVariable(const MRBUnicodeString& name, KVLSmartPtr<KVLCodeValue> value) override;
  bool RemoveVariable(const MRBUnicodeString& name) override;
  void GetVariableNames(KVLVector<MRBUnicodeString>& names) const override;
  bool IsInterrupted() const override;

  /// Publishes `function` under `path`, in place of the session's own former binding there. Nothing
  /// else may be there.
  void Bind(const MRBUnicodeString& path, KVLSmartPtr<KVLCodeFunction> function);
  /// False when the session has no binding there.
  bool Unbind(const MRBUnicodeString& path);
  bool HasBinding(const MRBUnicodeString& path) const;
  std::vector<Binding> GetBindings() const;

  /// Has the default environment aggregate `env`. False when it does so already.
  bool AddUse(const MRBUnicodeString& path, KVLSmartPtr<KVLCodeEnv> env);
  bool RemoveUse(const MRBUnicodeString& path);
  const std::vector<Use>& GetUses() const { return uses; }

  void AddLibrary(const MRBUnicodeString& name, LibraryHandler handler);
  /// Closes a library that `AddLibrary` took; false when the platform refuses, or there is none.
  bool CloseLibrary(const MRBUnicodeString& name);
  const std::vector<Library>& GetLibraries() const { return libraries; }

  /// The texts run, oldest first; the last thousand.
  const std::vector<MRBUnicodeString>& GetHistory() const { return history; }
  void AddToHistory(const MRBUnicodeString& text);

  /// Lets go of the libraries of what has been given up: at the end of a text, when no code of
  /// theirs is at work.
  void ReleaseLibraries();

 private:
  class HeldValue;
  class HeldBinding;

  std::vector<KVLShellLibraryHold> released;  // dies last
  std::vector<Library> libraries;
  std::map<MRBUnicodeString, std::unique_ptr<HeldValue>> variables;
  std::map<MRBUnicodeString, std::unique_ptr<HeldBinding>> bindings;
  std::vector<Use> uses;
  std::vector<MRBUnicodeString> history;
};

/// The session of the process.
KVLShellSession& KVLShellGetSession();

/// One run of a text on the machine's stack. Texts may run inside one another, when a function runs
/// one.
class KVLShellTextRun {
 public:
  KVLShellTextRun();
  KVLShellTextRun(const KVLShellTextRun&) = delete;
  KVLShellTextRun& operator=(const KVLShellTextRun&) = delete;
  ~KVLShellTextRun();

  static bool IsOutermost();
  static bool IsTooDeep();
};

/// Asks the text at work to end; none is a matter of indifference. For signal handlers too.
void KVLShellInterrupt();
bool KVLShellIsInterrupted();

#endif
