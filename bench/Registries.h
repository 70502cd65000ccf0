#ifndef KVL_BENCH_REGISTRIES_H
#define KVL_BENCH_REGISTRIES_H

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#ifdef KVL_BENCH_ABSEIL
#include <absl/container/flat_hash_map.h>
#include <absl/strings/string_view.h>
#endif

#include "Bench.h"
#include "Entries.h"
#include "KVLCodeEnv.h"
#include "KVLResult.h"

/// Registries under one interface: `Text`, the class of their paths; `Add`, `Remove` and `Find`.
/// What is found is shared with the finder, and what is removed must be the very object.
namespace kvlbench {

class OurRegistry {
 public:
  using Text = MRBUnicodeString;

  explicit OurRegistry(int) : root(new KVLCodeEnv) {}

  void Add(const Text& path, KVLCodeObject& object) { (void)root->Add(object, path); }
  bool Remove(const Text& path, KVLCodeObject& object) {
    return root->Remove(object, path) == KVLResult_Success;
  }
  ObjectPtr Find(const Text& path) const { return root->FindObject(path); }

 private:
  KVLSmartPtr<KVLCodeEnv> root;
};

/// One table over whole paths that knows the number of entries ahead, borrows the texts and never
/// grows: hashes the path, reads a byte that tells nearly every other entry apart, compares the
/// path once, shares the object.
class FloorRegistry {
 public:
  using Text = std::string;

  explicit FloorRegistry(int count) {
    std::size_t size = 16;
    while (size < 2 * static_cast<std::size_t>(count))
      size *= 2;
    tags.resize(size);
    slots.resize(size);
  }

  void Add(const Text& path, KVLCodeObject& object) {
    const std::uint64_t hash = HashOf(path);
    std::size_t place = PlaceOf(hash);
    while (tags[place] != Free)
      place = NextOf(place);
    tags[place] = TagOf(hash);
    slots[place] = Slot{path, ObjectPtr(&object)};
  }
  bool Remove(const Text& path, KVLCodeObject& object) {
    const std::size_t place = Search(path);
    if (tags[place] == Free || slots[place].object != &object) return false;
    // The search for what lies behind goes on here.
    tags[place] = Removed;
    slots[place].object = nullptr;
    return true;
  }
  ObjectPtr Find(const Text& path) const {
    const std::size_t place = Search(path);
    return tags[place] == Free ? nullptr : slots[place].object;
  }

 private:
  struct Slot {
    std::string_view path;
    ObjectPtr object;
  };

  static constexpr std::uint8_t Free = 0;
  static constexpr std::uint8_t Removed = 1;

  static std::uint64_t HashOf(std::string_view path) {
    constexpr std::uint64_t Factor = 0x9E3779B97F4A7C15u;
    std::uint64_t hash = path.size();
    const char* place = path.data();
    std::size_t left = path.size();
    for (; left >= 8; left -= 8, place += 8) {
      std::uint64_t word;
      std::memcpy(&word, place, 8);
      hash = (hash ^ word) * Factor;
      hash ^= hash >> 32;
    }
    std::uint64_t rest = 0;
    for (; left > 0; --left, ++place)
      rest = rest << 8 | static_cast<unsigned char>(*place);
    hash = (hash ^ rest) * Factor;
    return hash ^ hash >> 32;
  }
  // Never one of the two special tags.
  static std::uint8_t TagOf(std::uint64_t hash) {
    return static_cast<std::uint8_t>(hash >> 56 | 2);
  }

  std::size_t PlaceOf(std::uint64_t hash) const { return hash & (slots.size() - 1); }
  std::size_t NextOf(std::size_t place) const { return (place + 1) & (slots.size() - 1); }

  // Where the path is, or a free place.
  std::size_t Search(std::string_view path) const {
    const std::uint64_t hash = HashOf(path);
    const std::uint8_t tag = TagOf(hash);
    std::size_t place = PlaceOf(hash);
    while (tags[place] != Free && (tags[place] != tag || slots[place].path != path))
      place = NextOf(place);
    return place;
  }

  std::vector<std::uint8_t> tags;
  std::vector<Slot> slots;
};

#ifdef KVL_BENCH_ABSEIL

/// A tree of Abseil's maps, walked name by name.
class NestedMaps {
 public:
  using Text = std::string;

  explicit NestedMaps(int) : root(std::make_unique<Node>()) {}

  void Add(const Text& path, KVLCodeObject& object) {
    absl::string_view rest = path;
    Node* node = root.get();
    for (std::size_t end; (end = rest.find('/')) != absl::string_view::npos;
         rest = rest.substr(end + 1)) {
      std::unique_ptr<Node>& child = node->children[rest.substr(0, end)];
      if (!child) child = std::make_unique<Node>();
      node = child.get();
    }
    node->objects.try_emplace(rest, &object);
  }
  bool Remove(const Text& path, KVLCodeObject& object) {
    absl::string_view name;
    Node* const node = NodeOf(path, name);
    if (!node) return false;
    const auto found = node->objects.find(name);
    if (found == node->objects.end() || found->second != &object) return false;
    node->objects.erase(found);
    return true;
  }
  ObjectPtr Find(const Text& path) const {
    absl::string_view name;
    const Node* const node = NodeOf(path, name);
    if (!node) return nullptr;
    const auto found = node->objects.find(name);
    return found == node->objects.end() ? nullptr : found->second;
  }

 private:
  struct Node {
    absl::flat_hash_map<std::string, ObjectPtr> objects;
    absl::flat_hash_map<std::string, std::unique_ptr<Node>> children;
  };

  // The node that holds the object of that name, or null.
  Node* NodeOf(absl::string_view path, absl::string_view& name) const {
    Node* node = root.get();
    name = path;
    for (std::size_t end; (end = name.find('/')) != absl::string_view::npos;
         name = name.substr(end + 1)) {
      const auto found = node->children.find(name.substr(0, end));
      if (found == node->children.end()) return nullptr;
      node = found->second.get();
    }
    return node;
  }

  std::unique_ptr<Node> root;
};

/// One of Abseil's maps over whole paths.
class FlatMap {
 public:
  using Text = std::string;

  explicit FlatMap(int) {}

  void Add(const Text& path, KVLCodeObject& object) { map.try_emplace(path, &object); }
  bool Remove(const Text& path, KVLCodeObject& object) {
    const auto found = map.find(path);
    if (found == map.end() || found->second != &object) return false;
    map.erase(found);
    return true;
  }
  ObjectPtr Find(const Text& path) const {
    const auto found = map.find(path);
    return found == map.end() ? nullptr : found->second;
  }

 private:
  absl::flat_hash_map<std::string, ObjectPtr> map;
};

#endif

template <class Registry>
struct Kind {
  using Type = Registry;
};

/// Calls `function` with every registry that there is, and its name.
template <class Function>
void ForEachRegistry(const Function& function) {
  function(Kind<OurRegistry>(), Ours);
  function(Kind<FloorRegistry>(), Floor);
#ifdef KVL_BENCH_ABSEIL
  function(Kind<NestedMaps>(), "Abseil nested");
  function(Kind<FlatMap>(), "Abseil flat");
#endif
}

template <class Registry>
void Fill(Registry& registry, const Entries& entries) {
  const auto& paths = entries.paths.As<typename Registry::Text>();
  for (std::size_t i = 0; i < paths.size(); ++i)
    registry.Add(paths[i], *entries.objects[i]);
}

}  // namespace kvlbench

#endif
