#include "KVLCodeContext.h"

#include <cassert>
#include <cstdint>
#include <cstdlib>

#include "KVLCodeEnv.h"
#include "KVLCodeFunction.h"
#include "KVLCodeFunctionCaller.h"
#include "KVLCodeValue.h"
#include "KVLResult.h"

namespace {

bool Passes(const KVLCodeFunction::Param& param, const MRBUnicodeString& typeName,
            unsigned int direction) {
  return param.typeName == typeName && (param.direction & direction) != 0;
}

// `source` is only lent: it may live on the stack, so that no counted pointer to it may arise, as
// the caller's own setter would need.
long SetSource(KVLCodeFunctionCaller& caller, const KVLCodeContext& context,
               const KVLCodeValue& source) {
  const KVLSmartPtr<KVLCodeValue> arg = caller.GetArg(0);
  return arg ? arg->AssignFrom(context, source) : KVLResult_Failure;
}

// Sets the source, calls, and takes what comes back. A failure's code is returned; a call without a
// returned value is one.
long CallWith(KVLCodeFunctionCaller& caller, const KVLCodeContext& context,
              const KVLCodeValue& source, KVLSmartPtr<KVLCodeValue>& returned) {
  const long setResult = SetSource(caller, context, source);
  if (KVLFailed(setResult)) return setResult;
  const long callResult = caller.Call();
  if (KVLFailed(callResult)) return callResult;
  returned = caller.GetReturnedValue();
  return returned ? KVLResult_Success : KVLResult_Failure;
}

// The code that a function with an output parameter reports by returning a negative "long".
long ReportedResult(const KVLCodeValue& returned) {
  const void* const data = returned.GetValuePtr();
  if (!data || returned.GetTypeName() != "long") return KVLResult_Success;
  const std::int32_t code = *static_cast<const std::int32_t*>(data);
  return code < 0 ? code : KVLResult_Success;
}

}  // namespace

// The roots are made, where they are missing, in this order, which argument lists do not promise.
KVLCodeContext::KVLCodeContext() : KVLCodeContext(KVLCodeEnv::GetDefaultTypeRoot()) {}

KVLCodeContext::KVLCodeContext(const KVLCodeEnv& types)
    : KVLCodeContext(types, KVLCodeEnv::GetDefaultConversionsRoot()) {}

KVLCodeContext::KVLCodeContext(const KVLCodeEnv& types, const KVLCodeEnv& conversions)
    : typesEnv(&types), conversionsEnv(&conversions), session(nullptr) {}

KVLCodeContext::KVLCodeContext(const KVLCodeContext&) = default;

KVLCodeContext::~KVLCodeContext() {
  session = nullptr;
  for (const auto& entry : keptAliveBlocks)
    std::free(entry.key);
}

KVLSmartPtr<const KVLCodeType> KVLCodeContext::GetTypeFromName(const MRBUnicodeString& name) const {
  const KVLSmartPtr<KVLCodeObject> object = typesEnv->FindObject(name);
  assert((!object || object->AsType()) && "the types environment holds something else than a type");
  return static_cast<const KVLCodeType*>(object.Get());
}

void KVLCodeContext::KeepAlive(const MRBBaseUnknown_var& object) const {
  if (!keptAliveObjects.Find(object)) keptAliveObjects.Insert(object, true);
}

void KVLCodeContext::KeepAliveAlloc(void* block) const {
  if (!keptAliveBlocks.Find(block)) keptAliveBlocks.Insert(block, true);
}

long KVLCodeContext::Convert(const KVLCodeValue& from, KVLCodeValue& to) const {
  const MRBUnicodeString& targetTypeName = to.GetTypeName();
  MRBUnicodeString sourceTypeName = from.GetTypeName();
  if (sourceTypeName == targetTypeName) return to.AssignFrom(*this, from);

  KVLSmartPtr<KVLCodeObject> found;
  const KVLCodeFunction* function = nullptr;
  while (!sourceTypeName.IsEmpty()) {
    found = conversionsEnv->FindObject(sourceTypeName + "/" + targetTypeName);
    function = found ? found->AsFunction() : nullptr;
    if (function) break;
    const KVLSmartPtr<const KVLCodeType> sourceType = GetTypeFromName(sourceTypeName);
    sourceTypeName = sourceType ? sourceType->GetParentTypeName() : MRBUnicodeString();
  }
  if (!function) return KVLResult_Failure;

  const KVLSmartPtr<KVLCodeFunctionCaller> caller = function->CreateCaller(*this);
  if (!caller) return KVLResult_Failure;

  KVLSmartPtr<KVLCodeValue> returned;
  const int nbParameters = function->GetNbParameters();
  if (nbParameters == 1 && function->GetReturnTypeName() == targetTypeName &&
      Passes(function->GetParam(0), sourceTypeName, KVLCodeFunction::Input)) {
    const long callResult = CallWith(*caller, *this, from, returned);
    if (KVLFailed(callResult)) return callResult;
    const long assignResult = to.AssignFrom(*this, *returned);
    return KVLFailed(assignResult) ? assignResult : KVLResult_Success;
  }
  if (nbParameters == 2 && Passes(function->GetParam(0), sourceTypeName, KVLCodeFunction::Input) &&
      Passes(function->GetParam(1), targetTypeName, KVLCodeFunction::Output)) {
    const long callResult = CallWith(*caller, *this, from, returned);
    if (KVLFailed(callResult)) return callResult;
    const KVLSmartPtr<KVLCodeValue> converted = caller->GetArg(1);
    const long assignResult = converted ? to.AssignFrom(*this, *converted) : KVLResult_Failure;
    return KVLFailed(assignResult) ? assignResult : ReportedResult(*returned);
  }
  return KVLResult_Failure;
}
