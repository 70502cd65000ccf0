#ifndef KVL_HASH_MAP_H
#define KVL_HASH_MAP_H

#include <climits>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "KVLExport.h"
#include "KVLVector.h"
#include "MRBUnicodeString.h"

/// The first number at or above `n`, taken as unsigned, that none of 2, 3, 5, 7, 11, 13, 17 and 19
/// divides: a table size that spreads hash values under a modulo.
KVL_EXPORT int KVLHash_UpToNiceModulo(int n);

/// The hash of a key. A class that serves as key specialises this with
/// `static unsigned int Of(const K&)`, equal for equal keys. The value is the same in every library
/// of the process: maps are filled by one library and searched by another.
template <class K>
struct KVLHashKey;

template <>
struct KVLHashKey<MRBUnicodeString> {
  /// Takes the string, or a slice of a text that answers `ComputeHashKey` alike.
  template <class Text>
  static unsigned int Of(const Text& text) {
    return text.ComputeHashKey();
  }
};

template <>
struct KVLHashKey<void*> {
  /// The low 32 bits of the address.
  static unsigned int Of(const void* address) {
    return static_cast<unsigned int>(reinterpret_cast<std::uintptr_t>(address));
  }
};

/// Map from keys to values whose entries lie in one contiguous array.
///
/// Below 16 places the map is linear: it searches the entries one by one and keeps no buckets. From
/// there on it hashes: as many buckets as places, each the head of a chain through the entries. A
/// bucket also tells roughly which hashes are in its chain, so that most keys that are absent are
/// found to be so without a look at an entry.
/// Filled one by one, the capacities are 1, 2, 4, 8, 23, 47, 97, 197, ...
///
/// Iteration follows the storage order, which is the order of insertion, with one exception:
/// removal from a hashed map moves the last entry into the hole. In a linear map it closes the gap.
///
/// `Insert`, `Reserve` and `Remove` invalidate pointers, references and iterators into the map.
/// Find, insert and remove take constant time on average in a hashed map, apart from the growth.
/// `V` is compared with `==`, for identity where it is a pointer.
///
/// Thread rule: as for a plain value; concurrent reads are fine, a write excludes all else.
template <class K, class V>
class KVLHashMap {
 public:
  struct Entry {
    K key;
    V value;
    Entry* next;  ///< the next entry of the same bucket's chain; null at its end

    /// For `KVLVector`: as key and value do.
    using MovesBitByBit =
        std::conditional_t<KVLMovesBitByBit<K>() && KVLMovesBitByBit<V>(), void, bool>;
  };

  constexpr KVLHashMap() noexcept = default;
  /// Inserts the entries of `other` one by one, in storage order.
  KVLHashMap(const KVLHashMap& other) : KVLHashMap() {
    for (const Entry& entry : other)
      Insert(entry.key, entry.value);
  }
  KVLHashMap(KVLHashMap&& other) noexcept = default;
  KVLHashMap& operator=(const KVLHashMap& other) {
    if (this != &other) KVLHashMap(other).Swap(*this);
    return *this;
  }
  KVLHashMap& operator=(KVLHashMap&& other) noexcept {
    if (this != &other) KVLHashMap(std::move(other)).Swap(*this);
    return *this;
  }

  /// Exchanges the two contents in constant time.
  void Swap(KVLHashMap& other) noexcept {
    entries.Swap(other.entries);
    buckets.Swap(other.buckets);
  }

  int GetCount() const noexcept { return entries.GetCount(); }
  int GetCapacity() const noexcept { return entries.GetCapacity(); }
  /// 0 while the map is linear.
  int GetNbBuckets() const noexcept { return buckets.GetCount(); }

  Entry* begin() noexcept { return entries.begin(); }
  Entry* end() noexcept { return entries.end(); }
  const Entry* begin() const noexcept { return entries.begin(); }
  const Entry* end() const noexcept { return entries.end(); }

  /// The value of the first entry with that key (borrowed until the map changes), or null.
  V* Find(const K& key) { return FindAs(key); }
  const V* Find(const K& key) const { return FindAs(key); }

  /// The same for anything that `KVLHashKey<K>::Of` hashes, and `==` compares, as a key: a slice of
  /// a text need not be copied to be looked up.
  template <class Key>
  V* FindAs(const Key& key) {
    return const_cast<V*>(static_cast<const KVLHashMap*>(this)->FindAs(key));
  }
  template <class Key>
  const V* FindAs(const Key& key) const {
    if (buckets.IsEmpty()) {
      for (const Entry& entry : entries) {
        if (entry.key == key) return &entry.value;
      }
      return nullptr;
    }
    for (const Entry* entry = FirstLike(HashOf(key)); entry; entry = entry->next) {
      if (entry->key == key) return &entry->value;
    }
    return nullptr;
  }

  /// Adds an entry at the end, without a look at the keys already there, and returns its value.
  /// Key and value may be part of this very map.
  V& Insert(const K& key, const V& value) {
    Entry fresh{key, value, nullptr};
    Reserve(entries.GetCount() + 1);
    entries.Append(std::move(fresh));
    Entry* const last = entries.end() - 1;
    if (!buckets.IsEmpty()) Link(last);
    return last->value;
  }

