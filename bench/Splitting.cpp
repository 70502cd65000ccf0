// What does a piece cost when a list is cut at its top-level commas into strings?

#include <functional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#ifdef KVL_BENCH_ABSEIL
#include <absl/strings/str_split.h>
#endif

#include "Bench.h"
#include "KVLStringOperations.h"
#include "KVLVector.h"

namespace kvlbench {

namespace {

std::string Word(std::mt19937& random) {
  std::string word;
  for (auto left = 3 + random() % 10; left > 0; --left)
    word += static_cast<char>('a' + random() % 26);
  return word;
}

std::string NestedItem(std::mt19937& random) {
  switch (random() % 5) {
    case 0:
      return "[" + Word(random) + "," + Word(random) + ",[" + Word(random) + "]]";
    case 1:
      return "{" + Word(random) + ",\"" + Word(random) + ",\\\"]\"}";
    case 2:
      return Word(random) + "(" + Word(random) + ",(" + Word(random) + "))";
    case 3:
      return "\"" + Word(random) + ",(" + Word(random) + "\"";
    default:
      return Word(random);
  }
}

std::string ListOf(std::size_t bytes, const std::function<std::string(std::mt19937&)>& makeItem) {
  std::mt19937 random(Seed);
  std::string list = makeItem(random);
  while (list.size() < bytes)
    list += "," + makeItem(random);
  return list;
}

/// Cuts as `SplitWithDepth` does, and hands out slices of the text.
class Scanner {
 public:
  explicit Scanner(std::string_view scanned) : text(scanned) {}

  bool Next(std::string_view& piece) {
    if (position >= text.size()) return false;
    closers.clear();
    std::size_t i = position;
    for (; i < text.size(); ++i) {
      const char character = text[i];
      if (character == ',' && closers.empty()) break;
      switch (character) {
        case '"':
          for (++i; i < text.size() && text[i] != '"'; ++i)
            if (text[i] == '\\') ++i;
          break;
        case '(':
          closers += ')';
          break;
        case '[':
          closers += ']';
          break;
        case '{':
          closers += '}';
          break;
        default:
          if (!closers.empty() && character == closers.back()) closers.pop_back();
      }
    }
    if (i > text.size()) i = text.size();
    piece = text.substr(position, i - position);
    position = i + 1;
    return true;
  }

 private:
  std::string_view text;
  std::size_t position = 0;
  std::string closers;
};

using Pieces = std::vector<std::string>;

Pieces PiecesByHand(const std::string& list) {
  Pieces pieces;
  Scanner scanner(list);
  for (std::string_view piece; scanner.Next(piece);)
    pieces.emplace_back(piece);
  return pieces;
}

// The pieces of a list and what they add up to.
struct Expectation {
  explicit Expectation(const std::string& list) : pieces(PiecesByHand(list)) {
    for (const std::string& piece : pieces)
      length += piece.size();
  }

