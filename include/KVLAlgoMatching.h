#ifndef KVL_ALGO_MATCHING_H
#define KVL_ALGO_MATCHING_H

#include <cstdint>

#include "KVLExport.h"
#include "KVLVector.h"

/// Matches the elements of two sets, 1 .. n1 on the left and 1 .. n2 on the right, each with at
/// most one of the other side. Which pairs may be matched, a predicate decides, which is asked
/// lazily and at most once a pair over the object's life.
///
/// A cheap greedy pass settles the common case; where it leaves an element over, augmenting paths
/// are searched in phases (Hopcroft-Karp): at most O(sqrt(n1 + n2)) phases, each linear in the
/// number of pairs that may be matched. The answers take two bits a pair, and up to as much again
/// where paths are searched. Nothing is computed twice. The predicate and its data must stay valid
/// while questions are asked; it must not use this very object.
///
/// Thread rule: every question may compute; an object belongs to one thread at a time.
///
///     bool Fits(int plug, int socket, void* data);
///     KVLAlgoMatching matching(3, 3, Fits, &shapes);
///     if (matching.HasFullMatching()) Use(matching.GetMatching(1));
class KVL_EXPORT KVLAlgoMatching {
 public:
  /// Whether left element `i` and right element `j`, both counted from 1, may be matched.
  using Predicate = bool (*)(int i, int j, void* data);

  /// A negative count means 0. When n1 x n2 passes 2^31 - 1, the object reports no match at all and
  /// asks nothing. `userData` is borrowed and handed to the predicate.
  KVL_LOCAL KVLAlgoMatching(int nbLeft, int nbRight, Predicate mayMatch, void* userData)
      : KVLAlgoMatching(nbLeft, nbRight, mayMatch, userData, {AskAll, AskForOne}) {}
  /// Copies what has been asked and computed so far too.
  KVLAlgoMatching(const KVLAlgoMatching&) = default;
  KVLAlgoMatching& operator=(const KVLAlgoMatching&) = default;
  ~KVLAlgoMatching();

  /// True when n1 = n2 and every element can be matched.
  bool HasFullMatching();
  /// The number of pairs in a matching of greatest size.
  int GetBestNbMatching();
  /// The partner of left element `i` in that matching; 0 when it has none or there is no such
  /// element.
  int GetMatching(int i);

 private:
  /// Right elements about whom to ask, in order, and where to write those that may be matched. Both
  /// move on as it is answered.
  struct Round {
    int left;
    const int* next;
    const int* end;
    int* found;
  };

  using Asker = void (*)(Predicate predicate, void* data, Round& round);

  /// The loops over a round, which are part of whoever makes the object: most often the predicate
  /// is there too, and on some processors a call takes twice the time from one library into another
  /// that lies far away.
  struct Askers {
    Asker all;
    Asker one;  // ends once one is found
  };

  /// How far a round is, in registers meanwhile; written back also where the predicate throws.
  struct Progress {
    ~Progress() {
      round.next = next;
      round.found = found;
    }
    Round& round;
    const int* next;
    int* found;
  };

  KVL_LOCAL static void AskAll(Predicate predicate, void* data, Round& round) {
    Progress progress{round, round.next, round.found};
    const int left = round.left;
    for (const int* const end = round.end; progress.next != end; ++progress.next) {
      const bool mayMatch = predicate(left, *progress.next, data);
      // Without a branch: each is written, and the next one over it unless it may be matched.
      *progress.found = *progress.next;
      progress.found += mayMatch;
    }
  }

  KVL_LOCAL static void AskForOne(Predicate predicate, void* data, Round& round) {
    Progress progress{round, round.next, round.found};
    const int left = round.left;
    bool isFound = false;
    for (const int* const end = round.end; progress.next != end && !isFound; ++progress.next)
      isFound = predicate(left, *progress.next, data);
    if (isFound) *progress.found++ = progress.next[-1];
  }

  /// Whom a left element may be matched with, as far as that is known.
  struct Row {
    int start;  // of its list, once all is known; else a state, see the source
    int count;
  };

  class GreedyPass;
  struct Search;

  KVLAlgoMatching(int nbLeft, int nbRight, Predicate mayMatch, void* userData, Askers asking);
  bool ComputeFullMatching();
  void StoreFullMatching();
  void OptimizeMatching();
  void ComputeBestMatching();
  void KnowRow(int i, Search& search);
  int AskRow(int i, const int* begin, const int* end, Search& search);
  int AskRestOfRow(int i, Search& search);
  void NoteAsEdges(int i, const int* begin, const int* end);
  void AskInWord(int i, int word, std::uint64_t wanted, Asker asker);
  std::uint64_t* RowOf(KVLVector<std::uint64_t>& table, int i);
  int NextPartner(int i, int& place) const;
  bool BFS(Search& search);
  bool DFS(int u, Search& search);
  void Match(int i, int j);

  KVLVector<std::uint64_t> edges;  // a row of bits for each left element: who may be matched
  int n1;
  int n2;
  Predicate predicate;
  void* data;
  int nbMatched;
  KVLVector<int> matchLeft;   // the right partner of each left element, 0 for none
  KVLVector<int> matchRight;  // the left partner of each right element, 0 for none
  bool hasFull;
  bool fullComputed;
  bool bestComputed;
  KVLVector<int> dist;  // the layer of each left element; before them, of the end of a path
  KVLVector<std::uint64_t> asked;  // the same: about whom a question has been asked, as far as
                                   // `rows` does not say that
  int nbTried;                     // the left elements that the greedy pass came to
  int nbUnknown;                   // the left elements of which not all is known
  KVLVector<Row> rows;             // of each left element, once paths are searched
  KVLVector<int> partners;         // their lists
  Askers askers;
};

#endif
