#ifndef KVL_CODE_FUNCTION_BINDING_H
#define KVL_CODE_FUNCTION_BINDING_H

#include "KVLCodeFunction.h"
#include "KVLCodeValue.h"

/// A function made from another one by fixing some of its arguments: its parameters are those left
/// open, in their order. Bind the object of a method, and a plain function remains.
///
/// Shares the function and the fixed values, which also receive what the function gives back
/// through the parameters they fix: a fixed object that a method changes is changed in place.
/// Does not change after its construction.
class KVL_EXPORT KVLCodeFunctionBinding : public KVLCodeFunction {
 public:
  /// Fixes parameter i of `func` by values[i], where that is there and not null.
  KVLCodeFunctionBinding(KVLCodeFunction& func,
                         const KVLVector<KVLSmartPtr<const KVLCodeValue>>& values);
  /// Fixes the first parameter by `value`; null binds nothing.
  KVLCodeFunctionBinding(KVLCodeFunction& func, KVLSmartPtr<const KVLCodeValue> value);
  /// The copy shares the function and the fixed values.
  KVLCodeFunctionBinding(const KVLCodeFunctionBinding&) = default;
  KVLCodeFunctionBinding& operator=(const KVLCodeFunctionBinding&) = delete;
  ~KVLCodeFunctionBinding() override;

  /// Returns 0x80004001 and changes nothing: the parameters are the function's.
  long Init(const MRBUnicodeString& text) override;
  /// True when the function is a method and its object is left open.
  bool IsMethod() const override;
  KVLSmartPtr<KVLCodeFunctionCaller> CreateCaller(const KVLCodeContext& context) const override;

  KVLCodeFunction& GetBindedFunc() const { return *bindedFunc; }
  /// One entry a parameter of the function, null where it is open; missing entries count as null.
  const KVLVector<KVLSmartPtr<const KVLCodeValue>>& GetBindedValues() const { return bindedValues; }

 protected:
  /// Rebuilds parameters and return type from the function's.
  void InitBindings();

 private:
  KVLSmartPtr<KVLCodeFunction> bindedFunc;
  KVLVector<KVLSmartPtr<const KVLCodeValue>> bindedValues;
};

#endif
