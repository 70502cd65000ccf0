// How many bytes of the heap does an entry take, without the text of its name and its object?

#include <malloc.h>

#include "Registries.h"

namespace kvlbench {

namespace {

std::size_t LiveBytes() {
  const struct mallinfo2 heap = mallinfo2();
  return heap.uordblks + heap.hblkhd;
}

// Single names are short enough for every string class to keep inside its object.
template <class Registry>
std::size_t BytesOfNames(const Entries&) {
  return 0;
}
#ifdef KVL_BENCH_ABSEIL
// What a copy of each path takes beside the string object, which belongs to the table.
template <>
std::size_t BytesOfNames<FlatMap>(const Entries& entries) {
  std::vector<std::string> copies;
  copies.reserve(entries.paths.standard.size());
  const std::size_t before = LiveBytes();
  for (const std::string& path : entries.paths.standard)
    copies.push_back(path);
  return LiveBytes() - before;
}
#endif

template <class Registry>
void Measure(benchmark::State& state, int count) {
  const Entries& entries = Entries::Of(count);
  const std::size_t names = BytesOfNames<Registry>(entries);
  const std::size_t before = LiveBytes();
  Registry registry(count);
  for (auto _ : state)
    Fill(registry, entries);
  const std::size_t all = LiveBytes() - before;
  Require(registry.Find(entries.queries.As<typename Registry::Text>()[0]) == entries.answers[0],
          "registration");
  state.counters["bytes"] = static_cast<double>(all - names) / count;
}

// What no registry goes without: a pointer an object. The objects know their names.
template <>
void Measure<FloorRegistry>(benchmark::State& state, int count) {
  const Entries& entries = Entries::Of(count);
  const std::size_t before = LiveBytes();
  std::vector<ObjectPtr> objects;
  for (auto _ : state)
    objects = entries.objects;
  Require(objects == entries.objects, "objects");
  state.counters["bytes"] = static_cast<double>(LiveBytes() - before) / count;
}

}  // namespace

void RegisterBenches() {
  for (const int count : {10000, 1000000}) {
    ForEachRegistry([&](auto kind, const char* who) {
      using Registry = typename decltype(kind)::Type;
      Add("bytes an entry, N = " + std::to_string(count), who,
          [count](benchmark::State& state) { Measure<Registry>(state, count); })
          ->Iterations(1)
          ->Repetitions(1);
    });
  }
}

}  // namespace kvlbench
