#include "KVLCodeFunction.h"

#include "KVLCodeFunctionCaller.h"
#include "KVLCodeValue.h"
#include "KVLResult.h"
#include "KVLStringOperations.h"

namespace {

// The items of a parameter text, or the code of a failed split.
long SplitItems(const MRBUnicodeString& text, KVLVector<MRBUnicodeString>& items) {
  KVLIter<MRBUnicodeString> pieces =
      KVLStringOperations::SplitWithDepth(text, ',', KVLStringOperations::DepthAll);
  for (const MRBUnicodeString& piece : pieces)
    items.Append(piece);
  return KVLFailed(pieces.GetStatus()) ? pieces.GetStatus() : KVLResult_Success;
}

// The characters first .. end - 1 without the blanks around them.
MRBUnicodeString StrippedSlice(const MRBUnicodeString& text, int first, int end) {
  return text.SubString(first, end - first).Strip(MRBUnicodeString::MRBStripBoth);
}

}  // namespace

KVLCodeFunction::KVLCodeFunction(const MRBUnicodeString& functionName)
    : KVLCodeFunction(functionName, 0) {}

KVLCodeFunction::KVLCodeFunction(const MRBUnicodeString& functionName, int nbParams)
    : KVLCodeObject(functionName) {
  params.Resize(nbParams);
  for (int i = 0; i < params.GetCount(); ++i) {
    params[i].name = "param" + KVLStringOperations::FromNum(i + 1);
  }
}

KVLCodeFunction::~KVLCodeFunction() = default;

KVLCodeFunction* KVLCodeFunction::AsFunction() {
  return this;
}

const KVLCodeFunction* KVLCodeFunction::AsFunction() const {
  return this;
}

MRBUnicodeString KVLCodeFunction::ToString() const {
  MRBUnicodeString text =
      "Function { name=" + GetName() + ", returnType=" + returnTypeName + ", params=[";
  for (int i = 0; i < params.GetCount(); ++i) {
    const Param& param = params[i];
    if (i > 0) text += ", ";
    text += "[";
    if (param.direction & Input) text += "in";
    if (param.direction & Output) text += "out";
    text += "] " + param.typeName + " " + param.name;
    if (!param.defaultValue.IsEmpty()) text += "=" + param.defaultValue;
  }
  // Readers of this text know it with a round bracket at its end.
  return text + "])";
}

MRBUnicodeString KVLCodeFunction::ToStringCode() const {
  MRBUnicodeString text = returnTypeName + " " + GetName() + "(";
  for (int i = 0; i < params.GetCount(); ++i) {
    const Param& param = params[i];
    if (i > 0) text += ", ";
    text += param.typeName;
    if (param.direction & Output) text += "&";
    text += " " + param.name;
    if (!param.defaultValue.IsEmpty()) text += "=" + param.defaultValue;
  }
  return text + ")";
}

long KVLCodeFunction::Init(const MRBUnicodeString& text) {
  KVLVector<MRBUnicodeString> items;
  const long splitResult = SplitItems(text, items);
  if (KVLFailed(splitResult)) return splitResult;

  const int expected = GetNbParameters();
  const int given = items.GetCount();
  if (given > expected) {
    messages.Append("Too many parameters. Expected " + KVLStringOperations::FromNum(expected) +
                    ", got " + KVLStringOperations::FromNum(given) + ".");
  }
  for (int i = 0; i < given && i < expected; ++i) {
    const MRBUnicodeString& item = items[i];
    Param& param = params[i];
    const int length = item.GetLengthInByte();
    const int equals = item.SearchSubString("=", 0, MRBUnicodeString::MRBSearchForward);
    if (equals >= 0) {
      param.defaultValue = StrippedSlice(item, equals + 1, length);
      // The parameter still has the name by which its author knows it so far.
      if (param.defaultValue.IsEmpty()) {
        messages.Append("Default value for parameter '" + param.name + "' provided but empty.");
      }
    }
    const MRBUnicodeString newName = StrippedSlice(item, 0, equals >= 0 ? equals : length);
    if (!newName.IsEmpty()) param.name = newName;
  }
  return InitImpl();
}

long KVLCodeFunction::InitImpl() {
  return KVLResult_Success;
}

long KVLCodeFunction::ParseAndCall(const KVLCodeContext& context,
                                   KVLVector<MRBUnicodeString>& texts,
                                   MRBUnicodeString& result) const {
  if (texts.GetCount() > GetNbParameters()) return KVLResult_InvalidArgument;
  const KVLSmartPtr<KVLCodeFunctionCaller> caller = CreateCaller(context);
  if (!caller) return KVLResult_Failure;

  for (int i = 0; i < texts.GetCount(); ++i) {
    if (!(params[i].direction & Input)) continue;
    const long setResult = caller->SetArgStr(i, texts[i]);
    if (KVLFailed(setResult)) return setResult;
  }
  const long callResult = caller->Call();
  if (KVLFailed(callResult)) return callResult;

  const long returnedResult = caller->GetReturnedValueStr(result);
  if (KVLFailed(returnedResult)) return returnedResult;
  for (int i = 0; i < texts.GetCount(); ++i) {
    if (!(params[i].direction & Output)) continue;
    const long getResult = caller->GetArgStr(i, texts[i]);
    if (KVLFailed(getResult)) return getResult;
  }
  return KVLResult_Success;
}
