#include "KVLShellPath.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "KVLShellResult.h"
#include "KVLShellSession.h"
#include "KVLStringOperations.h"

namespace {

constexpr int LongestCompared = 64;  // bytes; a longer name is not worth the comparison

KVLVector<MRBUnicodeString> NamesOf(const MRBUnicodeString& path) {
  KVLVector<MRBUnicodeString> names;
  for (const MRBUnicodeString& piece : KVLStringOperations::Split(path, "/")) {
    if (!piece.IsEmpty()) names.Append(piece);
  }
  return names;
}

MRBUnicodeString PathOf(const KVLVector<MRBUnicodeString>& names, int count) {
  MRBUnicodeString path;
  for (int i = 0; i < count; ++i) {
    if (i > 0) path += "/";
    path += names[i];
  }
  return path;
}

bool Holds(const KVLShellEnvs& envs, const KVLCodeEnv* env) {
  for (const KVLSmartPtr<KVLCodeEnv>& held : envs)
    if (held == env) return true;
  return false;
}

KVLShellEnvs Descend(const KVLShellEnvs& envs, const MRBUnicodeString& childName) {
  KVLShellEnvs children;
  for (const KVLSmartPtr<KVLCodeEnv>& env : envs) {
    for (const auto& child : env->IterOnSubEnvs()) {
      if (child.key == childName && !Holds(children, child.value.Get())) {
        children.Append(child.value);
      }
    }
  }
  return children;
}

KVLShellEnvs Root() {
  KVLShellEnvs envs;
  envs.Append(KVLSmartPtr<KVLCodeEnv>(&KVLCodeEnv::GetDefault()));
  return envs;
}

char LowerCase(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                              : character;
}

// How many bytes must be inserted, removed, replaced or exchanged with their neighbour to make one
// text of the other, letters of either case being equal.
int EditDistance(const MRBUnicodeString& from, const MRBUnicodeString& to) {
  const int width = to.GetLengthInByte() + 1;
  const char* const a = from.ConvertToChar();
  const char* const b = to.ConvertToChar();
  // The three last rows of the table of distances between the texts' beginnings.
  KVLVector<int> beforeLast, last, row;
  beforeLast.Resize(width);
  row.Resize(width);
  for (int j = 0; j < width; ++j)
    last.Append(j);
  for (int i = 1; i <= from.GetLengthInByte(); ++i) {
    row[0] = i;
    for (int j = 1; j < width; ++j) {
      const bool isEqual = LowerCase(a[i - 1]) == LowerCase(b[j - 1]);
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (isEqual ? 0 : 1)});
      if (i > 1 && j > 1 && LowerCase(a[i - 1]) == LowerCase(b[j - 2]) &&
          LowerCase(a[i - 2]) == LowerCase(b[j - 1])) {
        row[j] = std::min(row[j], beforeLast[j - 2] + 1);
      }
    }
    beforeLast.Swap(last);
    last.Swap(row);
  }
  return last[width - 1];
}

int CommonLength(const MRBUnicodeString& a, const MRBUnicodeString& b, int most) {
  int length = 0;
  while (length < most && length < a.GetLengthInByte() && length < b.GetLengthInByte() &&
         a.ConvertToChar()[length] == b.ConvertToChar()[length]) {
    ++length;
  }
  return length;
}

// The eight bytes of `text` from `start` on as a number that sorts as they do.
std::uint64_t KeyOf(const MRBUnicodeString& text, int start) {
  std::uint64_t key = 0;
  for (int i = start; i < start + 8; ++i) {
    const bool isInside = i < text.GetLengthInByte();
    key = key << 8 | (isInside ? static_cast<unsigned char>(text.ConvertToChar()[i]) : 0U);
  }
  return key;
}

// The children in the order of their labels; of equal ones the first alone. Most comparisons are of
// the bytes in which the labels begin to differ, taken as a number, and only small records move:
// an environment may have a hundred thousand children.
KVLVector<KVLShellChild> Sorted(KVLVector<KVLShellChild>& children) {
  struct Entry {
    std::uint64_t key;
    int index;
  };
  int common = children.IsEmpty() ? 0 : children[0].label.GetLengthInByte();
  for (const KVLShellChild& child : children)
    common = CommonLength(children[0].label, child.label, common);
  std::vector<Entry> entries;
  entries.reserve(static_cast<std::size_t>(children.GetCount()));
  for (int i = 0; i < children.GetCount(); ++i)
    entries.push_back(Entry{KeyOf(children[i].label, common), i});
  std::sort(entries.begin(), entries.end(), [&children](const Entry& left, const Entry& right) {
    if (left.key != right.key) return left.key < right.key;
    const MRBUnicodeString& leftLabel = children[left.index].label;
    const MRBUnicodeString& rightLabel = children[right.index].label;
    if (leftLabel == rightLabel) return left.index < right.index;
    return leftLabel < rightLabel;
  });
  KVLVector<KVLShellChild> distinct;
  distinct.Reserve(children.GetCount());
  for (const Entry& entry : entries) {
    const int count = distinct.GetCount();
    KVLShellChild& child = children[entry.index];
    if (count == 0 || distinct[count - 1].label != child.label) distinct.Append(std::move(child));
  }
  return distinct;
}

using Visit = std::function<bool(const MRBUnicodeString& label, const KVLShellChild& child)>;

