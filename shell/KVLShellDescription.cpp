#include "KVLShellDescription.h"

#include "KVLCodeContext.h"
#include "KVLCodeFunction.h"
#include "KVLCodeType.h"
#include "KVLCodeValue.h"
#include "KVLResult.h"
#include "KVLShellOutcome.h"
#include "KVLShellPath.h"
#include "KVLStringOperations.h"

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

MRBUnicodeString KVLShellDoc(const MRBUnicodeString& path) {
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
