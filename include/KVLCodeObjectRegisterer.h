#ifndef KVL_CODE_OBJECT_REGISTERER_H
#define KVL_CODE_OBJECT_REGISTERER_H

#include "KVLCodeEnv.h"

/// Ties the presence of an object in an environment to its own lifetime. A module defines its
/// registerers as static objects, so that loading the module publishes and unloading it withdraws:
///
///     static const KVLCodeObjectRegisterer addRegisterer(
///         KVLCodeEnv::GetDefault(), new Add("add"), "math/add",
///         KVLSourceLocation(__FILE__, __LINE__, ""));
///
/// A registration under a taken name is refused in silence: the first object stays, and the
/// environment keeps a message that the anomaly check reports.
///
/// Thread rule: see `KVLCodeEnv`.
class KVL_EXPORT KVLCodeObjectRegisterer {
 public:
  /// Records `location` on `object`, unless it is there already, and adds `object` to `env` under
  /// the path `name`. Does nothing when `object` is empty. `env` is borrowed: it must outlive the
  /// registerer.
  KVLCodeObjectRegisterer(KVLCodeEnv& env, KVLSmartPtr<KVLCodeObject> object,
                          const MRBUnicodeString& name, const KVLSourceLocation& location);
  /// Each copy withdraws the registration: the first that dies ends it.
  KVLCodeObjectRegisterer(const KVLCodeObjectRegisterer&) = default;
  KVLCodeObjectRegisterer& operator=(const KVLCodeObjectRegisterer&) = delete;
  /// Withdraws the registration, if the name still belongs to this very object. The recorded
  /// location stays on the object.
  ~KVLCodeObjectRegisterer();

 private:
  KVLCodeEnv& env;
  KVLSmartPtr<KVLCodeObject> object;  // empty when there is nothing to withdraw
  MRBUnicodeString name;
};

#endif
