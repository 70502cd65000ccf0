#ifndef KVL_NAME_TABLE_H
#define KVL_NAME_TABLE_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#include "KVLName.h"

/// Where a `KVLNameTable` keeps its entries, in one word: who has that can search the table without
/// touching the table itself. Good until the table gets another storage.
///
/// A block of the heap holds places for entries, a power of two, and behind them an index of more
/// slots, which is searched from a slot that the hash chooses to the first free one. A slot
/// holds the place of an entry and, in the bits above, part of the entry's hash: a search reads one
/// entry, mostly, and none when the name is absent. A place has four slots of two bytes as long as
/// these hold a place and eight bits of the hash, else two slots of four bytes.
template <class V>
class KVLNameStorage {
 public:
  struct Entry {
    MRBUnicodeString key;
    V value;
  };

  // Entries that lie in two lines of the cache would cost two misses.
  static constexpr std::size_t Alignment = 32;
  static constexpr unsigned int MostLog2 = 28;
  static constexpr std::size_t IndexBytesAPlace = 8;

  static constexpr std::uint32_t NoSlot = 0xFFFFFFFFu;
  // What a slot holds that leads to no entry: nothing, or what is left of one. With an entry, its
  // highest bit is set.
  static constexpr std::uint32_t Free = 0;
  static constexpr std::uint32_t Removed = 1;

  constexpr KVLNameStorage() noexcept : word(0) {}
  KVLNameStorage(Entry* entries, unsigned int log2OfPlaces)
      : word(reinterpret_cast<std::uintptr_t>(entries) | log2OfPlaces) {}

  bool operator==(const KVLNameStorage& other) const { return word == other.word; }
  bool operator!=(const KVLNameStorage& other) const { return word != other.word; }
  bool IsNone() const { return word == 0; }

  Entry* GetEntries() const { return reinterpret_cast<Entry*>(word & ~(Alignment - 1)); }
  unsigned int GetLog2() const { return static_cast<unsigned int>(word & (Alignment - 1)); }
  std::uint32_t GetNbPlaces() const { return std::uint32_t{1} << GetLog2(); }
  std::uint32_t GetNbSlots() const {
    return GetNbPlaces() << (HasNarrowSlots() ? LogOfSlots<Narrow>() : LogOfSlots<Wide>());
  }
  std::uint32_t GetPlaceMask() const { return GetNbPlaces() - 1; }

  /// Where the search for a hash begins: as many of its highest bits as number the slots.
  std::uint32_t FirstSlotOf(std::uint64_t hash) const {
    return HasNarrowSlots() ? FirstSlot<Narrow>(hash) : FirstSlot<Wide>(hash);
  }
  std::uint32_t NextSlot(std::uint32_t slot) const { return (slot + 1) & (GetNbSlots() - 1); }

  /// What the slot of an entry holds.
  std::uint32_t ContentFor(std::uint64_t hash, std::uint32_t place) const {
    return place | (HasNarrowSlots() ? TagOf<Narrow>(hash) : TagOf<Wide>(hash));
  }
  std::uint32_t GetContent(std::uint32_t slot) const {
    return HasNarrowSlots() ? GetIndex<Narrow>()[slot] : GetIndex<Wide>()[slot];
  }
  void SetContent(std::uint32_t slot, std::uint32_t content) const {
    if (HasNarrowSlots()) {
      GetIndex<Narrow>()[slot] = static_cast<Narrow>(content);
    } else {
      GetIndex<Wide>()[slot] = content;
    }
  }
  void ClearIndex() const { std::memset(GetIndex<char>(), 0, GetNbPlaces() * IndexBytesAPlace); }

  /// The slot of that name, or `NoSlot`. There must be a storage.
  std::uint32_t SlotOf(const KVLName& name) const {
    return HasNarrowSlots() ? Search<Narrow>(name) : Search<Wide>(name);
  }

  /// The value of that name, or null. There must be a storage.
  V* Find(const KVLName& name) const {
    const std::uint32_t slot = SlotOf(name);
    return slot == NoSlot ? nullptr : &GetEntries()[GetContent(slot) & GetPlaceMask()].value;
  }

 private:
  using Narrow = std::uint16_t;
  using Wide = std::uint32_t;

