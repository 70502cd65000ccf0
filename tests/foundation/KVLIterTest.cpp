#include "KVLIter.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <type_traits>
#include <utility>
#include <vector>

#include "MRBUnicodeString.h"

namespace {

using Iter = KVLIter<int>;

static_assert(!std::is_copy_constructible_v<Iter> && !std::is_copy_assignable_v<Iter>);
static_assert(std::is_nothrow_move_constructible_v<Iter>);
static_assert(std::is_nothrow_move_assignable_v<Iter>);
static_assert(std::is_nothrow_constructible_v<Iter, long>);
static_assert(std::is_nothrow_constructible_v<Iter, KVLIterCursor<int>*>);
static_assert(std::is_convertible_v<long, Iter>);
static_assert(!std::is_convertible_v<KVLIterCursor<int>*, Iter>);
static_assert(std::is_same_v<decltype(&Iter::GetStatus), long (Iter::*)() const noexcept>);
static_assert(std::has_virtual_destructor_v<KVLIterCursor<int>>);
static_assert(std::is_abstract_v<KVLIterCursor<int>>);

constexpr long Failure = -2147467259L;

// Plays results in turn, the last for ever; where a result is 0, the element is 10, 20, ...
class Script : public KVLIterCursor<int> {
 public:
  explicit Script(std::vector<long> lines, int* liveCounter = nullptr)
      : results(std::move(lines)), live(liveCounter) {
    if (live) ++*live;
  }
  ~Script() override {
    if (live) --*live;
  }
  long Next(int& element) override {
    const long result = results[place];
    if (place + 1 < results.size()) ++place;
    if (result == 0) element = last += 10;
    return result;
  }

 private:
  const std::vector<long> results;
  int* const live;
  std::size_t place = 0;
  int last = 0;
};

TEST(KVLIter, ForwardsToItsCursorAndKeepsTheResult) {
  Iter iter(new Script({0, 0, 1}));
  EXPECT_EQ(iter.GetStatus(), 0);
  int element = 0;
  EXPECT_EQ(iter.Next(element), 0);
  EXPECT_EQ(element, 10);
  EXPECT_EQ(iter.Next(element), 0);
  EXPECT_EQ(element, 20);
  EXPECT_EQ(iter.GetStatus(), 0);
  EXPECT_EQ(iter.Next(element), 1);
  EXPECT_EQ(iter.GetStatus(), 1);
  EXPECT_EQ(element, 20);
}

TEST(KVLIter, KeepsAskingItsCursorAfterTheEndAndAfterAFailure) {
  Iter iter(new Script({1, 0, Failure, 0, 1}));
  int element = 0;
  EXPECT_EQ(iter.Next(element), 1);
  EXPECT_EQ(iter.Next(element), 0);
  EXPECT_EQ(iter.GetStatus(), 0);
  EXPECT_EQ(iter.Next(element), Failure);
  EXPECT_EQ(iter.GetStatus(), Failure);
  EXPECT_EQ(iter.Next(element), 0);
  EXPECT_EQ(iter.GetStatus(), 0);
}

TEST(KVLIter, WithoutACursorReturnsItsStatusEachTime) {
  for (const long status : {0L, 1L, Failure, -2147024882L, 42L}) {
    Iter iter(status);
    int element = 5;
    EXPECT_EQ(iter.GetStatus(), status);
    EXPECT_EQ(iter.Next(element), status);
    EXPECT_EQ(iter.Next(element), status);
    EXPECT_EQ(iter.GetStatus(), status);
    EXPECT_EQ(element, 5);
  }
}

TEST(KVLIter, ACursorThatCouldNotBeMadeGivesTheFailure) {
  Iter iter(static_cast<KVLIterCursor<int>*>(nullptr));
  int element = 5;
  EXPECT_EQ(iter.GetStatus(), Failure);
  EXPECT_EQ(iter.Next(element), Failure);
  EXPECT_EQ(element, 5);
}

TEST(KVLIter, DestroysItsCursorOnce) {
  int live = 0;
  {
    Iter iter(new Script({1}, &live));
    EXPECT_EQ(live, 1);
    Iter moved(std::move(iter));
    EXPECT_EQ(live, 1);
    Iter assigned(new Script({1}, &live));
    EXPECT_EQ(live, 2);
    assigned = std::move(moved);
    EXPECT_EQ(live, 1);
  }
  EXPECT_EQ(live, 0);
}

TEST(KVLIter, AMovedFromIterationIsAtItsEnd) {
  Iter iter(new Script({0, 0, 1}));
  int element = 0;
  iter.Next(element);
  Iter moved(std::move(iter));
  EXPECT_EQ(iter.GetStatus(), 1);
  EXPECT_EQ(iter.Next(element), 1);
  EXPECT_EQ(moved.GetStatus(), 0);
  EXPECT_EQ(moved.Next(element), 0);
  EXPECT_EQ(element, 20);
  iter = std::move(moved);
  EXPECT_EQ(moved.GetStatus(), 1);
  EXPECT_EQ(moved.Next(element), 1);
  EXPECT_EQ(iter.Next(element), 1);
}

TEST(KVLIter, CarriesAFailureThroughAMove) {
  Iter iter(Failure);
  Iter moved(std::move(iter));
  EXPECT_EQ(moved.GetStatus(), Failure);
  EXPECT_EQ(iter.GetStatus(), 1);
}

TEST(KVLIter, MovedIntoItselfStays) {
  int live = 0;
  Iter iter(new Script({0, 1}, &live));
  iter = std::move(static_cast<Iter&>(iter));
  EXPECT_EQ(live, 1);
  int element = 0;
  EXPECT_EQ(iter.Next(element), 0);
}

std::vector<int> Loop(Iter& iter) {
  std::vector<int> elements;
  for (const int element : iter)
    elements.push_back(element);
  return elements;
}

// Holds an iteration of its own.
class Nest : public KVLIterCursor<int> {
 public:
  long Next(int&) override { return KVLResult_False; }

