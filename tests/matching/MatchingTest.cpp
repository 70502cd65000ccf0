#include <gtest/gtest.h>

#include <climits>
#include <stdexcept>
#include <type_traits>

#include "KVLAlgoMatching.h"
#include "MatchingModel.h"

static_assert(std::is_copy_constructible_v<KVLAlgoMatching>);
static_assert(!std::is_polymorphic_v<KVLAlgoMatching>);

namespace {

constexpr unsigned Seed = 977;

bool NeverAsked(int i, int j, void*) {
  ADD_FAILURE() << "asked about " << i << " and " << j;
  return true;
}

Graph Identity(int n) {
  Graph graph(n, n);
  for (int i = 1; i <= n; ++i)
    graph.Add(i, i);
  return graph;
}

// Left 1 goes with 1 and 2, left 2 with 1 only: the greedy pair 1-1 has to be given up.
Graph Crossed() {
  return Graph(2, 2).Add(1, 1).Add(1, 2).Add(2, 1);
}

std::vector<int> Partners(KVLAlgoMatching& matching, int nbLeft) {
  std::vector<int> partners;
  for (int i = 1; i <= nbLeft; ++i)
    partners.push_back(matching.GetMatching(i));
  return partners;
}

TEST(KVLAlgoMatching, NothingIsAskedBeforeAQuestion) {
  KVLAlgoMatching matching(3, 3, NeverAsked, nullptr);
  const KVLAlgoMatching copy(matching);
}

TEST(KVLAlgoMatching, TwoEmptySetsMatchFully) {
  KVLAlgoMatching matching(0, 0, nullptr, nullptr);
  EXPECT_TRUE(matching.HasFullMatching());
  EXPECT_EQ(matching.GetBestNbMatching(), 0);
}

TEST(KVLAlgoMatching, DifferentSizesHaveNoFullMatchingAndNothingIsAsked) {
  for (const auto& [left, right] : {Pair(2, 3), Pair(3, 2), Pair(0, 1), Pair(1, 0)}) {
    KVLAlgoMatching matching(left, right, NeverAsked, nullptr);
    EXPECT_FALSE(matching.HasFullMatching()) << left << " and " << right;
  }
}

TEST(KVLAlgoMatching, DifferentSizesGiveTheGreatestMatching) {
  Graph graph = Graph(2, 3).Add(1, 3).Add(2, 3).Add(2, 1);
  KVLAlgoMatching matching(2, 3, Graph::Ask, &graph);
  EXPECT_FALSE(matching.HasFullMatching());
  EXPECT_EQ(matching.GetBestNbMatching(), 2);
  EXPECT_EQ(Partners(matching, 2), (std::vector<int>{3, 1}));
  EXPECT_FALSE(matching.HasFullMatching());
}

TEST(KVLAlgoMatching, OneEmptySideMatchesNothing) {
  KVLAlgoMatching noLeft(0, 4, NeverAsked, nullptr);
  EXPECT_EQ(noLeft.GetBestNbMatching(), 0);
  KVLAlgoMatching noRight(4, 0, NeverAsked, nullptr);
  EXPECT_EQ(noRight.GetBestNbMatching(), 0);
  EXPECT_EQ(Partners(noRight, 4), (std::vector<int>{0, 0, 0, 0}));
}

TEST(KVLAlgoMatching, AnIdentityMatchesEachElementWithItsOwn) {
  Graph graph = Identity(3);
  KVLAlgoMatching matching(3, 3, Graph::Ask, &graph);
  EXPECT_TRUE(matching.HasFullMatching());
  EXPECT_EQ(matching.GetBestNbMatching(), 3);
  EXPECT_EQ(Partners(matching, 3), (std::vector<int>{1, 2, 3}));
  EXPECT_EQ(graph.asked, (std::vector<Pair>{{1, 1}, {2, 2}, {3, 3}}));
}

TEST(KVLAlgoMatching, AGreedyPairIsGivenUpForAFullMatching) {
  Graph graph = Crossed();
  KVLAlgoMatching matching(2, 2, Graph::Ask, &graph);
  EXPECT_TRUE(matching.HasFullMatching());
  EXPECT_EQ(Partners(matching, 2), (std::vector<int>{2, 1}));
}

TEST(KVLAlgoMatching, TheGreedyPassTakesTheFirstFreePartnerAndAsksNoFurther) {
  Graph graph = Graph(2, 2).Add(1, 1).Add(1, 2).Add(2, 1).Add(2, 2);
  KVLAlgoMatching matching(2, 2, Graph::Ask, &graph);
  EXPECT_TRUE(matching.HasFullMatching());
  EXPECT_EQ(graph.asked, (std::vector<Pair>{{1, 1}, {2, 2}}));
}

TEST(KVLAlgoMatching, AnElementLeftOverAsksEveryMatchedRightElementInOrder) {
  // Left 4 finds nothing free; right 1 already serves, yet 2 and 3 are asked too.
  Graph graph = Graph(4, 4).Add(1, 1).Add(2, 2).Add(3, 3).Add(4, 1).Add(1, 4);
  KVLAlgoMatching matching(4, 4, Graph::Ask, &graph);
  EXPECT_TRUE(matching.HasFullMatching());
  // Before that only free ones are asked: 2 hears nothing about 1, nor 3 about 1 and 2.
  ASSERT_GE(graph.asked.size(), 7u);
  EXPECT_EQ(std::vector<Pair>(graph.asked.begin(), graph.asked.begin() + 7),
            (std::vector<Pair>{{1, 1}, {2, 2}, {3, 3}, {4, 4}, {4, 1}, {4, 2}, {4, 3}}));
}

TEST(KVLAlgoMatching, AnElementWithoutAnyPartnerEndsTheFullQuestionAtOnce) {
  Graph graph = Graph(3, 3).Add(1, 1).Add(3, 2);
  KVLAlgoMatching matching(3, 3, Graph::Ask, &graph);
  EXPECT_FALSE(matching.HasFullMatching());
  EXPECT_EQ(graph.asked, (std::vector<Pair>{{1, 1}, {2, 2}, {2, 3}, {2, 1}}));
  EXPECT_EQ(matching.GetBestNbMatching(), 2);
  EXPECT_EQ(Partners(matching, 3), (std::vector<int>{1, 0, 2}));
  EXPECT_TRUE(AreDistinct(graph.asked));
}

// From the last element, twelve layers of eight lead nowhere and are searched first; beside them
// one path of twelve steps leads to the free partner. Trying each way through the layers, all eight
// to the power of twelve, would not end.
TEST(KVLAlgoMatching, AnElementThatLeadsNowhereIsSearchedOnceAPhase) {
  constexpr int Layers = 12;
  constexpr int Width = 8;
  constexpr int FirstOfPath = Layers * Width + 1;
  constexpr int Last = FirstOfPath + Layers;
  Graph graph(Last, Last);
  for (int i = 1; i < Last; ++i)
    graph.Add(i, i);
  for (int i = 1; i <= (Layers - 1) * Width; ++i) {
    const int nextLayer = ((i - 1) / Width + 1) * Width;
    for (int j = 1; j <= Width; ++j)
      graph.Add(i, nextLayer + j);
  }
  for (int i = FirstOfPath; i < Last; ++i)
    graph.Add(i, i + 1);
  for (int j = 1; j <= Width; ++j)
    graph.Add(Last, j);
  graph.Add(Last, FirstOfPath);
  KVLAlgoMatching matching(Last, Last, Graph::Ask, &graph);
  EXPECT_TRUE(matching.HasFullMatching());
  EXPECT_EQ(matching.GetMatching(Last), FirstOfPath);
  EXPECT_EQ(matching.GetMatching(1), 1);
  EXPECT_EQ(matching.GetMatching(Last - 1), Last);
}

TEST(KVLAlgoMatching, AQuestionAnsweredOnceAsksNothingMore) {
  Graph graph = Crossed();
  KVLAlgoMatching matching(2, 2, Graph::Ask, &graph);
  matching.GetBestNbMatching();
  const std::size_t nbAsked = graph.asked.size();
  for (int round = 0; round < 3; ++round) {
    EXPECT_TRUE(matching.HasFullMatching());
    EXPECT_EQ(matching.GetBestNbMatching(), 2);
    EXPECT_EQ(matching.GetMatching(1), 2);
  }
  EXPECT_EQ(graph.asked.size(), nbAsked);
}

TEST(KVLAlgoMatching, ThePredicateGetsTheDataUnchanged) {
  static int token;
  const auto sees = [](int, int, void* data) { return data == &token; };
  KVLAlgoMatching matching(1, 1, sees, &token);
  EXPECT_TRUE(matching.HasFullMatching());
  KVLAlgoMatching other(1, 1, sees, nullptr);
  EXPECT_FALSE(other.HasFullMatching());
}

TEST(KVLAlgoMatching, PartnersOfElementsThatDoNotExistAreNone) {
  Graph graph = Identity(3);
  KVLAlgoMatching matching(3, 3, Graph::Ask, &graph);
  for (const int i : {0, -1, 4, 1000000, INT_MIN, INT_MAX})
    EXPECT_EQ(matching.GetMatching(i), 0) << i;
  EXPECT_EQ(Partners(matching, 3), (std::vector<int>{1, 2, 3}));
}

TEST(KVLAlgoMatching, ANegativeCountIsTakenAsNone) {
  for (const auto& [left, right] :
       {Pair(-1, -7), Pair(INT_MIN, 0), Pair(0, -1), Pair(INT_MIN, INT_MIN)}) {
    KVLAlgoMatching matching(left, right, NeverAsked, nullptr);
    EXPECT_TRUE(matching.HasFullMatching()) << left << " and " << right;
    EXPECT_EQ(matching.GetBestNbMatching(), 0);
  }
  for (const auto& [left, right] : {Pair(-1, 3), Pair(3, INT_MIN)}) {
    KVLAlgoMatching matching(left, right, NeverAsked, nullptr);
    EXPECT_FALSE(matching.HasFullMatching()) << left << " and " << right;
    EXPECT_EQ(matching.GetBestNbMatching(), 0);
    EXPECT_EQ(matching.GetMatching(1), 0);
  }
}

TEST(KVLAlgoMatching, AnEnormousSideWithoutAnyPairTakesNoMemory) {
  for (const auto& [left, right] : {Pair(0, INT_MAX), Pair(INT_MAX, 0), Pair(INT_MIN, INT_MAX)}) {
    KVLAlgoMatching matching(left, right, NeverAsked, nullptr);
    EXPECT_EQ(matching.GetBestNbMatching(), 0) << left << " and " << right;
    EXPECT_FALSE(matching.HasFullMatching());
    EXPECT_EQ(matching.GetMatching(1), 0);
    EXPECT_EQ(matching.GetMatching(INT_MAX), 0);
  }
}

TEST(KVLAlgoMatching, MorePairsThanA32BitNumberHoldsReportNoMatchAndAskNothing) {
  for (const auto& [left, right] : {Pair(46341, 46341), Pair(65536, 65536), Pair(65536, 32768),
                                    Pair(INT_MAX, 2), Pair(2, INT_MAX), Pair(INT_MAX, INT_MAX)}) {
    for (const bool fullFirst : {true, false}) {
      KVLAlgoMatching matching(left, right, NeverAsked, nullptr);
      if (fullFirst) {
        EXPECT_FALSE(matching.HasFullMatching()) << left << " by " << right;
      }
      EXPECT_EQ(matching.GetBestNbMatching(), 0);
      EXPECT_FALSE(matching.HasFullMatching());
      for (const int i : {INT_MIN, -1, 0, 1, left, INT_MAX})
        EXPECT_EQ(matching.GetMatching(i), 0);
      KVLAlgoMatching copy(matching);
      EXPECT_FALSE(copy.HasFullMatching());
      EXPECT_EQ(copy.GetBestNbMatching(), 0);
      EXPECT_EQ(copy.GetMatching(1), 0);
    }
  }
}

// Copies.

class KVLAlgoMatchingCopy : public testing::Test {
 protected:
  // The questions heard from here on.
  std::vector<Pair> Heard() {
    std::vector<Pair> heard(graph.asked.begin() + static_cast<std::ptrdiff_t>(mark),
                            graph.asked.end());
    mark = graph.asked.size();
    return heard;
  }

