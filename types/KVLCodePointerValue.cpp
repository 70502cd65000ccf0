#include "KVLCodePointerValue.h"

#include <utility>

#include "KVLCodeContext.h"
#include "KVLResult.h"

/// Shares a pointer among pointer values.
class KVLCodePointerHolder : public KVLRefCounted {
 public:
  KVLCodePointerHolder(void* object, bool isOwned) : pointer(object), owned(isOwned) {}
  KVLCodePointerHolder(const KVLCodePointerHolder&) = delete;
  KVLCodePointerHolder& operator=(const KVLCodePointerHolder&) = delete;
  ~KVLCodePointerHolder() override {
    if (owned) DeleteObject();
  }

  void* const pointer;
  const bool owned;

 private:
  struct Deletable {
    virtual ~Deletable() = default;
  };

  // All that is known of an owned object's class is that its virtual destructor comes first.
#if defined(__GNUC__)
  __attribute__((no_sanitize("vptr")))
#endif
  void
  DeleteObject() {
    delete static_cast<Deletable*>(pointer);
  }
};

namespace {

// What a former holder takes along may look at the value while it dies. So the holder goes last,
// when the value has its new one.
void Replace(KVLSmartPtr<KVLCodePointerHolder>& holder, KVLSmartPtr<KVLCodePointerHolder> other) {
  std::swap(holder, other);
}

// Stands in where a pointer value's type is not registered, hence for any type of pointer.
class StandInType : public KVLCodePointerType {
 public:
  using KVLCodePointerType::KVLCodePointerType;

  bool IsDummy() const override { return true; }
};

}  // namespace

KVLCodePointerValue::KVLCodePointerValue(const MRBUnicodeString& valueName,
                                         const MRBUnicodeString& nameOfType)
    : KVLCodeValue(valueName, nameOfType), holder(new KVLCodePointerHolder(nullptr, false)) {}

KVLCodePointerValue::KVLCodePointerValue(const KVLCodePointerValue&) = default;

KVLCodePointerValue::~KVLCodePointerValue() = default;

void KVLCodePointerValue::Reset() {
  Replace(holder, new KVLCodePointerHolder(nullptr, false));
}

void* KVLCodePointerValue::GetValuePtr() const {
  OnAccess();
  return holder->pointer;
}

KVLSmartPtr<const KVLCodeType> KVLCodePointerValue::GetType(const KVLCodeContext& context) const {
  KVLSmartPtr<const KVLCodeType> type = KVLCodeValue::GetType(context);
  if (!type) type = new StandInType(GetTypeName());
  return type;
}

long KVLCodePointerValue::GetValueStr(const KVLCodeContext& context, MRBUnicodeString& text) const {
  OnAccess();
  // Held for the whole call: what renders the object may change this value.
  const KVLSmartPtr<KVLCodePointerHolder> rendered = holder;
  if (!rendered->pointer) {
    text = "NULL";
    return KVLResult_Success;
  }
  const KVLSmartPtr<const KVLCodeType> type = GetType(context);
  if (!type) return KVLResult_Failure;
  return static_cast<const KVLCodePointerType&>(*type).Render(context, rendered->pointer, text);
}

long KVLCodePointerValue::SetValueStr(const KVLCodeContext& context, const MRBUnicodeString& text) {
  const KVLSmartPtr<const KVLCodeType> type = GetType(context);
  if (!type) return KVLResult_Failure;
  const long result = static_cast<const KVLCodePointerType&>(*type).Parse(context, text, *this);
  if (KVLFailed(result)) return result;
  OnChanged();
  return KVLResult_Success;
}

long KVLCodePointerValue::AssignFrom(const KVLCodeContext& context, const KVLCodeValue& source) {
  bool isPointer = source.GetTypeName() == GetTypeName();
  if (!isPointer) {
    const KVLSmartPtr<const KVLCodeType> type = context.GetTypeFromName(source.GetTypeName());
    isPointer = type && type->IsSubTypeOf(context, GetTypeName());
  }
  if (isPointer) {
    const KVLCodePointerValue& other = static_cast<const KVLCodePointerValue&>(source);
    other.OnAccess();
    Replace(holder, other.holder);
  } else {
    const long result = KVLCodeValue::AssignFrom(context, source);
    if (KVLFailed(result)) return result;
  }
  OnChanged();
  return KVLResult_Success;
}

void KVLCodePointerValue::OnChanged() {}

void KVLCodePointerValue::OnAccess() const {}

void KVLCodePointerValue::SetPointer(void* pointer, bool owned) {
  Replace(holder, new KVLCodePointerHolder(pointer, owned));
  OnChanged();
}

KVLCodePointerType::KVLCodePointerType(const MRBUnicodeString& typeName) : KVLCodeType(typeName) {}

KVLCodePointerType::~KVLCodePointerType() = default;

KVLSmartPtr<KVLCodeValue> KVLCodePointerType::CreateValue(const MRBUnicodeString& valueName) const {
  return KVLSmartPtr<KVLCodeValue>(new KVLCodePointerValue(valueName, GetName()));
}

long KVLCodePointerType::Parse(const KVLCodeContext&, const MRBUnicodeString&,
                               KVLCodeValue&) const {
  return KVLResult_NotImplemented;
}

long KVLCodePointerType::Render(const KVLCodeContext&, const void*, MRBUnicodeString&) const {
  return KVLResult_NotImplemented;
}
