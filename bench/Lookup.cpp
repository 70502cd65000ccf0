// How long does it take to find one of N objects by its path, and to learn that there is none?

#include <cstdint>
#include <map>
#include <memory>

#include "Registries.h"

namespace kvlbench {

namespace {

template <class Registry>
const Registry& FilledRegistry(int count) {
  static std::map<int, std::unique_ptr<Registry>> made;
  std::unique_ptr<Registry>& registry = made[count];
  if (registry) return *registry;
  registry = std::make_unique<Registry>(count);
  const Entries& entries = Entries::Of(count);
  Fill(*registry, entries);

  using Text = typename Registry::Text;
  const std::vector<Text>& queries = entries.queries.As<Text>();
  const std::vector<Text>& absent = entries.absent.As<Text>();
  for (std::size_t i = 0; i < queries.size(); ++i) {
    Require(registry->Find(queries[i]) == entries.answers[i], "another object was found");
    Require(registry->Find(absent[i]).IsNull(), "an absent object was found");
  }
  return *registry;
}

// 0, but the processor learns it only with the answer.
std::size_t ZeroAfter(const ObjectPtr& answer) {
  const KVLCodeObject* object = answer.Get();
  benchmark::DoNotOptimize(object);
  return reinterpret_cast<std::uintptr_t>(object) & 1;
}

// A run goes on at query `i`, where the last one ended: it must not meet in the caches what it left
// there. Each query waits for the answer before it, as callers do: otherwise the figure would tell
// how many lookups the processor overlaps.
template <class Registry>
void Find(benchmark::State& state, int count, Paths Entries::*queried, std::size_t& i) {
  const Registry& registry = FilledRegistry<Registry>(count);
  const auto& queries = (Entries::Of(count).*queried).template As<typename Registry::Text>();
  for (auto _ : state) {
    i += 1 + ZeroAfter(registry.Find(queries[i]));
    if (i == queries.size()) i = 0;
  }
}

}  // namespace

void RegisterBenches() {
  for (const int count : {100, 1000, 10000, 100000, 1000000}) {
    const std::string number = ", N = " + std::to_string(count);
    ForEachRegistry([&](auto kind, const char* who) {
      using Registry = typename decltype(kind)::Type;
      Add("find by path" + number, who,
          [count, i = std::size_t{0}](benchmark::State& state) mutable {
            Find<Registry>(state, count, &Entries::queries, i);
          });
      Add("find absent" + number, who,
          [count, i = std::size_t{0}](benchmark::State& state) mutable {
            Find<Registry>(state, count, &Entries::absent, i);
          });
    });
  }
}

}  // namespace kvlbench
