#include "KVLAlgoMatching.h"

#include <climits>
#include <cstddef>
#include <cstdint>

// Left elements are 1 .. n1, right elements 1 .. n2, and 0 is the vertex that every free right
// element leads to. Invariants: matchLeft[i] = j exactly when matchRight[j] = i, for j other than
// 0, and nbMatched counts these pairs.

namespace {

constexpr char Matchable = 'V';
constexpr char Unmatchable = 'X';
constexpr int Infinity = 1000000000;

constexpr int WordBits = 64;

int CountOf(int n) {
  return n < 0 ? 0 : n;
}

int WordsFor(int nbBits) {
  return nbBits / WordBits + 1;
}

// The lowest bit that is set; there must be one.
int LowestBit(std::uint64_t word) {
  return __builtin_ctzll(word);
}

}  // namespace

KVLAlgoMatching::KVLAlgoMatching(int nbLeft, int nbRight, Predicate mayMatch, void* userData)
    : n1(CountOf(nbLeft)),
      n2(CountOf(nbRight)),
      predicate(mayMatch),
      data(userData),
      nbMatched(0),
      hasFull(false),
      fullComputed(false),
      bestComputed(false),
      distNil(0) {
  if (static_cast<std::int64_t>(n1) * n2 > INT_MAX) {
    // No table of marks can be had: the answer is "no match", given without a question.
    fullComputed = true;
    bestComputed = true;
    return;
  }
  // Without any pair no table is ever read, however long one side is.
  if (n1 == 0 || n2 == 0) return;
  edges.Resize(n1 * n2);
  matchLeft.Resize(n1);
  matchRight.Resize(n2);
  dist.Resize(n1);
}

KVLAlgoMatching::~KVLAlgoMatching() = default;

bool KVLAlgoMatching::HasFullMatching() {
  StoreFullMatching();
  return hasFull;
}

int KVLAlgoMatching::GetBestNbMatching() {
  ComputeBestMatching();
  return nbMatched;
}

int KVLAlgoMatching::GetMatching(int i) {
  ComputeBestMatching();
  return i < 1 || i > matchLeft.GetCount() ? 0 : matchLeft[i - 1];
}

bool KVLAlgoMatching::ElemMatch(int i, int j) const {
  char& mark = edges[(j - 1) * n1 + (i - 1)];
  if (mark == 0) mark = predicate(i, j, data) ? Matchable : Unmatchable;
  return mark == Matchable;
}

// Asks about every pair of a left element, in order, and notes the answers as a row of bits: a
// search passes through a row again and again, and would walk the marks down a column each time.
void KVLAlgoMatching::KnowRow(int i) {
  if (rowKnown[i - 1]) return;
  std::uint64_t* const row = partners.GetData() + std::ptrdiff_t{i - 1} * WordsFor(n2);
  for (int j = 1; j <= n2; ++j) {
    if (ElemMatch(i, j)) row[j / WordBits] |= std::uint64_t{1} << (j % WordBits);
  }
  rowKnown[i - 1] = 1;
}

// The first right element behind `j` that left element `i` may be matched with; n2 + 1 for none.
int KVLAlgoMatching::NextPartner(int i, int j) {
  int next = j + 1;
  if (!rowKnown[i - 1]) {
    while (next <= n2 && !ElemMatch(i, next))
      ++next;
    return next;
  }
  const int nbWords = WordsFor(n2);
  const std::uint64_t* const row = partners.GetData() + std::ptrdiff_t{i - 1} * nbWords;
  int word = next / WordBits;
  if (word == nbWords) return n2 + 1;
  std::uint64_t bits = row[word] & ~std::uint64_t{0} << (next % WordBits);
  while (bits == 0) {
    if (++word == nbWords) return n2 + 1;
    bits = row[word];
  }
  return word * WordBits + LowestBit(bits);
}

int& KVLAlgoMatching::Dist(int u) {
  return u == 0 ? distNil : dist[u - 1];
}

