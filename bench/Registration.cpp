// What does one entry cost while N of them are registered, environments made on the way, and while
// they are withdrawn again?

#include <algorithm>
#include <memory>

#include "Registries.h"

namespace kvlbench {

namespace {

constexpr int EntriesARound = 10000;

// As many as give a round worth timing.
int NbRegistries(int count) {
  return std::max(1, EntriesARound / count);
}

template <class Registry>
std::vector<std::unique_ptr<Registry>> FreshRegistries(int count) {
  std::vector<std::unique_ptr<Registry>> registries;
  for (int i = 0; i < NbRegistries(count); ++i)
    registries.push_back(std::make_unique<Registry>(count));
  return registries;
}

template <class Registry>
void CheckHolding(const Registry& registry, const Entries& entries, bool held) {
  const auto& queries = entries.queries.As<typename Registry::Text>();
  for (std::size_t i = 0; i < queries.size(); i += queries.size() / 100)
    Require(registry.Find(queries[i]) == (held ? entries.answers[i] : nullptr), "registration");
}

template <class Registry>
void Register(benchmark::State& state, int count) {
  const Entries& entries = Entries::Of(count);
  for (auto _ : state) {
    state.PauseTiming();
    auto registries = FreshRegistries<Registry>(count);
    state.ResumeTiming();
    for (const auto& registry : registries)
      Fill(*registry, entries);
    state.PauseTiming();
    CheckHolding(*registries.back(), entries, true);
    registries.clear();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * NbRegistries(count) * count);
}

template <class Registry>
void Withdraw(benchmark::State& state, int count) {
  const Entries& entries = Entries::Of(count);
  const auto& paths = entries.paths.As<typename Registry::Text>();
  for (auto _ : state) {
    state.PauseTiming();
    auto registries = FreshRegistries<Registry>(count);
    for (const auto& registry : registries)
      Fill(*registry, entries);
    state.ResumeTiming();
    bool removed = true;
    for (const auto& registry : registries) {
      for (std::size_t i = 0; i < paths.size(); ++i)
        removed &= registry->Remove(paths[i], *entries.objects[i]);
    }
    state.PauseTiming();
    Require(removed, "withdrawal");
    CheckHolding(*registries.back(), entries, false);
    registries.clear();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * NbRegistries(count) * count);
}

}  // namespace

void RegisterBenches() {
  for (const int count : {100, 1000, 10000, 100000, 1000000}) {
    const std::string number = ", N = " + std::to_string(count);
    ForEachRegistry([&](auto kind, const char* who) {
      using Registry = typename decltype(kind)::Type;
      Add("register" + number, who,
          [count](benchmark::State& state) { Register<Registry>(state, count); });
      Add("withdraw" + number, who,
          [count](benchmark::State& state) { Withdraw<Registry>(state, count); });
    });
  }
}

}  // namespace kvlbench