  KVLIter<int> inner{new Script({0, 0, 1})};
};

TEST(KVLIter, MayBeReplacedByAnIterationThatItsOwnCursorHolds) {
  Nest* const nest = new Nest;
  Iter iter(nest);
  iter = std::move(nest->inner);
  int element = 0;
  EXPECT_EQ(iter.Next(element), 0);
  EXPECT_EQ(element, 10);
}

TEST(KVLIter, ARangeLoopEndsAtAnyResultBut0) {
  for (const long end : {1L, 2L, Failure, -1L}) {
    Iter iter(new Script({0, 0, 0, end}));
    EXPECT_EQ(Loop(iter), (std::vector<int>{10, 20, 30}));
    EXPECT_EQ(iter.GetStatus(), end);
  }
}

TEST(KVLIter, ARangeLoopOverNothingHasNoRound) {
  Iter ended(new Script({1}));
  EXPECT_TRUE(Loop(ended).empty());
  for (const long status : {0L, 1L, Failure}) {
    Iter iter(status);
    EXPECT_TRUE(Loop(iter).empty());
    EXPECT_EQ(iter.GetStatus(), status);
  }
}

TEST(KVLIter, ARangeLoopThatBreaksLeavesTheRest) {
  Iter iter(new Script({0, 0, 0, 1}));
  for (const int element : iter) {
    EXPECT_EQ(element, 10);
    break;
  }
  EXPECT_EQ(Loop(iter), (std::vector<int>{20, 30}));
}

TEST(KVLIter, HoldsStatusThenCursor) {
  auto* const cursor = new Script({1});
  const Iter iter(cursor);
  struct Fields {
    long status;
    KVLIterCursor<int>* cursor;
  } fields;
  static_assert(sizeof fields == sizeof iter);
  std::memcpy(&fields, static_cast<const void*>(&iter), sizeof fields);
  EXPECT_EQ(fields.status, 0);
  EXPECT_EQ(fields.cursor, cursor);
}

#if defined(__x86_64__)
TEST(KVLIter, NextIsTheFirstVirtualOperationOfACursor) {
  // As the platform's binary interface writes a pointer to a virtual operation: 1 + its offset.
  const auto next = &KVLIterCursor<MRBUnicodeString>::Next;
  std::ptrdiff_t words[2];
  static_assert(sizeof words == sizeof next);
  std::memcpy(words, &next, sizeof words);
  EXPECT_EQ(words[0], 1);
}
#endif

}  // namespace
