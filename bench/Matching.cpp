// How long does a greatest matching take where a predicate says which pairs may be matched?

#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <vector>

#ifdef KVL_BENCH_LEMON
#include <lemon/matching.h>
#include <lemon/smart_graph.h>
#endif
#ifdef KVL_BENCH_BOOST_GRAPH
#include <boost/graph/adjacency_list.hpp>
#include <boost/graph/max_cardinality_matching.hpp>
#endif

#include "Bench.h"
#include "KVLAlgoMatching.h"

namespace kvlbench {

namespace {

/// A bit for each pair of `n` left and `n` right elements, which count from 1.
class Pairs {
 public:
  Pairs(int count, double probability)
      : n(static_cast<std::size_t>(count)), words((n + 63) / 64), bits(n * words) {
    const double scaled =
        probability * static_cast<double>(std::numeric_limits<std::uint32_t>::max());
    const std::uint32_t limit = static_cast<std::uint32_t>(scaled);
    std::uint64_t random = Seed;
    for (std::size_t i = 0; i < n; ++i) {
      for (std::size_t j = 0; j < n; ++j) {
        // Knuth's generator; its upper half is good enough for a graph.
        random = random * 6364136223846793005u + 1442695040888963407u;
        if (random >> 32 < limit) bits[i * words + j / 64] |= std::uint64_t{1} << j % 64;
      }
    }
  }

  int GetCount() const { return static_cast<int>(n); }

  static bool MayMatch(int i, int j, void* data) {
    const Pairs& pairs = *static_cast<const Pairs*>(data);
    const std::size_t bit = static_cast<std::size_t>(j) - 1;
    return pairs.bits[(static_cast<std::size_t>(i) - 1) * pairs.words + bit / 64] >> bit % 64 & 1;
  }

 private:
  std::size_t n;
  std::size_t words;
  std::vector<std::uint64_t> bits;
};

/// What everyone is handed: a predicate that the compiler does not see through.
struct Question {
  explicit Question(const Pairs& asked)
      : n(asked.GetCount()), predicate(Pairs::MayMatch), data(const_cast<Pairs*>(&asked)) {
    benchmark::DoNotOptimize(predicate);
  }

  bool MayMatch(int i, int j) const { return predicate(i, j, data); }

