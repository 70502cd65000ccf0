#include <algorithm>

#include "KVLShellCommand.h"
#include "KVLShellDescription.h"
#include "KVLShellPath.h"
#include "KVLShellResult.h"

namespace {

constexpr int WidestLabel = 40;  // bytes; a longer one moves its own line only
constexpr int KindWidth = 10;

struct Line {
  MRBUnicodeString label;
  MRBUnicodeString kind;
  MRBUnicodeString signature;
};

MRBUnicodeString Padded(const MRBUnicodeString& text, int width) {
  MRBUnicodeString padded = text;
  while (padded.GetLengthInByte() < width)
    padded += " ";
  return padded;
}

void AppendLine(const MRBUnicodeString& label, const KVLCodeObject& object,
                KVLVector<Line>& lines) {
  lines.Append(Line{label, KVLShellKind(object), KVLShellSignature(object)});
}

// Lists what `envs` hold, labelled from `prefix` on. `above` holds the environments that are being
// listed further up, for environments can aggregate one another in a circle.
void List(const KVLShellEnvs& envs, const MRBUnicodeString& prefix, bool isRecursive,
          KVLVector<const KVLCodeEnv*>& above, KVLVector<Line>& lines) {
  for (const KVLShellChild& child : KVLShellChildren(envs)) {
    const MRBUnicodeString label = prefix + child.label;
    AppendLine(label, *child.object, lines);
    KVLCodeEnv* const env = child.env.Get();
    if (!isRecursive || !env || std::find(above.begin(), above.end(), env) != above.end()) continue;
    above.Append(env);
    KVLShellEnvs below;
    below.Append(KVLSmartPtr<KVLCodeEnv>(env));
    List(below, label, isRecursive, above, lines);
    above.Resize(above.GetCount() - 1);
  }
}

void Print(const KVLVector<Line>& lines, KVLShellOutput& output) {
  int width = 0;
  for (const Line& line : lines) {
    const int length = line.label.GetLengthInByte();
    if (length <= WidestLabel) width = std::max(width, length);
  }
  for (const Line& line : lines) {
    const MRBUnicodeString start = Padded(line.label, width) + "  ";
    output.Print(line.signature.IsEmpty() ? start + line.kind
                                          : start + Padded(line.kind, KindWidth) + line.signature);
  }
}

}  // namespace

KVLShellOutcome KVLShellLs(const KVLShellCommandWords& words, KVLShellOutput& output) {
  bool isRecursive = false;
  const KVLShellWord* pathWord = nullptr;
  for (int i = 1; i < words.GetCount(); ++i) {
    const KVLShellWord& word = words[i];
    if (word.text == "-r" && !word.isQuoted) {
      isRecursive = true;
    } else if (KVLShellIsOption(word)) {
      return KVLShellMisused(words, "unknown option '" + KVLShellPrintable(word.text) + "'",
                             word.position);
    } else if (pathWord) {
      return KVLShellMisused(words, "takes one path", word.position);
    } else {
      pathWord = &word;
    }
  }

  const KVLShellPlace place = KVLShellFind(pathWord ? pathWord->text : MRBUnicodeString());
  if (!place.IsFound()) {
    return KVLShellNotFound("environment or object", pathWord->text, pathWord->position);
  }
  KVLVector<Line> lines;
  if (place.envs.IsEmpty()) {
    AppendLine(place.path, *place.object, lines);
  } else {
    KVLVector<const KVLCodeEnv*> above;
    for (const KVLSmartPtr<KVLCodeEnv>& env : place.envs)
      above.Append(env.Get());
    List(place.envs, "", isRecursive, above, lines);
  }
  Print(lines, output);
  return KVLShellOutcome();
}
