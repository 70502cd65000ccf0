#include "KVLShellCommand.h"
#include "KVLShellEvaluate.h"
#include "KVLShellPath.h"
#include "KVLShellResult.h"
#include "KVLShellValue.h"
#include "KVLStringOperations.h"

namespace {

using Value = KVLSmartPtr<KVLCodeValue>;

// An argument whose kind depends on what the parameter takes.
KVLShellOutcome SetWord(const KVLShellExpression& word, int i, KVLShellWork& work,
                        KVLShellCall& call) {
  const MRBUnicodeString& typeName = call.GetParam(i).typeName;
  const KVLSmartPtr<const KVLCodeType> type = KVLShellFindType(typeName);
  KVLVector<MRBUnicodeString> names;
  if (type && type->GetEnumValues(names)) {
    for (const MRBUnicodeString& name : names)
      if (name == word.text) return call.SetText(i, word.text, word.position, word.text);
  }
  const KVLShellPlace place = KVLShellFind(word.text);
  if (place.object && place.object->AsVariable()) {
    return call.SetValue(i, place.object->AsVariable(), word.position);
  }
  const bool isLiteral = KVLShellIsNumber(word.text) || KVLShellIsTruth(word.text);
  if (isLiteral && KVLShellHoldsAny(work.context, typeName)) {
    Value value;
    const KVLShellOutcome outcome = KVLShellEvaluate(word, work, value, nullptr);
    return outcome.IsSuccess() ? call.SetValue(i, value, word.position) : outcome;
  }
  // A text without quotes may be a mistyped path.
  const bool takesText = typeName == "string" || KVLShellHoldsAny(work.context, typeName);
  if (isLiteral || (place.IsFound() && !takesText) || (place.object && takesText)) {
    return call.SetText(i, word.text, word.position, word.text);
  }
  const bool isPath =
      KVLStringOperations::GetCharAt(word.text, 0) == '/' || word.text.FindPosition("/", 0) != 0;
  if (!takesText && call.TrySetText(i, word.text)) return KVLShellOutcome();
  if (!takesText && !isPath) {
    KVLShellOutcome outcome = call.SetText(i, word.text, word.position, word.text);
    const KVLShellOutcome unknown = KVLShellUnknownWord(word, work);
    if (outcome.suggestion.IsEmpty()) outcome.suggestion = unknown.suggestion;
    return outcome;
  }
  KVLShellOutcome outcome = KVLShellUnknownWord(word, work);
  if (takesText) {
    outcome.message += " (a text is written \"" + KVLShellPrintable(word.text) + "\")";
  }
  outcome.parameter = call.GetParam(i).name;
  outcome.expected = typeName;
  return outcome;
}

KVLShellOutcome SetQuoted(const KVLShellExpression& quoted, int i, KVLShellWork& work,
                          KVLShellCall& call) {
  const MRBUnicodeString& typeName = call.GetParam(i).typeName;
  if (KVLShellHoldsAny(work.context, typeName)) {
    Value value;
    const KVLShellOutcome outcome = KVLShellEvaluate(quoted, work, value, nullptr);
    return outcome.IsSuccess() ? call.SetValue(i, value, quoted.position) : outcome;
  }
  const bool isRequoted =
      typeName == "string" && KVLStringOperations::StartsWith(quoted.text, "\"");
  return call.SetText(i, isRequoted ? KVLShellQuote(quoted.text) : quoted.text, quoted.position,
                      quoted.text);
}

KVLShellOutcome SetList(const KVLShellExpression& list, int i, KVLShellWork& work,
                        KVLShellCall& call) {
  if (KVLShellHoldsAny(work.context, call.GetParam(i).typeName)) {
    Value value;
    const KVLShellOutcome outcome = KVLShellEvaluate(list, work, value, nullptr);
    return outcome.IsSuccess() ? call.SetValue(i, value, list.position) : outcome;
  }
  KVLShellListTexts texts;
  const KVLShellOutcome outcome = KVLShellWriteList(list, work, texts);
  const bool takesAny = KVLShellIsListOfAny(work.context, call.GetParam(i).typeName);
  return outcome.IsSuccess()
             ? call.SetText(i, takesAny ? texts.any : texts.typed, list.position,
                            work.text.SubString(list.position, list.end - list.position))
             : outcome;
}

// The present value of what a call is to change; none is needed where the parameter only gives.
KVLShellOutcome SetOutput(const KVLShellExpression& output, int i, KVLShellWork& work,
                          KVLShellCall& call) {
  const KVLCodeFunction::Param& param = call.GetParam(i);
  if (!call.IsOutput(i)) {
    KVLShellOutcome outcome = call.Refused("argument '" + param.name + "' is no output; '$" +
                                               output.text + "' stands for a session value",
                                           output.position);
    outcome.parameter = param.name;
    return outcome;
  }
  if (!call.IsInput(i)) return KVLShellOutcome();
  const Value value = work.session.FindVariable(output.text);
  if (value) return call.SetValue(i, value, output.position);
  if (!param.defaultValue.IsEmpty()) return KVLShellOutcome();
  KVLShellOutcome outcome = KVLShellUnknownVariable(output.text, work, output.position);
  outcome.message += ", and argument '" + param.name + "' is read as well";
  return outcome;
}

KVLShellOutcome SetArgument(const KVLShellExpression& argument, int i, KVLShellWork& work,
                            KVLShellCall& call) {
  if (argument.kind == KVLShellExpression::Output) return SetOutput(argument, i, work, call);
  if (!call.IsInput(i)) {
    const MRBUnicodeString& name = call.GetParam(i).name;
    KVLShellOutcome outcome =
        call.Refused("argument '" + name + "' is an output; '&name' takes it into a session value",
                     argument.position);
    outcome.parameter = name;
    return outcome;
  }
  switch (argument.kind) {
    case KVLShellExpression::Word:
      return SetWord(argument, i, work, call);
    case KVLShellExpression::Quoted:
      return SetQuoted(argument, i, work, call);
    case KVLShellExpression::Bracketed:
      return call.SetText(i, argument.text, argument.position, argument.text);
    case KVLShellExpression::List:
      return SetList(argument, i, work, call);
    case KVLShellExpression::Session:
    case KVLShellExpression::Call:
    case KVLShellExpression::Output:
    case KVLShellExpression::Open:
      break;
  }
  Value value;
  const KVLShellOutcome outcome = KVLShellEvaluate(argument, work, value, nullptr);
  return outcome.IsSuccess() ? call.SetValue(i, value, argument.position) : outcome;
}

MRBUnicodeString CountOf(int arguments) {
  return KVLStringOperations::FromNum(arguments) + (arguments == 1 ? " argument" : " arguments");
}

// The parameter that an argument is for, or -1 and an outcome. `place`: of the next argument
// without a name; -1 once there was one with a name.
int ParameterOf(const KVLShellExpression& argument, int nbGiven, int& place,
                const KVLShellCall& call, KVLShellOutcome& outcome) {
  const MRBUnicodeString& name = argument.parameter.text;
  if (name.IsEmpty()) {
    if (place < 0) {
      outcome =
          call.Refused("an argument without a name follows one with a name", argument.position);
      return -1;
    }
    if (place < call.GetNbParameters()) return place++;
    outcome = call.Refused("takes " + CountOf(call.GetNbParameters()) + ", got " +
                               KVLStringOperations::FromNum(nbGiven),
                           argument.position);
    return -1;
  }
  place = -1;
  const int i = call.FindParameter(name);
  if (i >= 0) return i;
  KVLVector<MRBUnicodeString> names;
  MRBUnicodeString list;
  for (const KVLCodeFunction::Param& param : call.GetFunction().GetParams()) {
    list += (names.IsEmpty() ? " among " : ", ") + param.name;
    names.Append(param.name);
  }
  outcome = call.Refused("no parameter '" + KVLShellPrintable(name) + "'" + list,
                         argument.parameter.position);
  outcome.parameter = name;
  outcome.suggestion = KVLShellNearest(name, names);
  return -1;
}

}  // namespace

KVLShellOutcome KVLShellSetArguments(const KVLShellExpression& expression, KVLShellWork& work,
                                     KVLShellCall& call, KVLVector<int>* openParameters) {
  int place = 0;
  KVLVector<bool> isTaken;
  isTaken.Resize(call.GetNbParameters());
  const int nbGiven = static_cast<int>(expression.items.size());
  for (const KVLShellExpression& argument : expression.items) {
    KVLShellOutcome outcome;
    const int i = ParameterOf(argument, nbGiven, place, call, outcome);
    if (i < 0) return outcome;
    if (isTaken[i]) {
      outcome = call.Refused("argument '" + call.GetParam(i).name + "' is given twice",
                             argument.parameter.position);
      outcome.parameter = call.GetParam(i).name;
      return outcome;
    }
    isTaken[i] = true;
    if (openParameters && argument.kind == KVLShellExpression::Open) {
      openParameters->Append(i);
      continue;
    }
    outcome = SetArgument(argument, i, work, call);
    if (!outcome.IsSuccess()) return outcome;
  }
  return KVLShellOutcome();
}
