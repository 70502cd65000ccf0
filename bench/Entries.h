#ifndef KVL_BENCH_ENTRIES_H
#define KVL_BENCH_ENTRIES_H

#include <string>
#include <vector>

#include "KVLCodeObject.h"
#include "KVLSmartPtr.h"
#include "MRBUnicodeString.h"

namespace kvlbench {

using ObjectPtr = KVLSmartPtr<KVLCodeObject>;

constexpr int EntriesALeaf = 100;

/// The same paths for everyone, each in the string class that its registry takes.
struct Paths {
  std::vector<std::string> standard;
  std::vector<MRBUnicodeString> ours;

  template <class Text>
  const std::vector<Text>& As() const;
  void Append(const std::string& path);
};

template <>
inline const std::vector<std::string>& Paths::As<std::string>() const {
  return standard;
}
template <>
inline const std::vector<MRBUnicodeString>& Paths::As<MRBUnicodeString>() const {
  return ours;
}

/// `count` objects, a multiple of `EntriesALeaf`, with paths of three names.
class Entries {
 public:
  explicit Entries(int count);

  /// The entries of that count, made once a program.
  static const Entries& Of(int count);

  int GetCount() const { return static_cast<int>(objects.size()); }

  Paths paths;  // in the order of registration
  std::vector<ObjectPtr> objects;

  // What is looked up: every path once, in random order.
  Paths queries;
  std::vector<const KVLCodeObject*> answers;
  // The same with the last name absent.
  Paths absent;
};

}  // namespace kvlbench

#endif
