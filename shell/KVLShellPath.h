#ifndef KVL_SHELL_PATH_H
#define KVL_SHELL_PATH_H

#include <functional>

#include "KVLCodeEnv.h"
#include "KVLShellOutcome.h"

/// The environments that one path leads to: the one of the tree first, then those that aggregated
/// environments hold under the same path.
using KVLShellEnvs = KVLVector<KVLSmartPtr<KVLCodeEnv>>;

/// What a path leads to. The two kinds of children are apart: a path may lead to both.
struct KVLShellPlace {
  MRBUnicodeString path;              ///< without empty names, hence without "/" at its ends
  KVLSmartPtr<KVLCodeObject> object;  ///< null when there is none, or the path ended with "/"
  KVLShellEnvs envs;                  ///< empty when there is none

  bool IsFound() const { return object || !envs.IsEmpty(); }
};

/// A child of environments, as a listing shows it.
struct KVLShellChild {
  MRBUnicodeString label;  ///< the name; with "/" behind it for a child environment
  KVLSmartPtr<KVLCodeObject> object;
  KVLSmartPtr<KVLCodeEnv> env;  ///< the object, when it is a child environment; else null
};

/// Finds what `path`, from the default environment, leads to. Creates nothing, unlike the kernel's
/// own lookup, for which the parents of a mistyped path are as good as any other.
KVLShellPlace KVLShellFind(const MRBUnicodeString& path);

/// The children of `envs`, sorted by label; of several with one label the first that the kernel
/// would find.
KVLVector<KVLShellChild> KVLShellChildren(const KVLShellEnvs& envs);
/// Those whose names begin with `start`.
KVLVector<KVLShellChild> KVLShellChildren(const KVLShellEnvs& envs, const MRBUnicodeString& start);

/// Hands everything below `envs` to `visit`, an environment before what it holds, each
/// environment's children sorted; `label` is the path from `envs` on, with "/" behind an
/// environment. Environments that aggregate one another in a circle are entered once. Ends and
/// returns false when `visit` does, or when the user interrupts.
bool KVLShellWalk(
    const KVLShellEnvs& envs,
    const std::function<bool(const MRBUnicodeString& label, const KVLShellChild& child)>& visit);

/// The outcome for a `path` that leads nowhere: says which name is missing where, and what was
/// possibly meant. `kind` says in words what was looked for.
KVLShellOutcome KVLShellNotFound(const MRBUnicodeString& kind, const MRBUnicodeString& path,
                                 int position);

/// The one of `candidates` that is nearest to `given`, as far as it is near enough to be meant;
/// else empty.
MRBUnicodeString KVLShellNearest(const MRBUnicodeString& given,
                                 const KVLVector<MRBUnicodeString>& candidates);

#endif
