#include "KVLCodeFunctionCaller.h"

#include <stdexcept>

#include "KVLCodeContext.h"
#include "KVLCodeFunction.h"
#include "KVLCodeValue.h"
#include "KVLResult.h"

KVLCodeFunctionCaller::KVLCodeFunctionCaller(const KVLCodeFunction& calledFunction,
                                             const KVLCodeContext& callContext)
    : KVLCodeObject(calledFunction.GetName()), context(&callContext), function(&calledFunction) {}

KVLCodeFunctionCaller::KVLCodeFunctionCaller(const KVLCodeFunctionCaller&) = default;

KVLCodeFunctionCaller::~KVLCodeFunctionCaller() = default;

bool KVLCodeFunctionCaller::IsReady() const {
  return true;
}

const KVLCodeFunction& KVLCodeFunctionCaller::GetFunction() const {
  return *function;
}

int KVLCodeFunctionCaller::GetNbArgs() {
  return args.GetCount();
}

KVLVector<KVLSmartPtr<KVLCodeValue>> KVLCodeFunctionCaller::GetArgs() {
  return args;
}

KVLSmartPtr<KVLCodeValue> KVLCodeFunctionCaller::GetArg(int i) {
  if (i < 0 || i >= args.GetCount()) return nullptr;
  return args[i];
}

long KVLCodeFunctionCaller::GetArgStr(int i, MRBUnicodeString& text) {
  const KVLSmartPtr<KVLCodeValue> arg = GetArg(i);
  return arg ? arg->GetValueStr(*context, text) : KVLResult_Failure;
}

long KVLCodeFunctionCaller::SetArg(int i, KVLSmartPtr<const KVLCodeValue> value) {
  const KVLSmartPtr<KVLCodeValue> arg = GetArg(i);
  if (!arg || !value) return KVLResult_Failure;
  const long result = arg->AssignFrom(*context, *value);
  return KVLFailed(result) ? result : KVLResult_Success;
}

long KVLCodeFunctionCaller::SetArgStr(int i, const MRBUnicodeString& text) {
  const KVLSmartPtr<KVLCodeValue> arg = GetArg(i);
  return arg ? arg->SetValueStr(*context, text) : KVLResult_Failure;
}

long KVLCodeFunctionCaller::Call() {
  if (function->IsMethod()) {
    const KVLSmartPtr<KVLCodeValue> object = GetArg(0);
    if (object && !object->GetValuePtr()) {
      throw std::runtime_error("Calling method on null pointer");
    }
  }
  returnedValue = CallInternal();
  return KVLResult_Success;
}

KVLSmartPtr<KVLCodeValue> KVLCodeFunctionCaller::GetReturnedValue() const {
  return returnedValue;
}

long KVLCodeFunctionCaller::GetReturnedValueStr(MRBUnicodeString& text) const {
  // Held for the whole call: what writes the value may call again.
  const KVLSmartPtr<KVLCodeValue> returned = returnedValue;
  return returned ? returned->GetValueStr(*context, text) : KVLResult_Failure;
}
