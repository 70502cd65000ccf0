#ifndef KVL_CODE_FUNCTION_CALLER_BINDING_H
#define KVL_CODE_FUNCTION_CALLER_BINDING_H

#include "KVLCodeFunctionCaller.h"

class KVLCodeFunctionBinding;

/// Calls a binding through a caller of the wrapped function, whose open arguments it exposes as its
/// own.
class KVL_EXPORT KVLCodeFunctionCallerBinding : public KVLCodeFunctionCaller {
 public:
  /// Copies the fixed values into the wrapped function's arguments, as far as they can be assigned.
  KVLCodeFunctionCallerBinding(const KVLCodeFunctionBinding& binding,
                               const KVLCodeContext& context);
  /// The copy shares the wrapped function's caller.
  KVLCodeFunctionCallerBinding(const KVLCodeFunctionCallerBinding& other);
  ~KVLCodeFunctionCallerBinding() override;

 protected:
  /// Calls the wrapped function, then copies its outputs back into the values that fix them.
  KVLSmartPtr<KVLCodeValue> CallInternal() override;

  KVLSmartPtr<const KVLCodeFunctionBinding> binding;
  KVLSmartPtr<KVLCodeFunctionCaller> innerCaller;  // null when the function made none
};

#endif
