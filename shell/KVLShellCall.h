#ifndef KVL_SHELL_CALL_H
#define KVL_SHELL_CALL_H

#include "KVLCodeFunction.h"
#include "KVLCodeFunctionCaller.h"
#include "KVLShellOutcome.h"
#include "KVLShellWork.h"

/// One call in the making, whether its arguments are written as words or as expressions: knows the
/// parameters by name, fills in the defaults, and turns whatever goes wrong into outcomes that name
/// function, parameter, expected type and given text.
class KVLShellCall {
 public:
  /// `path`: the function's, as the user wrote it; `position`: where.
  KVLShellCall(const KVLShellWork& shellWork, const MRBUnicodeString& path, int position);

  /// Finds the function and makes its caller: before everything else.
  KVLShellOutcome Prepare();

  const KVLCodeFunction& GetFunction() const { return *function->AsFunction(); }
  const KVLCodeFunction::Param& GetParam(int i) const { return GetFunction().GetParam(i); }
  int GetNbParameters() const { return GetFunction().GetNbParameters(); }
  bool IsInput(int i) const { return (GetParam(i).direction & KVLCodeFunction::Input) != 0; }
  bool IsOutput(int i) const { return (GetParam(i).direction & KVLCodeFunction::Output) != 0; }
  /// The parameter of that name, or -1.
  int FindParameter(const MRBUnicodeString& parameterName) const;
  bool IsSet(int i) const { return isSet[i]; }

  /// Sets argument `i` from its text, or from a value through a conversion. `position`: of the
  /// argument in the text, -1 when it is not there. `given`: the argument as it was written.
  KVLShellOutcome SetText(int i, const MRBUnicodeString& argumentText, int position,
                          const MRBUnicodeString& given);
  KVLShellOutcome SetValue(int i, KVLSmartPtr<KVLCodeValue> value, int position);
  /// True when argument `i` has taken the text.
  bool TrySetText(int i, const MRBUnicodeString& argumentText);

  /// Sets what was left out to its default. `end`: where a missing argument would stand.
  KVLShellOutcome Complete(int end);
  /// Makes the call. Exceptions are outcomes, and so is a call that returns nothing.
  KVLShellOutcome Run();

  /// After `Run`. The value returned, never null.
  KVLSmartPtr<KVLCodeValue> GetResult() const { return caller->GetReturnedValue(); }
  KVLSmartPtr<KVLCodeValue> GetArgument(int i) const { return caller->GetArg(i); }
  /// A value of the call as an answer shows it; one that cannot be written is a failure.
  KVLShellOutcome Describe(const KVLCodeValue& value, KVLShellNode& node) const;

  KVLShellOutcome Refused(const MRBUnicodeString& message, int position) const;
  KVLShellOutcome Failed(const MRBUnicodeString& message, long cause) const;

 private:
  KVLShellOutcome Unread(int i, const MRBUnicodeString& given, int position, long cause) const;
  KVLShellOutcome Interrupted() const;

  const KVLShellWork& work;
  const MRBUnicodeString functionPath;
  const int functionPosition;
  KVLSmartPtr<KVLCodeObject> function;
  KVLSmartPtr<KVLCodeFunctionCaller> caller;
  KVLVector<bool> isSet;
};

#endif
