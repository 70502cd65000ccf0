#include "LambdaFunctions.h"

#include "KVLCodeContext.h"
#include "KVLCodeType.h"

namespace lambda {

namespace {

constexpr int DeepestNesting = 100;

int depth = 0;

using Params = KVLVector<KVLCodeFunction::Param>;

bool IsSameParam(const KVLCodeFunction::Param& a, const KVLCodeFunction::Param& b) {
  return a.typeName == b.typeName && a.direction == b.direction;
}

bool AreSameParams(const Params& a, const Params& b) {
  if (a.GetCount() != b.GetCount()) return false;
  for (int i = 0; i < a.GetCount(); ++i)
    if (!IsSameParam(a[i], b[i])) return false;
  return true;
}

// Arguments for a call that cannot be made: what it lacks is told when it is tried. False when a
// type is not known.
bool MakeArgs(const KVLCodeContext& context, const Params& params,
              KVLVector<calls::ValuePtr>& args) {
  for (const KVLCodeFunction::Param& param : params) {
    const KVLSmartPtr<const KVLCodeType> type = context.GetTypeFromName(param.typeName);
    args.Append(type ? type->CreateValue(param.name) : nullptr);
    if (!args[args.GetCount() - 1]) return false;
  }
  return true;
}

calls::CallerPtr OrNull(KVLCodeFunctionCaller* caller, bool isReady) {
  calls::CallerPtr held(caller);
  return isReady ? held : nullptr;
}

bool IsFixed(const KVLVector<std::optional<MRBUnicodeString>>& texts, int i) {
  return i < texts.GetCount() && texts[i].has_value();
}

bool IsMethodLeft(const KVLCodeFunction& function,
                  const KVLVector<std::optional<MRBUnicodeString>>& texts) {
  return function.IsMethod() && !IsFixed(texts, 0);
}

}  // namespace

class Redirection::Caller final : public KVLCodeFunctionCaller {
 public:
  Caller(const Redirection& called, const KVLCodeContext& callContext)
      : KVLCodeFunctionCaller(called, callContext), redirection(called) {
    const Nesting nesting;
    const calls::FunctionPtr target = called.GetTarget();
    if (target) inner = target->CreateCaller(callContext);
    if (!inner || inner->GetNbArgs() != called.targetParams.GetCount()) {
      inner = nullptr;
      isReady = MakeArgs(callContext, called.params, args);
      return;
    }
    for (int i = 0; i < called.targetParams.GetCount(); ++i)
      if (!IsFixed(called.texts, i)) args.Append(inner->GetArg(i));
  }
  ~Caller() override = default;

  bool IsReadyToExist() const { return isReady; }

 protected:
  calls::ValuePtr CallInternal() override {
    const Nesting nesting;
    if (!inner) {
      throw std::runtime_error("the function " + calls::Quoted(redirection.targetPath) +
                               " is gone, or is not what it was");
    }
    // Each time anew: the former call may have changed them.
    for (int i = 0; i < redirection.texts.GetCount(); ++i) {
      if (!IsFixed(redirection.texts, i)) continue;
      if (KVLFailed(inner->SetArgStr(i, *redirection.texts[i]))) {
        throw std::runtime_error("the fixed argument " +
                                 calls::Quoted(redirection.targetParams[i].name) +
                                 " is no longer accepted");
      }
    }
    return calls::Call(*inner);
  }

 private:
  const Redirection& redirection;  // lives as long as `function`
  calls::CallerPtr inner;          // null when there is nothing to call
  bool isReady = true;
};

Redirection::Redirection(const MRBUnicodeString& functionName, const MRBUnicodeString& path,
                         const KVLCodeFunction& target,
                         const KVLVector<std::optional<MRBUnicodeString>>& fixedTexts)
    : KVLCodeFunction(functionName),
      targetPath(path),
      targetParams(target.GetParams()),
      texts(fixedTexts),
      isMethod(IsMethodLeft(target, fixedTexts)) {
  returnTypeName = target.GetReturnTypeName();
  for (int i = 0; i < targetParams.GetCount(); ++i)
    if (!IsFixed(texts, i)) params.Append(targetParams[i]);
}

calls::FunctionPtr Redirection::GetTarget() const {
  calls::FunctionPtr target = calls::Find(targetPath);
  const bool isSame = target && target->GetReturnTypeName() == GetReturnTypeName() &&
                      AreSameParams(target->GetParams(), targetParams);
  return isSame ? target : nullptr;
}

KVLSmartPtr<KVLCodeFunctionCaller> Redirection::CreateCaller(const KVLCodeContext& context) const {
  Caller* const caller = new Caller(*this, context);
  return OrNull(caller, caller->IsReadyToExist());
}

class Composition::Caller final : public KVLCodeFunctionCaller {
 public:
  Caller(const Composition& called, const KVLCodeContext& callContext)
      : KVLCodeFunctionCaller(called, callContext), composition(called) {
    const Nesting nesting;
    const calls::FunctionPtr target = calls::Find(called.paths[0]);
    if (target && AreSameParams(target->GetParams(), called.params)) {
      first = target->CreateCaller(callContext);
    }
    if (first && first->GetNbArgs() == called.GetNbParameters()) {
      args = first->GetArgs();
    } else {
      first = nullptr;
      isReady = MakeArgs(callContext, called.params, args);
    }
  }
  ~Caller() override = default;

  bool IsReadyToExist() const { return isReady; }

 protected:
  calls::ValuePtr CallInternal() override {
    const Nesting nesting;
    if (!first) {
      throw std::runtime_error("the function " + calls::Quoted(composition.paths[0]) +
                               " is gone, or is not what it was");
    }
    calls::ValuePtr value = calls::Call(*first);
    for (int i = 1; i < composition.paths.GetCount(); ++i) {
      calls::PollInterruption(context->GetSession());
      const calls::FunctionPtr next = calls::FindOrThrow(composition.paths[i]);
      const calls::CallerPtr caller = calls::CreateCaller(*next, *context);
      calls::SetArg(*caller, 0, value);
      value = calls::Call(*caller);
    }
    return value;
  }

 private:
  const Composition& composition;  // lives as long as `function`
  calls::CallerPtr first;          // null when there is nothing to call
  bool isReady = true;
};

Composition::Composition(const MRBUnicodeString& functionName,
                         const KVLVector<MRBUnicodeString>& functionPaths,
                         const KVLCodeFunction& first, const KVLCodeFunction& last)
    : KVLCodeFunction(functionName), paths(functionPaths) {
  returnTypeName = last.GetReturnTypeName();
  params = first.GetParams();
}

KVLSmartPtr<KVLCodeFunctionCaller> Composition::CreateCaller(const KVLCodeContext& context) const {
  Caller* const caller = new Caller(*this, context);
  return OrNull(caller, caller->IsReadyToExist());
}

bool TakesOneValue(const KVLCodeFunction& function) {
  if (function.GetNbParameters() < 1 || !calls::IsInput(function.GetParam(0))) return false;
  for (int i = 1; i < function.GetNbParameters(); ++i) {
    const KVLCodeFunction::Param& param = function.GetParam(i);
    if (calls::IsInput(param) && param.defaultValue.IsEmpty()) return false;
  }
  return true;
}

Nesting::Nesting() {
  if (depth >= DeepestNesting) throw std::runtime_error("calls by path nest deeper than 100");
  ++depth;
}

Nesting::~Nesting() {
  --depth;
}

}  // namespace lambda
