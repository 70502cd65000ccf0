#ifndef KVL_CODE_FUNCTION_WITH_CONTEXT_H
#define KVL_CODE_FUNCTION_WITH_CONTEXT_H

#include "KVLCodeFunctionBinding.h"

/// A function whose parameters of the types "KVLCodeContext" and "KVLCodeSession" are hidden: a
/// caller fills them, when it is made, with its context and that context's session.
class KVL_EXPORT KVLCodeFunctionWithContext : public KVLCodeFunctionBinding {
 public:
  explicit KVLCodeFunctionWithContext(KVLCodeFunction& func);
  ~KVLCodeFunctionWithContext() override;

  KVLSmartPtr<KVLCodeFunctionCaller> CreateCaller(const KVLCodeContext& context) const override;
};

#endif
