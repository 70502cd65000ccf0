#include "KVLIterCursors.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "KVLKeyValue.h"
#include "KVLVector.h"

namespace {

constexpr long Failure = -2147467259L;
constexpr long OutOfMemory = -2147024882L;

using Iter = KVLIter<int>;

// What an iteration yields, and the result that ended it.
struct Outcome {
  std::vector<int> elements;
  long result;

  friend bool operator==(const Outcome& left, const Outcome& right) {
    return left.elements == right.elements && left.result == right.result;
  }
  friend std::ostream& operator<<(std::ostream& stream, const Outcome& outcome) {
    for (const int element : outcome.elements)
      stream << element << ' ';
    return stream << "then " << outcome.result;
  }
};

// One harness for every cursor: collects up to the first result that is not 0, and sees that the
// element is left alone there.
Outcome Collect(Iter& iter) {
  Outcome outcome{{}, 0};
  for (;;) {
    int element = -1;
    outcome.result = iter.Next(element);
    EXPECT_EQ(iter.GetStatus(), outcome.result);
    if (outcome.result != 0) {
      EXPECT_EQ(element, -1);
      return outcome;
    }
    outcome.elements.push_back(element);
  }
}
Outcome Collect(Iter&& iter) {
  return Collect(iter);
}

template <class T>
KVLVector<T> VectorOf(std::initializer_list<T> elements) {
  KVLVector<T> vector;
  for (const T& element : elements)
    vector.Append(element);
  return vector;
}

// Yields the elements, then the results in turn, the last for ever; counts its calls and its life.
class Source : public KVLIterCursor<int> {
 public:
  struct Journal {
    int calls = 0;
    int live = 0;
  };

  Source(std::vector<int> yielded, std::vector<long> after, Journal* log = nullptr)
      : elements(std::move(yielded)), results(std::move(after)), journal(log) {
    if (journal) ++journal->live;
  }
  ~Source() override {
    if (journal) --journal->live;
  }
  long Next(int& element) override {
    if (journal) ++journal->calls;
    if (place < elements.size()) {
      element = elements[place++];
      return 0;
    }
    const std::size_t index = resultPlace;
    if (resultPlace + 1 < results.size()) ++resultPlace;
    return results[index];
  }