  bool HasNarrowSlots() const { return GetLog2() <= 7; }
  // The binary logarithm of the number of slots for each place.
  template <class Slot>
  static constexpr unsigned int LogOfSlots() {
    static_assert(sizeof(Slot) << (sizeof(Slot) == 2 ? 2 : 1) == IndexBytesAPlace);
    return sizeof(Slot) == 2 ? 2 : 1;
  }
  template <class Slot>
  std::uint32_t FirstSlot(std::uint64_t hash) const {
    return static_cast<std::uint32_t>(hash >> (64 - LogOfSlots<Slot>() - GetLog2()));
  }

  template <class Slot>
  Slot* GetIndex() const {
    return reinterpret_cast<Slot*>(GetEntries() + GetNbPlaces());
  }
  template <class Slot>
  Slot TagOf(std::uint64_t hash) const {
    constexpr std::uint32_t Taken = std::uint32_t{1} << (8 * sizeof(Slot) - 1);
    return static_cast<Slot>((static_cast<std::uint32_t>(hash) | Taken) & ~GetPlaceMask());
  }

  template <class Slot>
  std::uint32_t Search(const KVLName& name) const {
    const Slot* const index = GetIndex<Slot>();
    const std::uint32_t placeMask = GetPlaceMask();
    const std::uint32_t tag = TagOf<Slot>(name.hash);
    const std::uint32_t slotMask = (GetNbPlaces() << LogOfSlots<Slot>()) - 1;
    for (std::uint32_t slot = FirstSlot<Slot>(name.hash);; slot = (slot + 1) & slotMask) {
      const std::uint32_t content = index[slot];
      if ((content & ~placeMask) == tag) {
        if (name == KVLText::Of(GetEntries()[content & placeMask].key)) return slot;
      } else if (content == Free) {
        return NoSlot;
      }
    }
  }

  std::uintptr_t word;  // the address of the entries, and the logarithm in the bits that it leaves
};

/// A table from names to values, in the order that environments show: that of insertion, but once
/// the table has held more than 8 entries, a removal moves the last entry into the hole.
///
/// It shows what a `KVLHashMap` would, and takes less memory and fewer misses of the cache. Entries
/// must survive being moved bit by bit. `std::bad_alloc` is thrown when memory is exhausted; the
/// table is then as it was.
template <class V>
class KVLNameTable {
 public:
  using Storage = KVLNameStorage<V>;
  using Entry = typename Storage::Entry;

  KVLNameTable() noexcept = default;
  KVLNameTable(const KVLNameTable&) = delete;
  KVLNameTable& operator=(const KVLNameTable&) = delete;
  /// Destroys the entries from the last to the first.
  ~KVLNameTable() {
    while (count > 0)
      storage.GetEntries()[--count].~Entry();
    std::free(block);
  }

  void Swap(KVLNameTable& other) noexcept {
    std::swap(storage, other.storage);
    std::swap(block, other.block);
    std::swap(count, other.count);
    std::swap(nbUsed, other.nbUsed);
    std::swap(movesLast, other.movesLast);
  }

  bool IsEmpty() const { return count == 0; }

  const Entry* begin() const { return storage.GetEntries(); }
  const Entry* end() const { return storage.GetEntries() + count; }

  /// Changes in `Insert` and `Swap` alone.
  const Storage& GetStorage() const { return storage; }

  /// The value of that name (borrowed until the table changes), or null.
  V* Find(const KVLName& name) const { return storage.IsNone() ? nullptr : storage.Find(name); }

  /// Adds an entry at the end, for a name that is absent and has this hash, and returns its value.
  V& Insert(MRBUnicodeString key, std::uint64_t hash, V value) {
    MakeRoom();
    Entry* const entry = ::new (static_cast<void*>(storage.GetEntries() + count))
        Entry{std::move(key), std::move(value)};
    Enter(hash, static_cast<std::uint32_t>(count));
    ++count;
    if (count > MostInOrder) movesLast = true;
    return entry->value;
  }

  /// Removes the entry of that name, if `accept` holds for its value; false when there is none.
  /// What the entry held dies last, once the table is whole again: its destruction may run code
  /// that uses this very table.
  template <class Accept>
  bool Remove(const KVLName& name, const Accept& accept) {
    if (storage.IsNone()) return false;
    const std::uint32_t slot = storage.SlotOf(name);
    if (slot == Storage::NoSlot) return false;
    const std::uint32_t place = storage.GetContent(slot) & storage.GetPlaceMask();
    Entry* const entry = storage.GetEntries() + place;
    if (!accept(entry->value)) return false;
    alignas(Entry) char removed[sizeof(Entry)];
    MoveBits(removed, entry, 1);
    EmptySlot(slot);
    --count;
    if (movesLast) {
      MoveLastTo(place);
    } else {
      CloseGap(place);
    }
    std::launder(reinterpret_cast<Entry*>(removed))->~Entry();
    return true;
  }

