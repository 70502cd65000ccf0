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
/// are searched in phases (Hopcroft-Karp): at most O(sqrt(n1 + n2)) phases of O(n1 x n2) each. The
/// marks take n1 x n2 bytes, and an eighth of that again where paths are searched. Nothing is
/// computed twice. The predicate and its data must stay valid while questions are asked; it must
/// not use this very object.
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
  KVLAlgoMatching(int nbLeft, int nbRight, Predicate mayMatch, void* userData);
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
  bool ElemMatch(int i, int j) const;
  int& Dist(int u);
  bool BFS();
  bool DFS(int u);
  bool ComputeFullMatching();
  void OptimizeMatching();
  void ComputeBestMatching();
  void StoreFullMatching();
  void KnowRow(int i);
  int NextPartner(int i, int j);
  void Match(int i, int j);

  mutable KVLVector<char> edges;  // 0: not asked; 'V': may be matched; 'X': may not
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
  KVLVector<int> dist;  // the layer of each left element
  int distNil;
  KVLVector<char> rowKnown;           // of each left element: whether its row below is complete
  KVLVector<std::uint64_t> partners;  // a row of bits for each left element: who may be matched
};

#endif
