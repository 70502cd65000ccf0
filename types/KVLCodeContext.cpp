#include "KVLCodeContext.h"

#include <cassert>
#include <cstdint>
#include <cstdlib>

#include "KVLCodeEnv.h"
#include "KVLCodeFunction.h"
#include "KVLCodeFunctionCaller.h"
#include "KVLCodeValue.h"
#include "KVLLookups.h"
#include "KVLResult.h"

namespace {

bool Passes(const KVLCodeFunction::Param& param, const MRBUnicodeString& typeName,
            unsigned int direction) {
  return param.typeName == typeName && (param.direction & direction) != 0;
}

// The code that a function with an output parameter reports by returning a negative "long".
long ReportedResult(const KVLCodeValue& returned) {
  const void* const data = returned.GetValuePtr();
  if (!data || returned.GetTypeName() != "long") return KVLResult_Success;
  const std::int32_t code = *static_cast<const std::int32_t*>(data);
  return code < 0 ? code : KVLResult_Success;
}

// Sets the source and calls. `source` is only lent: it may live on the stack, so that no counted
// pointer to it may arise, as the caller's own setter would need.
inline long CallWith(KVLCodeFunctionCaller& caller, const KVLCodeContext& context,
                     const KVLCodeValue& source) {
  const KVLSmartPtr<KVLCodeValue> arg = caller.GetArg(0);
  if (!arg) return KVLResult_Failure;
  const long setResult = arg->AssignFrom(context, source);
  return KVLFailed(setResult) ? setResult : caller.Call();
}

// Converts through the conversion registered from the type `sourceTypeName`.
inline long ConvertThrough(const KVLCodeFunction& function, const MRBUnicodeString& sourceTypeName,
                           const KVLCodeContext& context, const KVLCodeValue& from,
                           KVLCodeValue& to) {
  const KVLSmartPtr<KVLCodeFunctionCaller> caller = function.CreateCaller(context);
  const int nbParameters = function.GetNbParameters();
  if (!caller || nbParameters < 1 || nbParameters > 2 ||
      !Passes(function.GetParam(0), sourceTypeName, KVLCodeFunction::Input)) {
    return KVLResult_Failure;
  }
  const MRBUnicodeString& targetTypeName = to.GetTypeName();
  const bool fits = nbParameters == 1
                        ? function.GetReturnTypeName() == targetTypeName
                        : Passes(function.GetParam(1), targetTypeName, KVLCodeFunction::Output);
  if (!fits) return KVLResult_Failure;

  const long callResult = CallWith(*caller, context, from);
  if (KVLFailed(callResult)) return callResult;
  const KVLSmartPtr<KVLCodeValue> returned = caller->GetReturnedValue();
  if (!returned) return KVLResult_Failure;
  if (nbParameters == 1) {
    const long assignResult = to.AssignFrom(context, *returned);
    return KVLFailed(assignResult) ? assignResult : KVLResult_Success;
  }
  const KVLSmartPtr<KVLCodeValue> converted = caller->GetArg(1);
  const long assignResult = converted ? to.AssignFrom(context, *converted) : KVLResult_Failure;
  return KVLFailed(assignResult) ? assignResult : ReportedResult(*returned);
}

// What a types environment holds is trusted to be a type.
KVLSmartPtr<const KVLCodeType> AsTypeUnchecked(KVLCodeObject* object) {
  assert((!object || object->AsType()) && "the types environment holds something else than a type");
  return static_cast<const KVLCodeType*>(object);
}

// Goes on from the source's parent where the type `sourceTypeName` has no conversion of its own,
// but `step`. What stands in a conversion's place, and a type, are held no longer than they are
// asked.
long ConvertAsAncestor(const MRBUnicodeString& sourceTypeName, KVLConversionOrType step,
                       const KVLCodeContext& context, const KVLCodeValue& from, KVLCodeValue& to,
                       KVLSmartPtr<KVLCodeObject>& found) {
  MRBUnicodeString typeName = sourceTypeName;
  for (;;) {
    {
      const KVLSmartPtr<const KVLCodeType> type =
          found ? context.GetTypeFromName(typeName) : AsTypeUnchecked(step.type);
      if (!type) return KVLResult_Failure;
      typeName = type->GetParentTypeName();
    }
    if (typeName.IsEmpty()) return KVLResult_Failure;
    step = KVLFindConversionOrType(context.GetConversionsCodeEnv(), context.GetTypesCodeEnv(),
                                   typeName, to.GetTypeName());
    found = step.conversion;
    if (const KVLCodeFunction* const function = found ? found->AsFunction() : nullptr) {
      return ConvertThrough(*function, typeName, context, from, to);
    }
  }
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
  return AsTypeUnchecked(KVLFindType(*typesEnv, name));
}

void KVLCodeContext::KeepAlive(const MRBBaseUnknown_var& object) const {
  if (!keptAliveObjects.Find(object)) keptAliveObjects.Insert(object, true);
}

void KVLCodeContext::KeepAliveAlloc(void* block) const {
  if (!keptAliveBlocks.Find(block)) keptAliveBlocks.Insert(block, true);
}

long KVLCodeContext::Convert(const KVLCodeValue& from, KVLCodeValue& to) const {
  const MRBUnicodeString& sourceTypeName = from.GetTypeName();
  if (sourceTypeName == to.GetTypeName()) return to.AssignFrom(*this, from);
  if (sourceTypeName.IsEmpty()) return KVLResult_Failure;
  const KVLConversionOrType step =
      KVLFindConversionOrType(*conversionsEnv, *typesEnv, sourceTypeName, to.GetTypeName());
  KVLSmartPtr<KVLCodeObject> found = step.conversion;
  const KVLCodeFunction* const function = found ? found->AsFunction() : nullptr;
  return function ? ConvertThrough(*function, sourceTypeName, *this, from, to)
                  : ConvertAsAncestor(sourceTypeName, step, *this, from, to, found);
}
