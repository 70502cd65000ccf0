#ifndef KVL_CODE_FUNCTION_H
#define KVL_CODE_FUNCTION_H

#include "KVLCodeObject.h"

class KVLCodeContext;
class KVLCodeFunctionCaller;

/// Describes something callable: its parameters and its return type. Modules derive from it, set
/// types and directions, and make the callers that carry calls out.
///
/// Thread rule: see `KVLRefCounted`.
class KVL_EXPORT KVLCodeFunction : public KVLCodeObject {
 public:
  /// The bits of a parameter's direction.
  enum Direction : unsigned int { Input = 1, Output = 2 };

  struct Param {
    MRBUnicodeString name;
    MRBUnicodeString typeName;      ///< as registered under "_types"
    MRBUnicodeString defaultValue;  ///< as text; empty when there is no default
    unsigned int direction = 0;     ///< `Direction` bits
  };

  /// Without parameters.
  explicit KVLCodeFunction(const MRBUnicodeString& name);
  /// With `nbParams` parameters (none below 1), named "param1", "param2", ...
  KVLCodeFunction(const MRBUnicodeString& name, int nbParams);
  KVLCodeFunction(const KVLCodeFunction&) = default;
  KVLCodeFunction& operator=(const KVLCodeFunction&) = default;
  ~KVLCodeFunction() override;

  KVLCodeFunction* AsFunction() override;
  const KVLCodeFunction* AsFunction() const override;
  /// For diagnostics: "Function { name=f, returnType=int, params=[[in] double x=1, [out] int r])".
  MRBUnicodeString ToString() const override;
  /// A declaration: "int f(double x=1, int& r)".
  MRBUnicodeString ToStringCode() const override;

  /// Names the declared parameters in their order and gives them defaults. `text` is a list of
  /// items `name`, `name = default`, `= default` or nothing, separated by "," outside brackets and
  /// quotes; blanks around name and default do not count. Parameters that it does not reach stay as
  /// they are. Surplus items and empty defaults leave a message for `Check` and fail nothing.
  /// Returns what `InitImpl` returns, or the code of a failed split, and then nothing has changed.
  virtual long Init(const MRBUnicodeString& text);
  /// True when the first parameter is the object that the function works on.
  virtual bool IsMethod() const = 0;
  /// A new caller with its arguments in place, or null. `context` is borrowed and must outlive it.
  virtual KVLSmartPtr<KVLCodeFunctionCaller> CreateCaller(const KVLCodeContext& context) const = 0;

  const KVLVector<Param>& GetParams() const { return params; }
  /// Parameter `i`, 0 .. GetNbParameters() - 1.
  const Param& GetParam(int i) const { return params[i]; }
  int GetNbParameters() const { return params.GetCount(); }
  const MRBUnicodeString& GetReturnTypeName() const { return returnTypeName; }

  /// Calls the function from texts, one a parameter in order; trailing ones may be left out. Input
  /// parameters are read from their text, output parameters written back to theirs, the returned
  /// value to `result`.
  ///
  /// Returns 0; 0x80070057, and nothing is called, when there are more texts than parameters;
  /// 0x80004005 when no caller, no argument or no returned value comes back; otherwise the negative
  /// code of the argument that could not be read or the value that could not be written. Texts are
  /// written only after a call that returned a value. Exceptions of the function pass through.
  long ParseAndCall(const KVLCodeContext& context, KVLVector<MRBUnicodeString>& texts,
                    MRBUnicodeString& result) const;

 protected:
  /// Called last by `Init`, whose result is this one's; returns 0 here.
  virtual long InitImpl();

  KVLVector<Param> params;
  MRBUnicodeString returnTypeName;
};

#endif
