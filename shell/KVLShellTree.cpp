#include "KVLShellTree.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "KVLShellSession.h"

namespace {

template <class Object>
struct Named {
  std::string name;
  KVLSmartPtr<Object> object;
};

template <class Object>
void Append(KVLIter<KVLKeyValue<MRBUnicodeString, KVLSmartPtr<Object>>> iter,
            std::vector<Named<Object>>& named) {
  for (const auto& entry : iter) {
    // Null where memory ran out when the kernel was to make a child.
    if (entry.value) named.push_back({KVLShellBytes(entry.key), entry.value});
  }
}

// Stable, so that the first of equal names stays the first.
template <class Object>
void Sort(std::vector<Named<Object>>& named) {
  std::stable_sort(named.begin(), named.end(),
                   [](const auto& left, const auto& right) { return left.name < right.name; });
}

// A place that the walk has yet to enter.
struct Waiting {
  std::size_t parent;
  std::string name;
  std::vector<KVLSmartPtr<KVLCodeEnv>> envs;
};

// The children of a place, the last first.
std::vector<Waiting> Children(const KVLShellTreeEnv& place, std::size_t index) {
  std::vector<Named<KVLCodeEnv>> named;
  for (const KVLSmartPtr<KVLCodeEnv>& env : place.envs)
    Append(env->IterOnSubEnvs(), named);
  Sort(named);
  std::vector<Waiting> children;
  for (Named<KVLCodeEnv>& child : named) {
    if (children.empty() || children.back().name != child.name)
      children.push_back({index, std::move(child.name), {}});
    children.back().envs.push_back(std::move(child.object));
  }
  std::reverse(children.begin(), children.end());
  return children;
}

}  // namespace

KVLShellTree::KVLShellTree(KVLCodeEnv& root) {
  // Environments may lie one below the other in any number: the walk keeps its own stack.
  std::vector<Waiting> waiting;
  std::unordered_map<const KVLCodeEnv*, std::size_t> met;
  waiting.push_back({KVLShellTreeEnv::None, "", {KVLSmartPtr<KVLCodeEnv>(&root)}});
  while (!waiting.empty()) {
    KVLShellEndIfInterrupted();
    Waiting next = std::move(waiting.back());
    waiting.pop_back();

    const std::size_t index = envs.size();
    KVLShellTreeEnv place;
    if (next.parent != KVLShellTreeEnv::None) {
      place.path = KVLShellJoinPath(envs[next.parent].path, next.name);
      place.depth = envs[next.parent].depth + 1;
    }
    place.name = std::move(next.name);
    place.parent = next.parent;
    for (KVLSmartPtr<KVLCodeEnv>& env : next.envs) {
      const auto [first, isNew] = met.emplace(env.Get(), index);
      if (isNew) {
        place.envs.push_back(std::move(env));
      } else if (first->second != index && place.sameAs == KVLShellTreeEnv::None) {
        place.sameAs = first->second;
      }
    }
    envPlaces.emplace(place.path, index);
    envs.push_back(std::move(place));
    ReadObjects(index);
    for (Waiting& child : Children(envs[index], index))
      waiting.push_back(std::move(child));
  }
}

void KVLShellTree::ReadObjects(std::size_t index) {
  KVLShellTreeEnv& place = envs[index];
  std::vector<Named<KVLCodeObject>> named;
  for (const KVLSmartPtr<KVLCodeEnv>& env : place.envs)
    Append(env->IterOnObjects(), named);
  Sort(named);
  place.firstObject = objects.size();
  for (Named<KVLCodeObject>& entry : named) {
    std::string path = KVLShellJoinPath(place.path, entry.name);
    if (!objectPlaces.emplace(path, objects.size()).second) continue;
    objects.push_back({std::move(path), std::move(entry.name), index, std::move(entry.object)});
  }
  place.nbObjects = objects.size() - place.firstObject;
}

const KVLShellTreeEnv* KVLShellTree::FindEnv(const std::string& path) const {
  const auto found = envPlaces.find(path);
  return found == envPlaces.end() ? nullptr : &envs[found->second];
}

const KVLShellTreeObject* KVLShellTree::FindObject(const std::string& path) const {
  const auto found = objectPlaces.find(path);
  return found == objectPlaces.end() ? nullptr : &objects[found->second];
}

void KVLShellEndIfInterrupted() {
  if (KVLShellIsInterrupted()) throw std::runtime_error("interrupted");
}

std::string KVLShellBytes(const MRBUnicodeString& text) {
  return std::string(text.ConvertToChar(), static_cast<std::size_t>(text.GetLengthInByte()));
}

MRBUnicodeString KVLShellText(const std::string& bytes) {
  return MRBUnicodeString(bytes.data(), static_cast<int>(bytes.size()));
}

KVLSmartPtr<KVLCodeEnv> KVLShellEnvOrEmpty(const KVLShellTree& tree, const std::string& path) {
  const KVLShellTreeEnv* const place = tree.FindEnv(path);
  return place && !place->envs.empty() ? place->envs[0] : KVLSmartPtr<KVLCodeEnv>(new KVLCodeEnv());
}

bool KVLShellIsAtOrBelow(const std::string& path, const std::string& place) {
  return place.empty() || path == place || path.compare(0, place.size() + 1, place + "/") == 0;
}

std::string KVLShellJoinPath(const std::string& path, const std::string& name) {
  return path.empty() ? name : path + "/" + name;
}
