#ifndef KVL_CODE_CONTEXT_H
#define KVL_CODE_CONTEXT_H

#include "KVLCodeType.h"
#include "KVLHashMap.h"
#include "MRBHost.h"

class KVLCodeEnv;
class KVLCodeSession;

template <>
struct KVLHashKey<MRBBaseUnknown_var> {
  /// The low 32 bits of the object's address.
  static unsigned int Of(const MRBBaseUnknown_var& object) {
    return KVLHashKey<void*>::Of(object.Get());
  }
};

/// What every operation on types, values and calls is handed: where type names and conversions are
/// looked up, which session the work belongs to, and what must stay alive until the work is over.
///
/// A plain object, owned by whoever makes it; callers borrow it and must die before it. It borrows
/// its two environments and its session.
///
/// Thread rule: a context belongs to one thread at a time; keeping something alive changes it,
/// though it is `const`.
class KVL_EXPORT KVLCodeContext {
 public:
  /// Looks types and conversions up in the default environment's roots.
  KVLCodeContext();
  /// Looks types up in `types`, conversions in the default root.
  explicit KVLCodeContext(const KVLCodeEnv& types);
  KVLCodeContext(const KVLCodeEnv& types, const KVLCodeEnv& conversions);
  /// Copies everything; host objects get one more reference. Blocks are not shared but listed in
  /// both: each of the two contexts frees every block that was kept alive before the copy was made,
  /// so a context that keeps blocks alive must not be copied and destroyed twice over.
  KVLCodeContext(const KVLCodeContext& other);
  KVLCodeContext& operator=(const KVLCodeContext&) = delete;
  /// Frees the blocks in the order in which they came, then releases the host objects.
  virtual ~KVLCodeContext();

  const KVLCodeEnv& GetTypesCodeEnv() const { return *typesEnv; }
  const KVLCodeEnv& GetConversionsCodeEnv() const { return *conversionsEnv; }

  /// The host's session, which the kernel only passes on; null until set.
  KVLCodeSession* GetSession() const { return session; }
  void SetSession(KVLCodeSession* newSession) { session = newSession; }

  /// The type registered under `name`, or null. What the types environment holds is taken to be a
  /// type unchecked.
  KVLSmartPtr<const KVLCodeType> GetTypeFromName(const MRBUnicodeString& name) const;

  /// Shares `object` until the context dies. Adding it again changes nothing.
  void KeepAlive(const MRBBaseUnknown_var& object) const;
  /// Takes `block`, which came from `malloc` (or is null), and frees it when the context dies.
  /// Adding it again changes nothing.
  void KeepAliveAlloc(void* block) const;

  /// Sets `to`, which has another type name, from `from` through a registered conversion: the
  /// function under "source type/target type" in the conversions environment, where the source type
  /// is that of `from` or the nearest of its ancestors that has one. The function either takes the
  /// source and returns the target, or takes the source, gives the target back through its second
  /// parameter, and returns a value (a negative "long" is passed on as the result).
  ///
  /// Between equal type names this is `to.AssignFrom(*this, from)`. Returns 0x80004005 when there
  /// is no conversion or the function has another form, else the code of the step that failed;
  /// `to` changes only by its `AssignFrom`. Exceptions of the function pass through. Both values
  /// are borrowed.
  long Convert(const KVLCodeValue& from, KVLCodeValue& to) const;

 private:
  const KVLCodeEnv* typesEnv;
  const KVLCodeEnv* conversionsEnv;
  KVLCodeSession* session;
  mutable KVLHashMap<MRBBaseUnknown_var, bool> keptAliveObjects;  // a set: the flags mean nothing
  mutable KVLHashMap<void*, bool> keptAliveBlocks;                // likewise
};

#endif
