#ifndef KVL_SHELL_TREE_H
#define KVL_SHELL_TREE_H

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "KVLCodeEnv.h"

/// What a registry holds, read in one walk: for commands that look at all of it.

/// A place in the tree of environments. Aggregations may put several environments there.
struct KVLShellTreeEnv {
  static constexpr std::size_t None = static_cast<std::size_t>(-1);

  std::string path;             ///< names with "/" between them; empty for the root
  std::string name;             ///< the last of them
  std::size_t parent = None;    ///< the index of the parent among the places
  int depth = 0;                ///< the number of names in the path
  std::size_t sameAs = None;    ///< where an environment of this place was met before, if one was
  std::size_t firstObject = 0;  ///< the index of the first object
  std::size_t nbObjects = 0;    ///< without those of `sameAs`
  std::vector<KVLSmartPtr<KVLCodeEnv>> envs;  ///< those not met before, in the order of lookups
};

struct KVLShellTreeObject {
  std::string path;
  std::string name;
  std::size_t env;                    ///< the index of its place
  KVLSmartPtr<KVLCodeObject> object;  ///< never null
};

/// The environments and objects below an environment. Nothing is created by reading them, and each
/// environment is entered once, though aggregations may lead to it on many ways or in a circle. Of
/// several objects with one path the first counts, which is the one that the kernel finds.
class KVLShellTree {
 public:
  /// Shares all that it meets. Ends if interrupted.
  explicit KVLShellTree(KVLCodeEnv& root);

  /// The root first, each place before what it holds, and those of one place in the order of their
  /// names.
  const std::vector<KVLShellTreeEnv>& GetEnvs() const { return envs; }
  /// In the order of their places, then of their names.
  const std::vector<KVLShellTreeObject>& GetObjects() const { return objects; }

  /// Borrowed; null when nothing was met there.
  const KVLShellTreeEnv* FindEnv(const std::string& path) const;
  const KVLShellTreeObject* FindObject(const std::string& path) const;

 private:
  void ReadObjects(std::size_t index);

  std::vector<KVLShellTreeEnv> envs;
  std::vector<KVLShellTreeObject> objects;
  std::unordered_map<std::string, std::size_t> envPlaces;
  std::unordered_map<std::string, std::size_t> objectPlaces;
};

/// Throws, once the user has asked for the text that is running to end: for loops over a registry.
void KVLShellEndIfInterrupted();

/// The bytes of `text`, NUL bytes included.
std::string KVLShellBytes(const MRBUnicodeString& text);

/// The text of these bytes.
MRBUnicodeString KVLShellText(const std::string& bytes);

/// The environment at `path`, for lookups; an empty one when there is none.
KVLSmartPtr<KVLCodeEnv> KVLShellEnvOrEmpty(const KVLShellTree& tree, const std::string& path);

/// True when `path` is `place`, lies below it, or `place` is empty.
bool KVLShellIsAtOrBelow(const std::string& path, const std::string& place);

/// `name` below `path`.
std::string KVLShellJoinPath(const std::string& path, const std::string& name);

#endif