// `above`: what is being walked further up.
bool Walk(const KVLShellEnvs& envs, const MRBUnicodeString& prefix, const Visit& visit,
          KVLVector<const KVLCodeEnv*>& above) {
  for (const KVLShellChild& child : KVLShellChildren(envs)) {
    const MRBUnicodeString label = prefix + child.label;
    if (KVLShellIsInterrupted() || !visit(label, child)) return false;
    KVLCodeEnv* const env = child.env.Get();
    if (!env || std::find(above.begin(), above.end(), env) != above.end()) continue;
    above.Append(env);
    KVLShellEnvs below;
    below.Append(child.env);
    if (!Walk(below, label, visit, above)) return false;
    above.Resize(above.GetCount() - 1);
  }
  return true;
}

}  // namespace

bool KVLShellWalk(const KVLShellEnvs& envs, const Visit& visit) {
  KVLVector<const KVLCodeEnv*> above;
  for (const KVLSmartPtr<KVLCodeEnv>& env : envs)
    above.Append(env.Get());
  return Walk(envs, "", visit, above);
}

KVLShellPlace KVLShellFind(const MRBUnicodeString& path) {
  const KVLVector<MRBUnicodeString> names = NamesOf(path);
  KVLShellPlace place;
  place.path = PathOf(names, names.GetCount());
  KVLShellEnvs envs = Root();
  for (int i = 0; i + 1 < names.GetCount(); ++i)
    envs = Descend(envs, names[i]);
  if (names.IsEmpty()) {
    place.envs = envs;
    return place;
  }
  const MRBUnicodeString& last = names[names.GetCount() - 1];
  place.envs = Descend(envs, last);
  if (KVLStringOperations::EndsWith(path, "/")) return place;
  for (const KVLSmartPtr<KVLCodeEnv>& env : envs) {
    place.object = env->FindObject(last);
    if (place.object) break;
  }
  return place;
}

KVLVector<KVLShellChild> KVLShellChildren(const KVLShellEnvs& envs) {
  return KVLShellChildren(envs, "");
}

KVLVector<KVLShellChild> KVLShellChildren(const KVLShellEnvs& envs, const MRBUnicodeString& start) {
  KVLVector<KVLShellChild> children;
  for (const KVLSmartPtr<KVLCodeEnv>& env : envs) {
    for (const auto& object : env->IterOnObjects()) {
      if (!KVLStringOperations::StartsWith(object.key, start)) continue;
      children.Append(KVLShellChild{object.key, object.value, nullptr});
    }
    for (const auto& subEnv : env->IterOnSubEnvs()) {
      if (!KVLStringOperations::StartsWith(subEnv.key, start)) continue;
      children.Append(KVLShellChild{subEnv.key + "/", subEnv.value, subEnv.value});
    }
  }
  return Sorted(children);
}

KVLShellOutcome KVLShellNotFound(const MRBUnicodeString& kind, const MRBUnicodeString& path,
                                 int position) {
  const KVLVector<MRBUnicodeString> names = NamesOf(path);
  KVLShellEnvs envs = Root();
  int reached = 0;
  for (; reached + 1 < names.GetCount(); ++reached) {
    const KVLShellEnvs next = Descend(envs, names[reached]);
    if (next.IsEmpty()) break;
    envs = next;
  }
  KVLShellOutcome outcome(KVLShellResult_NotFound,
                          "no " + kind + " '" + KVLShellPrintable(path) + "'", position);
  outcome.path = path;
  outcome.got = path;
  if (names.IsEmpty()) return outcome;
  const KVLShellPlace there = KVLShellFind(PathOf(names, reached + 1));
  if (there.IsFound()) {
    const MRBUnicodeString shown = KVLShellPrintable(there.path);
    outcome.message += there.object ? ": '" + shown + "' is no environment"
                                    : ": '" + shown + "/' is an environment";
    return outcome;
  }

  const MRBUnicodeString parent = PathOf(names, reached);
  const MRBUnicodeString prefix = parent.IsEmpty() ? parent : parent + "/";
  KVLVector<MRBUnicodeString> candidates;
  for (const KVLShellChild& child : KVLShellChildren(envs)) {
    const int slash = child.env ? 1 : 0;
    candidates.Append(child.label.SubString(0, child.label.GetLengthInByte() - slash));
  }
  const MRBUnicodeString nearest = KVLShellNearest(names[reached], candidates);
  if (names.GetCount() > 1) {
    outcome.message += ": '" + KVLShellPrintable(prefix.IsEmpty() ? "/" : prefix) + "' holds no '" +
                       KVLShellPrintable(names[reached]) + "'";
  }
  if (nearest.IsEmpty()) return outcome;
  MRBUnicodeString meant = prefix + nearest;
  for (int i = reached + 1; i < names.GetCount(); ++i) {
    if (!KVLShellFind(meant + "/" + names[i]).IsFound()) break;
    meant += "/" + names[i];
  }
  outcome.suggestion = meant;
  return outcome;
}

MRBUnicodeString KVLShellNearest(const MRBUnicodeString& given,
                                 const KVLVector<MRBUnicodeString>& candidates) {
  MRBUnicodeString nearest;
  if (given.GetLengthInByte() > LongestCompared) return nearest;
  // One slip in a short name, one more for every three letters of a long one.
  int tooFar = std::max(1, given.GetLengthInByte() / 3) + 1;
  for (const MRBUnicodeString& candidate : candidates) {
    if (candidate.GetLengthInByte() > LongestCompared || candidate == given) continue;
    const int distance = EditDistance(given, candidate);
    // What shares no letter with the given name was not meant.
    if (distance >= tooFar || distance >= given.GetLengthInByte()) continue;
    tooFar = distance;
    nearest = candidate;
  }
  return nearest;
}
