#include "AlphaFunction.h"

#include "AlphaList.h"
#include "KVLCodeContext.h"
#include "KVLCodePointerValue.h"
#include "KVLResult.h"

namespace {

class Caller : public KVLCodeFunctionCaller {
 public:
  Caller(const AlphaFunction& called, const KVLCodeContext& callContext)
      : KVLCodeFunctionCaller(called, callContext), body(called.GetBody()) {
    for (const KVLCodeFunction::Param& param : called.GetParams()) {
      const KVLSmartPtr<KVLCodeValue> value = AlphaMakeValue(param.typeName, param.name);
      // A default that cannot be read is among the function's messages; the value stays fresh.
      if (!param.defaultValue.IsEmpty()) (void)value->SetValueStr(callContext, param.defaultValue);
      args.Append(value);
    }
  }
  ~Caller() override = default;

 protected:
  KVLSmartPtr<KVLCodeValue> CallInternal() override { return body(AlphaArguments(*context, args)); }

 private:
  const AlphaFunction::Body body;
};

}  // namespace

AlphaFunction::AlphaFunction(const MRBUnicodeString& functionName, const char* returns,
                             std::initializer_list<ParamType> types,
                             const MRBUnicodeString& initText, Body functionBody, Form functionForm)
    : KVLCodeFunction(functionName, static_cast<int>(types.size())),
      body(functionBody),
      form(functionForm) {
  returnTypeName = returns;
  int i = 0;
  for (const ParamType& type : types) {
    params[i].typeName = type.typeName;
    params[i].direction = type.direction;
    ++i;
  }
  // What is wrong with the text is among the messages.
  (void)Init(initText);
}

AlphaFunction::~AlphaFunction() = default;

bool AlphaFunction::IsMethod() const {
  return form == Method;
}

KVLSmartPtr<KVLCodeFunctionCaller> AlphaFunction::CreateCaller(
    const KVLCodeContext& context) const {
  return KVLSmartPtr<KVLCodeFunctionCaller>(new Caller(*this, context));
}

long AlphaFunction::InitImpl() {
  const KVLCodeContext context;
  for (const Param& param : params) {
    if (param.defaultValue.IsEmpty()) continue;
    const KVLSmartPtr<KVLCodeValue> value = AlphaMakeValue(param.typeName, param.name);
    if (KVLFailed(value->SetValueStr(context, param.defaultValue))) {
      messages.Append("Default value '" + param.defaultValue + "' of parameter '" + param.name +
                      "' is no " + param.typeName + ".");
    }
  }
  return KVLResult_Success;
}

KVLSmartPtr<KVLCodeValue> AlphaMakeValue(const MRBUnicodeString& typeName,
                                         const MRBUnicodeString& valueName) {
  if (typeName == "bool") return new AlphaScalarValue<AlphaBool>(valueName);
  if (typeName == "int") return new AlphaScalarValue<AlphaInt>(valueName);
  if (typeName == "long") return new AlphaScalarValue<AlphaLong>(valueName);
  if (typeName == "double") return new AlphaScalarValue<AlphaDouble>(valueName);
  if (typeName == "string") return new AlphaScalarValue<AlphaString>(valueName);
  if (typeName == AlphaListTypeName) {
    const KVLSmartPtr<KVLCodeListValue> list = new KVLCodeListValue(valueName, typeName);
    (void)list->MakeOwnElements();
    return list;
  }
  if (typeName == "KVLCodeContext" || typeName == "KVLCodeSession") {
    return new KVLCodePointerValue(valueName, typeName);
  }
  return nullptr;
}
