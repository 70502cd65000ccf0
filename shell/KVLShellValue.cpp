#include "KVLShellValue.h"

#include "KVLShellPath.h"
#include "KVLShellResult.h"
#include "KVLShellSyntax.h"
#include "KVLStringOperations.h"

namespace {

constexpr char AnyTypeName[] = "any";
constexpr char AnyListTypeName[] = "KVLVector<KVLCodeValue_var>";

bool IsDigit(char character) {
  return character >= '0' && character <= '9';
}

// True when a list takes the text for one element: no "," and no bracket or quote that is left
// open.
bool IsOneElement(const MRBUnicodeString& text) {
  int nbPieces = 0;
  for (const MRBUnicodeString& piece :
       KVLStringOperations::SplitWithDepth(text, ',', KVLStringOperations::DepthAll)) {
    ++nbPieces;
    if (piece != text) return false;
  }
  if (nbPieces != 1) return false;
  // An opener without its closer would take in what follows.
  for (const MRBUnicodeString& piece :
       KVLStringOperations::SplitWithDepth(text + ",x", ',', KVLStringOperations::DepthAll)) {
    return piece == text;
  }
  return false;
}

// A registered list type with elements of that type, or null.
KVLSmartPtr<const KVLCodeType> FindListType(const MRBUnicodeString& elementTypeName) {
  for (const KVLShellChild& child : KVLShellChildren(KVLShellFind("_types/").envs)) {
    const KVLCodeType* const type = child.object->AsType();
    MRBUnicodeString name;
    if (type && type->IsList(&name) && name == elementTypeName) return type;
  }
  return nullptr;
}

}  // namespace

KVLSmartPtr<const KVLCodeType> KVLShellFindType(const MRBUnicodeString& typeName) {
  if (typeName.IsEmpty()) return nullptr;
  const KVLShellPlace place = KVLShellFind("_types/" + typeName);
  return place.object ? place.object->AsType() : nullptr;
}

KVLShellOutcome KVLShellUnknownType(const MRBUnicodeString& typeName, int position) {
  KVLShellOutcome outcome(KVLShellResult_NotFound, "no type '" + KVLShellPrintable(typeName) + "'",
                          position);
  outcome.got = typeName;
  KVLVector<MRBUnicodeString> typeNames;
  for (const KVLShellChild& child : KVLShellChildren(KVLShellFind("_types/").envs))
    typeNames.Append(child.label);
  outcome.suggestion = KVLShellNearest(typeName, typeNames);
  return outcome;
}

KVLSmartPtr<KVLCodeValue> KVLShellReadAs(const KVLCodeContext& context,
                                         const MRBUnicodeString& typeName,
                                         const MRBUnicodeString& text) {
  const KVLSmartPtr<const KVLCodeType> type = KVLShellFindType(typeName);
  const KVLSmartPtr<KVLCodeValue> value = type ? type->CreateValue("value") : nullptr;
  if (!value || KVLFailed(value->SetValueStr(context, text))) return nullptr;
  return value;
}

bool KVLShellIsNumber(const MRBUnicodeString& word) {
  const char* const start = word.ConvertToChar();
  const bool isSigned = start[0] == '-' || start[0] == '+';
  const char first = start[isSigned ? 1 : 0];
  return IsDigit(first) || (first == '.' && IsDigit(start[isSigned ? 2 : 1]));
}

bool KVLShellIsTruth(const MRBUnicodeString& word) {
  return word == "true" || word == "false";
}

KVLSmartPtr<KVLCodeValue> KVLShellReadScalar(const KVLCodeContext& context,
                                             const MRBUnicodeString& text) {
  for (const char* const typeName : {"bool", "int", "int64"}) {
    if (const KVLSmartPtr<KVLCodeValue> value = KVLShellReadAs(context, typeName, text)) {
      return value;
    }
  }
  // Digits alone are a number that is counted exactly, or none.
  const char* const bytes = text.ConvertToChar();
  int i = bytes[0] == '-' || bytes[0] == '+' ? 1 : 0;
  while (IsDigit(bytes[i]))
    ++i;
  const bool isWhole = i == text.GetLengthInByte();
  return isWhole && KVLShellFindType("int") ? nullptr : KVLShellReadAs(context, "double", text);
}

