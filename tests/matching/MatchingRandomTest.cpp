#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "KVLAlgoMatching.h"
#include "MatchingModel.h"

namespace {

constexpr unsigned Seed = 20240611;

enum Question { Full, Best, Partner };

constexpr std::array<std::array<Question, 3>, 6> Orders = {{{Full, Best, Partner},
                                                            {Full, Partner, Best},
                                                            {Best, Full, Partner},
                                                            {Best, Partner, Full},
                                                            {Partner, Full, Best},
                                                            {Partner, Best, Full}}};

// Asks both the same question; false, with a failure noted, when answers or the questions to the
// predicate differ.
bool Agree(KVLAlgoMatching& matching, ReferenceMatching& reference, const Graph& graph,
           Question question) {
  if (question == Full) {
    EXPECT_EQ(matching.HasFullMatching(), reference.HasFullMatching());
  } else if (question == Best) {
    EXPECT_EQ(matching.GetBestNbMatching(), reference.GetBestNbMatching());
  } else {
    for (int i = 1; i <= graph.nbLeft; ++i)
      EXPECT_EQ(matching.GetMatching(i), reference.GetMatching(i)) << "left element " << i;
  }
  EXPECT_EQ(graph.asked, reference.GetAsked());
  return !testing::Test::HasFailure();
}

// The partners make a matching of allowed pairs, as many as counted.
void ExpectValid(KVLAlgoMatching& matching, const Graph& graph) {
  int nbPairs = 0;
  std::vector<bool> taken(static_cast<std::size_t>(graph.nbRight) + 1, false);
  for (int i = 1; i <= graph.nbLeft; ++i) {
    const int j = matching.GetMatching(i);
    if (j == 0) continue;
    ASSERT_TRUE(j >= 1 && j <= graph.nbRight);
    EXPECT_TRUE(graph.Has(i, j)) << i << " with " << j;
    EXPECT_FALSE(taken[static_cast<std::size_t>(j)]) << j << " serves twice";
    taken[static_cast<std::size_t>(j)] = true;
    ++nbPairs;
  }
  EXPECT_EQ(matching.GetBestNbMatching(), nbPairs);
}

double AnyDensity(std::mt19937& random) {
  constexpr std::array<double, 7> Densities = {0.0, 0.1, 0.2, 0.35, 0.5, 0.8, 1.0};
  return Densities[std::uniform_int_distribution<std::size_t>(0, Densities.size() - 1)(random)];
}

TEST(KVLAlgoMatchingRandom, ThePredicateIsAskedInTheSameOrderAsByTheReference) {
  std::mt19937 random(Seed);
  std::uniform_int_distribution<int> size(0, 12);
  for (int round = 0; round < 4000; ++round) {
    const int left = size(random);
    const int right = round % 3 == 0 ? size(random) : left;
    Graph graph = Graph::Random(left, right, AnyDensity(random), random);
    SCOPED_TRACE(testing::Message() << "seed " << Seed << ", round " << round);
    for (const auto& order : Orders) {
      graph.asked.clear();
      KVLAlgoMatching matching(left, right, Graph::Ask, &graph);
      ReferenceMatching reference(graph);
      for (const Question question : order)
        ASSERT_TRUE(Agree(matching, reference, graph, question));
      ASSERT_TRUE(AreDistinct(graph.asked));
      ASSERT_EQ(graph.outOfRange, 0);
    }
  }
}

TEST(KVLAlgoMatchingRandom, TheOrderHoldsThroughManyPhasesOnSparseGraphs) {
  std::mt19937 random(Seed + 1);
  std::uniform_int_distribution<int> size(30, 80);
  for (int round = 0; round < 150; ++round) {
    const int left = size(random);
    const int right = round % 2 == 0 ? left : size(random);
    Graph graph = Graph::Random(left, right, (2.0 + round % 5) / left, random);
    // A partner for everyone, so that the greedy pass goes on to the end.
    for (int i = 1; i <= left; ++i)
      graph.Add(i, 1 + (i * 7) % right);
    SCOPED_TRACE(testing::Message() << "seed " << Seed + 1 << ", round " << round);
    for (const auto& order : Orders) {
      graph.asked.clear();
      KVLAlgoMatching matching(left, right, Graph::Ask, &graph);
      ReferenceMatching reference(graph);
      for (const Question question : order)
        ASSERT_TRUE(Agree(matching, reference, graph, question));
    }
  }
}

TEST(KVLAlgoMatchingRandom, QuestionsAskedAgainAndMixedAskThePredicateAtMostOnceAPair) {
  std::mt19937 random(Seed + 2);
  std::uniform_int_distribution<int> size(0, 9);
  std::uniform_int_distribution<int> kind(Full, Partner);
  for (int round = 0; round < 2000; ++round) {
    const int left = size(random);
    const int right = round % 2 == 0 ? left : size(random);
    Graph graph = Graph::Random(left, right, AnyDensity(random), random);
    KVLAlgoMatching matching(left, right, Graph::Ask, &graph);
    ReferenceMatching reference(graph);
    SCOPED_TRACE(testing::Message() << "seed " << Seed + 2 << ", round " << round);
    for (int question = 0; question < 8; ++question)
      ASSERT_TRUE(Agree(matching, reference, graph, static_cast<Question>(kind(random))));
    ASSERT_TRUE(AreDistinct(graph.asked));
  }
}

TEST(KVLAlgoMatchingRandom, TenThousandSmallGraphsGiveTheGreatestMatchingFoundByTrying) {
  std::mt19937 random(Seed + 3);
  std::uniform_int_distribution<int> size(0, 6);
  int nbFull = 0;
  for (int round = 0; round < 10000; ++round) {
    const int left = size(random);
    const int right = round % 2 == 0 ? left : size(random);
    Graph graph = Graph::Random(left, right, AnyDensity(random), random);
    SCOPED_TRACE(testing::Message() << "seed " << Seed + 3 << ", round " << round);
    const int greatest = GreatestByTrying(graph);
    const bool isFull = left == right && greatest == left;
    nbFull += isFull ? 1 : 0;
    KVLAlgoMatching fullFirst(left, right, Graph::Ask, &graph);
    ASSERT_EQ(fullFirst.HasFullMatching(), isFull);
    ASSERT_EQ(fullFirst.GetBestNbMatching(), greatest);
    ExpectValid(fullFirst, graph);
    KVLAlgoMatching bestFirst(left, right, Graph::Ask, &graph);
    ASSERT_EQ(bestFirst.GetBestNbMatching(), greatest);
    ASSERT_EQ(bestFirst.HasFullMatching(), isFull);
    ExpectValid(bestFirst, graph);
    ASSERT_FALSE(HasFailure());
  }
  EXPECT_GT(nbFull, 1000);
  EXPECT_LT(nbFull, 9000);
}

TEST(KVLAlgoMatchingRandom, LargerGraphsGiveTheGreatestMatchingFoundByAugmentingPaths) {
  std::mt19937 random(Seed + 4);
  std::uniform_int_distribution<int> size(60, 200);
  for (int round = 0; round < 300; ++round) {
    const int left = size(random);
    const int right = round % 2 == 0 ? left : size(random);
    const double density = (1.0 + round % 8) / std::min(left, right);
    Graph graph = Graph::Random(left, right, density, random);
    SCOPED_TRACE(testing::Message() << "seed " << Seed + 4 << ", round " << round);
    const int greatest = GreatestByAugmenting(graph);
    KVLAlgoMatching matching(left, right, Graph::Ask, &graph);
    ASSERT_EQ(matching.HasFullMatching(), left == right && greatest == left);
    ASSERT_EQ(matching.GetBestNbMatching(), greatest);
    ExpectValid(matching, graph);
    ASSERT_TRUE(AreDistinct(graph.asked));
    ASSERT_FALSE(HasFailure());
  }
}

}  // namespace
