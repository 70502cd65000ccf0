#include "AlphaScalars.h"

#include "AlphaText.h"
#include "KVLResult.h"

template <class Kind>
AlphaScalarValue<Kind>::AlphaScalarValue(const MRBUnicodeString& valueName, const Data& initial)
    : KVLCodeValue(valueName, Kind::TypeName), data(initial) {}

template <class Kind>
AlphaScalarValue<Kind>::~AlphaScalarValue() = default;

template <class Kind>
void* AlphaScalarValue<Kind>::GetValuePtr() const {
  return const_cast<Data*>(&data);
}

template <class Kind>
long AlphaScalarValue<Kind>::GetValueStr(const KVLCodeContext&, MRBUnicodeString& text) const {
  AlphaWrite(data, text);
  return KVLResult_Success;
}

template <class Kind>
long AlphaScalarValue<Kind>::SetValueStr(const KVLCodeContext&, const MRBUnicodeString& text) {
  return AlphaRead(text, data);
}

template <class Kind>
long AlphaScalarValue<Kind>::AssignFrom(const KVLCodeContext& context, const KVLCodeValue& source) {
  const void* const sourceData =
      source.GetTypeName() == GetTypeName() ? source.GetValuePtr() : nullptr;
  if (!sourceData) return KVLCodeValue::AssignFrom(context, source);
  data = *static_cast<const Data*>(sourceData);
  return KVLResult_Success;
}

template <class Kind>
AlphaScalarType<Kind>::AlphaScalarType() : KVLCodeType(Kind::TypeName) {}

template <class Kind>
AlphaScalarType<Kind>::~AlphaScalarType() = default;

template <class Kind>
KVLSmartPtr<KVLCodeValue> AlphaScalarType<Kind>::CreateValue(
    const MRBUnicodeString& valueName) const {
  return KVLSmartPtr<KVLCodeValue>(new AlphaScalarValue<Kind>(valueName));
}

template class AlphaScalarValue<AlphaBool>;
template class AlphaScalarValue<AlphaInt>;
template class AlphaScalarValue<AlphaLong>;
template class AlphaScalarValue<AlphaDouble>;
template class AlphaScalarValue<AlphaString>;
template class AlphaScalarType<AlphaBool>;
template class AlphaScalarType<AlphaInt>;
template class AlphaScalarType<AlphaLong>;
template class AlphaScalarType<AlphaDouble>;
template class AlphaScalarType<AlphaString>;

AlphaVoidValue::AlphaVoidValue(const MRBUnicodeString& valueName)
    : KVLCodeValue(valueName, "void") {}

AlphaVoidValue::~AlphaVoidValue() = default;

long AlphaVoidValue::GetValueStr(const KVLCodeContext&, MRBUnicodeString& text) const {
  text = "";
  return KVLResult_Success;
}

long AlphaVoidValue::SetValueStr(const KVLCodeContext&, const MRBUnicodeString& text) {
  return text.IsEmpty() ? KVLResult_Success : KVLResult_InvalidArgument;
}

AlphaVoidType::AlphaVoidType() : KVLCodeType("void") {}

AlphaVoidType::~AlphaVoidType() = default;

KVLSmartPtr<KVLCodeValue> AlphaVoidType::CreateValue(const MRBUnicodeString& valueName) const {
  return KVLSmartPtr<KVLCodeValue>(new AlphaVoidValue(valueName));
}
