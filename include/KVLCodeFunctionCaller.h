#ifndef KVL_CODE_FUNCTION_CALLER_H
#define KVL_CODE_FUNCTION_CALLER_H

#include "KVLCodeFunction.h"
#include "KVLCodeValue.h"
#include "KVLResult.h"

/// One call in the making: holds the arguments, makes the call and keeps what it returned. A
/// function makes its own callers (`KVLCodeFunction::CreateCaller`); the deriving class fills
/// `args`, one value a parameter, and implements `CallInternal`.
///
/// A caller shares its function and borrows the context, which must outlive it. Setting an argument
/// changes the argument object and never replaces it. A caller may be called again and again.
///
/// Thread rule: a caller and its arguments belong to one thread at a time.
///
///     KVLSmartPtr<KVLCodeFunctionCaller> caller = function.CreateCaller(context);
///     caller->SetArgStr(0, "3.5");
///     caller->Call();
///     caller->GetReturnedValueStr(text);
class KVL_EXPORT KVLCodeFunctionCaller : public KVLCodeObject {
 public:
  /// A caller named as the function, without arguments. Shares the function.
  KVLCodeFunctionCaller(const KVLCodeFunction& calledFunction, const KVLCodeContext& callContext)
      : KVLCodeObject(calledFunction.GetName()), context(&callContext), function(&calledFunction) {}
  /// The copy shares the argument objects and the returned value.
  KVLCodeFunctionCaller(const KVLCodeFunctionCaller& other);
  KVLCodeFunctionCaller& operator=(const KVLCodeFunctionCaller&) = delete;
  ~KVLCodeFunctionCaller() override;

  /// True.
  bool IsReady() const;
  const KVLCodeFunction& GetFunction() const;

  int GetNbArgs() { return args.GetCount(); }
  /// The argument objects, shared.
  KVLVector<KVLSmartPtr<KVLCodeValue>> GetArgs();
  /// Argument `i`, or null when there is none.
  KVLSmartPtr<KVLCodeValue> GetArg(int i) {
    return i >= 0 && i < args.GetCount() ? args[i] : KVLSmartPtr<KVLCodeValue>();
  }
  /// Writes argument `i` to `text`. Returns what the value returns, or 0x80004005 when there is no
  /// such argument.
  long GetArgStr(int i, MRBUnicodeString& text);
  /// Assigns `value`, through a conversion where the types differ, to argument `i`. Returns 0, the
  /// negative code of the assignment, or 0x80004005 when either is missing.
  long SetArg(int i, KVLSmartPtr<const KVLCodeValue> value) {
    const KVLSmartPtr<KVLCodeValue> arg = GetArg(i);
    if (!arg || !value) return KVLResult_Failure;
    const long result = arg->AssignFrom(*context, *value);
    return KVLFailed(result) ? result : KVLResult_Success;
  }
  /// Sets argument `i` from `text`. Returns what the value returns, or 0x80004005 when there is no
  /// such argument.
  long SetArgStr(int i, const MRBUnicodeString& text);

  /// Makes the call and keeps the returned value in place of the former one. Returns 0. Throws
  /// `std::runtime_error` ("Calling method on null pointer") when the function is a method and its
  /// object argument designates no object; exceptions of the function pass through. The former
  /// returned value stays when an exception passes.
  long Call() {
    if (function->IsMethod()) RefuseNullObject();
    returnedValue = CallInternal();
    return KVLResult_Success;
  }

  /// What the last call returned; null before the first call, and when it returned nothing.
  KVLSmartPtr<KVLCodeValue> GetReturnedValue() const { return returnedValue; }
  /// Writes the returned value to `text`. Returns what the value returns, or 0x80004005 when there
  /// is none.
  long GetReturnedValueStr(MRBUnicodeString& text) const;

 protected:
  /// Carries the call out and returns the returned value, or null.
  virtual KVLSmartPtr<KVLCodeValue> CallInternal() = 0;

  const KVLCodeContext* context;
  KVLSmartPtr<const KVLCodeFunction> function;
  KVLVector<KVLSmartPtr<KVLCodeValue>> args;
  KVLSmartPtr<KVLCodeValue> returnedValue;

 private:
  void RefuseNullObject();
};

#endif
