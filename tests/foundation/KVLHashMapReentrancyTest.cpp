#include <gtest/gtest.h>

#include <functional>
#include <utility>

#include "KVLHashMap.h"
#include "KVLSmartPtr.h"

namespace {

using String = MRBUnicodeString;

String Key(int number) {
  String key;
  key.BuildFromNum(number, "key%d");
  return key;
}

// Runs a function when it dies.
class Mortal : public KVLRefCounted {
 public:
  explicit Mortal(std::function<void()> will) : atDeath(std::move(will)) {}
  ~Mortal() override { atDeath(); }

 private:
  std::function<void()> atDeath;
};
using MortalMap = KVLHashMap<String, KVLSmartPtr<Mortal>>;

KVLSmartPtr<Mortal> Immortal() {
  return new Mortal([] {});
}

void Fill(MortalMap& map, int count) {
  for (int i = 0; i < count; ++i)
    map.Insert(Key(i), Immortal());
}

void ExpectConsistent(MortalMap& map) {
  for (const MortalMap::Entry& entry : map) {
    EXPECT_EQ(map.Find(entry.key), &entry.value);
    EXPECT_FALSE(entry.value.IsNull());
  }
}

// 6 entries in both modes; the one that dies is the first, one between, or the last.
template <class Body>
void ForEachModeAndPlace(Body body) {
  for (const int reserved : {0, 16}) {
    for (const int place : {0, 3, 5}) {
      SCOPED_TRACE(testing::Message() << "reserved " << reserved << ", place " << place);
      MortalMap map;
      map.Reserve(reserved);
      Fill(map, 6);
      body(map, Key(place));
      ExpectConsistent(map);
    }
  }
}

TEST(KVLHashMapReentrancy, AValueThatDiesMayLookIntoTheMap) {
  ForEachModeAndPlace([](MortalMap& map, const String& key) {
    int seen = 0;
    *map.Find(key) = new Mortal([&] {
      EXPECT_EQ(map.Find(key), nullptr);
      EXPECT_EQ(map.GetCount(), 5);
      ExpectConsistent(map);
      ++seen;
    });
    EXPECT_TRUE(map.Remove(key));
    EXPECT_EQ(seen, 1);
  });
}

TEST(KVLHashMapReentrancy, AValueThatDiesMayInsertIntoTheMap) {
  ForEachModeAndPlace([](MortalMap& map, const String& key) {
    *map.Find(key) = new Mortal([&] {
      for (int i = 100; i < 150; ++i)
        map.Insert(Key(i), Immortal());
    });
    EXPECT_TRUE(map.Remove(key));
    EXPECT_EQ(map.GetCount(), 55);
  });
}

TEST(KVLHashMapReentrancy, AValueThatDiesMayInsertItsOwnKeyAgain) {
  ForEachModeAndPlace([](MortalMap& map, const String& key) {
    *map.Find(key) = new Mortal([&] { map.Insert(key, Immortal()); });
    EXPECT_TRUE(map.Remove(key));
    EXPECT_NE(map.Find(key), nullptr);
    EXPECT_EQ(map.GetCount(), 6);
  });
}

TEST(KVLHashMapReentrancy, AValueThatDiesMayRemoveOthersFromTheMap) {
  ForEachModeAndPlace([](MortalMap& map, const String& key) {
    *map.Find(key) = new Mortal([&] {
      EXPECT_FALSE(map.Remove(key));
      while (map.GetCount() > 1)
        EXPECT_TRUE(map.Remove(map.begin()->key));
    });
    EXPECT_TRUE(map.Remove(key, map.Find(key)->Get()));
    EXPECT_EQ(map.GetCount(), 1);
  });
}

TEST(KVLHashMapReentrancy, AssigningACopyLetsTheFormerValuesDieOnceTheMapIsWhole) {
  for (const int count : {3, 30}) {
    MortalMap map;
    Fill(map, count);
    MortalMap other;
    Fill(other, 40);
    int seen = 0;
    *map.Find(Key(1)) = new Mortal([&] {
      EXPECT_EQ(map.GetCount(), 40);
      ExpectConsistent(map);
      ++seen;
    });
    map = other;
    EXPECT_EQ(seen, 1);
  }
}

TEST(KVLHashMapReentrancy, MovingAMapOverAnotherLetsTheFormerValuesDieOnceTheMapIsWhole) {
  for (const int count : {3, 30}) {
    MortalMap map;
    Fill(map, count);
    MortalMap other;
    Fill(other, 40);
    int seen = 0;
    *map.Find(Key(1)) = new Mortal([&] {
      EXPECT_EQ(map.GetCount(), 40);
      ExpectConsistent(map);
      ++seen;
    });
    map = std::move(other);
    EXPECT_EQ(seen, 1);
  }
}

}  // namespace
