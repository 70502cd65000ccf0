// What does a key cost while a million different ones are inserted into a map that holds none yet?

#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#ifdef KVL_BENCH_ABSEIL
#include <absl/container/flat_hash_map.h>
#endif

#include "Bench.h"
#include "KVLHashMap.h"

namespace kvlbench {

namespace {

constexpr const char* Workload = "insert keys";
constexpr int Count = 1000000;

// 24 bytes each.
const std::vector<std::string>& Keys() {
  static const std::vector<std::string> keys = [] {
    std::vector<std::string> made;
    std::mt19937_64 random(Seed);
    for (int i = 0; i < Count; ++i) {
      const std::string number = std::to_string(i);
      const std::string noise = std::to_string(random() | std::uint64_t{1} << 63);
      made.push_back((noise + "_______").substr(0, 24 - number.size()) + number);
    }
    return made;
  }();
  return keys;
}

void InsertOurs(benchmark::State& state) {
  std::vector<MRBUnicodeString> keys;
  for (const std::string& key : Keys())
    keys.emplace_back(key.c_str());
  for (auto _ : state) {
    KVLHashMap<MRBUnicodeString, int> map;
    for (int i = 0; i < Count; ++i) {
      const MRBUnicodeString& key = keys[static_cast<std::size_t>(i)];
      if (!map.Find(key)) map.Insert(key, i);
    }
    state.PauseTiming();
    Require(map.GetCount() == Count && *map.Find(keys[4711]) == 4711, "keys");
    map = KVLHashMap<MRBUnicodeString, int>();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * Count);
}

// A slot a key, in a table that is large enough from the beginning and borrows the texts: the hash
// is read off the key's random digits.
void InsertByHand(benchmark::State& state) {
  struct Slot {
    const std::string* key;
    int value;
  };
  constexpr std::size_t Size = 1 << 21;
  const std::vector<std::string>& keys = Keys();
  for (auto _ : state) {
    Slot* const slots = static_cast<Slot*>(std::calloc(Size, sizeof(Slot)));
    int nb = 0;
    for (int i = 0; i < Count; ++i) {
      const std::string& key = keys[static_cast<std::size_t>(i)];
      std::uint64_t digits;
      std::memcpy(&digits, key.data() + 8, sizeof(digits));
      std::size_t place = digits * 0x9E3779B97F4A7C15u >> 43;
      while (slots[place].key && *slots[place].key != key)
        place = (place + 1) & (Size - 1);
      if (slots[place].key) continue;
      slots[place] = Slot{&key, i};
      ++nb;
    }
    state.PauseTiming();
    Require(nb == Count, "keys by hand");
    std::free(slots);
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * Count);
}

#ifdef KVL_BENCH_ABSEIL
void InsertAbseil(benchmark::State& state) {
  const std::vector<std::string>& keys = Keys();
  for (auto _ : state) {
    absl::flat_hash_map<std::string, int> map;
    for (int i = 0; i < Count; ++i)
      map.try_emplace(keys[static_cast<std::size_t>(i)], i);
    state.PauseTiming();
    Require(map.size() == Count && map[keys[4711]] == 4711, "keys of Abseil");
    map = absl::flat_hash_map<std::string, int>();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * Count);
}
#endif

}  // namespace

void RegisterBenches() {
  Add(Workload, Ours, InsertOurs);
  Add(Workload, Floor, InsertByHand);
#ifdef KVL_BENCH_ABSEIL
  Add(Workload, "Abseil", InsertAbseil);
#endif
}

}  // namespace kvlbench
