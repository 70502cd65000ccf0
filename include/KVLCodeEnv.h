#ifndef KVL_CODE_ENV_H
#define KVL_CODE_ENV_H

#include "KVLCodeObject.h"
#include "KVLIter.h"
#include "KVLKeyValue.h"

struct KVLCodeEnvImpl;

/// A node of the registry: a table of code objects, a table of child environments, and a list of
/// other environments whose contents it borrows.
///
/// A path is a row of names with "/" between them, relative to an environment. Empty names count
/// for nothing: "/a//b/" leads to the environment that "a/b" leads to, and "" to the environment
/// itself. The part of a path before its last "/" names an environment, and that environment is
/// created when it is missing - by lookups too.
///
/// The two tables are separate: an environment that is added as an object is not a child, a child
/// is not an object, and one name may be in both tables with unrelated meanings.
///
/// An environment shares its objects, its children and the environments it aggregates; all of them
/// live at least as long as it refers to them. Results of type `long` are result codes.
///
/// Thread rule: no environment takes a lock, and lookups create; the registry as a whole belongs to
/// one thread at a time.
///
///     KVLCodeEnv& root = KVLCodeEnv::GetDefault();
///     root.Add(KVLSmartPtr<KVLCodeObject>(new Pi("pi")), "math/");
///     KVLSmartPtr<KVLCodeObject> pi = root.FindObject("math/pi");
class KVL_EXPORT KVLCodeEnv : public KVLCodeObject {
 public:
  /// What a check found: see `ComputeAnomalies`.
  struct Anomaly {
    KVLSmartPtr<KVLCodeObject> object;  ///< what the problem is about; null where noted
    MRBUnicodeString message;           ///< the problem in words
    MRBUnicodeString path;              ///< the place, relative to the checked environment
  };

  using ObjectIter = KVLIter<KVLKeyValue<MRBUnicodeString, KVLSmartPtr<KVLCodeObject>>>;
  using SubEnvIter = KVLIter<KVLKeyValue<MRBUnicodeString, KVLSmartPtr<KVLCodeEnv>>>;

  /// An environment with an empty name.
  KVLCodeEnv();
  explicit KVLCodeEnv(const MRBUnicodeString& name);
  KVLCodeEnv(const KVLCodeEnv&) = delete;
  KVLCodeEnv& operator=(const KVLCodeEnv&) = delete;
  /// Lets go of the aggregated environments, then the children, then the objects.
  ~KVLCodeEnv() override;

  KVLCodeEnv* AsEnv() override;
  const KVLCodeEnv* AsEnv() const override;

  /// Adds the object, which becomes shared, under `path`; when the path is empty or ends with "/",
  /// under its own name there. Returns 0. When the name is taken, returns 0x80004005: the first
  /// object stays, and the environment concerned keeps a message with both places of registration.
  long Add(KVLCodeObject& object, const MRBUnicodeString& path);
  /// The same; returns 0x80004005 for an empty pointer, and then touches nothing.
  long Add(KVLSmartPtr<KVLCodeObject> object, const MRBUnicodeString& path);

  /// Removes this very object from under `path` (read as `Add` reads it). Returns 0, or 0x80004005
  /// when the name is absent or belongs to another object, which stays.
  long Remove(KVLCodeObject& object, const MRBUnicodeString& path);
  /// Removes the object under `path`. Returns 0, or 0x80004005 when there is none.
  long Remove(const MRBUnicodeString& path);

  /// The object under `path`, or null: from this tree first, then from each aggregated environment
  /// in their order, each asked with the whole path. Allocates nothing when the environments of
  /// the path exist.
  KVLSmartPtr<KVLCodeObject> FindObject(const MRBUnicodeString& path) const;
  /// The child environment under `path`, or null, searched alike. The last name of the path is
  /// never created.
  KVLSmartPtr<KVLCodeEnv> FindSubEnv(const MRBUnicodeString& path) const;
  /// The child environment under `path`, created with all that leads to it. Aggregated
  /// environments are not asked. Borrowed: valid while its parent holds it.
  KVLCodeEnv& GetSubEnv(const MRBUnicodeString& path) const;

  /// Searches and iterates `env`, which becomes shared, after this environment's own contents and
  /// after what was aggregated before. The same environment may be aggregated more than once.
  /// Returns 0.
  long AggregateEnv(KVLCodeEnv& env);
  /// Ends the first aggregation of `env`. Returns 0, or 0x80070057 when it is not aggregated.
  long UnAggregateEnv(KVLCodeEnv& env);

  /// The objects (children) of this environment in storage order, then those that each aggregated
  /// environment yields, in their order; a name that occurs twice is yielded twice. No table
  /// involved may change, and no environment die, while the iteration is used. The status is
  /// 0x80004005 or 0x8007000E when memory for it could not be had.
  ObjectIter IterOnObjects() const;
  SubEnvIter IterOnSubEnvs() const;

  /// Every problem in this environment and, recursively, its sub-environments (aggregated ones
  /// included): messages that objects keep, members that are not functions of their type, objects
  /// under "_types" that are no types, and reserved-looking names. Empty when all is well.
  KVLVector<Anomaly> ComputeAnomalies() const;

  /// The process's default environment, made on first use. Borrowed; lives until the kernel is
  /// unloaded.
  static KVLCodeEnv& GetDefault();
  /// The default environment's children "_types", "_members" and "_conversions", made on first use
  /// and kept from then on.
  static KVLCodeEnv& GetDefaultTypeRoot();
  static KVLCodeEnv& GetDefaultMembersRoot();
  static KVLCodeEnv& GetDefaultConversionsRoot();

 private:
  friend struct KVLCodeEnvImpl;

  KVLCodeEnv& GetLocalEnvAndName(const MRBUnicodeString& path, MRBUnicodeString& name) const;
  KVLCodeEnv& GetLocalEnvAndName(const MRBUnicodeString& path, const KVLCodeObject& object,
                                 MRBUnicodeString& name) const;

  KVLCodeEnvImpl* impl;
};

#endif
