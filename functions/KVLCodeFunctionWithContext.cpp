#include "KVLCodeFunctionWithContext.h"

#include "KVLCodeFunctionCallerWithContext.h"
#include "KVLCodePointerValue.h"

namespace {

// One entry a parameter: a value that points to nothing for each hidden one, null for the others.
KVLVector<KVLSmartPtr<const KVLCodeValue>> Placeholders(const KVLCodeFunction& func) {
  KVLVector<KVLSmartPtr<const KVLCodeValue>> values;
  for (const KVLCodeFunction::Param& param : func.GetParams()) {
    KVLSmartPtr<const KVLCodeValue> placeholder;
    if (param.typeName == "KVLCodeContext" || param.typeName == "KVLCodeSession") {
      placeholder = new KVLCodePointerValue("", param.typeName);
    }
    values.Append(placeholder);
  }
  return values;
}

}  // namespace

KVLCodeFunctionWithContext::KVLCodeFunctionWithContext(KVLCodeFunction& func)
    : KVLCodeFunctionBinding(func, Placeholders(func)) {}

KVLCodeFunctionWithContext::~KVLCodeFunctionWithContext() = default;

KVLSmartPtr<KVLCodeFunctionCaller> KVLCodeFunctionWithContext::CreateCaller(
    const KVLCodeContext& context) const {
  return KVLSmartPtr<KVLCodeFunctionCaller>(new KVLCodeFunctionCallerWithContext(*this, context));
}