 private:
  const std::vector<int> elements;
  const std::vector<long> results;
  Journal* const journal;
  std::size_t place = 0;
  std::size_t resultPlace = 0;
};

Iter Yielding(std::vector<int> elements, long result = 1, Source::Journal* journal = nullptr) {
  return Iter(new Source(std::move(elements), {result}, journal));
}

TEST(KVLRangeCursor, YieldsCopiesBetweenTwoPositionsThenTheEnd) {
  const KVLVector<int> vector = VectorOf({1, 2, 3, 4});
  Iter all(new KVLRangeCursor<int>(vector.begin(), vector.end()));
  EXPECT_EQ(Collect(all), (Outcome{{1, 2, 3, 4}, 1}));
  EXPECT_EQ(Collect(all), (Outcome{{}, 1}));
  EXPECT_EQ(Collect(Iter(new KVLRangeCursor<int>(vector.begin() + 1, vector.begin() + 3))),
            (Outcome{{2, 3}, 1}));
  EXPECT_EQ(Collect(Iter(new KVLRangeCursor<int>(vector.end(), vector.end()))), (Outcome{{}, 1}));
  EXPECT_EQ(Collect(Iter(new KVLRangeCursor<int>(nullptr, nullptr))), (Outcome{{}, 1}));
}

TEST(KVLRangeCursor, WhatItYieldsIsACopy) {
  KVLVector<std::string> vector = VectorOf<std::string>({"a text of some length to be copied"});
  std::string element;
  KVLIter<std::string> iter(new KVLRangeCursor<std::string>(vector.begin(), vector.end()));
  EXPECT_EQ(iter.Next(element), 0);
  element += "!";
  EXPECT_EQ(vector[0], "a text of some length to be copied");
}

template <class From, class Convert>
Iter Mapping(const KVLVector<From>& vector, Convert convert) {
  return Iter(new KVLMappingCursor<From, int, Convert>(vector.begin(), vector.end(), convert));
}

TEST(KVLMappingCursor, AppliesTheConversionToEachElement) {
  const KVLVector<std::string> vector = VectorOf<std::string>({"", "a", "bcd"});
  const auto Length = [](const std::string& text, int& length) -> long {
    length = static_cast<int>(text.size());
    return 0;
  };
  EXPECT_EQ(Collect(Mapping(vector, Length)), (Outcome{{0, 1, 3}, 1}));
  EXPECT_EQ(Collect(Mapping(KVLVector<std::string>(), Length)), (Outcome{{}, 1}));
}

TEST(KVLMappingCursor, MakesKeyValuesOfEntries) {
  struct Entry {
    int key;
    std::string value;
    Entry* next;
  };
  using Pair = KVLKeyValue<int, std::string>;
  const KVLVector<Entry> entries = VectorOf<Entry>({{1, "one", nullptr}, {2, "two", nullptr}});
  const auto ToPair = [](const Entry& entry, Pair& pair) -> long {
    pair = Pair{entry.key, entry.value};
    return 0;
  };
  KVLIter<Pair> iter(
      new KVLMappingCursor<Entry, Pair, decltype(ToPair)>(entries.begin(), entries.end(), ToPair));
  Pair pair{0, ""};
  EXPECT_EQ(iter.Next(pair), 0);
  EXPECT_EQ(pair.key, 1);
  EXPECT_EQ(pair.value, "one");
  EXPECT_EQ(iter.Next(pair), 0);
  EXPECT_EQ(pair.key, 2);
  EXPECT_EQ(pair.value, "two");
  EXPECT_EQ(iter.Next(pair), 1);
  EXPECT_EQ(iter.Next(pair), 1);
}

TEST(KVLMappingCursor, ReturnsAFailureOfTheConversion) {
  const KVLVector<int> vector = VectorOf({1, 2, 3});
  const auto Refuse2 = [](int number, int& result) -> long {
    if (number == 2) return Failure;
    result = number;
    return 0;
  };
  Iter iter = Mapping(vector, Refuse2);
  EXPECT_EQ(Collect(iter), (Outcome{{1}, Failure}));
  // Asked again, it goes on behind what was refused.
  EXPECT_EQ(Collect(iter), (Outcome{{3}, 1}));
}

// An iteration of iterations; their results, last for ever.
class Iterations : public KVLIterCursor<Iter> {
 public:
  explicit Iterations(long end) : result(end) {}
  void Add(Iter iter) { iterations.push_back(std::move(iter)); }
  long Next(Iter& iter) override {
    if (place == iterations.size()) return result;
    iter = std::move(iterations[place++]);
    return 0;
  }

