#include "KVLCodeValue.h"

#include <new>
#include <utility>

#include "KVLCodeContext.h"
#include "KVLCodeListValue.h"
#include "KVLCodeType.h"
#include "KVLIterCursors.h"
#include "KVLResult.h"
#include "KVLStringOperations.h"

KVLCodeValue* KVLCodeValue::AsVariable() {
  return this;
}

const KVLCodeValue* KVLCodeValue::AsVariable() const {
  return this;
}

MRBUnicodeString KVLCodeValue::ToString() const {
  return "Variable { type=" + typeName + ", name=" + GetName() + " }";
}

MRBUnicodeString KVLCodeValue::ToStringCode() const {
  return typeName + " " + GetName();
}

void KVLCodeValue::Reset() {}

bool KVLCodeValue::IsReadOnly() const {
  return false;
}

void* KVLCodeValue::GetValuePtr() const {
  return nullptr;
}

KVLSmartPtr<const KVLCodeType> KVLCodeValue::GetType(const KVLCodeContext& context) const {
  return context.GetTypeFromName(typeName);
}

long KVLCodeValue::SetDefault(const KVLCodeContext& context) {
  const KVLSmartPtr<const KVLCodeType> type = GetType(context);
  if (!type) return KVLResult_Failure;
  const KVLSmartPtr<KVLCodeValue> fresh = type->CreateValue("");
  if (!fresh) return KVLResult_Failure;
  return AssignFrom(context, *fresh);
}

long KVLCodeValue::AssignFrom(const KVLCodeContext& context, const KVLCodeValue& source) {
  long pending = KVLResult_Failure;
  // Between equal type names no conversion is asked for: a conversion ends in an assignment between
  // equal type names.
  if (source.typeName != typeName) {
    pending = context.Convert(source, *this);
    if (!KVLFailed(pending)) return pending;
  }
  const KVLSmartPtr<const KVLCodeType> sourceType = context.GetTypeFromName(source.typeName);
  const KVLSmartPtr<const KVLCodeType> targetType = context.GetTypeFromName(typeName);
  if (sourceType && targetType && !sourceType->IsDummy() && !targetType->IsDummy() &&
      !sourceType->IsSubTypeOf(context, *targetType)) {
    return pending;
  }
  MRBUnicodeString text;
  const long result = source.GetValueStr(context, text);
  if (KVLFailed(result)) return result;
  return SetValueStr(context, text);
}

long KVLCodeValue::CompareValueWith(const KVLCodeContext& context,
                                    const KVLCodeValue& other) const {
  const void* const data = GetValuePtr();
  const void* const otherData = other.GetValuePtr();
  if (data && data == otherData) return KVLResult_Success;
  MRBUnicodeString text;
  const long result = GetValueStr(context, text);
  if (KVLFailed(result)) return result;
  MRBUnicodeString otherText;
  const long otherResult = other.GetValueStr(context, otherText);
  if (KVLFailed(otherResult)) return otherResult;
  return text == otherText ? KVLResult_Success : KVLResult_False;
}

long KVLCodeValue::IsList(const KVLCodeContext& context) const {
  const KVLSmartPtr<const KVLCodeType> type = GetType(context);
  if (!type) return KVLResult_Failure;
  return type->IsList(nullptr) ? KVLResult_Success : KVLResult_False;
}

long KVLCodeValue::ListGetElementsStr(const KVLCodeContext& context,
                                      KVLVector<MRBUnicodeString>& elements) const {
  if (IsList(context) != KVLResult_Success) return KVLResult_Failure;
  MRBUnicodeString text;
  const long result = GetValueStr(context, text);
  if (KVLFailed(result)) return result;
  const int length = text.GetLengthInChar();
  if (length < 2 || KVLStringOperations::GetCharAt(text, 0) != '[' ||
      KVLStringOperations::GetCharAt(text, length - 1) != ']') {
    return KVLResult_Failure;
  }
  KVLIter<MRBUnicodeString> pieces = KVLStringOperations::SplitWithDepth(
      text.SubString(1, length - 2), ',', KVLStringOperations::DepthAll);
  for (const MRBUnicodeString& piece : pieces)
    elements.Append(piece);
  return KVLFailed(pieces.GetStatus()) ? pieces.GetStatus() : KVLResult_Success;
}

long KVLCodeValue::ListGetElements(const KVLCodeContext& context,
                                   KVLVector<KVLSmartPtr<KVLCodeValue>>& elements,
                                   const MRBUnicodeString& elementName) const {
  elements.Resize(0);

  KVLCodeListValue list("elements");
  if (!KVLFailed(list.AssignFrom(context, *this))) {
    const auto* const shared = static_cast<KVLCodeListValue::Elements*>(list.GetValuePtr());
    const int nbElements = shared ? shared->GetCount() : 0;
    for (int i = 0; i < nbElements; ++i)
      elements.Append((*shared)[i]);
    return KVLResult_Success;
  }

  KVLVector<MRBUnicodeString> texts;
  const long result = ListGetElementsStr(context, texts);
  if (KVLFailed(result)) return result;
  const KVLSmartPtr<const KVLCodeType> type = GetType(context);
  const KVLSmartPtr<const KVLCodeType> elementType =
      type ? type->GetListElementType(context) : nullptr;
  if (!elementType) return KVLResult_Failure;
  for (const MRBUnicodeString& text : texts) {
    const KVLSmartPtr<KVLCodeValue> fresh = elementType->CreateValue(elementName);
    if (!fresh) return KVLResult_Failure;
    elements.Append(fresh);
    const long setResult = fresh->SetValueStr(context, text);
    if (KVLFailed(setResult)) return setResult;
  }
  return KVLResult_Success;
}

long KVLCodeValue::ListSetElementsStr(const KVLCodeContext& context,
                                      const KVLVector<MRBUnicodeString>& elements) {
  KVLIter<MRBUnicodeString> texts(
      new (std::nothrow) KVLRangeCursor<MRBUnicodeString>(elements.begin(), elements.end()));
  if (KVLFailed(texts.GetStatus())) return texts.GetStatus();
  return SetValueStr(context, "[" + KVLStringOperations::Join(std::move(texts), ",") + "]");
}

long KVLCodeValue::ListSetElements(const KVLCodeContext& context,
                                   const KVLVector<KVLSmartPtr<KVLCodeValue>>& elements) {
  KVLVector<MRBUnicodeString> texts;
  for (const KVLSmartPtr<KVLCodeValue>& element : elements) {
    MRBUnicodeString text;
    const long result = element->GetValueStr(context, text);
    if (KVLFailed(result)) return result;
    texts.Append(std::move(text));
  }
  return ListSetElementsStr(context, texts);
}

KVLSmartPtr<KVLCodeValue> KVLCodeValue::Copy(const KVLCodeContext& context,
                                             const MRBUnicodeString& copyName) const {
  const KVLSmartPtr<const KVLCodeType> type = GetType(context);
  if (!type) return nullptr;
  KVLSmartPtr<KVLCodeValue> fresh = type->CreateValue(copyName.IsEmpty() ? GetName() : copyName);
  if (!fresh || KVLFailed(fresh->AssignFrom(context, *this))) return nullptr;
  return fresh;
}
