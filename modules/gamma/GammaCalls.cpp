#include <stdexcept>
#include <string>

#include "KVLKit.h"
#include "shared/FunctionCall.h"

namespace {

using Elements = KVLCodeListValue::Elements;
using calls::Quoted;

// A function of one element: the parameters behind the first may be left out.
calls::FunctionPtr FindFunctionOrThrow(const MRBUnicodeString& path) {
  calls::FunctionPtr function = calls::FindOrThrow(path);
  const KVLVector<KVLCodeFunction::Param>& params = function->GetParams();
  if (params.IsEmpty() || !calls::IsInput(params[0])) {
    throw std::invalid_argument(Quoted(path) + " takes no argument");
  }
  for (int i = 1; i < params.GetCount(); ++i) {
    if (calls::IsInput(params[i]) && params[i].defaultValue.IsEmpty()) {
      throw std::invalid_argument(Quoted(path) + " takes more than one argument");
    }
  }
  return function;
}

// What the function makes of the element. A function that returns nothing is taken to answer by its
// first output parameter. Each call has a caller of its own, which nobody else shares the result
// with.
KVLSmartPtr<KVLCodeValue> CallOrThrow(const KVLCodeContext& context,
                                      const KVLCodeFunction& function, const MRBUnicodeString& path,
                                      const Elements& list, int i) {
  const std::string element = "element " + std::to_string(i);
  const KVLSmartPtr<KVLCodeFunctionCaller> caller = function.CreateCaller(context);
  if (!caller || KVLFailed(caller->SetArg(0, list[i]))) {
    throw std::invalid_argument(element + " is no argument for " + Quoted(path));
  }
  if (KVLFailed(caller->Call())) throw std::runtime_error(Quoted(path) + " fails for " + element);
  KVLSmartPtr<KVLCodeValue> result = caller->GetReturnedValue();
  for (int j = 0; function.GetReturnTypeName() == "void" && j < function.GetNbParameters(); ++j) {
    if ((function.GetParam(j).direction & KVLCodeFunction::Output) == 0) continue;
    result = caller->GetArg(j);
    break;
  }
  if (!result) throw std::runtime_error(Quoted(path) + " returns nothing for " + element);
  return result;
}

Elements Map(const KVLCodeContext& context, KVLCodeSession* session, const Elements& list,
             const MRBUnicodeString& path) {
  const calls::FunctionPtr function = FindFunctionOrThrow(path);
  Elements result;
  result.Reserve(list.GetCount());
  for (int i = 0; i < list.GetCount(); ++i) {
    calls::PollInterruption(session);
    result.Append(CallOrThrow(context, *function, path, list, i));
  }
  return result;
}

Elements Filter(const KVLCodeContext& context, KVLCodeSession* session, const Elements& list,
                const MRBUnicodeString& path) {
  const calls::FunctionPtr function = FindFunctionOrThrow(path);
  Elements result;
  for (int i = 0; i < list.GetCount(); ++i) {
    calls::PollInterruption(session);
    kvl::Value isKept(kvl::TableOf<bool>, "");
    const KVLSmartPtr<KVLCodeValue> answer = CallOrThrow(context, *function, path, list, i);
    if (KVLFailed(isKept.AssignFrom(context, *answer))) {
      throw std::invalid_argument(Quoted(path) + " returns neither true nor false for element " +
                                  std::to_string(i));
    }
    if (isKept.Get<bool>()) result.Append(list[i]);
  }
  return result;
}

}  // namespace

KVL_FUNCTION("list/map", "list, function",
             "What the function, given by its path, makes of each element: what it returns, or, "
             "where that is nothing, what it gives back first. It is called with one argument. "
             "Fails where there is no such function, or it does not take the element.",
             Map);
KVL_FUNCTION("list/filter", "list, function",
             "The elements for which the function, given by its path, returns true. It is called "
             "with one argument. Fails where there is no such function, or it does not take the "
             "element, or returns neither true nor false.",
             Filter);
