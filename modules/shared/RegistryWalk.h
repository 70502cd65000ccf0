#ifndef MODULES_SHARED_REGISTRY_WALK_H
#define MODULES_SHARED_REGISTRY_WALK_H

#include <algorithm>

#include "KVLCodeEnv.h"
#include "KVLStringOperations.h"

/// For modules that find things by their paths. Nothing here creates anything, unlike the kernel's
/// own lookup, which makes the environments that a path leads through: the tree is walked one name
/// at a time. Paths begin at the default environment.
namespace registry {

using Envs = KVLVector<KVLSmartPtr<KVLCodeEnv>>;

/// What a path leads to: an object, environments, or both. Of environments there may be several:
/// the one of the tree first, then those of aggregated environments.
struct Place {
  MRBUnicodeString path;  ///< without empty names
  KVLSmartPtr<KVLCodeObject> object;
  Envs envs;

  bool IsFound() const { return object || !envs.IsEmpty(); }
};

/// A child of environments.
struct Child {
  MRBUnicodeString label;  ///< its name, with "/" behind it for environments
  KVLSmartPtr<KVLCodeObject> object;
  Envs envs;
};

inline Envs Root() {
  Envs envs;
  envs.Append(KVLSmartPtr<KVLCodeEnv>(&KVLCodeEnv::GetDefault()));
  return envs;
}

inline bool Holds(const Envs& envs, const KVLSmartPtr<KVLCodeEnv>& sought) {
  for (const KVLSmartPtr<KVLCodeEnv>& env : envs)
    if (env == sought) return true;
  return false;
}

/// The environments called `name` in `envs`.
inline Envs Descend(const Envs& envs, const MRBUnicodeString& name) {
  Envs children;
  for (const KVLSmartPtr<KVLCodeEnv>& env : envs) {
    for (const auto& child : env->IterOnSubEnvs()) {
      if (child.key == name && !Holds(children, child.value)) children.Append(child.value);
    }
  }
  return children;
}

inline KVLVector<MRBUnicodeString> NamesOf(const MRBUnicodeString& path) {
  KVLVector<MRBUnicodeString> names;
  for (const MRBUnicodeString& piece : KVLStringOperations::Split(path, "/")) {
    if (!piece.IsEmpty()) names.Append(piece);
  }
  return names;
}

/// A path that ends with "/" leads to environments alone; "" and "/" to the default one.
inline Place Find(const MRBUnicodeString& path) {
  const KVLVector<MRBUnicodeString> names = NamesOf(path);
  const bool isEnv = names.IsEmpty() || KVLStringOperations::EndsWith(path, "/");
  Place place;
  place.envs = Root();
  for (int i = 0; i < names.GetCount(); ++i) {
    if (!place.path.IsEmpty()) place.path += "/";
    place.path += names[i];
    const bool isLast = i + 1 == names.GetCount();
    for (int j = 0; isLast && !isEnv && !place.object && j < place.envs.GetCount(); ++j)
      place.object = place.envs[j]->FindObject(names[i]);
    place.envs = Descend(place.envs, names[i]);
  }
  return place;
}

/// The children of `envs`, sorted by label; those with one label are one child, whose object is the
/// one that the kernel would find.
inline KVLVector<Child> ChildrenOf(const Envs& envs) {
  KVLVector<Child> all;
  for (const KVLSmartPtr<KVLCodeEnv>& env : envs) {
    for (const auto& object : env->IterOnObjects())
      all.Append(Child{object.key, object.value, Envs()});
    for (const auto& subEnv : env->IterOnSubEnvs()) {
      all.Append(Child{subEnv.key + "/", nullptr, Envs()});
      all[all.GetCount() - 1].envs.Append(subEnv.value);
    }
  }
  // Stable, so that the first of equal labels stays the first.
  std::stable_sort(all.begin(), all.end(),
                   [](const Child& left, const Child& right) { return left.label < right.label; });
  KVLVector<Child> children;
  for (Child& child : all) {
    if (children.IsEmpty() || children[children.GetCount() - 1].label != child.label) {
      children.Append(std::move(child));
    } else if (!child.envs.IsEmpty()) {
      Envs& known = children[children.GetCount() - 1].envs;
      if (!Holds(known, child.envs[0])) known.Append(child.envs[0]);
    }
  }
  return children;
}

/// Calls `visit(path, child)` for all that lies below `envs`, parents first; environments that hold
/// one another are entered once. `prefix` is put before each path.
template <class Visit>
void Walk(const Envs& envs, const MRBUnicodeString& prefix, const Visit& visit, Envs& entered) {
  for (const Child& child : ChildrenOf(envs)) {
    visit(prefix + child.label, child);
    Envs fresh;
    for (const KVLSmartPtr<KVLCodeEnv>& env : child.envs) {
      if (Holds(entered, env)) continue;
      fresh.Append(env);
      entered.Append(env);
    }
    if (!fresh.IsEmpty()) Walk(fresh, prefix + child.label, visit, entered);
  }
}
template <class Visit>
void Walk(const Envs& envs, const MRBUnicodeString& prefix, const Visit& visit) {
  Envs entered = envs;
  Walk(envs, prefix, visit, entered);
}

}  // namespace registry

#endif