  Pieces pieces;
  std::size_t length = 0;
};

void CheckLength(const benchmark::State& state, const Expectation& expected, std::size_t length) {
  Require(length == expected.length * static_cast<std::size_t>(state.iterations()),
          "length of the pieces");
}

std::int64_t NbPieces(const benchmark::State& state, const Expectation& expected) {
  return state.iterations() * static_cast<std::int64_t>(expected.pieces.size());
}

KVLIter<MRBUnicodeString> SplitOurs(const MRBUnicodeString& list) {
  return KVLStringOperations::SplitWithDepth(list, ',', KVLStringOperations::DepthAll);
}

void CollectOurs(benchmark::State& state, const std::string& list) {
  const Expectation expected(list);
  const MRBUnicodeString text(list.c_str());
  KVLVector<MRBUnicodeString> pieces;
  for (auto _ : state) {
    pieces = KVLVector<MRBUnicodeString>();
    KVLIter<MRBUnicodeString> iter = SplitOurs(text);
    for (MRBUnicodeString& piece : iter)
      pieces.Append(std::move(piece));
    benchmark::DoNotOptimize(pieces.GetData());
  }
  bool right = pieces.GetCount() == static_cast<int>(expected.pieces.size());
  for (int i = 0; right && i < pieces.GetCount(); ++i)
    right = pieces[i] == expected.pieces[static_cast<std::size_t>(i)].c_str();
  Require(right, "pieces");
  state.SetItemsProcessed(NbPieces(state, expected));
}

void WalkOurs(benchmark::State& state, const std::string& list) {
  const Expectation expected(list);
  const MRBUnicodeString text(list.c_str());
  std::size_t length = 0;
  for (auto _ : state) {
    KVLIter<MRBUnicodeString> iter = SplitOurs(text);
    for (const MRBUnicodeString& piece : iter)
      length += static_cast<std::size_t>(piece.GetLengthInByte());
  }
  CheckLength(state, expected, length);
  state.SetItemsProcessed(NbPieces(state, expected));
}

// `collect` makes the pieces of a list.
template <class Collect>
void CollectOther(benchmark::State& state, const std::string& list, Collect collect) {
  const Expectation expected(list);
  Pieces pieces;
  for (auto _ : state) {
    pieces = collect(list);
    benchmark::DoNotOptimize(pieces.data());
  }
  Require(pieces == expected.pieces, "pieces");
  state.SetItemsProcessed(NbPieces(state, expected));
}

// `walk` hands every piece of a list to a function.
template <class Walk>
void WalkOther(benchmark::State& state, const std::string& list, Walk walk) {
  const Expectation expected(list);
  std::size_t length = 0;
  for (auto _ : state) {
    walk(list, [&length](const auto& piece) {
      benchmark::DoNotOptimize(piece.data());
      length += piece.size();
    });
  }
  CheckLength(state, expected, length);
  state.SetItemsProcessed(NbPieces(state, expected));
}

template <class Use>
void WalkStringsByHand(const std::string& list, Use use) {
  Scanner scanner(list);
  for (std::string_view piece; scanner.Next(piece);)
    use(std::string(piece));
}

template <class Use>
void WalkSlicesByHand(const std::string& list, Use use) {
  Scanner scanner(list);
  for (std::string_view piece; scanner.Next(piece);)
    use(piece);
}

template <class Use>
void WalkFlatSlicesByHand(const std::string& list, Use use) {
  for (std::string_view rest = list;;) {
    const std::size_t end = rest.find(',');
    use(rest.substr(0, end));
    if (end == std::string_view::npos) return;
    rest.remove_prefix(end + 1);
  }
}

void AddBenches(const std::string& form, const std::string& list, bool flat) {
  const std::string collected = "split " + form + ", collected";
  const std::string walked = "split " + form + ", walked";
  Add(collected, Ours, [list](benchmark::State& state) { CollectOurs(state, list); });
  Add(walked, Ours, [list](benchmark::State& state) { WalkOurs(state, list); });
  Add(collected, "scan by hand",
      [list](benchmark::State& state) { CollectOther(state, list, PiecesByHand); });
  Add(walked, "scan by hand", [list](benchmark::State& state) {
    WalkOther(state, list, [](const std::string& text, auto use) { WalkStringsByHand(text, use); });
  });
  for (const std::string& workload : {collected, walked}) {
    Add(workload, Floor, [list, flat](benchmark::State& state) {
      WalkOther(state, list, [flat](const std::string& text, auto use) {
        if (flat) {
          WalkFlatSlicesByHand(text, use);
        } else {
          WalkSlicesByHand(text, use);
        }
      });
    });
  }
#ifdef KVL_BENCH_ABSEIL
  // It knows no depth.
  if (!flat) return;
  Add(collected, "Abseil", [list](benchmark::State& state) {
    CollectOther(state, list,
                 [](const std::string& text) -> Pieces { return absl::StrSplit(text, ','); });
  });
  Add(walked, "Abseil", [list](benchmark::State& state) {
    WalkOther(state, list, [](const std::string& text, auto use) {
      for (const absl::string_view piece : absl::StrSplit(text, ','))
        use(std::string(piece));
    });
  });
#endif
}

}  // namespace

void RegisterBenches() {
  AddBenches("flat 1 KB", ListOf(1 << 10, Word), true);
  AddBenches("flat 1 MB", ListOf(1 << 20, Word), true);
  AddBenches("nested 1 KB", ListOf(1 << 10, NestedItem), false);
  AddBenches("nested 1 MB", ListOf(1 << 20, NestedItem), false);
}

}  // namespace kvlbench
