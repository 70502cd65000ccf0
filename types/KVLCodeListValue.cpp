#include "KVLCodeListValue.h"

#include <utility>

#include "KVLCodeContext.h"
#include "KVLResult.h"

/// Shares a vector of elements among list values.
class KVLCodeListHolder : public KVLRefCounted {
 public:
  KVLCodeListHolder(KVLCodeListValue::Elements* vector, bool isOwned)
      : elements(vector), owned(isOwned) {}
  KVLCodeListHolder(const KVLCodeListHolder&) = delete;
  KVLCodeListHolder& operator=(const KVLCodeListHolder&) = delete;
  ~KVLCodeListHolder() override {
    if (owned) delete elements;
  }

  KVLCodeListValue::Elements* const elements;  // null: no data
  const bool owned;                            // made by the holder, hence deleted with it
};

namespace {

// What a former holder takes along may look at the value while it dies. So the holder goes last,
// when the value has its new one.
void Replace(KVLSmartPtr<KVLCodeListHolder>& holder, KVLSmartPtr<KVLCodeListHolder> other) {
  std::swap(holder, other);
}

}  // namespace

KVLCodeListValue::KVLCodeListValue(const MRBUnicodeString& valueName,
                                   const MRBUnicodeString& nameOfType)
    : KVLCodeValue(valueName, nameOfType.IsEmpty() ? MRBUnicodeString("KVLVector<KVLCodeValue_var>")
                                                   : nameOfType),
      holder(new KVLCodeListHolder(nullptr, false)) {}

KVLCodeListValue::KVLCodeListValue(const KVLCodeListValue&) = default;

KVLCodeListValue::~KVLCodeListValue() = default;

void KVLCodeListValue::Reset() {
  Replace(holder, new KVLCodeListHolder(nullptr, false));
}

void* KVLCodeListValue::GetValuePtr() const {
  OnAccess();
  return holder->elements;
}

KVLSmartPtr<const KVLCodeType> KVLCodeListValue::GetType(const KVLCodeContext& context) const {
  KVLSmartPtr<const KVLCodeType> type = KVLCodeValue::GetType(context);
  if (!type) type = new KVLCodeListType(GetTypeName());
  return type;
}

long KVLCodeListValue::GetValueStr(const KVLCodeContext& context, MRBUnicodeString& text) const {
  OnAccess();
  // Held for the whole call: what renders the elements may change this value.
  const KVLSmartPtr<KVLCodeListHolder> rendered = holder;
  if (!rendered->elements) {
    text = "NULL";
    return KVLResult_Success;
  }
  const KVLSmartPtr<const KVLCodeType> type = GetType(context);
  if (!type) return KVLResult_Failure;
  return static_cast<const KVLCodeListType&>(*type).Render(context, rendered->elements, text);
}

long KVLCodeListValue::SetValueStr(const KVLCodeContext& context, const MRBUnicodeString& text) {
  const KVLSmartPtr<const KVLCodeType> type = GetType(context);
  if (!type) return KVLResult_Failure;
  const long result = static_cast<const KVLCodeListType&>(*type).Parse(context, text, *this);
  if (KVLFailed(result)) return result;
  OnChanged();
  return KVLResult_Success;
}

long KVLCodeListValue::AssignFrom(const KVLCodeContext& context, const KVLCodeValue& source) {
  bool isList = source.GetTypeName() == GetTypeName();
  if (!isList) {
    const KVLSmartPtr<const KVLCodeType> type = context.GetTypeFromName(source.GetTypeName());
    isList = type && type->IsSubTypeOf(context, GetTypeName());
  }
  if (isList) {
    const KVLCodeListValue& list = static_cast<const KVLCodeListValue&>(source);
    list.OnAccess();
    Replace(holder, list.holder);
  } else {
    const long result = KVLCodeValue::AssignFrom(context, source);
    if (KVLFailed(result)) return result;
  }
  OnChanged();
  return KVLResult_Success;
}

long KVLCodeListValue::CompareValueWith(const KVLCodeContext& context,
                                        const KVLCodeValue& other) const {
  const void* const data = GetValuePtr();
  const void* const otherData = other.GetValuePtr();
  if (other.GetTypeName() != GetTypeName() || !data || !otherData) {
    return KVLCodeValue::CompareValueWith(context, other);
  }
  const Elements& elements = *static_cast<const Elements*>(data);
  const Elements& otherElements = *static_cast<const Elements*>(otherData);
  if (elements.GetCount() != otherElements.GetCount()) return KVLResult_False;
  for (int i = 0; i < elements.GetCount(); ++i) {
    if (elements[i] != otherElements[i]) return KVLResult_False;
  }
  return KVLResult_Success;
}

void KVLCodeListValue::OnChanged() {}

void KVLCodeListValue::OnAccess() const {}

KVLCodeListValue::Elements& KVLCodeListValue::MakeOwnElements() {
  Replace(holder, new KVLCodeListHolder(new Elements(), true));
  return *holder->elements;
}

KVLCodeListType::KVLCodeListType(const MRBUnicodeString& typeName) : KVLCodeType(typeName) {}

KVLCodeListType::~KVLCodeListType() = default;

KVLSmartPtr<KVLCodeValue> KVLCodeListType::CreateValue(const MRBUnicodeString& valueName) const {
  KVLSmartPtr<KVLCodeListValue> value = new KVLCodeListValue(valueName, GetName());
  value->MakeOwnElements();
  return value;
}

long KVLCodeListType::Parse(const KVLCodeContext&, const MRBUnicodeString&, KVLCodeValue&) const {
  return KVLResult_NotImplemented;
}

long KVLCodeListType::Render(const KVLCodeContext&, const void*, MRBUnicodeString&) const {
  return KVLResult_NotImplemented;
}
