#include "KVLCodeFunctionCallerBinding.h"

#include "KVLCodeFunctionBinding.h"
#include "KVLResult.h"

namespace {

const KVLCodeValue* FixedValue(const KVLCodeFunctionBinding& binding, int i) {
  const KVLVector<KVLSmartPtr<const KVLCodeValue>>& values = binding.GetBindedValues();
  return i < values.GetCount() ? values[i].Get() : nullptr;
}

}  // namespace

KVLCodeFunctionCallerBinding::KVLCodeFunctionCallerBinding(
    const KVLCodeFunctionBinding& calledBinding, const KVLCodeContext& callContext)
    : KVLCodeFunctionCaller(calledBinding, callContext),
      binding(&calledBinding),
      innerCaller(calledBinding.GetBindedFunc().CreateCaller(callContext)) {
  if (!innerCaller) return;
  for (int i = 0; i < innerCaller->GetNbArgs(); ++i) {
    const KVLSmartPtr<KVLCodeValue> arg = innerCaller->GetArg(i);
    const KVLCodeValue* const fixed = FixedValue(calledBinding, i);
    if (!fixed) {
      args.Append(arg);
    } else if (arg) {
      // An argument that cannot take the value keeps what the attempt left in it.
      (void)arg->AssignFrom(callContext, *fixed);
    }
  }
}

KVLCodeFunctionCallerBinding::KVLCodeFunctionCallerBinding(const KVLCodeFunctionCallerBinding&) =
    default;

KVLCodeFunctionCallerBinding::~KVLCodeFunctionCallerBinding() = default;

KVLSmartPtr<KVLCodeValue> KVLCodeFunctionCallerBinding::CallInternal() {
  if (!innerCaller || KVLFailed(innerCaller->Call())) return nullptr;
  const KVLCodeFunction& func = binding->GetBindedFunc();
  for (int i = 0; i < innerCaller->GetNbArgs() && i < func.GetNbParameters(); ++i) {
    const KVLCodeValue* const fixed = FixedValue(*binding, i);
    const KVLSmartPtr<KVLCodeValue> arg = innerCaller->GetArg(i);
    if (!fixed || !arg || !(func.GetParam(i).direction & KVLCodeFunction::Output)) continue;
    // A fixed object that the function changes is changed in place, though it is held as const; one
    // that cannot take the result keeps what the attempt left in it.
    (void)const_cast<KVLCodeValue*>(fixed)->AssignFrom(*context, *arg);
  }
  return innerCaller->GetReturnedValue();
}