 private:
  static constexpr int MostInOrder = 8;

  static void MoveBits(void* to, const Entry* from, std::size_t nb) {
    std::memmove(to, static_cast<const void*>(from), nb * sizeof(Entry));
  }

  // Makes the first slot without an entry lead to the place.
  void Enter(std::uint64_t hash, std::uint32_t place) {
    std::uint32_t slot = storage.FirstSlotOf(hash);
    while (storage.GetContent(slot) > Storage::Removed)
      slot = storage.NextSlot(slot);
    if (storage.GetContent(slot) == Storage::Free) ++nbUsed;
    storage.SetContent(slot, storage.ContentFor(hash, place));
  }

  // A slot in front of a free one is free again itself; another must not end searches.
  void EmptySlot(std::uint32_t slot) {
    const bool endsSearches = storage.GetContent(storage.NextSlot(slot)) == Storage::Free;
    storage.SetContent(slot, endsSearches ? Storage::Free : Storage::Removed);
    if (endsSearches) --nbUsed;
  }

  void MoveLastTo(std::uint32_t place) {
    const std::uint32_t last = static_cast<std::uint32_t>(count);
    if (place == last) return;
    const Entry* const entry = storage.GetEntries() + last;
    const std::uint64_t hash = KVLName(entry->key).hash;
    std::uint32_t slot = storage.FirstSlotOf(hash);
    while (storage.GetContent(slot) != storage.ContentFor(hash, last))
      slot = storage.NextSlot(slot);
    storage.SetContent(slot, storage.ContentFor(hash, place));
    MoveBits(storage.GetEntries() + place, entry, 1);
  }

  void CloseGap(std::uint32_t place) {
    Entry* const entry = storage.GetEntries() + place;
    MoveBits(entry, entry + 1, static_cast<std::size_t>(count) - place);
    for (std::uint32_t slot = 0; slot < storage.GetNbSlots(); ++slot) {
      const std::uint32_t content = storage.GetContent(slot);
      const bool isTaken = content > Storage::Removed;
      if (isTaken && (content & storage.GetPlaceMask()) > place) {
        storage.SetContent(slot, content - 1);
      }
    }
  }

  // Room for one more entry, and a quarter of the slots or more that stay free.
  void MakeRoom() {
    if (storage.IsNone()) {
      Grow(1);
    } else if (static_cast<std::uint32_t>(count) == storage.GetNbPlaces()) {
      Grow(storage.GetLog2() + 1);
    } else if (nbUsed >= storage.GetNbSlots() / 4 * 3) {
      EnterAll();
    }
  }

  void Grow(unsigned int log2OfPlaces) {
    constexpr std::size_t Slack = Storage::Alignment - alignof(std::max_align_t);
    if (log2OfPlaces > Storage::MostLog2) throw std::bad_alloc();
    const std::size_t nbPlaces = std::size_t{1} << log2OfPlaces;
    void* const fresh = std::malloc(Slack + nbPlaces * (sizeof(Entry) + Storage::IndexBytesAPlace));
    if (!fresh) throw std::bad_alloc();
    const std::size_t odd = reinterpret_cast<std::uintptr_t>(fresh) % Storage::Alignment;
    char* const start = static_cast<char*>(fresh) + (odd == 0 ? 0 : Storage::Alignment - odd);
    Entry* const entries = reinterpret_cast<Entry*>(start);
    if (count > 0) MoveBits(entries, storage.GetEntries(), static_cast<std::size_t>(count));
    std::free(block);
    block = fresh;
    storage = Storage(entries, log2OfPlaces);
    EnterAll();
  }

  void EnterAll() {
    storage.ClearIndex();
    nbUsed = 0;
    for (int i = 0; i < count; ++i)
      Enter(KVLName(storage.GetEntries()[i].key).hash, static_cast<std::uint32_t>(i));
  }

  Storage storage;
  void* block = nullptr;  // of the heap, around the storage
  int count = 0;
  std::uint32_t nbUsed = 0;  // slots that are not free
  bool movesLast = false;
};

#endif
