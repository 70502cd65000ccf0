#include "KVLCodeFunctionBinding.h"

#include <utility>

#include "KVLCodeFunctionCallerBinding.h"
#include "KVLResult.h"

namespace {

using Values = KVLVector<KVLSmartPtr<const KVLCodeValue>>;

Values OneValue(KVLSmartPtr<const KVLCodeValue> value) {
  Values values;
  values.Append(std::move(value));
  return values;
}

// Surplus values fix nothing.
int CountOpen(const KVLCodeFunction& func, const Values& values) {
  int open = func.GetNbParameters();
  for (int i = 0; i < func.GetNbParameters() && i < values.GetCount(); ++i) {
    if (values[i]) --open;
  }
  return open;
}

}  // namespace

KVLCodeFunctionBinding::KVLCodeFunctionBinding(KVLCodeFunction& func, const Values& values)
    : KVLCodeFunction(func.GetName(), CountOpen(func, values)),
      bindedFunc(&func),
      bindedValues(values) {
  InitBindings();
}

KVLCodeFunctionBinding::KVLCodeFunctionBinding(KVLCodeFunction& func,
                                               KVLSmartPtr<const KVLCodeValue> value)
    : KVLCodeFunctionBinding(func, OneValue(std::move(value))) {}

KVLCodeFunctionBinding::~KVLCodeFunctionBinding() = default;

long KVLCodeFunctionBinding::Init(const MRBUnicodeString&) {
  return KVLResult_NotImplemented;
}

bool KVLCodeFunctionBinding::IsMethod() const {
  if (!bindedFunc->IsMethod()) return false;
  return bindedValues.IsEmpty() || bindedValues[0].IsNull();
}

KVLSmartPtr<KVLCodeFunctionCaller> KVLCodeFunctionBinding::CreateCaller(
    const KVLCodeContext& context) const {
  return KVLSmartPtr<KVLCodeFunctionCaller>(new KVLCodeFunctionCallerBinding(*this, context));
}

void KVLCodeFunctionBinding::InitBindings() {
  if (!bindedFunc) return;
  returnTypeName = bindedFunc->GetReturnTypeName();
  int open = 0;
  for (int j = 0; j < bindedFunc->GetNbParameters(); ++j) {
    if (j < bindedValues.GetCount() && bindedValues[j]) continue;
    params[open] = bindedFunc->GetParam(j);
    ++open;
  }
}
