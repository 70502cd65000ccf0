#include "Entries.h"

#include <algorithm>
#include <map>
#include <memory>
#include <numeric>
#include <random>

#include "Bench.h"

namespace kvlbench {

namespace {

MRBUnicodeString NameOf(int entry) {
  return ("function" + std::to_string(entry % EntriesALeaf)).c_str();
}

}  // namespace

void Paths::Append(const std::string& path) {
  standard.push_back(path);
  ours.emplace_back(path.c_str());
}

Entries::Entries(int count) {
  const int nbLeaves = count / EntriesALeaf;
  int nbGroups = 1;
  while (nbGroups * nbGroups < nbLeaves)
    nbGroups *= 10;
  const auto folderOf = [nbGroups](int entry) {
    const int leaf = entry / EntriesALeaf;
    return "module" + std::to_string(leaf / nbGroups) + "/group" + std::to_string(leaf % nbGroups) +
           "/";
  };

  for (int i = 0; i < count; ++i) {
    paths.Append(folderOf(i) + NameOf(i).ConvertToChar());
    objects.emplace_back(new KVLCodeObject(NameOf(i)));
  }

  std::vector<int> order(static_cast<std::size_t>(count));
  std::iota(order.begin(), order.end(), 0);
  std::shuffle(order.begin(), order.end(), std::mt19937(Seed));
  for (const int i : order) {
    queries.Append(folderOf(i) + NameOf(i).ConvertToChar());
    answers.push_back(objects[static_cast<std::size_t>(i)].Get());
    absent.Append(folderOf(i) + "missing" + std::to_string(i % EntriesALeaf));
  }
}

const Entries& Entries::Of(int count) {
  static std::map<int, std::unique_ptr<const Entries>> made;
  std::unique_ptr<const Entries>& entries = made[count];
  if (!entries) entries = std::make_unique<const Entries>(count);
  return *entries;
}

}  // namespace kvlbench
