#ifndef KAPPA_PAIRS_H
#define KAPPA_PAIRS_H

#include <cstdint>
#include <stdexcept>

#include "KVLAlgoMatching.h"
#include "KVLCodeSession.h"
#include "KVLVector.h"

namespace kappa {

/// The left index and the right index of a pair, counted from 0.
using Pair = KVLVector<std::int32_t>;
/// In the order of their left indexes.
using Pairs = KVLVector<Pair>;

/// The matching marks each pair of elements in a byte.
inline constexpr std::int64_t MostPairs = std::int64_t{1} << 26;

/// A matching of greatest size between the elements 0 .. leftCount - 1 and 0 .. rightCount - 1.
/// `mayMatch(i, j)` says whether two may be matched, asked at most once for each two.
template <class MayMatch>
Pairs Match(int leftCount, int rightCount, KVLCodeSession* session, MayMatch mayMatch) {
  if (std::int64_t{leftCount} * rightCount > MostPairs) {
    throw std::length_error("the lists have more than 67108864 pairs of elements");
  }
  const auto ask = [&](int i, int j) {
    if (session && session->IsInterrupted()) throw std::runtime_error("interrupted");
    return mayMatch(i, j);
  };
  using Ask = decltype(ask);
  KVLAlgoMatching matching(
      leftCount, rightCount,
      [](int i, int j, void* data) { return (*static_cast<Ask*>(data))(i - 1, j - 1); },
      const_cast<void*>(static_cast<const void*>(&ask)));
  Pairs pairs;
  if (matching.GetBestNbMatching() == 0) return pairs;
  for (int i = 0; i < leftCount; ++i) {
    const int partner = matching.GetMatching(i + 1);
    if (partner == 0) continue;
    Pair pair;
    pair.Append(i);
    pair.Append(partner - 1);
    pairs.Append(pair);
  }
  return pairs;
}

}  // namespace kappa

#endif
