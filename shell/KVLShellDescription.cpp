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
  MRBUnicodeString docPath = "doc";
  for (const MRBUnicodeString& piece : KVLStringOperations::Split(path, "/")) {
    if (piece.IsEmpty()) continue;
    int start = 0;
    while (KVLStringOperations::GetCharAt(piece, start) == '_')
      ++start;
    docPath += "/" + piece.SubString(start, piece.GetLengthInByte() - start);
  }
  return docPath;
}

MRBUnicodeString KVLShellDoc(const MRBUnicodeString& path) {
  const KVLShellPlace place = KVLShellFind(KVLShellDocPath(path));
  const KVLCodeValue* const doc = place.object ? place.object->AsVariable() : nullptr;
  MRBUnicodeString text;
  const KVLCodeContext context;
  if (!doc || KVLFailed(doc->GetValueStr(context, text))) return "";
  return text;
}
