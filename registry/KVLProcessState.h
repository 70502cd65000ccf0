#ifndef KVL_PROCESS_STATE_H
#define KVL_PROCESS_STATE_H

#include <atomic>
#include <cstdint>

#include "KVLCodeEnv.h"
#include "KVLVector.h"
#include "MRBHost.h"

/// Copies of texts that stay valid while the kernel is loaded. Safe to use from several threads.
class KVLKeptTexts {
 public:
  constexpr KVLKeptTexts() noexcept : first(nullptr) {}
  KVLKeptTexts(const KVLKeptTexts&) = delete;
  KVLKeptTexts& operator=(const KVLKeptTexts&) = delete;
  ~KVLKeptTexts();

  /// A copy of `text`; the same one for equal texts that were kept before. Borrowed.
  const char* Keep(const char* text);

 private:
  struct Node;

  std::atomic<Node*> first;
};

/// What `KVLCodeEnvAccess` remembers.
struct KVLCodeEnvAccessImpl {
  bool loaded = false;
  KVLVector<LibraryHandler> handles;  ///< what `Unload` closes, in the order of loading
  KVLKeptTexts environmentTexts;      ///< what `MRBGetEnv` has handed out
};

/// The process-wide objects. All of them are constant-initialised and defined in one file, in the
/// order below; loading the library does nothing but register their clean-ups in that order, and
/// unloading it runs them in reverse: the handle list goes first, without closing what it lists,
/// and the default environment last.
struct KVLProcessState {
  static KVLSmartPtr<KVLCodeEnv> defaultEnv;
  static KVLSmartPtr<KVLCodeEnv> typeRoot;
  static KVLSmartPtr<KVLCodeEnv> membersRoot;
  static KVLSmartPtr<KVLCodeEnv> conversionsRoot;
  static KVLCodeEnvAccessImpl modules;

  static std::atomic<std::uint64_t> nbEnvironments;  ///< made so far, by any thread
};

#endif