// Builds the layers of a phase; false when no augmenting path is left.
bool KVLAlgoMatching::BFS() {
  KVLVector<int> queue;
  queue.Reserve(n1);
  for (int i = 1; i <= n1; ++i) {
    const bool isFree = matchLeft[i - 1] == 0;
    dist[i - 1] = isFree ? 0 : Infinity;
    if (isFree) queue.Append(i);
  }
  distNil = Infinity;
  for (int front = 0; front < queue.GetCount(); ++front) {
    const int u = queue[front];
    if (dist[u - 1] >= distNil) continue;
    KnowRow(u);
    for (int j = NextPartner(u, 0); j <= n2; j = NextPartner(u, j)) {
      const int w = matchRight[j - 1];
      int& target = Dist(w);
      if (target != Infinity) continue;
      target = dist[u - 1] + 1;
      if (w > 0) queue.Append(w);
    }
  }
  return distNil != Infinity;
}

// Searches one augmenting path from `u` along the layers, and augments along it. A path may pass
// through every element: the stack is explicit.
bool KVLAlgoMatching::DFS(int u) {
  if (u == 0) return true;
  struct Step {
    int x;  // a left element, or 0 at the path's end
    int k;  // the right element tried last
  };
  KVLVector<Step> stack;
  stack.Append(Step{u, 0});
  while (stack[stack.GetCount() - 1].x != 0) {
    Step& top = stack[stack.GetCount() - 1];
    const int nextLayer = dist[top.x - 1] + 1;
    int j = NextPartner(top.x, top.k);
    while (j <= n2 && Dist(matchRight[j - 1]) != nextLayer)
      j = NextPartner(top.x, j);
    if (j <= n2) {
      top.k = j;
      stack.Append(Step{matchRight[j - 1], 0});
      continue;
    }
    // Only layers from 1 up are followed, so that 0 marks a dead end for the rest of the phase.
    dist[top.x - 1] = 0;
    stack.Erase(stack.GetCount() - 1);
    if (stack.IsEmpty()) return false;
  }
  for (int s = 0; s < stack.GetCount() - 1; ++s)
    Match(stack[s].x, stack[s].k);
  return true;
}

void KVLAlgoMatching::Match(int i, int j) {
  matchRight[j - 1] = i;
  matchLeft[i - 1] = j;
}

bool KVLAlgoMatching::ComputeFullMatching() {
  if (fullComputed) return hasFull;
  if (n1 != n2) return false;
  if (n1 < 1) return true;
  bool complete = true;
  for (int i = 1; i <= n1; ++i) {
    // Matched by a former pass, which an exception of the predicate ended.
    if (matchLeft[i - 1] != 0) continue;
    for (int j = 1; j <= n2; ++j) {
      if (matchRight[j - 1] != 0 || !ElemMatch(i, j)) continue;
      Match(i, j);
      ++nbMatched;
      break;
    }
    if (matchLeft[i - 1] != 0) continue;
    bool hasPartner = false;
    // Every matched element is asked, also behind the first that serves: the order of questions is
    // part of the class's behaviour.
    for (int j = 1; j <= n2; ++j) {
      if (matchRight[j - 1] != 0 && ElemMatch(i, j)) hasPartner = true;
    }
    if (!hasPartner) return false;
    complete = false;
  }
  if (complete) return true;
  OptimizeMatching();
  return nbMatched == n1;
}

void KVLAlgoMatching::StoreFullMatching() {
  if (fullComputed) return;
  hasFull = ComputeFullMatching();
  fullComputed = true;
  if (hasFull) bestComputed = true;
}

void KVLAlgoMatching::OptimizeMatching() {
  if (bestComputed) return;
  const int most = n1 < n2 ? n1 : n2;
  if (nbMatched < most && rowKnown.IsEmpty()) {
    rowKnown.Resize(n1);
    partners.Resize(n1 * WordsFor(n2));
  }
  while (nbMatched < most && BFS()) {
    for (int i = 1; i <= n1; ++i) {
      if (matchLeft[i - 1] == 0 && DFS(i)) ++nbMatched;
    }
  }
  bestComputed = true;
}

void KVLAlgoMatching::ComputeBestMatching() {
  if (bestComputed) return;
  StoreFullMatching();
  if (hasFull || bestComputed) return;
  OptimizeMatching();
}
