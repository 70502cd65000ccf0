#include "KVLAlgoMatching.h"

#include <climits>
#include <cstddef>
#include <cstdint>
#include <numeric>

// Left elements are 1 .. n1, right elements 1 .. n2, and 0 is the vertex that every free right
// element leads to. Invariants: matchLeft[i] = j exactly when matchRight[j] = i, for j other than
// 0, and nbMatched counts these pairs.
//
// On a sparse graph nearly all work is to ask about the pairs. A search asks about all right
// elements of a left one at once, and then walks the list of those that may be matched, or a row of
// bits where they are many.

namespace {

constexpr int Infinity = 1000000000;

constexpr int WordBits = 64;
constexpr std::uint64_t AllBits = ~std::uint64_t{0};
constexpr std::uint64_t HighestBit = std::uint64_t{1} << (WordBits - 1);

// What a row has instead of the place where its list begins.
constexpr int NothingAsked = -1;
constexpr int SomeAsked = -2;
constexpr int InEdges = -3;  // all is known, and too much for a list

int CountOf(int n) {
  return n < 0 ? 0 : n;
}

int WordsFor(int nbRight) {
  return (nbRight + WordBits - 1) / WordBits;
}

// Beyond this a row of bits takes much less room than a list, and is as quickly walked.
int LongestListFor(int nbRight) {
  return nbRight / 8 + 16;
}

int WordOf(int j) {
  return (j - 1) / WordBits;
}

int FirstOf(int word) {
  return word * WordBits + 1;
}

int LastOf(int word, int nbRight) {
  const int last = (word + 1) * WordBits;
  return last < nbRight ? last : nbRight;
}

// The bit of right element `j` in its word; the first has the highest.
std::uint64_t BitOf(int j) {
  return HighestBit >> ((j - 1) % WordBits);
}

// The bits of a word's right elements up to `j`.
std::uint64_t BitsUpTo(int j) {
  return AllBits << (WordBits - 1 - (j - 1) % WordBits);
}

// All right elements of a word.
std::uint64_t BitsOf(int word, int nbRight) {
  return BitsUpTo(LastOf(word, nbRight));
}

// The right element of the highest bit, of which there must be one.
int FirstIn(std::uint64_t bits, int word) {
  return FirstOf(word) + __builtin_clzll(bits);
}

// Writes the right elements of these bits down; returns the end. There is room for one more.
int* ListBits(std::uint64_t bits, int word, int* end) {
  int j = FirstOf(word);
  if (bits == AllBits) {
    for (int k = 0; k < WordBits; ++k)
      end[k] = j + k;
    return end + WordBits;
  }
  // Without a branch: each is written, and the next one over it unless it is wanted.
  for (; bits != 0; bits <<= 1) {
    *end = j++;
    end += bits >> (WordBits - 1);
  }
  return end;
}

}  // namespace

/// What a search of paths works with.
struct KVLAlgoMatching::Search {
  Search(int nbLeft, int nbRight) {
    all.Resize(nbRight);
    std::iota(all.begin(), all.end(), 1);
    rest.Resize(nbRight + 1);
    list.Resize(nbRight + 1);
    queue.Resize(nbLeft + 1);
    path.Resize(nbLeft + 1);
  }

  /// A left element of a path and the right one that follows it.
  struct Step {
    int x;
    int j;
    int place;  // how far the row of `x` has been walked
  };

  KVLVector<int> all;    // right elements
  KVLVector<int> rest;   // those to ask about; with room for one more
  KVLVector<int> list;   // of partners; with room for one more
  KVLVector<int> queue;  // with room for one more
  KVLVector<Step> path;
};

