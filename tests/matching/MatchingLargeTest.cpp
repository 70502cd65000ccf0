#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "KVLAlgoMatching.h"
#include "support/AllocationCounter.h"

#if !defined(_WIN32)
#include <pthread.h>
#endif

namespace {

constexpr int N = 5000;

// A fixed random graph of N by N without a table: each pair is in it with the given chance.
struct Scattered {
  double chance;
  long nbAsked = 0;

  static bool Ask(int i, int j, void* data) {
    Scattered& scattered = *static_cast<Scattered*>(data);
    ++scattered.nbAsked;
    return Has(scattered.chance, i, j);
  }

  static bool Has(double chance, int i, int j) {
    std::uint64_t mixed = static_cast<std::uint64_t>(i) * 1000003u + static_cast<std::uint64_t>(j);
    mixed = (mixed ^ (mixed >> 33)) * 0xff51afd7ed558ccdULL;
    mixed = (mixed ^ (mixed >> 33)) * 0xc4ceb9fe1a85ec53ULL;
    mixed ^= mixed >> 33;
    return static_cast<double>(mixed >> 11) < chance * 9007199254740992.0;
  }
};

bool Always(int, int, void* data) {
  ++*static_cast<long*>(data);
  return true;
}

// Left i goes with i and i + 1, the last one with 1 only: the greedy pass leaves just the last one
// over, and its only augmenting path runs through every element.
bool Chain(int i, int j, void* data) {
  const int last = *static_cast<const int*>(data);
  return i < last ? j == i || j == i + 1 : j == 1;
}

// The partners are distinct and allowed, and as many as counted.
void ExpectValid(KVLAlgoMatching& matching, int nbRight, double chance) {
  std::vector<bool> taken(static_cast<std::size_t>(nbRight) + 1, false);
  int nbPairs = 0;
  for (int i = 1; i <= N; ++i) {
    const int j = matching.GetMatching(i);
    if (j == 0) continue;
    ASSERT_TRUE(j >= 1 && j <= nbRight);
    ASSERT_TRUE(Scattered::Has(chance, i, j)) << i << " with " << j;
    ASSERT_FALSE(taken[static_cast<std::size_t>(j)]) << j << " serves twice";
    taken[static_cast<std::size_t>(j)] = true;
    ++nbPairs;
  }
  EXPECT_EQ(matching.GetBestNbMatching(), nbPairs);
}

// The greatest number of pairs, by augmenting along adjacency lists, without recursion.
int GreatestByAugmenting(int nbRight, double chance) {
  std::vector<std::vector<int>> rights(static_cast<std::size_t>(N) + 1);
  for (int i = 1; i <= N; ++i) {
    for (int j = 1; j <= nbRight; ++j) {
      if (Scattered::Has(chance, i, j)) rights[static_cast<std::size_t>(i)].push_back(j);
    }
  }
  std::vector<int> owner(static_cast<std::size_t>(nbRight) + 1, 0);
  std::vector<int> seenBy(owner.size(), 0);
  std::vector<int> reachedFrom(owner.size(), 0);
  std::vector<int> partner(static_cast<std::size_t>(N) + 1, 0);
  int nbServed = 0;
  for (int root = 1; root <= N; ++root) {
    std::vector<int> waiting{root};
    int end = 0;
    while (end == 0 && !waiting.empty()) {
      const int i = waiting.back();
      waiting.pop_back();
      for (const int j : rights[static_cast<std::size_t>(i)]) {
        const std::size_t right = static_cast<std::size_t>(j);
        if (seenBy[right] == root) continue;
        seenBy[right] = root;
        reachedFrom[right] = i;
        if (owner[right] == 0) {
          end = j;
          break;
        }
        waiting.push_back(owner[right]);
      }
    }
    if (end == 0) continue;
    ++nbServed;
    while (end != 0) {
      const int i = reachedFrom[static_cast<std::size_t>(end)];
      owner[static_cast<std::size_t>(end)] = i;
      std::swap(end, partner[static_cast<std::size_t>(i)]);
    }
  }
  return nbServed;
}

TEST(KVLAlgoMatchingLarge, ASquareWhereAllFitIsSettledByOneQuestionAnElement) {
  long nbAsked = 0;
  KVLAlgoMatching matching(N, N, Always, &nbAsked);
  EXPECT_TRUE(matching.HasFullMatching());
  EXPECT_EQ(matching.GetBestNbMatching(), N);
  for (int i = 1; i <= N; ++i)
    ASSERT_EQ(matching.GetMatching(i), i);
  EXPECT_EQ(nbAsked, N);
}

TEST(KVLAlgoMatchingLarge, ARectangleWhereAllFitFillsItsShorterSide) {
  long nbAsked = 0;
  KVLAlgoMatching matching(N, N - 1, Always, &nbAsked);
  EXPECT_EQ(matching.GetBestNbMatching(), N - 1);
  EXPECT_LE(nbAsked, static_cast<long>(N) * (N - 1));
}

TEST(KVLAlgoMatchingLarge, ADenseRandomGraphMatchesFully) {
  Scattered scattered{0.5};
  KVLAlgoMatching matching(N, N, Scattered::Ask, &scattered);
  EXPECT_TRUE(matching.HasFullMatching());
  ExpectValid(matching, N, 0.5);
  EXPECT_LE(scattered.nbAsked, static_cast<long>(N) * N);
}

TEST(KVLAlgoMatchingLarge, ASparseRandomGraphGivesTheGreatestMatching) {
  const double chance = 3.0 / N;
  Scattered scattered{chance};
  KVLAlgoMatching matching(N, N, Scattered::Ask, &scattered);
  EXPECT_FALSE(matching.HasFullMatching());
  EXPECT_EQ(matching.GetBestNbMatching(), GreatestByAugmenting(N, chance));
  ExpectValid(matching, N, chance);
  EXPECT_LE(scattered.nbAsked, static_cast<long>(N) * N);
}

TEST(KVLAlgoMatchingLarge, TheTablesAreAllocatedOnce) {
  if (!AllocationCounter::IsAvailable()) GTEST_SKIP() << "allocations cannot be observed";
  long nbAsked = 0;
  const AllocationCounter making;
  KVLAlgoMatching matching(N, N, Always, &nbAsked);
  EXPECT_EQ(making.GetCount(), 4);
  const AllocationCounter asking;
  matching.HasFullMatching();
  matching.GetMatching(N);
  EXPECT_EQ(asking.GetCount(), 0);
}

// The rows of bits and their marks, one queue, and one stack that doubles up to the path's length.
TEST(KVLAlgoMatchingLarge, ASearchAllocatesItsRowsItsQueueAndItsStackOnly) {
  if (!AllocationCounter::IsAvailable()) GTEST_SKIP() << "allocations cannot be observed";
  int last = 1000;
  KVLAlgoMatching matching(last, last, Chain, &last);
  const AllocationCounter searching;
  EXPECT_TRUE(matching.HasFullMatching());
  EXPECT_LE(searching.GetCount(), 14);
}

void* MatchChain(void*) {
  int last = N;
  KVLAlgoMatching matching(last, last, Chain, &last);
  EXPECT_TRUE(matching.HasFullMatching());
  EXPECT_EQ(matching.GetMatching(last), 1);
  for (int i = 1; i < last; ++i) {
    EXPECT_EQ(matching.GetMatching(i), i + 1);
    if (testing::Test::HasFailure()) break;
  }
  return nullptr;
}

// A recursion as deep as the path could not do with less than ten words an element.
TEST(KVLAlgoMatchingLarge, APathThroughEveryElementNeedsNoDeepStack) {
#if defined(_WIN32)
  MatchChain(nullptr);
#else
  constexpr std::size_t StackBytes = 160 * 1024;
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, StackBytes), 0);
  pthread_t thread;
  ASSERT_EQ(pthread_create(&thread, &attributes, MatchChain, nullptr), 0);
  EXPECT_EQ(pthread_join(thread, nullptr), 0);
  pthread_attr_destroy(&attributes);
#endif
}

}  // namespace