  int n;
  KVLAlgoMatching::Predicate predicate;
  void* data;
};

// `partners` has the right partner of each left element, 0 for none. Returns their number.
int CheckedSize(const Question& question, const std::vector<int>& partners) {
  std::vector<bool> taken(static_cast<std::size_t>(question.n) + 1);
  int size = 0;
  for (int i = 1; i <= question.n; ++i) {
    const int j = partners[static_cast<std::size_t>(i) - 1];
    if (j == 0) continue;
    Require(question.MayMatch(i, j) && !taken[static_cast<std::size_t>(j)], "a pair");
    taken[static_cast<std::size_t>(j)] = true;
    ++size;
  }
  return size;
}

std::vector<int> MatchOurs(const Question& question) {
  KVLAlgoMatching matching(question.n, question.n, question.predicate, question.data);
  (void)matching.GetBestNbMatching();
  std::vector<int> partners;
  partners.reserve(static_cast<std::size_t>(question.n));
  for (int i = 1; i <= question.n; ++i)
    partners.push_back(matching.GetMatching(i));
  return partners;
}

int AskAll(const Question& question) {
  int nb = 0;
  for (int i = 1; i <= question.n; ++i) {
    for (int j = 1; j <= question.n; ++j)
      nb += question.MayMatch(i, j);
  }
  return nb;
}

// Takes the first free partner that each element may have. Where there are many, that is nearly a
// greatest matching.
int MatchGreedily(const Question& question) {
  // The free right elements, each with the next one; 0 comes before the first and after the last.
  std::vector<int> next(static_cast<std::size_t>(question.n) + 1);
  for (int j = 0; j < question.n; ++j)
    next[static_cast<std::size_t>(j)] = j + 1;
  int nb = 0;
  for (int i = 1; i <= question.n; ++i) {
    int* link = &next[0];
    while (*link != 0 && !question.MayMatch(i, *link))
      link = &next[static_cast<std::size_t>(*link)];
    if (*link == 0) continue;
    *link = next[static_cast<std::size_t>(*link)];
    ++nb;
  }
  return nb;
}

#ifdef KVL_BENCH_LEMON
std::vector<int> MatchLemon(const Question& question) {
  lemon::SmartGraph graph;
  graph.reserveNode(2 * question.n);
  for (int i = 0; i < 2 * question.n; ++i)
    graph.addNode();
  for (int i = 1; i <= question.n; ++i) {
    for (int j = 1; j <= question.n; ++j) {
      if (!question.MayMatch(i, j)) continue;
      graph.addEdge(graph.nodeFromId(i - 1), graph.nodeFromId(question.n + j - 1));
    }
  }
  lemon::MaxMatching<lemon::SmartGraph> matching(graph);
  matching.run();
  std::vector<int> partners;
  partners.reserve(static_cast<std::size_t>(question.n));
  for (int i = 0; i < question.n; ++i) {
    const lemon::SmartGraph::Node mate = matching.mate(graph.nodeFromId(i));
    partners.push_back(mate == lemon::INVALID ? 0 : graph.id(mate) - question.n + 1);
  }
  return partners;
}
#endif

#ifdef KVL_BENCH_BOOST_GRAPH
std::vector<int> MatchBoost(const Question& question) {
  using Graph = boost::adjacency_list<boost::vecS, boost::vecS, boost::undirectedS>;
  using Vertex = boost::graph_traits<Graph>::vertex_descriptor;
  const std::size_t n = static_cast<std::size_t>(question.n);
  Graph graph(2 * n);
  for (int i = 1; i <= question.n; ++i) {
    for (int j = 1; j <= question.n; ++j) {
      if (!question.MayMatch(i, j)) continue;
      boost::add_edge(static_cast<std::size_t>(i) - 1, n + static_cast<std::size_t>(j) - 1, graph);
    }
  }
  std::vector<Vertex> mates(2 * n);
  boost::edmonds_maximum_cardinality_matching(graph, mates.data());
  std::vector<int> partners;
  partners.reserve(n);
  for (std::size_t i = 0; i < n; ++i) {
    const bool matched = mates[i] != boost::graph_traits<Graph>::null_vertex();
    partners.push_back(matched ? static_cast<int>(mates[i] - n) + 1 : 0);
  }
  return partners;
}
#endif

struct Case {
  int n;
  const char* probabilityText;
  double probability;
};

/// The pairs of a case and the size of a greatest matching, made when first asked for.
class Problem {
 public:
  explicit Problem(const Case& described) : n(described.n), probability(described.probability) {}

  const Pairs& GetPairs() {
    if (!pairs) pairs = std::make_unique<Pairs>(n, probability);
    return *pairs;
  }
  // All who answer must agree.
  void Check(const Question& question, const std::vector<int>& partners) {
    const int found = CheckedSize(question, partners);
    if (size < 0) size = found;
    Require(found == size, "the size of a matching");
  }

 private:
  int n;
  double probability;
  std::unique_ptr<Pairs> pairs;
  int size = -1;
};

using Match = std::vector<int> (*)(const Question& question);

void AddBenches(const Case& described) {
  const auto problem = std::make_shared<Problem>(described);
  const std::string workload =
      "match n = " + std::to_string(described.n) + ", p = " + described.probabilityText;
  const bool isLong = described.n >= 5000;
  const bool isDense = described.probability >= 0.5;

  const auto bound = [isLong](benchmark::internal::Benchmark* bench) {
    if (isLong) bench->Repetitions(3);
  };
  const auto add = [&](const char* who, Match match) {
    bound(Add(workload, who, [problem, match](benchmark::State& state) {
      const Question question(problem->GetPairs());
      std::vector<int> partners;
      for (auto _ : state)
        partners = match(question);
      problem->Check(question, partners);
    }));
  };
  add(Ours, MatchOurs);
  bound(Add(workload, Floor, [problem, isDense](benchmark::State& state) {
    const Question question(problem->GetPairs());
    for (auto _ : state)
      benchmark::DoNotOptimize(isDense ? MatchGreedily(question) : AskAll(question));
  }));
#ifdef KVL_BENCH_LEMON
  add("LEMON", MatchLemon);
#endif
#ifdef KVL_BENCH_BOOST_GRAPH
  // It takes long here, and four times what the other needs.
  if (!isLong || !isDense) add("Boost", MatchBoost);
#endif
}

}  // namespace

void RegisterBenches() {
  for (const int n : {100, 1000, 5000}) {
    AddBenches({n, "3/n", 3.0 / n});
    AddBenches({n, "5/n", 5.0 / n});
    AddBenches({n, "0.5", 0.5});
  }
}

}  // namespace kvlbench