  /// Removes the first entry with that key; false when there is none.
  bool Remove(const K& key) {
    return RemoveFirst(key, [](const Entry&) { return true; });
  }
  /// Removes the first entry with that key and that value, or anything that `==` compares with a
  /// value; false when there is none.
  template <class Value>
  bool Remove(const K& key, const Value& value) {
    return RemoveFirst(key, [&value](const Entry& entry) { return entry.value == value; });
  }

  /// Makes room for `needed` entries; never gives room back.
  void Reserve(int needed);

 private:
  // In the low half the number of a chain's first entry, counted from 1; in the high half a bit for
  // each entry that is, or was, in the chain. 0 is an empty chain.
  using Bucket = std::uint64_t;

  template <class Key>
  static unsigned int HashOf(const Key& key) {
    return KVLHashKey<K>::Of(key);
  }
  Bucket& BucketOf(unsigned int hash) {
    return buckets.GetData()[hash % static_cast<unsigned int>(buckets.GetCount())];
  }
  static Bucket MarkOf(unsigned int hash) {
    return Bucket{1} << (32 + (static_cast<std::uint32_t>(hash * 0x9E3779B1u) >> 27));
  }

  Entry* FirstOf(Bucket bucket) {
    const std::uint32_t number = static_cast<std::uint32_t>(bucket);
    return number == 0 ? nullptr : entries.GetData() + (number - 1);
  }
  // The first entry of the chain where a key is; null when there is none with its mark.
  Entry* FirstLike(unsigned int hash) {
    const Bucket bucket = BucketOf(hash);
    return bucket & MarkOf(hash) ? FirstOf(bucket) : nullptr;
  }
  const Entry* FirstLike(unsigned int hash) const {
    return const_cast<KVLHashMap*>(this)->FirstLike(hash);
  }
  void SetFirst(Bucket& bucket, const Entry* first) {
    if (!first) {
      bucket = 0;
      return;
    }
    bucket = (bucket >> 32 << 32) | static_cast<std::uint32_t>(first - entries.GetData() + 1);
  }

  // Pushes an entry at the head of its chain.
  void Link(Entry* entry) {
    const unsigned int hash = HashOf(entry->key);
    Bucket& bucket = BucketOf(hash);
    entry->next = FirstOf(bucket);
    SetFirst(bucket, entry);
    bucket |= MarkOf(hash);
  }
  // Puts `other`, which may be null, where `entry` is in the chain of its key.
  void Replace(const Entry* entry, Entry* other) {
    Bucket& bucket = BucketOf(HashOf(entry->key));
    Entry* before = FirstOf(bucket);
    if (before == entry) {
      SetFirst(bucket, other);
      return;
    }
    while (before->next != entry)
      before = before->next;
    before->next = other;
  }

  template <class Accept>
  bool RemoveFirst(const K& key, Accept accept);
  void RemoveLinear(Entry* entry);
  void RemoveHashed(Entry* entry);

  KVLVector<Entry> entries;
  KVLVector<Bucket> buckets;
};

template <class K, class V>
void KVLHashMap<K, V>::Reserve(int needed) {
  const int capacity = entries.GetCapacity();
  if (capacity >= needed) return;
  const int doubled = capacity > INT_MAX / 2 ? INT_MAX : 2 * capacity;
  const int places = needed > doubled ? needed : doubled;
  if (places < 16) {
    entries.Reserve(places);
    return;
  }
  const int nbBuckets = KVLHash_UpToNiceModulo(places);
  entries.Reserve(nbBuckets);
  KVLVector<Bucket> fresh;
  fresh.Resize(nbBuckets);
  buckets.Swap(fresh);
  for (Entry& entry : entries)
    Link(&entry);
}

template <class K, class V>
template <class Accept>
bool KVLHashMap<K, V>::RemoveFirst(const K& key, Accept accept) {
  if (buckets.IsEmpty()) {
    for (Entry& entry : entries) {
      if (!(entry.key == key) || !accept(entry)) continue;
      RemoveLinear(&entry);
      return true;
    }
    return false;
  }
  for (Entry* entry = FirstLike(HashOf(key)); entry; entry = entry->next) {
    if (!(entry->key == key) || !accept(*entry)) continue;
    RemoveHashed(entry);
    return true;
  }
  return false;
}

// What an entry held dies last, once the map is whole again: its destruction may run code that
// uses this very map.
template <class K, class V>
void KVLHashMap<K, V>::RemoveLinear(Entry* entry) {
  [[maybe_unused]] const Entry removed(std::move(*entry));
  entries.Erase(static_cast<int>(entry - entries.begin()));
}

template <class K, class V>
void KVLHashMap<K, V>::RemoveHashed(Entry* entry) {
  Replace(entry, entry->next);
  [[maybe_unused]] const Entry removed(std::move(*entry));
  Entry* const last = entries.end() - 1;
  if (entry != last) {
    Replace(last, entry);
    *entry = std::move(*last);
  }
  entries.Resize(entries.GetCount() - 1);
}

#endif
