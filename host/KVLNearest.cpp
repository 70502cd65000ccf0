#include "KVLNearest.h"

#include <algorithm>

namespace {

// How many bytes are left out, added, changed or swapped with their neighbour.
std::size_t Distance(const std::string& left, const std::string& right) {
  std::vector<std::size_t> beforeLast;
  std::vector<std::size_t> last;
  std::vector<std::size_t> row(right.size() + 1);
  for (std::size_t j = 0; j <= right.size(); ++j)
    row[j] = j;
  for (std::size_t i = 1; i <= left.size(); ++i) {
    beforeLast = last;
    last = row;
    row[0] = i;
    for (std::size_t j = 1; j <= right.size(); ++j) {
      const std::size_t change = left[i - 1] == right[j - 1] ? 0 : 1;
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + change});
      const bool isSwap =
          i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1];
      if (isSwap) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
    }
  }
  return row[right.size()];
}

}  // namespace

std::string KVLNearest(const std::string& typed, const std::vector<std::string>& names) {
  std::string nearest;
  std::size_t least = typed.size();
  for (const std::string& name : names) {
    const std::size_t longer = std::max(typed.size(), name.size());
    // Words that long apart are not compared at all: the work grows with both lengths.
    if (longer > 2 * std::min(typed.size(), name.size())) continue;
    const std::size_t distance = Distance(typed, name);
    if (3 * distance > name.size() || distance >= least) continue;
    least = distance;
    nearest = name;
  }
  return nearest;
}