  // The full question fails early here, and the best one has most of its work before it.
  Graph graph = Graph(4, 4).Add(1, 1).Add(1, 2).Add(3, 1).Add(4, 1).Add(4, 4);
  std::size_t mark = 0;
};

TEST_F(KVLAlgoMatchingCopy, MadeBeforeAnyQuestionAsksForItself) {
  KVLAlgoMatching source(4, 4, Graph::Ask, &graph);
  KVLAlgoMatching copy(source);
  EXPECT_EQ(source.GetBestNbMatching(), 3);
  const std::vector<Pair> bySource = Heard();
  EXPECT_FALSE(bySource.empty());
  EXPECT_EQ(copy.GetBestNbMatching(), 3);
  EXPECT_EQ(Heard(), bySource);
}

TEST_F(KVLAlgoMatchingCopy, MadeBetweenQuestionsGoesOnFromTheAnswersSoFar) {
  KVLAlgoMatching source(4, 4, Graph::Ask, &graph);
  EXPECT_FALSE(source.HasFullMatching());
  const std::vector<Pair> before = Heard();
  EXPECT_EQ(before, (std::vector<Pair>{{1, 1}, {2, 2}, {2, 3}, {2, 4}, {2, 1}}));
  KVLAlgoMatching copy(source);
  EXPECT_FALSE(copy.HasFullMatching());
  EXPECT_TRUE(Heard().empty());
  EXPECT_EQ(copy.GetBestNbMatching(), 3);
  const std::vector<Pair> byCopy = Heard();
  EXPECT_EQ(source.GetBestNbMatching(), 3);
  EXPECT_EQ(Heard(), byCopy);
  std::vector<Pair> life = before;
  life.insert(life.end(), byCopy.begin(), byCopy.end());
  EXPECT_TRUE(AreDistinct(life));
}

TEST_F(KVLAlgoMatchingCopy, MadeAfterTheQuestionsAsksNothing) {
  KVLAlgoMatching source(4, 4, Graph::Ask, &graph);
  const std::vector<int> partners = Partners(source, 4);
  Heard();
  KVLAlgoMatching copy(source);
  EXPECT_EQ(Partners(copy, 4), partners);
  EXPECT_EQ(copy.GetBestNbMatching(), 3);
  EXPECT_FALSE(copy.HasFullMatching());
  EXPECT_TRUE(Heard().empty());
}

TEST_F(KVLAlgoMatchingCopy, OutlivesItsSource) {
  auto* const source = new KVLAlgoMatching(4, 4, Graph::Ask, &graph);
  source->HasFullMatching();
  KVLAlgoMatching copy(*source);
  delete source;
  EXPECT_EQ(copy.GetBestNbMatching(), 3);
  EXPECT_TRUE(AreDistinct(graph.asked));
}

TEST_F(KVLAlgoMatchingCopy, AssignmentReplacesEverything) {
  Graph other = Identity(2);
  KVLAlgoMatching target(2, 2, Graph::Ask, &other);
  EXPECT_TRUE(target.HasFullMatching());
  KVLAlgoMatching source(4, 4, Graph::Ask, &graph);
  EXPECT_FALSE(source.HasFullMatching());
  target = source;
  KVLAlgoMatching& same = target;
  target = same;
  EXPECT_FALSE(target.HasFullMatching());
  EXPECT_EQ(target.GetBestNbMatching(), 3);
  EXPECT_EQ(target.GetMatching(4), 4);
  EXPECT_TRUE(AreDistinct(graph.asked));
  EXPECT_EQ(other.asked.size(), 2u);
}

// A predicate that throws.

void ExpectTheTruth(KVLAlgoMatching& matching, const Graph& graph, int greatest) {
  const bool isFull = graph.nbLeft == graph.nbRight && greatest == graph.nbLeft;
  EXPECT_EQ(matching.GetBestNbMatching(), greatest);
  EXPECT_EQ(matching.HasFullMatching(), isFull);
  std::vector<Pair> byRight;
  int nbPairs = 0;
  for (int i = 1; i <= graph.nbLeft; ++i) {
    const int j = matching.GetMatching(i);
    if (j == 0) continue;
    EXPECT_TRUE(graph.Has(i, j));
    byRight.emplace_back(j, 0);
    ++nbPairs;
  }
  EXPECT_EQ(nbPairs, greatest);
  EXPECT_TRUE(AreDistinct(byRight));
}

TEST(KVLAlgoMatchingThrowing, TheExceptionReachesWhoAsked) {
  Fragile fragile{Identity(2), 2};
  KVLAlgoMatching matching(2, 2, Fragile::Ask, &fragile);
  EXPECT_THROW(matching.HasFullMatching(), std::runtime_error);
}

TEST(KVLAlgoMatchingThrowing, AfterwardsAnyQuestionGetsTheTruthAndAnsweredPairsAreNotAskedAgain) {
  std::mt19937 random(Seed);
  std::uniform_int_distribution<int> size(1, 5);
  int nbThrown = 0;
  for (int round = 0; round < 400; ++round) {
    const int left = size(random);
    const int right = round % 3 == 0 ? size(random) : left;
    const Graph graph = Graph::Random(left, right, 0.2 + 0.1 * (round % 5), random);
    const int greatest = GreatestByTrying(graph);
    for (std::size_t failsAt = 1; failsAt <= graph.mayMatch.size(); ++failsAt) {
      SCOPED_TRACE(testing::Message()
                   << "seed " << Seed << ", round " << round << ", question " << failsAt);
      for (const bool fullFirst : {true, false}) {
        Fragile fragile{graph, failsAt};
        KVLAlgoMatching matching(left, right, Fragile::Ask, &fragile);
        try {
          if (fullFirst) matching.HasFullMatching();
          matching.GetBestNbMatching();
        } catch (const std::runtime_error&) {
          ++nbThrown;
        }
        KVLAlgoMatching copy(matching);
        ExpectTheTruth(matching, fragile.graph, greatest);
        ASSERT_TRUE(AreDistinct(fragile.graph.asked));
        ExpectTheTruth(copy, fragile.graph, greatest);
        ASSERT_FALSE(HasFailure());
      }
    }
  }
  EXPECT_GT(nbThrown, 1000);
}

TEST(KVLAlgoMatchingThrowing, APredicateThatFailsEveryFirstTimeIsHeardOutInTheEnd) {
  std::mt19937 random(Seed + 1);
  for (int round = 0; round < 50; ++round) {
    Graph graph = Graph::Random(8, 8, 0.3, random);
    const int greatest = GreatestByTrying(graph);
    Fragile fragile{graph, 1};
    KVLAlgoMatching matching(8, 8, Fragile::Ask, &fragile);
    for (bool answered = false; !answered;) {
      try {
        matching.GetBestNbMatching();
        answered = true;
      } catch (const std::runtime_error&) {
        // The pair that failed is answered next time; the one after it fails then.
        fragile.failsAt = fragile.nbCalls + 2;
      }
      ASSERT_LE(fragile.nbCalls, 2u * 64u);
    }
    SCOPED_TRACE(testing::Message() << "seed " << Seed + 1 << ", round " << round);
    ExpectTheTruth(matching, fragile.graph, greatest);
    ASSERT_TRUE(AreDistinct(fragile.graph.asked));
  }
}

TEST(KVLAlgoMatchingThrowing, AGreedyPassCutShortGoesOnWhereItStopped) {
  Fragile fragile{Graph(3, 3), 3};
  fragile.graph.Add(1, 1).Add(1, 2).Add(1, 3).Add(2, 3).Add(3, 2);
  KVLAlgoMatching matching(3, 3, Fragile::Ask, &fragile);
  EXPECT_THROW(matching.HasFullMatching(), std::runtime_error);
  EXPECT_TRUE(matching.HasFullMatching());
  EXPECT_EQ(fragile.graph.asked, (std::vector<Pair>{{1, 1}, {2, 2}, {2, 3}, {3, 2}}));
  EXPECT_EQ(Partners(matching, 3), (std::vector<int>{1, 3, 2}));
}

}  // namespace
