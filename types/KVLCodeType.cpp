#include "KVLCodeType.h"

#include "KVLCodeContext.h"

const char* const KVLTypeName_Unknown = "???";

KVLCodeType::KVLCodeType(const MRBUnicodeString& typeName) : KVLCodeObject(typeName) {}

KVLCodeType::~KVLCodeType() = default;

KVLCodeType* KVLCodeType::AsType() {
  return this;
}

const KVLCodeType* KVLCodeType::AsType() const {
  return this;
}

MRBUnicodeString KVLCodeType::ToString() const {
  return "Type { name=" + GetName() + " }";
}

MRBUnicodeString KVLCodeType::ToStringCode() const {
  return GetName();
}

bool KVLCodeType::IsDummy() const {
  return false;
}

MRBUnicodeString KVLCodeType::GetSerializationInfo(const KVLCodeContext&) const {
  return MRBUnicodeString();
}

MRBUnicodeString KVLCodeType::GetParentTypeName() const {
  return MRBUnicodeString();
}

bool KVLCodeType::GetEnumValues(KVLVector<MRBUnicodeString>&) const {
  return false;
}

bool KVLCodeType::IsList(MRBUnicodeString*) const {
  return false;
}

KVLSmartPtr<const KVLCodeType> KVLCodeType::GetListElementType(
    const KVLCodeContext& context) const {
  MRBUnicodeString elementTypeName;
  if (!IsList(&elementTypeName)) return nullptr;
  return context.GetTypeFromName(elementTypeName);
}

KVLSmartPtr<const KVLCodeType> KVLCodeType::GetParentType(const KVLCodeContext& context) const {
  const MRBUnicodeString parentName = GetParentTypeName();
  if (parentName.IsEmpty()) return nullptr;
  return context.GetTypeFromName(parentName);
}

bool KVLCodeType::IsSubTypeOf(const KVLCodeContext& context, const KVLCodeType& other) const {
  if (&other == this) return true;
  const KVLSmartPtr<const KVLCodeType> parent = GetParentType(context);
  return parent && parent->IsSubTypeOf(context, other);
}

bool KVLCodeType::IsSubTypeOf(const KVLCodeContext& context,
                              const MRBUnicodeString& typeName) const {
  if (GetName() == typeName) return true;
  const MRBUnicodeString parentName = GetParentTypeName();
  if (parentName.IsEmpty()) return false;
  if (parentName == typeName) return true;
  const KVLSmartPtr<const KVLCodeType> parent = context.GetTypeFromName(parentName);
  return parent && parent->IsSubTypeOf(context, typeName);
}
