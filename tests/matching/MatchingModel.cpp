#include "MatchingModel.h"

#include <algorithm>
#include <deque>
#include <functional>

Graph Graph::Random(int left, int right, double density, std::mt19937& random) {
  Graph graph(left, right);
  std::bernoulli_distribution edge(density);
  for (char& mark : graph.mayMatch)
    mark = edge(random) ? 1 : 0;
  return graph;
}

bool Graph::Ask(int i, int j, void* data) {
  Graph& graph = *static_cast<Graph*>(data);
  graph.asked.emplace_back(i, j);
  if (i < 1 || i > graph.nbLeft || j < 1 || j > graph.nbRight) {
    ++graph.outOfRange;
    return false;
  }
  return graph.Has(i, j);
}

ReferenceMatching::ReferenceMatching(const Graph& edges, std::size_t failingQuestion)
    : graph(&edges),
      failsAt(failingQuestion),
      known(static_cast<std::size_t>(edges.nbLeft) + 1,
            std::vector<bool>(static_cast<std::size_t>(edges.nbRight) + 1, false)),
      rightOf(static_cast<std::size_t>(edges.nbLeft) + 1, 0),
      leftOf(static_cast<std::size_t>(edges.nbRight) + 1, 0),
      layers(static_cast<std::size_t>(edges.nbLeft) + 1, 0) {}

bool ReferenceMatching::HasFullMatching() {
  StoreFull();
  return full;
}

int ReferenceMatching::GetBestNbMatching() {
  ComputeBest();
  return nbPairs;
}

int ReferenceMatching::GetMatching(int i) {
  ComputeBest();
  return rightOf[static_cast<std::size_t>(i)];
}

bool ReferenceMatching::Test(int i, int j) {
  std::vector<bool>& row = known[static_cast<std::size_t>(i)];
  if (!row[static_cast<std::size_t>(j)]) {
    if (++nbQuestions == failsAt) throw NoAnswer();
    row[static_cast<std::size_t>(j)] = true;
    asked.emplace_back(i, j);
  }
  return graph->Has(i, j);
}

bool ReferenceMatching::ComputeFull() {
  const int n = graph->nbLeft;
  if (n != graph->nbRight) return false;
  if (n < 1) return true;
  bool needsImprovement = false;
  for (int i = 1; i <= n; ++i) {
    int& partner = rightOf[static_cast<std::size_t>(i)];
    for (int j = 1; j <= n && partner == 0; ++j) {
      int& owner = leftOf[static_cast<std::size_t>(j)];
      if (owner == 0 && Test(i, j)) {
        partner = j;
        owner = i;
        ++nbPairs;
      }
    }
    if (partner != 0) continue;
    int nbPossible = 0;
    for (int j = 1; j <= n; ++j) {
      if (leftOf[static_cast<std::size_t>(j)] != 0) nbPossible += Test(i, j) ? 1 : 0;
    }
    if (nbPossible == 0) return false;
    needsImprovement = true;
  }
  if (!needsImprovement) return true;
  Optimize();
  return nbPairs == n;
}

void ReferenceMatching::StoreFull() {
  if (fullIsKnown) return;
  full = ComputeFull();
  fullIsKnown = true;
  if (full) best = true;
}

void ReferenceMatching::ComputeBest() {
  if (best) return;
  StoreFull();
  if (full || best) return;
  Optimize();
}

void ReferenceMatching::Optimize() {
  if (best) return;
  const int most = std::min(graph->nbLeft, graph->nbRight);
  if (nbPairs < most) {
    do {
      if (!Layer()) break;
      for (int i = 1; i <= graph->nbLeft; ++i) {
        if (rightOf[static_cast<std::size_t>(i)] == 0 && Augment(i)) ++nbPairs;
      }
    } while (nbPairs < most);
  }
  best = true;
}

bool ReferenceMatching::Layer() {
  std::deque<int> waiting;
  for (int i = 1; i <= graph->nbLeft; ++i) {
    const bool isFree = rightOf[static_cast<std::size_t>(i)] == 0;
    layers[static_cast<std::size_t>(i)] = isFree ? 0 : Far;
    if (isFree) waiting.push_back(i);
  }
  layers[0] = Far;
  while (!waiting.empty()) {
    const int u = waiting.front();
    waiting.pop_front();
    if (layers[static_cast<std::size_t>(u)] >= layers[0]) continue;
    for (int j = 1; j <= graph->nbRight; ++j) {
      if (!Test(u, j)) continue;
      const int w = leftOf[static_cast<std::size_t>(j)];
      if (layers[static_cast<std::size_t>(w)] != Far) continue;
      layers[static_cast<std::size_t>(w)] = layers[static_cast<std::size_t>(u)] + 1;
      if (w > 0) waiting.push_back(w);
    }
  }
  return layers[0] != Far;
}

bool ReferenceMatching::Augment(int root) {
  std::vector<Pair> path{{root, 0}};
  while (path.back().first != 0) {
    const int x = path.back().first;
    const int next = layers[static_cast<std::size_t>(x)] + 1;
    int w = -1;
    while (w < 0 && path.back().second < graph->nbRight) {
      const int j = ++path.back().second;
      if (!Test(x, j)) continue;
      const int owner = leftOf[static_cast<std::size_t>(j)];
      if (layers[static_cast<std::size_t>(owner)] == next) w = owner;
    }
    if (w >= 0) {
      path.emplace_back(w, 0);
      continue;
    }
    layers[static_cast<std::size_t>(x)] = 0;
    path.pop_back();
    if (path.empty()) return false;
  }
  path.pop_back();
  for (const auto& [x, j] : path) {
    leftOf[static_cast<std::size_t>(j)] = x;
    rightOf[static_cast<std::size_t>(x)] = j;
  }
  return true;
}

int GreatestByTrying(const Graph& graph) {
  const std::function<int(int, unsigned)> greatestFrom = [&](int i, unsigned taken) {
    if (i > graph.nbLeft) return 0;
    int greatest = greatestFrom(i + 1, taken);
    for (int j = 1; j <= graph.nbRight; ++j) {
      const unsigned bit = 1u << (j - 1);
      if ((taken & bit) != 0 || !graph.Has(i, j)) continue;
      greatest = std::max(greatest, 1 + greatestFrom(i + 1, taken | bit));
    }
    return greatest;
  };
  return greatestFrom(1, 0);
}

int GreatestByAugmenting(const Graph& graph) {
  std::vector<int> owner(static_cast<std::size_t>(graph.nbRight) + 1, 0);
  std::vector<bool> seen;
  const std::function<bool(int)> serve = [&](int i) {
    for (int j = 1; j <= graph.nbRight; ++j) {
      const std::size_t right = static_cast<std::size_t>(j);
      if (seen[right] || !graph.Has(i, j)) continue;
      seen[right] = true;
      if (owner[right] != 0 && !serve(owner[right])) continue;
      owner[right] = i;
      return true;
    }
    return false;
  };
  int nbServed = 0;
  for (int i = 1; i <= graph.nbLeft; ++i) {
    seen.assign(owner.size(), false);
    if (serve(i)) ++nbServed;
  }
  return nbServed;
}

bool AreDistinct(std::vector<Pair> pairs) {
  std::sort(pairs.begin(), pairs.end());
  return std::adjacent_find(pairs.begin(), pairs.end()) == pairs.end();
}
