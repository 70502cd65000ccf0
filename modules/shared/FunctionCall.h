#ifndef MODULES_SHARED_FUNCTION_CALL_H
#define MODULES_SHARED_FUNCTION_CALL_H

#include <stdexcept>
#include <string>

#include "KVLCodeFunction.h"
#include "KVLCodeFunctionCaller.h"
#include "KVLCodeListValue.h"
#include "KVLCodeSession.h"
#include "KVLResult.h"
#include "shared/RegistryWalk.h"

/// For modules that call functions by their paths. What is wrong is thrown, in words for whoever
/// made the call.
namespace calls {

using FunctionPtr = KVLSmartPtr<KVLCodeFunction>;
using CallerPtr = KVLSmartPtr<KVLCodeFunctionCaller>;
using ValuePtr = KVLSmartPtr<KVLCodeValue>;

inline std::string Quoted(const MRBUnicodeString& text) {
  return std::string("'") + text.ConvertToChar() + "'";
}

/// The function under `path`, or null.
inline FunctionPtr Find(const MRBUnicodeString& path) {
  const KVLSmartPtr<KVLCodeObject> object = registry::Find(path).object;
  return FunctionPtr(object ? object->AsFunction() : nullptr);
}

inline FunctionPtr FindOrThrow(const MRBUnicodeString& path) {
  FunctionPtr function = Find(path);
  if (!function) throw std::invalid_argument("there is no function " + Quoted(path));
  return function;
}

inline CallerPtr CreateCaller(const KVLCodeFunction& function, const KVLCodeContext& context) {
  CallerPtr caller = function.CreateCaller(context);
  if (!caller || caller->GetNbArgs() != function.GetNbParameters()) {
    throw std::runtime_error(Quoted(function.GetName()) + " cannot be called");
  }
  return caller;
}

inline bool IsInput(const KVLCodeFunction::Param& param) {
  return (param.direction & KVLCodeFunction::Input) != 0;
}

/// Assigns `value` to argument `i`, through a conversion where the types differ.
inline void SetArg(KVLCodeFunctionCaller& caller, int i, const ValuePtr& value) {
  if (value && !KVLFailed(caller.SetArg(i, KVLSmartPtr<const KVLCodeValue>(value)))) return;
  const KVLCodeFunction::Param& param = caller.GetFunction().GetParam(i);
  throw std::invalid_argument("argument " + Quoted(param.name) + " of " +
                              Quoted(caller.GetFunction().GetName()) + " must be of the type " +
                              Quoted(param.typeName));
}

/// Assigns all arguments; those with a default may be left out, and outputs.
inline void SetArgs(KVLCodeFunctionCaller& caller, const KVLCodeListValue::Elements& args) {
  const KVLCodeFunction& function = caller.GetFunction();
  const int count = function.GetNbParameters();
  if (args.GetCount() > count) {
    throw std::invalid_argument(Quoted(function.GetName()) + " takes no more than " +
                                std::to_string(count) + " arguments");
  }
  for (int i = 0; i < args.GetCount(); ++i)
    SetArg(caller, i, args[i]);
  for (int i = args.GetCount(); i < count; ++i) {
    const KVLCodeFunction::Param& param = function.GetParam(i);
    if (!IsInput(param) || !param.defaultValue.IsEmpty()) continue;
    throw std::invalid_argument("argument " + Quoted(param.name) + " of " +
                                Quoted(function.GetName()) + " is missing");
  }
}

/// Makes the call; what it returned is never null.
inline ValuePtr Call(KVLCodeFunctionCaller& caller) {
  if (KVLFailed(caller.Call()) || !caller.GetReturnedValue()) {
    throw std::runtime_error(Quoted(caller.GetFunction().GetName()) + " returned no value");
  }
  return caller.GetReturnedValue();
}

inline void PollInterruption(const KVLCodeSession* session) {
  if (session && session->IsInterrupted()) throw std::runtime_error("interrupted");
}

}  // namespace calls

#endif
