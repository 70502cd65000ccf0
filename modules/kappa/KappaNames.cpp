#include <algorithm>
#include <cstdlib>
#include <string>

#include "KVLKit.h"
#include "KappaPairs.h"

namespace {

using kappa::Pairs;
using Names = KVLVector<MRBUnicodeString>;

char LowerCase(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                              : character;
}

// Whether `most` bytes or fewer, inserted, removed or replaced, make one name of the other, letters
// of either case being equal. Only the cells of the table of distances that can be `most` or less
// are looked at: those near its diagonal.
bool IsWithin(const MRBUnicodeString& from, const MRBUnicodeString& to, int most) {
  const int rows = from.GetLengthInByte();
  const int columns = to.GetLengthInByte();
  if (std::abs(rows - columns) > most) return false;
  const char* const a = from;
  const char* const b = to;
  KVLVector<int> row;
  row.Resize(columns + 1);
  for (int j = 0; j <= columns; ++j)
    row[j] = std::min(j, most + 1);
  for (int i = 1; i <= rows; ++i) {
    const int first = std::max(1, i - most);
    const int last = std::min(columns, i + most);
    int diagonal = row[first - 1];
    row[first - 1] = first == 1 ? std::min(i, most + 1) : most + 1;
    if (last == i + most) row[last] = most + 1;
    int least = row[first - 1];
    for (int j = first; j <= last; ++j) {
      const int replaced = diagonal + (LowerCase(a[i - 1]) == LowerCase(b[j - 1]) ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1, most + 1});
      least = std::min(least, row[j]);
    }
    if (least > most) return false;
  }
  return row[columns] <= most;
}

KVLVector<int> AllOf(const Names& names) {
  KVLVector<int> indexes;
  for (int i = 0; i < names.GetCount(); ++i)
    indexes.Append(i);
  return indexes;
}

void RemoveAll(KVLVector<int>& indexes, const KVLVector<int>& removed) {
  KVLVector<int> kept;
  for (const int index : indexes)
    if (std::find(removed.begin(), removed.end(), index) == removed.end()) kept.Append(index);
  indexes.Swap(kept);
}

// Adds the pairs among the left and right indexes that are still free, and takes these away.
template <class MayMatch>
void AddPairs(KVLVector<int>& left, KVLVector<int>& right, KVLCodeSession* session, Pairs& pairs,
              const MayMatch& mayMatch) {
  if (left.IsEmpty() || right.IsEmpty()) return;
  const Pairs found = kappa::Match(left.GetCount(), right.GetCount(), session,
                                   [&](int i, int j) { return mayMatch(left[i], right[j]); });
  KVLVector<int> matchedLeft;
  KVLVector<int> matchedRight;
  for (const kappa::Pair& pair : found) {
    matchedLeft.Append(left[pair[0]]);
    matchedRight.Append(right[pair[1]]);
    kappa::Pair indexes;
    indexes.Append(left[pair[0]]);
    indexes.Append(right[pair[1]]);
    pairs.Append(indexes);
  }
  RemoveAll(left, matchedLeft);
  RemoveAll(right, matchedRight);
}

Pairs MatchNames(KVLCodeSession* session, const Names& left, const Names& right, int slips) {
  if (slips < 0) throw std::invalid_argument("slips must not be negative");
  KVLVector<int> freeLeft = AllOf(left);
  KVLVector<int> freeRight = AllOf(right);
  Pairs pairs;
  AddPairs(freeLeft, freeRight, session, pairs, [&](int i, int j) { return left[i] == right[j]; });
  int longest = 0;
  for (const Names* const names : {&left, &right})
    for (const MRBUnicodeString& name : *names)
      longest = std::max(longest, name.GetLengthInByte());
  for (int most = 0; most <= std::min(slips, longest); ++most) {
    AddPairs(freeLeft, freeRight, session, pairs,
             [&](int i, int j) { return IsWithin(left[i], right[j], most); });
  }
  std::sort(pairs.begin(), pairs.end(),
            [](const kappa::Pair& a, const kappa::Pair& b) { return a[0] < b[0]; });
  return pairs;
}

}  // namespace

KVL_FUNCTION("match/names", "left, right, slips = 0",
             "Pairs of names: equal ones first, then those that differ in small letters and "
             "capitals alone, then those with one slip, two slips, and so on to the given number; "
             "each time as many as there can be. A slip is a byte too many, missing or wrong. "
             "Fails for a negative number.",
             MatchNames);
