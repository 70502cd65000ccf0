#include "KVLCodeFunctionCallerWithContext.h"

#include "KVLCodeContext.h"
#include "KVLCodeFunctionWithContext.h"
#include "KVLCodePointerValue.h"

namespace {

// An argument of one of the two hidden types is a pointer value.
void Lend(KVLCodeValue& arg, void* object) {
  static_cast<KVLCodePointerValue&>(arg).SetPointer(object, false);
}

}  // namespace

KVLCodeFunctionCallerWithContext::KVLCodeFunctionCallerWithContext(
    const KVLCodeFunctionWithContext& calledFunction, const KVLCodeContext& callContext)
    : KVLCodeFunctionCallerBinding(calledFunction, callContext) {
  if (!innerCaller) return;
  const KVLVector<KVLSmartPtr<const KVLCodeValue>>& placeholders = calledFunction.GetBindedValues();
  for (int j = 0; j < placeholders.GetCount(); ++j) {
    const KVLSmartPtr<KVLCodeValue> arg = innerCaller->GetArg(j);
    if (!placeholders[j] || !arg) continue;
    if (arg->GetTypeName() == "KVLCodeContext") {
      Lend(*arg, const_cast<KVLCodeContext*>(&callContext));
    } else if (arg->GetTypeName() == "KVLCodeSession") {
      Lend(*arg, callContext.GetSession());
    }
  }
}

KVLCodeFunctionCallerWithContext::KVLCodeFunctionCallerWithContext(
    const KVLCodeFunctionCallerWithContext&) = default;

KVLCodeFunctionCallerWithContext::~KVLCodeFunctionCallerWithContext() = default;
