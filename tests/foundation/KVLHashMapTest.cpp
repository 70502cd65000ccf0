#include "KVLHashMap.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <type_traits>
#include <utility>
#include <vector>

#include "KVLKeyValue.h"
#include "support/AllocationCounter.h"
#include "support/CountedElement.h"

namespace {

using String = MRBUnicodeString;
using Map = KVLHashMap<String, int>;

static_assert(std::is_nothrow_default_constructible_v<Map>);
static_assert(std::is_nothrow_move_constructible_v<Map>);
static_assert(std::is_nothrow_move_assignable_v<Map>);
static_assert(noexcept(std::declval<Map&>().Swap(std::declval<Map&>())));
static_assert(std::is_same_v<decltype(std::declval<Map&>().Find("")), int*>);
static_assert(std::is_same_v<decltype(std::declval<const Map&>().Find("")), const int*>);
static_assert(std::is_same_v<decltype(std::declval<Map&>().Insert("", 0)), int&>);
static_assert(std::is_same_v<decltype(KVLHashKey<String>::Of(String())), unsigned int>);

String Key(int number) {
  String key;
  key.BuildFromNum(number, "key%d");
  return key;
}

// Keys key0, key1, ... with the values 0, 1, ...
template <class V>
void Fill(KVLHashMap<String, V>& map, int count) {
  for (int i = 0; i < count; ++i)
    map.Insert(Key(i), V(i));
}

std::vector<int> Values(const Map& map) {
  std::vector<int> values;
  for (const Map::Entry& entry : map) {
    EXPECT_EQ(entry.key, Key(entry.value));
    EXPECT_EQ(map.Find(entry.key), &entry.value);
    values.push_back(entry.value);
  }
  EXPECT_EQ(map.GetCount(), static_cast<int>(values.size()));
  return values;
}

std::vector<int> UpTo(int count) {
  std::vector<int> numbers;
  for (int i = 0; i < count; ++i)
    numbers.push_back(i);
  return numbers;
}

TEST(KVLHashUpToNiceModulo, GivesTheNextNumberWithoutSmallPrimeFactors) {
  const std::pair<int, int> cases[] = {
      {0, 1},   {1, 1},   {2, 23},    {3, 23},    {16, 23},   {23, 23},   {24, 29},    {30, 31},
      {46, 47}, {94, 97}, {194, 197}, {394, 397}, {529, 529}, {794, 797}, {1594, 1597}};
  for (const auto& [number, nice] : cases)
    EXPECT_EQ(KVLHash_UpToNiceModulo(number), nice) << number;
}

TEST(KVLHashUpToNiceModulo, TakesANegativeNumberAsUnsigned) {
  for (const int number : {-1, -2, -1000, INT_MIN, INT_MAX}) {
    unsigned int expected = static_cast<unsigned int>(number);
    for (bool divisible = true; divisible; expected += divisible) {
      divisible = false;
      for (const unsigned int prime : {2u, 3u, 5u, 7u, 11u, 13u, 17u, 19u})
        divisible = divisible || expected % prime == 0;
    }
    EXPECT_EQ(static_cast<unsigned int>(KVLHash_UpToNiceModulo(number)), expected) << number;
  }
}

TEST(KVLHashMap, IsEmptyAndLinearByDefault) {
  Map map;
  EXPECT_EQ(map.GetCount(), 0);
  EXPECT_EQ(map.GetCapacity(), 0);
  EXPECT_EQ(map.GetNbBuckets(), 0);
  EXPECT_EQ(map.begin(), map.end());
  EXPECT_EQ(map.Find("a"), nullptr);
  EXPECT_FALSE(map.Remove("a"));
  EXPECT_FALSE(map.Remove("a", 1));
}

TEST(KVLHashMap, HoldsEntriesThenBuckets) {
  Map map;
  Fill(map, 9);
  struct Vector {
    int count;
    int capacity;
    const void* data;
  };
  struct Fields {
    Vector entries;
    Vector buckets;
  } fields;
  static_assert(sizeof fields == sizeof map);
  std::memcpy(&fields, static_cast<const void*>(&map), sizeof fields);
  EXPECT_EQ(fields.entries.count, 9);
  EXPECT_EQ(fields.entries.capacity, 23);
  EXPECT_EQ(fields.entries.data, map.begin());
  EXPECT_EQ(fields.buckets.count, 23);
}

TEST(KVLHashMap, CapacitiesWhenFilledOneByOne) {
  Map map;
  std::vector<int> capacities;
  for (int i = 0; i < 500; ++i) {
    map.Insert(Key(i), i);
    if (capacities.empty() || capacities.back() != map.GetCapacity())
      capacities.push_back(map.GetCapacity());
    EXPECT_EQ(map.GetNbBuckets(), map.GetCapacity() < 16 ? 0 : map.GetCapacity());
  }
  EXPECT_EQ(capacities, (std::vector<int>{1, 2, 4, 8, 23, 47, 97, 197, 397, 797}));
}

TEST(KVLHashMap, IsLinearWith8EntriesAndHashedWith9InTheSameOrder) {
  Map map;
  Fill(map, 8);
  EXPECT_EQ(map.GetNbBuckets(), 0);
  EXPECT_EQ(map.GetCapacity(), 8);
  map.Insert(Key(8), 8);
  EXPECT_EQ(map.GetNbBuckets(), 23);
  EXPECT_EQ(map.GetCapacity(), 23);
  EXPECT_EQ(Values(map), UpTo(9));
}

TEST(KVLHashMap, ARebuildKeepsTheStorageOrder) {
  Map map;
  Fill(map, 23);
  map.Remove(Key(3));
  map.Remove(Key(11));
  const std::vector<int> before = Values(map);
  map.Reserve(24);
  EXPECT_EQ(map.GetCapacity(), 47);
  EXPECT_EQ(map.GetNbBuckets(), 47);
  EXPECT_EQ(Values(map), before);
}

TEST(KVLHashMap, ARebuildMovesTheValues) {
  CountedElement::Reset();
  {
    KVLHashMap<String, CountedElement> map;
    Fill(map, 23);
    const int copies = CountedElement::Counts().copies;
    map.Reserve(100);
    EXPECT_EQ(CountedElement::Counts().copies, copies);
    EXPECT_EQ(CountedElement::Counts().GetLive(), 23);
  }
  EXPECT_EQ(CountedElement::Counts().GetLive(), 0);
  EXPECT_EQ(CountedElement::Counts().misuses, 0);
}

TEST(KVLHashMap, FindsEveryKeyAndNoOtherInBothModes) {
  for (const int count : {1, 8, 9, 500}) {
    Map map;
    Fill(map, count);
    for (int i = 0; i < count; ++i) {
      ASSERT_NE(map.Find(Key(i)), nullptr) << i;
      EXPECT_EQ(*map.Find(Key(i)), i);
    }
    EXPECT_EQ(map.Find(Key(count)), nullptr);
    EXPECT_EQ(map.Find(""), nullptr);
    EXPECT_EQ(map.Find("KEY0"), nullptr);
    EXPECT_EQ(map.Find("key"), nullptr);
  }
}

TEST(KVLHashMap, FindingAllocatesNothing) {
  if (!AllocationCounter::IsAvailable()) GTEST_SKIP();
  for (const int count : {8, 100}) {
    Map map;
    Fill(map, count);
    const String key = Key(5);
    const AllocationCounter counter;
    const int* const found = map.Find(key);
    EXPECT_EQ(counter.GetCount(), 0);
    EXPECT_NE(found, nullptr);
  }
}

TEST(KVLHashMap, FindGivesThePlaceOfTheValue) {
  for (const int count : {3, 30}) {
    Map map;
    Fill(map, count);
    *map.Find(Key(1)) = 77;
    EXPECT_EQ(map.begin()[1].value, 77);
  }
}

TEST(KVLHashMap, TakesTheEmptyKeyAndKeysWithNuls) {
  for (const int count : {0, 20}) {
    Map map;
    Fill(map, count);
    map.Insert("", 1000);
    map.Insert(String("\0", 1), 1001);
    map.Insert(String("\0\0", 2), 1002);
    EXPECT_EQ(*map.Find(""), 1000);
    EXPECT_EQ(*map.Find(String("\0", 1)), 1001);
    EXPECT_EQ(*map.Find(String("\0\0", 2)), 1002);
    EXPECT_TRUE(map.Remove(""));
    EXPECT_EQ(map.Find(""), nullptr);
    EXPECT_EQ(*map.Find(String("\0", 1)), 1001);
  }
}

TEST(KVLHashMap, InsertAppendsAndReturnsTheValue) {
  for (const int count : {0, 8, 22, 23}) {
    Map map;
    Fill(map, count);
    int& value = map.Insert("new", 5);
    EXPECT_EQ(&value, &map.begin()[count].value);
    EXPECT_EQ(map.begin()[count].key, "new");
    EXPECT_EQ(value, 5);
  }
}

TEST(KVLHashMap, InsertsItsOwnKeysAndValues) {
  for (const int count : {1, 2, 4, 8, 23, 47}) {
    KVLHashMap<String, String> map;
    const String text("a text too long for the inside of the object");
    for (int i = 0; i < count; ++i)
      map.Insert(text + Key(i), text);
    map.Insert(map.begin()[0].key, map.begin()[0].value);
    EXPECT_EQ(map.begin()[count].key, text + "key0");
    EXPECT_EQ(map.begin()[count].value, text);
    EXPECT_EQ(map.begin()[0].key, text + "key0");
  }
}

TEST(KVLHashMap, AKeyTwiceInsertedIsFoundFirstInTheOrderOfTheSearch) {
  Map linear;
  linear.Insert("twice", 1);
  linear.Insert("twice", 2);
  EXPECT_EQ(*linear.Find("twice"), 1);
  EXPECT_TRUE(linear.Remove("twice"));
  EXPECT_EQ(*linear.Find("twice"), 2);

  // A chain is searched from its head, where the newer entry is.
  Map hashed;
  hashed.Reserve(16);
  hashed.Insert("twice", 1);
  hashed.Insert("twice", 2);
  EXPECT_EQ(*hashed.Find("twice"), 2);
  EXPECT_TRUE(hashed.Remove("twice"));
  EXPECT_EQ(*hashed.Find("twice"), 1);
}

TEST(KVLHashMap, ARebuildPutsTheLaterEntryAtTheHeadOfItsChain) {
  Map map;
  map.Insert("twice", 1);
  map.Insert("twice", 2);
  for (const int places : {16, 24, 100}) {
    map.Reserve(places);
    EXPECT_EQ(*map.Find("twice"), 2);
    EXPECT_EQ(map.begin()[0].value, 1);
    EXPECT_EQ(map.begin()[1].next, &map.begin()[0]);
    EXPECT_EQ(map.begin()[0].next, nullptr);
  }
}

TEST(KVLHashMap, ReserveGrowsALinearMapToTheLargerOfNeededAndDouble) {
  Map map;
  map.Reserve(3);
  EXPECT_EQ(map.GetCapacity(), 3);
  map.Reserve(3);
  map.Reserve(2);
  map.Reserve(0);
  map.Reserve(-1);
  EXPECT_EQ(map.GetCapacity(), 3);
  map.Reserve(4);
  EXPECT_EQ(map.GetCapacity(), 6);
  map.Reserve(15);
  EXPECT_EQ(map.GetCapacity(), 15);
  EXPECT_EQ(map.GetNbBuckets(), 0);
}

TEST(KVLHashMap, ReserveOf16HashesAnEmptyMap) {
  Map map;
  map.Reserve(16);
  EXPECT_EQ(map.GetCapacity(), 23);
  EXPECT_EQ(map.GetNbBuckets(), 23);
  EXPECT_EQ(map.GetCount(), 0);
  EXPECT_EQ(map.Find("a"), nullptr);
  map.Reserve(24);
  EXPECT_EQ(map.GetCapacity(), 47);
  EXPECT_EQ(map.GetNbBuckets(), 47);
}

TEST(KVLHashMap, ReserveHashesAMapWithEntries) {
  Map map;
  Fill(map, 3);
  map.Reserve(100);
  EXPECT_EQ(map.GetCapacity(), 101);
  EXPECT_EQ(map.GetNbBuckets(), 101);
  EXPECT_EQ(Values(map), UpTo(3));
}

TEST(KVLHashMap, ALinearMapOf15PlacesHashesWithTheSixteenthEntry) {
  Map map;
  map.Reserve(15);
  Fill(map, 15);
  EXPECT_EQ(map.GetNbBuckets(), 0);
  map.Insert(Key(15), 15);
  EXPECT_EQ(map.GetCapacity(), 31);
  EXPECT_EQ(map.GetNbBuckets(), 31);
  EXPECT_EQ(Values(map), UpTo(16));
}

TEST(KVLHashMap, RemovalFromALinearMapClosesTheGap) {
  Map map;
  Fill(map, 3);
  EXPECT_TRUE(map.Remove(Key(0)));
  EXPECT_EQ(Values(map), (std::vector<int>{1, 2}));
  EXPECT_EQ(map.GetCapacity(), 4);
  EXPECT_TRUE(map.Remove(Key(2)));
  EXPECT_EQ(Values(map), (std::vector<int>{1}));
  EXPECT_FALSE(map.Remove(Key(2)));
  EXPECT_TRUE(map.Remove(Key(1)));
  EXPECT_EQ(map.GetCount(), 0);
  EXPECT_EQ(map.GetCapacity(), 4);
}

TEST(KVLHashMap, RemovalFromAHashedMapMovesTheLastEntryIntoTheHole) {
  Map map;
  map.Reserve(16);
  Fill(map, 3);
  EXPECT_TRUE(map.Remove(Key(0)));
  EXPECT_EQ(Values(map), (std::vector<int>{2, 1}));
  EXPECT_TRUE(map.Remove(Key(1)));
  EXPECT_EQ(Values(map), (std::vector<int>{2}));
  EXPECT_FALSE(map.Remove(Key(1)));
  EXPECT_TRUE(map.Remove(Key(2)));
  EXPECT_EQ(map.GetCount(), 0);
  EXPECT_EQ(map.GetCapacity(), 23);
}

TEST(KVLHashMap, RemovalNeverShrinksAndNeverGoesBackToLinear) {
  Map map;
  Fill(map, 100);
  EXPECT_EQ(map.GetCapacity(), 197);
  for (int i = 0; i < 100; ++i)
    EXPECT_TRUE(map.Remove(Key(i)));
  EXPECT_EQ(map.GetCapacity(), 197);
  EXPECT_EQ(map.GetNbBuckets(), 197);
  Fill(map, 100);
  EXPECT_EQ(Values(map), UpTo(100));
}

TEST(KVLHashMap, RemovalByKeyAndValueTakesOnlyThatValue) {
  for (const int reserved : {0, 16}) {
    Map map;
    map.Reserve(reserved);
    Fill(map, 4);
    EXPECT_FALSE(map.Remove(Key(1), 2));
    EXPECT_FALSE(map.Remove(Key(9), 1));
    EXPECT_EQ(Values(map), UpTo(4));
    EXPECT_TRUE(map.Remove(Key(1), 1));
    EXPECT_EQ(map.Find(Key(1)), nullptr);
    EXPECT_EQ(map.GetCount(), 3);
  }
}

TEST(KVLHashMap, RemovalByKeyAndValueLooksPastAnotherValueOfTheKey) {
  for (const int reserved : {0, 16}) {
    Map map;
    map.Reserve(reserved);
    // Whichever the search meets first, one of the two lies behind the other.
    for (const int removed : {1, 2}) {
      map.Insert("twice", 1);
      map.Insert("twice", 2);
      EXPECT_FALSE(map.Remove("twice", 3));
      EXPECT_TRUE(map.Remove("twice", removed));
      EXPECT_EQ(*map.Find("twice"), 3 - removed);
      EXPECT_TRUE(map.Remove("twice"));
      EXPECT_EQ(map.GetCount(), 0);
    }
  }
}

TEST(KVLHashMap, RemovesByAKeyAndAValueOfItsOwn) {
  for (const int reserved : {0, 16}) {
    Map map;
    map.Reserve(reserved);
    Fill(map, 6);
    EXPECT_TRUE(map.Remove(map.begin()[5].key));
    EXPECT_TRUE(map.Remove(map.begin()[1].key));
    EXPECT_TRUE(map.Remove(map.begin()[0].key, map.begin()[0].value));
    EXPECT_EQ(map.GetCount(), 3);
    Values(map);
  }
}

TEST(KVLHashMap, DestroysEveryValueOnce) {
  CountedElement::Reset();
  {
    KVLHashMap<String, CountedElement> map;
    Fill(map, 30);
    for (int i = 0; i < 30; i += 3)
      EXPECT_TRUE(map.Remove(Key(i)));
    EXPECT_EQ(CountedElement::Counts().GetLive(), 20);
    EXPECT_TRUE(map.Remove(Key(1), CountedElement(1)));
    EXPECT_EQ(CountedElement::Counts().GetLive(), 19);
  }
  EXPECT_EQ(CountedElement::Counts().GetLive(), 0);
  EXPECT_EQ(CountedElement::Counts().misuses, 0);
}

TEST(KVLHashMap, CopiesDeeplyInTheSameOrder) {
  for (const int count : {0, 5, 30}) {
    Map map;
    Fill(map, count);
    Map copy(map);
    EXPECT_EQ(Values(copy), Values(map));
    copy.Insert("more", 1);
    EXPECT_EQ(map.Find("more"), nullptr);
    Map assigned;
    assigned.Insert("former", 1);
    assigned = map;
    EXPECT_EQ(Values(assigned), Values(map));
    const Map& same = assigned;
    assigned = same;
    EXPECT_EQ(Values(assigned), Values(map));
  }
}

TEST(KVLHashMap, ACopyIsAsLargeAsItsEntriesNeed) {
  Map map;
  Fill(map, 30);
  for (int i = 3; i < 30; ++i)
    map.Remove(Key(i));
  const Map copy(map);
  EXPECT_EQ(copy.GetCapacity(), 4);
  EXPECT_EQ(copy.GetNbBuckets(), 0);
  EXPECT_EQ(Values(copy), UpTo(3));
}

TEST(KVLHashMap, MovesLeaveTheSourceEmptyAndUsable) {
  for (const int count : {5, 30}) {
    Map map;
    Fill(map, count);
    Map taken(std::move(map));
    EXPECT_EQ(Values(taken), UpTo(count));
    EXPECT_EQ(map.GetCount(), 0);
    EXPECT_EQ(map.Find(Key(0)), nullptr);
    Fill(map, 9);
    EXPECT_EQ(Values(map), UpTo(9));
    map = std::move(taken);
    EXPECT_EQ(Values(map), UpTo(count));
    EXPECT_EQ(taken.Find(Key(0)), nullptr);
    Map other;
    other.Swap(map);
    EXPECT_EQ(Values(other), UpTo(count));
    EXPECT_EQ(map.GetCount(), 0);
  }
}

TEST(KVLHashMap, MapsAddresses) {
  KVLHashMap<void*, int> map;
  int places[100];
  for (int i = 0; i < 100; ++i)
    map.Insert(places + i, i);
  for (int i = 0; i < 100; i += 2)
    EXPECT_TRUE(map.Remove(places + i));
  for (int i = 0; i < 100; ++i) {
    const int* const found = map.Find(places + i);
    ASSERT_EQ(found != nullptr, i % 2 == 1);
    if (found) {
      EXPECT_EQ(*found, i);
    }
  }
}

TEST(KVLHashMap, AKeyValueIsAPairOfKeyThenValue) {
  const KVLKeyValue<int, String> pair{3, "three"};
  EXPECT_EQ(pair.key, 3);
  EXPECT_EQ(pair.value, "three");
  EXPECT_LT(static_cast<const void*>(&pair.key), static_cast<const void*>(&pair.value));
}

}  // namespace
