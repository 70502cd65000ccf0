// What does a text of 24 bytes cost while a million of them are appended to a vector?

#include <cstring>
#include <string>
#include <vector>

#include "Bench.h"
#include "KVLVector.h"
#include "MRBUnicodeString.h"

namespace kvlbench {

namespace {

constexpr const char* Workload = "append 24-byte texts";
constexpr int Count = 1000000;
constexpr const char* Text = "a text of some 24 bytes.";
constexpr std::size_t TextSize = 24;

void AppendOurs(benchmark::State& state) {
  const MRBUnicodeString text(Text);
  Require(text.GetLengthInByte() == TextSize, "length");
  for (auto _ : state) {
    KVLVector<MRBUnicodeString> texts;
    for (int i = 0; i < Count; ++i)
      texts.Append(text);
    state.PauseTiming();
    Require(texts.GetCount() == Count && texts[0] == Text && texts[Count - 1] == Text, "texts");
    texts = KVLVector<MRBUnicodeString>();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * Count);
}

void AppendStandard(benchmark::State& state) {
  const std::string text(Text);
  for (auto _ : state) {
    std::vector<std::string> texts;
    for (int i = 0; i < Count; ++i)
      texts.push_back(text);
    state.PauseTiming();
    Require(texts.size() == Count && texts.front() == Text && texts.back() == Text, "texts");
    texts = std::vector<std::string>();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * Count);
}

// The bytes alone, one behind the other, in a block that is large enough from the beginning.
void AppendByHand(benchmark::State& state) {
  for (auto _ : state) {
    char* const block = static_cast<char*>(std::malloc(Count * TextSize));
    for (int i = 0; i < Count; ++i) {
      const char* text = Text;
      benchmark::DoNotOptimize(text);
      std::memcpy(block + static_cast<std::size_t>(i) * TextSize, text, TextSize);
    }
    benchmark::DoNotOptimize(block);
    state.PauseTiming();
    Require(std::memcmp(block + (Count - 1) * TextSize, Text, TextSize) == 0, "bytes");
    std::free(block);
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * Count);
}

}  // namespace

void RegisterBenches() {
  Add(Workload, Ours, AppendOurs);
  Add(Workload, Floor, AppendByHand);
  Add(Workload, "std::vector", AppendStandard);
}

}  // namespace kvlbench
