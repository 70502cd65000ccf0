#ifndef KVL_CODE_FUNCTION_CALLER_WITH_CONTEXT_H
#define KVL_CODE_FUNCTION_CALLER_WITH_CONTEXT_H

#include "KVLCodeFunctionCallerBinding.h"

class KVLCodeFunctionWithContext;

/// Calls a context-bound function: fills its hidden arguments with the context and its session.
class KVL_EXPORT KVLCodeFunctionCallerWithContext : public KVLCodeFunctionCallerBinding {
 public:
  KVLCodeFunctionCallerWithContext(const KVLCodeFunctionWithContext& function,
                                   const KVLCodeContext& context);
  /// The copy shares the wrapped function's caller.
  KVLCodeFunctionCallerWithContext(const KVLCodeFunctionCallerWithContext& other);
  ~KVLCodeFunctionCallerWithContext() override;
};

#endif