KVLAlgoMatching::KVLAlgoMatching(int nbLeft, int nbRight, Predicate mayMatch, void* userData,
                                 Askers asking)
    : n1(CountOf(nbLeft)),
      n2(CountOf(nbRight)),
      predicate(mayMatch),
      data(userData),
      nbMatched(0),
      hasFull(false),
      fullComputed(false),
      bestComputed(false),
      nbTried(0),
      nbUnknown(n1),
      askers(asking) {
  if (static_cast<std::int64_t>(n1) * n2 > INT_MAX) {
    // No table of answers can be had: the answer is "no match", given without a question.
    fullComputed = true;
    bestComputed = true;
    return;
  }
  // Without any pair no table is ever read, however long one side is.
  if (n1 == 0 || n2 == 0) return;
  edges.Resize(n1 * WordsFor(n2));
  asked.Resize(n1 * WordsFor(n2));
  matchLeft.Resize(n1);
  matchRight.Resize(n2);
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

std::uint64_t* KVLAlgoMatching::RowOf(KVLVector<std::uint64_t>& table, int i) {
  return table.GetData() + std::ptrdiff_t{i - 1} * WordsFor(n2);
}

void KVLAlgoMatching::Match(int i, int j) {
  matchRight[j - 1] = i;
  matchLeft[i - 1] = j;
}

// Asks about right elements of a word, as far as they have not been asked about. What is answered
// stays known, also where the predicate throws.
void KVLAlgoMatching::AskInWord(int i, int word, std::uint64_t wanted, Asker asker) {
  int places[WordBits + 1];
  int found[WordBits + 1];
  struct Answers {
    ~Answers() {
      if (round.next != places) asked |= wanted & BitsUpTo(round.next[-1]);
      for (; found != round.found; ++found)
        edges |= BitOf(*found);
    }
    std::uint64_t& asked;
    std::uint64_t& edges;
    const std::uint64_t wanted;
    const int* places;
    const int* found;
    Round round;
  } answers{RowOf(asked, i)[word],     RowOf(edges, i)[word], wanted, places, found,
            {i, places, places, found}};
  const int* const end = ListBits(wanted & ~answers.asked, word, places);
  if (end == places) return;
  answers.round.end = end;
  asker(predicate, data, answers.round);
}

/// The cheap pass: takes the first free partner of each left element.
class KVLAlgoMatching::GreedyPass {
 public:
  explicit GreedyPass(KVLAlgoMatching& passing);

  bool MatchWithAFreeOne(int i);
  bool HasMatchedPartner(int i);

 private:
  // Both sides have as many, and the square of that is a 32-bit number.
  static constexpr int MostWords = 46340 / WordBits + 1;

  KVLAlgoMatching& matching;
  const int nbWords;
  int firstWord;                  // those before have no free one
  std::uint64_t free[MostWords];  // right elements
};

KVLAlgoMatching::GreedyPass::GreedyPass(KVLAlgoMatching& passing)
    : matching(passing), nbWords(WordsFor(passing.n2)), firstWord(0) {
  for (int word = 0; word < nbWords; ++word) {
    free[word] = 0;
    for (int j = FirstOf(word); j <= LastOf(word, matching.n2); ++j) {
      if (matching.matchRight[j - 1] == 0) free[word] |= BitOf(j);
    }
  }
}

// Asks about the right elements that are free until one may be matched.
bool KVLAlgoMatching::GreedyPass::MatchWithAFreeOne(int i) {
  while (firstWord < nbWords && free[firstWord] == 0)
    ++firstWord;
  const std::uint64_t* const possible = matching.RowOf(matching.edges, i);
  for (int word = firstWord; word < nbWords; ++word) {
    // Of what an exception of the predicate left behind, one may be known.
    const std::uint64_t known = free[word] & possible[word];
    const std::uint64_t wanted =
        known == 0 ? free[word] : free[word] & BitsUpTo(FirstIn(known, word));
    matching.AskInWord(i, word, wanted, matching.askers.one);
    if (const std::uint64_t found = free[word] & possible[word]) {
      const int j = FirstIn(found, word);
      matching.Match(i, j);
      ++matching.nbMatched;
      free[word] ^= BitOf(j);
      return true;
    }
  }
  return false;
}

// Asks about every right element that is matched, also behind the first that serves: the order of
// questions is part of the class's behaviour.
bool KVLAlgoMatching::GreedyPass::HasMatchedPartner(int i) {
  std::uint64_t found = 0;
  for (int word = 0; word < nbWords; ++word) {
    const std::uint64_t matched = ~free[word] & BitsOf(word, matching.n2);
    matching.AskInWord(i, word, matched, matching.askers.all);
    found |= matched & matching.RowOf(matching.edges, i)[word];
  }
  return found != 0;
}

bool KVLAlgoMatching::ComputeFullMatching() {
  if (fullComputed) return hasFull;
  if (n1 != n2) return false;
  if (n1 < 1) return true;
  GreedyPass pass(*this);
  bool complete = true;
  for (int i = 1; i <= n1; ++i) {
    // Matched by a former pass, which an exception of the predicate ended.
    if (matchLeft[i - 1] != 0) continue;
    if (nbTried < i) nbTried = i;
    if (pass.MatchWithAFreeOne(i)) continue;
    if (!pass.HasMatchedPartner(i)) return false;
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

// Asks about every right element about whom that has not been done, in order, and notes all whom
// left element `i` may be matched with.
void KVLAlgoMatching::KnowRow(int i, Search& search) {
  Row& row = rows[i - 1];
  if (row.start >= 0 || row.start == InEdges) return;
  const int* const list = search.list.GetData();
  const int count = row.start == NothingAsked
                        ? AskRow(i, search.all.begin(), search.all.end(), search)
                        : AskRestOfRow(i, search);
  --nbUnknown;
  if (count > LongestListFor(n2)) {
    NoteAsEdges(i, list, list + count);
    row.start = InEdges;
    return;
  }
  row = {partners.GetCount(), count};
  for (int k = 0; k < count; ++k)
    partners.Append(list[k]);
}

// Asks about these right elements. Returns how many may be matched, which are then in the list of
// the search. Where the predicate throws, what it answered before goes to the tables.
int KVLAlgoMatching::AskRow(int i, const int* begin, const int* end, Search& search) {
  struct Answers {
    ~Answers() {
      if (round.next == round.end) return;
      for (const int* j = begin; j != round.next; ++j)
        matching.RowOf(matching.asked, round.left)[WordOf(*j)] |= BitOf(*j);
      matching.NoteAsEdges(round.left, list, round.found);
      matching.rows[round.left - 1].start = SomeAsked;
    }
    KVLAlgoMatching& matching;
    const int* const begin;
    const int* const list;
    Round round;
  } answers{*this, begin, search.list.begin(), {i, begin, end, search.list.begin()}};
  askers.all(predicate, data, answers.round);
  return static_cast<int>(answers.round.found - answers.list);
}

// Asks about those right elements about whom that has not been done, and lists all who may be
// matched.
int KVLAlgoMatching::AskRestOfRow(int i, Search& search) {
  const int nbWords = WordsFor(n2);
  int* end = search.rest.GetData();
  for (int word = 0; word < nbWords; ++word)
    end = ListBits(~RowOf(asked, i)[word] & BitsOf(word, n2), word, end);
  int* const list = search.list.GetData();
  const int count = AskRow(i, search.rest.GetData(), end, search);
  NoteAsEdges(i, list, list + count);
  end = list;
  for (int word = 0; word < nbWords; ++word) {
    for (std::uint64_t bits = RowOf(edges, i)[word]; bits != 0; bits ^= BitOf(end[-1]))
      *end++ = FirstIn(bits, word);
  }
  return static_cast<int>(end - list);
}

void KVLAlgoMatching::NoteAsEdges(int i, const int* begin, const int* end) {
  for (; begin != end; ++begin)
    RowOf(edges, i)[WordOf(*begin)] |= BitOf(*begin);
}

// The next right element that left element `i`, of whom all is known, may be matched with; 0 behind
// the last. `place` is 0 at first.
int KVLAlgoMatching::NextPartner(int i, int& place) const {
  const Row& row = rows[i - 1];
  if (row.start != InEdges) return place < row.count ? partners[row.start + place++] : 0;
  const int nbWords = WordsFor(n2);
  const std::uint64_t* const words = edges.GetData() + std::ptrdiff_t{i - 1} * nbWords;
  int word = place / WordBits;
  if (word == nbWords) return 0;
  std::uint64_t bits = words[word] & AllBits >> (place % WordBits);
  while (bits == 0) {
    if (++word == nbWords) return 0;
    bits = words[word];
  }
  place = FirstIn(bits, word);
  return place;
}

// Builds the layers of a phase; false when no augmenting path is left.
bool KVLAlgoMatching::BFS(Search& search) {
  int* const queue = search.queue.GetData();
  int* const layers = dist.GetData();
  int nbQueued = 0;
  layers[0] = Infinity;
  for (int i = 1; i <= n1; ++i) {
    const bool isFree = matchLeft[i - 1] == 0;
    layers[i] = isFree ? 0 : Infinity;
    queue[nbQueued] = i;
    nbQueued += isFree;
  }
  for (int front = 0; front < nbQueued; ++front) {
    const int u = queue[front];
    const int next = layers[u] + 1;
    if (next > layers[0]) break;
    KnowRow(u, search);
    // Who is put into the last layer from here on is a dead end, in which only questions are asked.
    if (next == layers[0] && nbUnknown == 0) break;
    int place = 0;
    while (const int j = NextPartner(u, place)) {
      // Without a branch, since nobody can foretell who is new.
      const int w = matchRight[j - 1];
      const bool isNew = layers[w] == Infinity;
      layers[w] = isNew ? next : layers[w];
      queue[nbQueued] = w;
      nbQueued += isNew & (w != 0);
    }
  }
  return layers[0] != Infinity;
}

// Searches one augmenting path from `u` along the layers, and augments along it. A path may pass
// through every element: the stack is explicit.
bool KVLAlgoMatching::DFS(int u, Search& search) {
  Search::Step* const path = search.path.GetData();
  int* const layers = dist.GetData();
  int top = 0;
  path[0] = {u, 0, 0};
  for (;;) {
    Search::Step& step = path[top];
    const int next = layers[step.x] + 1;
    int w = 0;
    while ((step.j = NextPartner(step.x, step.place)) != 0) {
      w = matchRight[step.j - 1];
      if (layers[w] == next) break;
    }
    if (step.j == 0) {
      // Only layers from 1 up are followed, so that 0 marks a dead end for the rest of the phase.
      layers[step.x] = 0;
      if (--top < 0) return false;
    } else if (w == 0) {
      break;
    } else if (next == layers[0]) {
      // A path of that length has its end here, and w is taken.
      KnowRow(w, search);
      layers[w] = 0;
    } else {
      path[++top] = {w, 0, 0};
    }
  }
  for (; top >= 0; --top)
    Match(path[top].x, path[top].j);
  return true;
}

void KVLAlgoMatching::OptimizeMatching() {
  if (bestComputed) return;
  const int most = n1 < n2 ? n1 : n2;
  if (nbMatched < most) {
    if (rows.IsEmpty()) {
      dist.Resize(n1 + 1);
      partners.Reserve(n1);
      rows.Reserve(n1);
      for (int i = 1; i <= n1; ++i)
        rows.Append(Row{i <= nbTried ? SomeAsked : NothingAsked, 0});
    }
    Search search(n1, n2);
    while (nbMatched < most && BFS(search)) {
      for (int i = 1; i <= n1; ++i) {
        if (matchLeft[i - 1] == 0 && DFS(i, search)) ++nbMatched;
      }
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
