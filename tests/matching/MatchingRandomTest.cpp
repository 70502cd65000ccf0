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

// Lists, rows of bits, and both: graphs of many words, from a partner each to half of all.
Graph AnyLargeGraph(int round, std::mt19937& random) {
  std::uniform_int_distribution<int> size(70, 220);
  const int left = size(random);
  const int right = round % 3 == 0 ? size(random) : left;
  constexpr std::array<double, 6> Degrees = {1.0, 3.0, 5.0, 20.0, 60.0, 50.0};
  const double degree = Degrees[static_cast<std::size_t>(round) % Degrees.size()];
  Graph graph = Graph::Random(left, right, degree / right, random);
  // Now and then the greedy pass meets nobody without a partner, and goes on to the end.
  if (round % 2 == 0) {
    std::uniform_int_distribution<int> any(1, right);
    for (int i = 1; i <= left; ++i)
      graph.Add(i, any(random));
  }
  // And some may be matched with nearly everyone.
  if (round % 5 == 0) {
    for (int j = 1; j <= right; j += 1 + round % 2)
      graph.Add(left / 2, j).Add(left, j);
  }
  return graph;
}

TEST(KVLAlgoMatchingRandom, LargeSparseGraphsGiveThePartnersAndTheQuestionsOfTheReference) {
  std::mt19937 random(Seed + 5);
  for (int round = 0; round < 60; ++round) {
    Graph graph = AnyLargeGraph(round, random);
    SCOPED_TRACE(testing::Message() << "seed " << Seed + 5 << ", round " << round);
    const auto& order = Orders[static_cast<std::size_t>(round) % Orders.size()];
    KVLAlgoMatching matching(graph.nbLeft, graph.nbRight, Graph::Ask, &graph);
    ReferenceMatching reference(graph);
    for (const Question question : order)
      ASSERT_TRUE(Agree(matching, reference, graph, question));
    ASSERT_TRUE(AreDistinct(graph.asked));
    ASSERT_EQ(graph.outOfRange, 0);
  }
}

TEST(KVLAlgoMatchingRandom, AThrowingPredicateIsHeardOutInTheOrderOfTheReference) {
  std::mt19937 random(Seed + 6);
  int nbThrown = 0;
  for (int round = 0; round < 120; ++round) {
    const Graph graph = AnyLargeGraph(round, random);
    std::uniform_int_distribution<std::size_t> any(1, graph.mayMatch.size());
    Fragile fragile{graph, any(random)};
    SCOPED_TRACE(testing::Message()
                 << "seed " << Seed + 6 << ", round " << round << ", question " << fragile.failsAt);
    KVLAlgoMatching matching(graph.nbLeft, graph.nbRight, Fragile::Ask, &fragile);
    ReferenceMatching reference(graph, fragile.failsAt);
    const auto& order = Orders[static_cast<std::size_t>(round) % Orders.size()];
    for (int time = 0; time < 2; ++time) {
      try {
        const int best = matching.GetBestNbMatching();
        EXPECT_EQ(reference.GetBestNbMatching(), best);
      } catch (const NoAnswer&) {
        ++nbThrown;
        EXPECT_THROW(reference.GetBestNbMatching(), NoAnswer);
        const std::size_t nbAsked = fragile.graph.asked.size();
        KVLAlgoMatching copy(matching);
        EXPECT_EQ(copy.GetBestNbMatching(), GreatestByAugmenting(graph));
        EXPECT_TRUE(AreDistinct(fragile.graph.asked));
        // The copy's questions are not the object's.
        fragile.graph.asked.resize(nbAsked);
      }
      ASSERT_EQ(fragile.graph.asked, reference.GetAsked());
    }
    for (const Question question : order)
      ASSERT_TRUE(Agree(matching, reference, fragile.graph, question));
    ASSERT_TRUE(AreDistinct(fragile.graph.asked));
  }
  EXPECT_GT(nbThrown, 40);
}

}  // namespace
