#include "KVLShellDescription.h"

#include "KVLCodeContext.h"
#include "KVLCodeFunction.h"
#include "KVLCodeType.h"
#include "KVLCodeValue.h"
#include "KVLResult.h"
#include "KVLShellOutcome.h"
#include "KVLShellPath.h"
#include "KVLShellSession.h"
#include "KVLStringOperations.h"

namespace {

// The doc that lies where that of `path` would be.
MRBUnicodeString DocAt(const MRBUnicodeString& path) {
  MRBUnicodeString docPath = KVLShellDocPath(path);
  // The doc of an environment bears its name.
  if (KVLStringOperations::EndsWith(docPath, "/")) {
    docPath.Remove(docPath.GetLengthInByte() - 1, 1);
  }
  const KVLShellPlace place = KVLShellFind(docPath);
  const KVLCodeValue* const doc = place.object ? place.object->AsVariable() : nullptr;
  MRBUnicodeString text;
  const KVLCodeContext context;
  if (!doc || KVLFailed(doc->GetValueStr(context, text))) return "";
  return text;
}

bool AreSame(const KVLShellPlace& left, const KVLShellPlace& right) {
  if (left.object || right.object) return left.object == right.object;
  for (const KVLSmartPtr<KVLCodeEnv>& env : left.envs)
    for (const KVLSmartPtr<KVLCodeEnv>& other : right.envs)
      if (env == other) return true;
  return false;
}

}  // namespace

const char* KVLShellKind(const KVLCodeObject& object) {
  if (object.AsFunction()) return "function";
  if (object.AsType()) return "type";
  if (object.AsVariable()) return "variable";
  if (object.AsEnv()) return "env";
  return "object";
}

MRBUnicodeString KVLShellSignature(const KVLCodeObject& object) {
  if (object.AsEnv()) return "";
  const KVLCodeValue* const variable = object.AsVariable();
  if (!variable) return object.ToStringCode();
  const KVLCodeContext context;
  MRBUnicodeString text;
  if (KVLFailed(variable->GetValueStr(context, text))) return object.ToStringCode();
  return object.ToStringCode() + " = " + KVLShellPrintable(text);
}

MRBUnicodeString KVLShellDocPath(const MRBUnicodeString& path) {
  int start = 0;
  while (KVLStringOperations::GetCharAt(path, start) == '_' ||
         KVLStringOperations::GetCharAt(path, start) == '/') {
    ++start;
  }
  return "doc/" + path.SubString(start, path.GetLengthInByte());
}

KVLVector<MRBUnicodeString> KVLShellUsedPaths(const MRBUnicodeString& path) {
  KVLVector<MRBUnicodeString> paths;
  const std::vector<KVLShellSession::Use>& uses = KVLShellGetSession().GetUses();
  if (uses.empty()) return paths;
  const KVLShellPlace place = KVLShellFind(path);
  for (const KVLShellSession::Use& use : uses) {
    const MRBUnicodeString usedPath = use.path + "/" + path;
    if (AreSame(place, KVLShellFind(usedPath))) paths.Append(usedPath);
  }
  return paths;
}

MRBUnicodeString KVLShellDoc(const MRBUnicodeString& path) {
  MRBUnicodeString text = DocAt(path);
  if (!text.IsEmpty()) return text;
  for (const MRBUnicodeString& usedPath : KVLShellUsedPaths(path)) {
    text = DocAt(usedPath);
    if (!text.IsEmpty()) break;
  }
  return text;
}