KVLSmartPtr<KVLCodeValue> KVLShellReadList(const KVLCodeContext& context,
                                           const KVLShellListTexts& texts) {
  for (const bool isTyped : {true, false}) {
    const MRBUnicodeString name = isTyped ? texts.elementTypeName : MRBUnicodeString(AnyTypeName);
    const KVLSmartPtr<const KVLCodeType> type = name.IsEmpty() ? nullptr : FindListType(name);
    const KVLSmartPtr<KVLCodeValue> value = type ? type->CreateValue("value") : nullptr;
    const MRBUnicodeString& text = isTyped ? texts.typed : texts.any;
    if (value && !KVLFailed(value->SetValueStr(context, text))) return value;
  }
  return KVLShellReadAs(context, AnyListTypeName, texts.any);
}

bool KVLShellDescendsInALoop(const MRBUnicodeString& typeName) {
  KVLVector<const KVLCodeType*> seen;
  KVLSmartPtr<const KVLCodeType> type = KVLShellFindType(typeName);
  while (type) {
    for (const KVLCodeType* const former : seen)
      if (type == former) return true;
    seen.Append(type.Get());
    type = KVLShellFindType(type->GetParentTypeName());
  }
  return false;
}

bool KVLShellHoldsAny(const KVLCodeContext& context, const MRBUnicodeString& typeName) {
  if (typeName == AnyTypeName) return true;
  const KVLSmartPtr<const KVLCodeType> type = context.GetTypeFromName(typeName);
  return type && type->IsDummy();
}

MRBUnicodeString KVLShellElementText(const KVLCodeValue& value, const MRBUnicodeString& text) {
  // A text that begins with a quote is a quoted one already.
  const bool isPlain =
      value.GetTypeName() == "string" && !KVLStringOperations::StartsWith(text, "\"");
  const bool isSafe = !isPlain && IsOneElement(text);
  return isSafe ? text : KVLShellQuote(text);
}

MRBUnicodeString KVLShellAnyElementText(const KVLCodeContext& context, const KVLCodeValue& value,
                                        const MRBUnicodeString& elementText) {
  const MRBUnicodeString& typeName = value.GetTypeName();
  if (typeName == "string" || KVLShellDescendsInALoop(typeName)) return elementText;
  const KVLSmartPtr<const KVLCodeType> type = KVLShellFindType(AnyTypeName);
  const KVLSmartPtr<KVLCodeValue> any = type ? type->CreateValue("value") : nullptr;
  MRBUnicodeString text;
  const bool isWritten = any && !KVLFailed(any->AssignFrom(context, value)) &&
                         !KVLFailed(any->GetValueStr(context, text));
  return isWritten && IsOneElement(text) ? text : elementText;
}

bool KVLShellIsListOfAny(const KVLCodeContext& context, const MRBUnicodeString& typeName) {
  if (typeName == AnyListTypeName) return true;
  const KVLSmartPtr<const KVLCodeType> type = KVLShellFindType(typeName);
  MRBUnicodeString elementTypeName;
  return type && type->IsList(&elementTypeName) && KVLShellHoldsAny(context, elementTypeName);
}

KVLShellNode KVLShellValueNode(const KVLCodeContext& context, const KVLCodeValue& value) {
  MRBUnicodeString text;
  if (!KVLFailed(value.GetValueStr(context, text))) {
    return KVLShellNode::NewValue(value.GetTypeName(), text);
  }
  KVLShellNode node = KVLShellNode::NewRecord();
  node.Set("type", value.GetTypeName());
  node.Set("text", KVLShellNode());
  node.ShowAs("(cannot be written)");
  return node;
}
