#ifndef KVL_NEAREST_H
#define KVL_NEAREST_H

#include <string>
#include <vector>

/// The one of `names` that `typed` was most probably meant for: at most a third of its bytes left
/// out, added, changed or swapped with their neighbour. Empty when none is that near.
std::string KVLNearest(const std::string& typed, const std::vector<std::string>& names);

#endif
