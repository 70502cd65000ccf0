#include "KVLHashMap.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

// A key whose hashes meet all the time, so that chains are long.
struct CrowdedKey {
  int number = 0;
  friend bool operator==(const CrowdedKey& left, const CrowdedKey& right) {
    return left.number == right.number;
  }
};

MRBUnicodeString MakeKey(int number, const MRBUnicodeString*) {
  MRBUnicodeString key;
  // Of every length around what fits inside the object.
  key.BuildFromNum(number, number % 2 == 0 ? "k%d" : "a-longer-key-%d");
  return key;
}

CrowdedKey MakeKey(int number, const CrowdedKey*) {
  return CrowdedKey{number};
}

}  // namespace

template <>
struct KVLHashKey<CrowdedKey> {
  static unsigned int Of(const CrowdedKey& key) {
    return static_cast<unsigned int>(key.number % 5);
  }
};

namespace {

// The map and a plain model of its storage order, changed side by side.
template <class K>
class Twins {
 public:
  Twins(const std::vector<K>& candidates, unsigned int seedUsed)
      : keys(candidates), seed(seedUsed), placeOf(candidates.size(), -1) {}

  // Restarts with an empty map.
  void Restart() {
    map = KVLHashMap<K, int>();
    for (const int number : order)
      placeOf[At(number)] = -1;
    order.clear();
    values.clear();
    capacity = 0;
  }

  // One operation on the key `number`; true when all is as the model says.
  bool Step(int number, int operation, int value, bool growing) {
    const bool present = placeOf[At(number)] >= 0;
    const K& key = keys[At(number)];
    if (operation < 2) return Agrees(map.Find(key) == PlaceOfValue(number));
    if (!present) {
      if (map.Remove(key) || map.Remove(key, value)) return Agrees(false);
      if (growing || operation == 2) Insert(number, value);
      return Agrees(map.GetCapacity() == capacity);
    }
    if (operation == 3) return Agrees(!map.Remove(key, values[Place(number)] + 1));
    if (growing && operation > 3) return Agrees(map.Find(key) == PlaceOfValue(number));
    const bool removed = operation == 4 ? map.Remove(key, values[Place(number)]) : map.Remove(key);
    Remove(number);
    return Agrees(removed && !map.Find(key));
  }

  // Storage order, every link, every lookup.
  void Check() const {
    ASSERT_EQ(map.GetCount(), static_cast<int>(order.size())) << "seed " << seed;
    ASSERT_EQ(map.GetCapacity(), capacity) << "seed " << seed;
    ASSERT_EQ(map.GetNbBuckets(), IsHashed() ? capacity : 0) << "seed " << seed;
    for (std::size_t i = 0; i < order.size(); ++i) {
      const auto& entry = map.begin()[i];
      ASSERT_TRUE(entry.key == keys[At(order[i])]) << "seed " << seed;
      ASSERT_EQ(entry.value, values[i]) << "seed " << seed;
      ASSERT_EQ(map.Find(entry.key), &entry.value) << "seed " << seed;
      if (!entry.next) continue;
      ASSERT_TRUE(IsHashed()) << "seed " << seed;
      ASSERT_TRUE(entry.next >= map.begin() && entry.next < map.end()) << "seed " << seed;
      ASSERT_EQ(BucketOf(entry.next->key), BucketOf(entry.key)) << "seed " << seed;
    }
  }

  int GetCount() const { return static_cast<int>(order.size()); }

 private:
  static std::size_t At(int index) { return static_cast<std::size_t>(index); }
  std::size_t Place(int number) const { return At(placeOf[At(number)]); }
  bool IsHashed() const { return capacity >= 16; }
  unsigned int BucketOf(const K& key) const {
    return KVLHashKey<K>::Of(key) % static_cast<unsigned int>(capacity);
  }

  bool Agrees(bool holds) const {
    return holds && map.GetCount() == static_cast<int>(order.size());
  }

  const int* PlaceOfValue(int number) const {
    return placeOf[At(number)] < 0 ? nullptr : &map.begin()[placeOf[At(number)]].value;
  }

  void Insert(int number, int value) {
    map.Insert(keys[At(number)], value);
    placeOf[At(number)] = static_cast<int>(order.size());
    order.push_back(number);
    values.push_back(value);
    constexpr int Capacities[] = {0, 1, 2, 4, 8, 23, 47, 97, 197, 397, 797, 1597};
    for (const int next : Capacities) {
      if (capacity >= static_cast<int>(order.size())) break;
      capacity = next;
    }
  }

  void Remove(int number) {
    const std::size_t place = Place(number);
    placeOf[At(number)] = -1;
    if (IsHashed()) {
      order[place] = order.back();
      values[place] = values.back();
      order.pop_back();
      values.pop_back();
      if (place < order.size()) placeOf[At(order[place])] = static_cast<int>(place);
      return;
    }
    order.erase(order.begin() + static_cast<std::ptrdiff_t>(place));
    values.erase(values.begin() + static_cast<std::ptrdiff_t>(place));
    for (std::size_t i = place; i < order.size(); ++i)
      placeOf[At(order[i])] = static_cast<int>(i);
  }

  const std::vector<K>& keys;
  const unsigned int seed;
  KVLHashMap<K, int> map;
  std::vector<int> order;    // of the keys' numbers
  std::vector<int> values;   // in the same order
  std::vector<int> placeOf;  // of each key's number; -1 when absent
  int capacity = 0;
};

// Each round fills and empties a map from one kind of size: a few keys keep it linear, many make
// it grow through several rebuilds.
template <class K>
void RunAgainstTheModel(unsigned int seed, int nbOperations, int nbKeys) {
  std::vector<K> keys;
  for (int i = 0; i < nbKeys; ++i)
    keys.push_back(MakeKey(i, static_cast<const K*>(nullptr)));
  std::mt19937 random(seed);
  const auto Below = [&random](int limit) {
    return static_cast<int>(random() % static_cast<unsigned int>(limit));
  };
  Twins<K> twins(keys, seed);
  constexpr int OperationsPerRound = 4000;
  int largest = 0;
  int nbKeysOfRound = 0;
  for (int i = 0; i < nbOperations; ++i) {
    if (i % OperationsPerRound == 0) {
      twins.Restart();
      const int sizes[] = {6, 8, 12, 40, nbKeys};
      nbKeysOfRound = sizes[Below(5)];
    }
    const bool growing = i / 1000 % 2 == 0;
    ASSERT_TRUE(twins.Step(Below(nbKeysOfRound), Below(8), i, growing))
        << "seed " << seed << ", operation " << i;
    if (twins.GetCount() > largest) largest = twins.GetCount();
    if (i % 100 == 99) {
      ASSERT_NO_FATAL_FAILURE(twins.Check()) << "operation " << i;
    }
  }
  EXPECT_GT(largest, nbKeys / 2);
}

TEST(KVLHashMapModel, AMillionOperationsAgreeWithTheModel) {
  RunAgainstTheModel<MRBUnicodeString>(20240607u, 1000000, 900);
}

TEST(KVLHashMapModel, OperationsOnCrowdedChainsAgreeWithTheModel) {
  RunAgainstTheModel<CrowdedKey>(4711u, 200000, 120);
}

}  // namespace
