#ifndef KVL_KNOWN_PATHS_H
#define KVL_KNOWN_PATHS_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "KVLCodeObject.h"
#include "KVLNameTable.h"
#include "KVLVector.h"

struct KVLCodeEnvImpl;

/// The environments that an environment has reached by paths before: one look here instead of one
/// a name. A path leads where it led as long as the environment keeps its children.
///
/// Beside each path lies the storage of the objects of its environment, so that a lookup goes on
/// without a touch of the environment itself; `SetObjects` has to keep it up to date. The path
/// found last is tried first: who asks for one object of an environment often goes on with others.
class KVLKnownPaths {
 public:
  using Objects = KVLNameStorage<KVLSmartPtr<KVLCodeObject>>;

  struct Known {
    KVLCodeEnvImpl* env;  // borrowed
    std::uint32_t start;  // of the path, among the texts
    std::uint32_t length;
  };
  struct Slot {
    std::uint32_t tag;    // the low half of the hash
    std::uint32_t known;  // the number of the path, from 1; 0 in a free slot
    Objects objects;      // none where they are not told
  };

  KVLKnownPaths() noexcept = default;
  KVLKnownPaths(const KVLKnownPaths&) = delete;
  KVLKnownPaths& operator=(const KVLKnownPaths&) = delete;
  ~KVLKnownPaths() { std::free(slots); }

  void Swap(KVLKnownPaths& other) noexcept {
    known.Swap(other.known);
    texts.Swap(other.texts);
    std::swap(slots, other.slots);
    std::swap(log2, other.log2);
    std::swap(latest, other.latest);
  }

  const Known* begin() const { return known.begin(); }
  const Known* end() const { return known.end(); }

  /// What is known of a path (borrowed until one is added), or null.
  const Slot* Find(const KVLName& path) const {
    if (!slots) return nullptr;
    for (std::size_t place = FirstPlaceOf(path.hash);; place = NextPlace(place)) {
      const Slot& slot = slots[place];
      if (slot.known == 0) return nullptr;
      if (slot.tag != TagOf(path.hash) || !IsPathOf(slot, path)) continue;
      if (place != latest.place) SetLatest(place);
      return &slot;
    }
  }
  /// What is known of the path found last, if `path` goes on from there; null otherwise.
  const Slot* FindLatest(const KVLText& path) const {
    if (path.length <= latest.length) return nullptr;
    if (KVLTextHash::LoadWord(path.text + latest.length - 7) != latest.ending) return nullptr;
    const Slot& slot = slots[latest.place];
    return IsPathOf(slot, KVLText{path.text, latest.length}) ? &slot : nullptr;
  }
  std::size_t GetLengthOf(const Slot& slot) const { return known.GetData()[slot.known - 1].length; }
  KVLCodeEnvImpl& GetEnv(const Slot& slot) const { return *known.GetData()[slot.known - 1].env; }

  /// Adds a path that is not known; false when no more can be known.
  bool Add(const KVLName& path, KVLCodeEnvImpl& env, const Objects& objects);

  /// Tells the objects of an environment that is known by a path of that hash.
  void SetObjects(std::uint64_t hash, const KVLCodeEnvImpl& env, const Objects& objects);

 private:
  // The path found last, of 7 bytes or more.
  struct Latest {
    std::uint64_t ending = 0;  // its last 7 bytes and a separator
    std::size_t length = std::numeric_limits<std::size_t>::max();
    std::size_t place = 0;
  };

  static std::uint32_t TagOf(std::uint64_t hash) { return static_cast<std::uint32_t>(hash); }

  std::size_t GetNbSlots() const { return std::size_t{1} << log2; }
  std::size_t FirstPlaceOf(std::uint64_t hash) const {
    return static_cast<std::size_t>(hash >> (64 - log2));
  }
  std::size_t NextPlace(std::size_t place) const { return (place + 1) & (GetNbSlots() - 1); }

  KVLText TextOf(const Slot& slot) const {
    const Known& its = known.GetData()[slot.known - 1];
    return KVLText{texts.GetData() + its.start, its.length};
  }
  bool IsPathOf(const Slot& slot, const KVLText& path) const { return path == TextOf(slot); }

  void SetLatest(std::size_t place) const {
    const KVLText path = TextOf(slots[place]);
    if (path.length < 7) return;
    latest = Latest{KVLTextHash::LoadWord(path.text + path.length - 7), path.length, place};
  }

  void Enter(std::uint64_t hash, const Slot& slot);
  void Grow();

  Slot* slots = nullptr;
  unsigned int log2 = 0;  // of the number of slots
  KVLVector<Known> known;
  KVLVector<char> texts;  // of all paths, each with a separator behind it
  mutable Latest latest;
};

#endif
