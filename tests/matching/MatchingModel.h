#ifndef KVL_TESTS_MATCHING_MODEL_H
#define KVL_TESTS_MATCHING_MODEL_H

#include <cstddef>
#include <random>
#include <stdexcept>
#include <utility>
#include <vector>

/// One question to the predicate: left element, right element.
using Pair = std::pair<int, int>;

/// What a predicate throws instead of an answer.
struct NoAnswer : std::runtime_error {
  NoAnswer() : std::runtime_error("no answer") {}
};

/// Which pairs may be matched, and what the predicate has been asked about it.
struct Graph {
  Graph(int left, int right)
      : nbLeft(left),
        nbRight(right),
        mayMatch(static_cast<std::size_t>(left) * static_cast<std::size_t>(right), 0) {}

  static Graph Random(int left, int right, double density, std::mt19937& random);

  bool Has(int i, int j) const { return mayMatch[Index(i, j)] != 0; }
  Graph& Add(int i, int j) {
    mayMatch[Index(i, j)] = 1;
    return *this;
  }

  /// The predicate to give to a matching, with the graph as its data: writes each question down in
  /// `asked`, and counts in `outOfRange` those about elements that do not exist.
  static bool Ask(int i, int j, void* graph);

  int nbLeft;
  int nbRight;
  std::vector<char> mayMatch;
  std::vector<Pair> asked;
  int outOfRange = 0;

 private:
  std::size_t Index(int i, int j) const {
    return static_cast<std::size_t>(i - 1) * static_cast<std::size_t>(nbRight) +
           static_cast<std::size_t>(j - 1);
  }
};

/// A graph whose predicate does not answer one question.
struct Fragile {
  Graph graph;
  std::size_t failsAt;  // the question, from 1, that is not answered; 0 for none
  std::size_t nbCalls = 0;

  static bool Ask(int i, int j, void* data) {
    Fragile& fragile = *static_cast<Fragile*>(data);
    if (++fragile.nbCalls == fragile.failsAt) throw NoAnswer();
    return Graph::Ask(i, j, &fragile.graph);
  }
};

/// The greedy pass and the phases of Hopcroft-Karp, written down step by step for reading. It gives
/// the answers, and the questions in the order in which the predicate has to hear them.
class ReferenceMatching {
 public:
  /// The question `failingQuestion`, from 1, is answered by a `NoAnswer`; 0 for none.
  explicit ReferenceMatching(const Graph& edges, std::size_t failingQuestion = 0);

  bool HasFullMatching();
  int GetBestNbMatching();
  int GetMatching(int i);

  const std::vector<Pair>& GetAsked() const { return asked; }

 private:
  static constexpr int Far = 1000000000;

  bool Test(int i, int j);
  bool ComputeFull();
  void StoreFull();
  void ComputeBest();
  void Optimize();
  bool Layer();
  bool Augment(int root);

  const Graph* graph;
  std::size_t failsAt;
  std::size_t nbQuestions = 0;
  std::vector<Pair> asked;
  std::vector<std::vector<bool>> known;
  std::vector<int> rightOf;  // by left element, from 1
  std::vector<int> leftOf;   // by right element, from 1
  std::vector<int> layers;   // by left element, from 1; at 0 that of the end of a path
  int nbPairs = 0;
  bool full = false;
  bool fullIsKnown = false;
  bool best = false;
};

/// The greatest number of pairs, by trying every choice. For graphs of at most 20 right elements.
int GreatestByTrying(const Graph& graph);

/// The greatest number of pairs, one augmenting path after the other.
int GreatestByAugmenting(const Graph& graph);

/// True when no pair occurs twice.
bool AreDistinct(std::vector<Pair> pairs);

#endif
