#ifndef ALPHA_FUNCTION_H
#define ALPHA_FUNCTION_H

#include <initializer_list>

#include "AlphaScalars.h"
#include "KVLCodeFunction.h"
#include "KVLCodeFunctionCaller.h"
#include "KVLCodeListValue.h"

/// The arguments of one call, as a function's body sees them.
class AlphaArguments {
 public:
  AlphaArguments(const KVLCodeContext& callContext, KVLVector<KVLSmartPtr<KVLCodeValue>>& callArgs)
      : context(callContext), values(callArgs) {}

  /// The datum of argument `i`, which must be of that kind.
  template <class Kind>
  typename Kind::Data& Get(int i) const {
    return *static_cast<typename Kind::Data*>(values[i]->GetValuePtr());
  }
  /// The elements of argument `i`, which must be a list; null when it has none.
  const KVLCodeListValue::Elements* GetElements(int i) const {
    return static_cast<const KVLCodeListValue::Elements*>(values[i]->GetValuePtr());
  }
  KVLCodeValue& GetValue(int i) const { return *values[i]; }
  const KVLCodeContext& GetContext() const { return context; }

 private:
  const KVLCodeContext& context;
  KVLVector<KVLSmartPtr<KVLCodeValue>>& values;
};

/// A value that holds `data`, to be returned from a body.
template <class Kind>
KVLSmartPtr<KVLCodeValue> AlphaResult(const typename Kind::Data& data) {
  return KVLSmartPtr<KVLCodeValue>(new AlphaScalarValue<Kind>("result", data));
}

/// A function made of its signature and a plain function that carries a call out.
class AlphaFunction : public KVLCodeFunction {
 public:
  using Body = KVLSmartPtr<KVLCodeValue> (*)(const AlphaArguments& arguments);

  enum Direction : unsigned int { In = 1, Out = 2, InOut = 3 };
  struct ParamType {
    const char* typeName;
    Direction direction = In;
  };
  enum Form { Free, Method };

  /// `initText` names the parameters and gives their defaults, as `KVLCodeFunction::Init` reads it.
  /// A default that its type does not read leaves a message for `Check`.
  AlphaFunction(const MRBUnicodeString& functionName, const char* returns,
                std::initializer_list<ParamType> types, const MRBUnicodeString& initText,
                Body functionBody, Form functionForm = Free);
  ~AlphaFunction() override;

  bool IsMethod() const override;
  /// A caller whose arguments hold the parameters' defaults.
  KVLSmartPtr<KVLCodeFunctionCaller> CreateCaller(const KVLCodeContext& context) const override;

  Body GetBody() const { return body; }

 protected:
  long InitImpl() override;

 private:
  const Body body;
  const Form form;
};

/// A value of one of the module's types, or of a pointer to the host's "KVLCodeContext" or
/// "KVLCodeSession"; null for another type name.
KVLSmartPtr<KVLCodeValue> AlphaMakeValue(const MRBUnicodeString& typeName,
                                         const MRBUnicodeString& valueName);

#endif
