#include "KVLCodeFunctionCaller.h"

#include <stdexcept>

KVLCodeFunctionCaller::KVLCodeFunctionCaller(const KVLCodeFunctionCaller&) = default;

KVLCodeFunctionCaller::~KVLCodeFunctionCaller() = default;

bool KVLCodeFunctionCaller::IsReady() const {
  return true;
}

const KVLCodeFunction& KVLCodeFunctionCaller::GetFunction() const {
  return *function;
}

KVLVector<KVLSmartPtr<KVLCodeValue>> KVLCodeFunctionCaller::GetArgs() {
  return args;
}

long KVLCodeFunctionCaller::GetArgStr(int i, MRBUnicodeString& text) {
  const KVLSmartPtr<KVLCodeValue> arg = GetArg(i);
  return arg ? arg->GetValueStr(*context, text) : KVLResult_Failure;
}

long KVLCodeFunctionCaller::SetArgStr(int i, const MRBUnicodeString& text) {
  const KVLSmartPtr<KVLCodeValue> arg = GetArg(i);
  return arg ? arg->SetValueStr(*context, text) : KVLResult_Failure;
}

long KVLCodeFunctionCaller::GetReturnedValueStr(MRBUnicodeString& text) const {
  // Held for the whole call: what writes the value may call again.
  const KVLSmartPtr<KVLCodeValue> returned = returnedValue;
  return returned ? returned->GetValueStr(*context, text) : KVLResult_Failure;
}

void KVLCodeFunctionCaller::RefuseNullObject() {
  const KVLSmartPtr<KVLCodeValue> object = GetArg(0);
  if (object && !object->GetValuePtr()) throw std::runtime_error("Calling method on null pointer");
}
