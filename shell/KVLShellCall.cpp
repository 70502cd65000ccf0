#include "KVLShellCall.h"

#include <exception>

#include "KVLCodeValue.h"
#include "KVLShellPath.h"
#include "KVLShellResult.h"
#include "KVLShellValue.h"

namespace {

constexpr int MostChoices = 12;  // values of an enumeration that a message lists

}  // namespace

KVLShellCall::KVLShellCall(const KVLShellWork& shellWork, const MRBUnicodeString& path,
                           int position)
    : work(shellWork), functionPath(path), functionPosition(position) {}

KVLShellOutcome KVLShellCall::Prepare() {
  const KVLShellPlace place = KVLShellFind(functionPath);
  if (!place.IsFound()) return KVLShellNotFound("function", functionPath, functionPosition);
  if (!place.object || !place.object->AsFunction()) {
    KVLShellOutcome outcome(KVLShellResult_NotFound,
                            "'" + KVLShellPrintable(functionPath) + "' is not a function",
                            functionPosition);
    outcome.path = functionPath;
    return outcome;
  }
  function = place.object;
  try {
    caller = GetFunction().CreateCaller(work.context);
  } catch (const std::exception& exception) {
    return Failed(exception.what(), 0);
  }
  if (!caller) return Failed("the function makes no caller", 0);
  for (int i = 0; i < GetNbParameters(); ++i)
    isSet.Append(false);
  return KVLShellOutcome();
}

int KVLShellCall::FindParameter(const MRBUnicodeString& parameterName) const {
  for (int i = 0; i < GetNbParameters(); ++i)
    if (GetParam(i).name == parameterName) return i;
  return -1;
}

KVLShellOutcome KVLShellCall::SetText(int i, const MRBUnicodeString& argumentText, int position,
                                      const MRBUnicodeString& given) {
  const KVLSmartPtr<KVLCodeValue> argument = caller->GetArg(i);
  if (!argument) {
    const KVLCodeFunction::Param& param = GetParam(i);
    return Failed("no argument '" + param.name + "' of type '" + param.typeName + "' is made", 0);
  }
  const long code = argument->SetValueStr(work.context, argumentText);
  if (KVLFailed(code)) return Unread(i, given, position, code);
  isSet[i] = true;
  return KVLShellOutcome();
}

KVLShellOutcome KVLShellCall::SetValue(int i, KVLSmartPtr<KVLCodeValue> value, int position) {
  const bool isLooped =
      value->GetTypeName() != GetParam(i).typeName && KVLShellDescendsInALoop(value->GetTypeName());
  const long code = isLooped ? KVLResult_Failure : caller->SetArg(i, value);
  if (!KVLFailed(code)) {
    isSet[i] = true;
    return KVLShellOutcome();
  }
  MRBUnicodeString text;
  (void)value->GetValueStr(work.context, text);  // a text is nice to have
  const KVLCodeFunction::Param& param = GetParam(i);
  KVLShellOutcome outcome =
      Refused("argument '" + param.name + "' expects " + param.typeName + ", got '" +
                  KVLShellPrintable(text) + "' of type " + value->GetTypeName(),
              position);
  outcome.parameter = param.name;
  outcome.expected = param.typeName;
  outcome.got = text;
  outcome.cause = code;
  return outcome;
}

bool KVLShellCall::TrySetText(int i, const MRBUnicodeString& argumentText) {
  const KVLSmartPtr<KVLCodeValue> argument = caller->GetArg(i);
  if (!argument || KVLFailed(argument->SetValueStr(work.context, argumentText))) return false;
  isSet[i] = true;
  return true;
}

KVLShellOutcome KVLShellCall::Complete(int end) {
  for (int i = 0; i < GetNbParameters(); ++i) {
    if (isSet[i] || !IsInput(i)) continue;
    const KVLCodeFunction::Param& param = GetParam(i);
    if (param.defaultValue.IsEmpty()) {
      KVLShellOutcome outcome =
          Refused("argument '" + param.name + "' (" + param.typeName + ") is missing", end);
      outcome.parameter = param.name;
      outcome.expected = param.typeName;
      outcome.isMissing = true;
      return outcome;
    }
    const KVLShellOutcome outcome = SetText(i, param.defaultValue, -1, param.defaultValue);
    if (!outcome.IsSuccess()) return outcome;
  }
  return KVLShellOutcome();
}

KVLShellOutcome KVLShellCall::Run() {
  if (KVLShellIsInterrupted()) return Interrupted();
  try {
    const long code = caller->Call();
    if (KVLFailed(code)) return Failed("the call failed with " + KVLShellCodeText(code), code);
  } catch (const std::exception& exception) {
    return KVLShellIsInterrupted() ? Interrupted() : Failed(exception.what(), 0);
  } catch (...) {
    return Failed("the function threw something that is no std::exception", 0);
  }
  if (caller->GetReturnedValue()) return KVLShellOutcome();
  return Failed("the call failed with " + KVLShellCodeText(KVLResult_Failure), KVLResult_Failure);
}

KVLShellOutcome KVLShellCall::Describe(const KVLCodeValue& value, KVLShellNode& node) const {
  MRBUnicodeString text;
  const long code = value.GetValueStr(work.context, text);
  if (KVLFailed(code)) return Failed("the call failed with " + KVLShellCodeText(code), code);
  node = KVLShellNode::NewValue(value.GetTypeName(), text);
  return KVLShellOutcome();
}

KVLShellOutcome KVLShellCall::Refused(const MRBUnicodeString& message, int position) const {
  KVLShellOutcome outcome(KVLShellResult_Argument, KVLShellPrintable(functionPath) + ": " + message,
                          position);
  outcome.path = functionPath;
  return outcome;
}

KVLShellOutcome KVLShellCall::Failed(const MRBUnicodeString& message, long cause) const {
  KVLShellOutcome outcome(KVLResult_Failure, KVLShellPrintable(functionPath) + ": " + message,
                          functionPosition);
  outcome.path = functionPath;
  outcome.cause = cause;
  return outcome;
}

KVLShellOutcome KVLShellCall::Unread(int i, const MRBUnicodeString& given, int position,
                                     long cause) const {
  const KVLCodeFunction::Param& param = GetParam(i);
  const KVLSmartPtr<const KVLCodeType> type = KVLShellFindType(param.typeName);
  KVLVector<MRBUnicodeString> names;
  MRBUnicodeString choices;
  if (type && type->GetEnumValues(names) && names.GetCount() <= MostChoices) {
    for (const MRBUnicodeString& name : names)
      choices += (choices.IsEmpty() ? " (" : ", ") + name;
    choices += ")";
  }
  KVLShellOutcome outcome = Refused("argument '" + param.name + "' expects " + param.typeName +
                                        choices + ", got '" + KVLShellPrintable(given) + "'",
                                    position);
  outcome.parameter = param.name;
  outcome.expected = param.typeName;
  outcome.got = given;
  outcome.cause = cause;
  outcome.suggestion = KVLShellNearest(given, names);
  return outcome;
}

KVLShellOutcome KVLShellCall::Interrupted() const {
  KVLShellOutcome outcome(KVLShellResult_Interrupted,
                          KVLShellPrintable(functionPath) + ": interrupted", functionPosition);
  outcome.path = functionPath;
  return outcome;
}