 private:
  std::vector<Iter> iterations;
  const long result;
  std::size_t place = 0;
};

template <class... Iters>
Iter Flattening(long end, Iters... iters) {
  auto iterations = std::make_unique<Iterations>(end);
  (iterations->Add(std::move(iters)), ...);
  return Iter(new KVLFlatteningCursor<int>(KVLIter<Iter>(iterations.release())));
}

TEST(KVLFlatteningCursor, YieldsAllElementsOfEachInTurn) {
  EXPECT_EQ(Collect(Flattening(1, Yielding({1, 2}), Yielding({3}), Yielding({4, 5}))),
            (Outcome{{1, 2, 3, 4, 5}, 1}));
}

TEST(KVLFlatteningCursor, PassesOverIterationsWithoutElements) {
  EXPECT_EQ(Collect(Flattening(1, Yielding({}), Yielding({1}), Iter(1), Yielding({}), Yielding({2}),
                               Yielding({}))),
            (Outcome{{1, 2}, 1}));
  EXPECT_EQ(Collect(Flattening(1, Yielding({}), Yielding({}))), (Outcome{{}, 1}));
  EXPECT_EQ(Collect(Flattening(1)), (Outcome{{}, 1}));
}

TEST(KVLFlatteningCursor, StaysAtItsEnd) {
  Iter iter = Flattening(1, Yielding({1}));
  EXPECT_EQ(Collect(iter), (Outcome{{1}, 1}));
  EXPECT_EQ(Collect(iter), (Outcome{{}, 1}));
}

TEST(KVLFlatteningCursor, ReturnsAFailureOfAnInnerIterationAtOnce) {
  EXPECT_EQ(Collect(Flattening(1, Yielding({1}), Yielding({2}, Failure), Yielding({3}))),
            (Outcome{{1, 2}, Failure}));
  EXPECT_EQ(Collect(Flattening(1, Iter(OutOfMemory), Yielding({3}))), (Outcome{{}, OutOfMemory}));
}

TEST(KVLFlatteningCursor, ReturnsAFailureOfTheOuterIterationAtOnce) {
  EXPECT_EQ(Collect(Flattening(Failure, Yielding({1, 2}))), (Outcome{{1, 2}, Failure}));
  EXPECT_EQ(Collect(Iter(new KVLFlatteningCursor<int>(KVLIter<Iter>(OutOfMemory)))),
            (Outcome{{}, OutOfMemory}));
}

TEST(KVLFlatteningCursor, ReturnsEveryResultBut0And1AsAFailure) {
  EXPECT_EQ(Collect(Flattening(1, Yielding({1}, 2), Yielding({3}))), (Outcome{{1}, 2}));
  EXPECT_EQ(Collect(Flattening(2, Yielding({1}))), (Outcome{{1}, 2}));
}

TEST(KVLFlatteningCursor, TakesTheIterationsOneByOneAndLetsEachGo) {
  Source::Journal first;
  Source::Journal second;
  {
    Iter iter = Flattening(1, Yielding({1}, 1, &first), Yielding({2}, 1, &second));
    int element = 0;
    iter.Next(element);
    EXPECT_EQ(second.calls, 0);
    iter.Next(element);
    EXPECT_EQ(element, 2);
    EXPECT_EQ(first.live, 0);
  }
  EXPECT_EQ(second.live, 0);
}

TEST(KVLFlatteningCursor, PassesOverAHundredThousandEmptyIterations) {
  auto iterations = std::make_unique<Iterations>(1);
  for (int i = 0; i < 100000; ++i)
    iterations->Add(Iter(1));
  iterations->Add(Yielding({7}));
  EXPECT_EQ(Collect(Iter(new KVLFlatteningCursor<int>(KVLIter<Iter>(iterations.release())))),
            (Outcome{{7}, 1}));
}

Iter Concatenation(Iter one, Iter other) {
  return Iter(new KVLConcatenationCursor<int>(std::move(one), std::move(other)));
}

TEST(KVLConcatenationCursor, YieldsTheFirstThenTheSecond) {
  EXPECT_EQ(Collect(Concatenation(Yielding({1, 2}), Yielding({3, 4}))), (Outcome{{1, 2, 3, 4}, 1}));
  EXPECT_EQ(Collect(Concatenation(Yielding({}), Yielding({3}))), (Outcome{{3}, 1}));
  EXPECT_EQ(Collect(Concatenation(Yielding({1}), Yielding({}))), (Outcome{{1}, 1}));
  EXPECT_EQ(Collect(Concatenation(Iter(1), Iter(1))), (Outcome{{}, 1}));
}

TEST(KVLConcatenationCursor, AFailureOfTheFirstIsReturnedAtOnceAndTheSecondNotBegun) {
  Source::Journal second;
  {
    Iter iter = Concatenation(Yielding({1}, Failure), Yielding({2}, 1, &second));
    EXPECT_EQ(Collect(iter), (Outcome{{1}, Failure}));
    EXPECT_EQ(Collect(iter), (Outcome{{}, Failure}));
    EXPECT_EQ(second.calls, 0);
  }
  EXPECT_EQ(second.live, 0);
  EXPECT_EQ(Collect(Concatenation(Iter(OutOfMemory), Yielding({2}))), (Outcome{{}, OutOfMemory}));
  EXPECT_EQ(Collect(Concatenation(Yielding({1}, 2), Yielding({2}))), (Outcome{{1}, 2}));
}

TEST(KVLConcatenationCursor, AFailureOfTheSecondIsReturned) {
  EXPECT_EQ(Collect(Concatenation(Yielding({1}), Yielding({2}, Failure))),
            (Outcome{{1, 2}, Failure}));
  EXPECT_EQ(Collect(Concatenation(Yielding({1}), Iter(OutOfMemory))), (Outcome{{1}, OutOfMemory}));
}

TEST(KVLConcatenationCursor, AsksTheFirstNoMoreOnceItEnded) {
  Source::Journal first;
  Iter iter = Concatenation(Yielding({1}, 1, &first), Yielding({2, 3}));
  EXPECT_EQ(Collect(iter), (Outcome{{1, 2, 3}, 1}));
  EXPECT_EQ(Collect(iter), (Outcome{{}, 1}));
  EXPECT_EQ(first.calls, 2);
}

TEST(KVLConcatenationCursor, Nests) {
  EXPECT_EQ(Collect(Concatenation(Concatenation(Yielding({1}), Yielding({2})),
                                  Flattening(1, Yielding({3}), Yielding({4})))),
            (Outcome{{1, 2, 3, 4}, 1}));
}

}  // namespace
