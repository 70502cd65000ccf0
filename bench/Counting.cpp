// What does a copy of a counted pointer cost, made and given back?

#include <memory>
#include <vector>

#ifdef KVL_BENCH_BOOST
#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>
#endif

#include "Bench.h"
#include "KVLSmartPtr.h"

namespace kvlbench {

namespace {

constexpr const char* Workload = "copy a counted pointer";
// Objects are as far apart as those of a registry, but all of them near.
constexpr int Count = 64;

struct OurObject : KVLRefCounted {
  int content = 0;
};

// A round copies each pointer once and gives the copies back.
template <class Pointer>
void Copy(benchmark::State& state, const std::vector<Pointer>& pointers) {
  for (auto _ : state) {
    for (const Pointer& pointer : pointers) {
      Pointer copy(pointer);
      benchmark::DoNotOptimize(copy);
    }
  }
  state.SetItemsProcessed(state.iterations() * Count);
}

void CopyOurs(benchmark::State& state) {
  std::vector<KVLSmartPtr<OurObject>> pointers;
  for (int i = 0; i < Count; ++i)
    pointers.emplace_back(new OurObject);
  Copy(state, pointers);
}

// Up, down, and the question whether that was the last.
void CopyByHand(benchmark::State& state) {
  std::vector<std::unique_ptr<int>> counts;
  for (int i = 0; i < Count; ++i)
    counts.push_back(std::make_unique<int>(1));
  int nbLast = 0;
  for (auto _ : state) {
    for (const std::unique_ptr<int>& count : counts) {
      int* copy = count.get();
      ++*copy;
      benchmark::DoNotOptimize(copy);
      if (--*copy == 0) ++nbLast;
    }
  }
  Require(nbLast == 0, "counts by hand");
  state.SetItemsProcessed(state.iterations() * Count);
}

#ifdef KVL_BENCH_BOOST
struct BoostObject : boost::intrusive_ref_counter<BoostObject, boost::thread_unsafe_counter> {
  virtual ~BoostObject() = default;
  int content = 0;
};

void CopyBoost(benchmark::State& state) {
  std::vector<boost::intrusive_ptr<BoostObject>> pointers;
  for (int i = 0; i < Count; ++i)
    pointers.emplace_back(new BoostObject);
  Copy(state, pointers);
  for (const auto& pointer : pointers)
    Require(pointer->use_count() == 1, "counts of Boost");
}
#endif

}  // namespace

void RegisterBenches() {
  Add(Workload, Ours, CopyOurs);
  Add(Workload, Floor, CopyByHand);
#ifdef KVL_BENCH_BOOST
  Add(Workload, "Boost", CopyBoost);
#endif
}

}  // namespace kvlbench
