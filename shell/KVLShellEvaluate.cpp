#include "KVLShellEvaluate.h"

#include "KVLShellCommand.h"
#include "KVLShellPath.h"
#include "KVLShellResult.h"
#include "KVLShellValue.h"
#include "KVLStringOperations.h"

namespace {

using Value = KVLSmartPtr<KVLCodeValue>;

bool IsTruth(const MRBUnicodeString& word) {
  return word == "true" || word == "false";
}

// The part of the text that an expression was written as.
MRBUnicodeString Written(const KVLShellExpression& expression, const KVLShellWork& work) {
  return work.text.SubString(expression.position, expression.end - expression.position);
}

KVLShellOutcome WithoutType(const char* what, const char* typeName, int position) {
  KVLShellOutcome outcome(
      KVLShellResult_Argument,
      MRBUnicodeString("no type '") + typeName + "' is registered for a " + what, position);
  outcome.expected = typeName;
  return outcome;
}

KVLShellOutcome UnknownVariable(const MRBUnicodeString& name, const KVLShellWork& work,
                                int position) {
  KVLShellOutcome outcome(KVLShellResult_NotFound,
                          "no session value '$" + KVLShellPrintable(name) + "'", position);
  outcome.got = "$" + name;
  KVLVector<MRBUnicodeString> names;
  work.session.GetVariableNames(names);
  const MRBUnicodeString nearest = KVLShellNearest(name, names);
  if (!nearest.IsEmpty()) outcome.suggestion = "$" + nearest;
  return outcome;
}

// The outcome for a word that leads nowhere.
KVLShellOutcome UnknownWord(const KVLShellExpression& word, const KVLShellWork& work) {
  KVLShellOutcome outcome = KVLShellNotFound("object", word.text, word.position);
  if (work.session.FindVariable(word.text)) outcome.suggestion = "$" + word.text;
  return outcome;
}

KVLShellOutcome EvaluateScalar(const KVLShellExpression& word, KVLShellWork& work, Value& value) {
  value = KVLShellReadScalar(work.context, word.text);
  if (value) return KVLShellOutcome();
  const char* const typeName = IsTruth(word.text) ? "bool" : "int";
  if (!KVLShellFindType(typeName)) return WithoutType("literal", typeName, word.position);
  KVLShellOutcome outcome(KVLShellResult_Argument,
                          "'" + KVLShellPrintable(word.text) + "' is no number, or too large",
                          word.position);
  outcome.expected = "double";
  outcome.got = word.text;
  return outcome;
}

KVLShellOutcome EvaluateWord(const KVLShellExpression& word, KVLShellWork& work, Value& value) {
  const KVLShellPlace place = KVLShellFind(word.text);
  if (place.object && place.object->AsVariable()) {
    value = place.object->AsVariable();
    return KVLShellOutcome();
  }
  if (KVLShellIsNumber(word.text) || IsTruth(word.text)) return EvaluateScalar(word, work, value);
  if (!place.IsFound()) return UnknownWord(word, work);
  const MRBUnicodeString shown = KVLShellPrintable(word.text);
  KVLShellOutcome outcome(KVLShellResult_Argument, "'" + shown + "' has no value", word.position);
  if (place.object && place.object->AsFunction()) {
    outcome.message += ": it is a function; '" + shown + "(...)' calls it";
  } else {
    outcome.message += "; 'info " + shown + "' tells what it is";
  }
  outcome.path = word.text;
  return outcome;
}

KVLShellOutcome EvaluateQuoted(const KVLShellExpression& quoted, KVLShellWork& work, Value& value) {
  const KVLSmartPtr<const KVLCodeType> type = KVLShellFindType("string");
  if (!type) return WithoutType("text", "string", quoted.position);
  // A text that begins with a quote would be taken for a quoted one.
  const bool isQuoted = KVLStringOperations::StartsWith(quoted.text, "\"");
  value =
      KVLShellReadAs(work.context, "string", isQuoted ? KVLShellQuote(quoted.text) : quoted.text);
  if (value) return KVLShellOutcome();
  return KVLShellOutcome(KVLShellResult_Argument, "the text is refused by the type 'string'",
                         quoted.position);
}

KVLShellOutcome EvaluateSession(const KVLShellExpression& name, KVLShellWork& work, Value& value) {
  value = work.session.FindVariable(name.text);
  return value ? KVLShellOutcome() : UnknownVariable(name.text, work, name.position);
}

// The text of a list from those of its elements. `elementTypeName`: theirs, empty when they differ.
KVLShellOutcome WriteList(const KVLShellExpression& list, KVLShellWork& work,
                          MRBUnicodeString& text, MRBUnicodeString& elementTypeName) {
  text = "[";
  bool isFirst = true;
  for (const KVLShellExpression& item : list.items) {
    if (KVLShellIsInterrupted()) {
      return KVLShellOutcome(KVLShellResult_Interrupted, "interrupted", list.position);
    }
    MRBUnicodeString itemText;
    MRBUnicodeString itemTypeName;
    if (item.kind == KVLShellExpression::Bracketed) {
      itemText = item.text;
    } else if (item.kind == KVLShellExpression::List) {
      MRBUnicodeString inner;
      const KVLShellOutcome outcome = WriteList(item, work, itemText, inner);
      if (!outcome.IsSuccess()) return outcome;
    } else {
      Value value;
      const KVLShellOutcome outcome = KVLShellEvaluate(item, work, value, nullptr);
      if (!outcome.IsSuccess()) return outcome;
      const long code = value->GetValueStr(work.context, itemText);
      if (KVLFailed(code)) {
        KVLShellOutcome unwritten(KVLResult_Failure,
                                  "the element cannot be written: " + KVLShellCodeText(code),
                                  item.position);
        unwritten.cause = code;
        return unwritten;
      }
      // A number stays as it was written.
      const bool isNumber = item.kind == KVLShellExpression::Word && KVLShellIsNumber(item.text);
      itemText = isNumber ? item.text : KVLShellElementText(*value, itemText);
      itemTypeName = value->GetTypeName();
    }
    if (!isFirst) text += ",";
    text += itemText;
    if (isFirst) {
      elementTypeName = itemTypeName;
    } else if (elementTypeName != itemTypeName) {
      elementTypeName = "";
    }
    isFirst = false;
  }
  text += "]";
  return KVLShellOutcome();
}

KVLShellOutcome EvaluateList(const KVLShellExpression& list, KVLShellWork& work, Value& value) {
  MRBUnicodeString text;
  MRBUnicodeString elementTypeName;
  const KVLShellOutcome outcome = WriteList(list, work, text, elementTypeName);
  if (!outcome.IsSuccess()) return outcome;
  value = KVLShellReadList(work.context, elementTypeName, text);
  if (value) return outcome;
  KVLShellOutcome refused(KVLShellResult_Argument,
                          "no list type is registered that reads '" + KVLShellPrintable(text) + "'",
                          list.position);
  refused.got = text;
  return refused;
}

// --- arguments ---

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
  const bool isLiteral = KVLShellIsNumber(word.text) || IsTruth(word.text);
  if (isLiteral && KVLShellHoldsAny(work.context, typeName)) {
    Value value;
    const KVLShellOutcome outcome = EvaluateScalar(word, work, value);
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
    const KVLShellOutcome unknown = UnknownWord(word, work);
    if (outcome.suggestion.IsEmpty()) outcome.suggestion = unknown.suggestion;
    return outcome;
  }
  KVLShellOutcome outcome = UnknownWord(word, work);
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
    const KVLShellOutcome outcome = EvaluateQuoted(quoted, work, value);
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
    const KVLShellOutcome outcome = EvaluateList(list, work, value);
    return outcome.IsSuccess() ? call.SetValue(i, value, list.position) : outcome;
  }
  MRBUnicodeString text;
  MRBUnicodeString elementTypeName;
  const KVLShellOutcome outcome = WriteList(list, work, text, elementTypeName);
  return outcome.IsSuccess() ? call.SetText(i, text, list.position, Written(list, work)) : outcome;
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
  KVLShellOutcome outcome = UnknownVariable(output.text, work, output.position);
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

KVLShellNode OutputNode(const MRBUnicodeString& name, const MRBUnicodeString& parameter,
                        const KVLShellNode& value) {
  KVLShellNode node = KVLShellNode::NewRecord();
  node.Set("name", name);
  node.Set("parameter", parameter);
  node.Set("type", *value.Find("type"));
  node.Set("text", *value.Find("text"));
  return node;
}

// The session value that takes output `i`, or null.
const KVLShellExpression* TakerOf(const KVLShellExpression& expression, int i,
                                  const KVLShellCall& call) {
  int place = 0;
  for (const KVLShellExpression& argument : expression.items) {
    const int parameter =
        argument.parameter.text.IsEmpty() ? place++ : call.FindParameter(argument.parameter.text);
    if (parameter == i) return argument.kind == KVLShellExpression::Output ? &argument : nullptr;
  }
  return nullptr;
}

KVLShellOutcome TakeOutputs(const KVLShellExpression& expression, KVLShellWork& work,
                            const KVLShellCall& call, KVLShellNode* outputs) {
  for (int i = 0; i < call.GetNbParameters(); ++i) {
    if (!call.IsOutput(i)) continue;
    const Value value = call.GetArgument(i);
    const KVLCodeFunction::Param& param = call.GetParam(i);
    if (!value) return call.Failed("no argument '" + param.name + "' comes back", 0);
    const KVLShellExpression* const taker = TakerOf(expression, i, call);
    if (taker) (void)work.session.SetVariable(taker->text, value);  // an identifier, and not null
    if (!outputs) continue;
    KVLShellNode node;
    const KVLShellOutcome outcome = call.Describe(*value, node);
    if (!outcome.IsSuccess()) return outcome;
    if (outputs->GetKind() == KVLShellNode::Null) *outputs = KVLShellNode::NewList();
    outputs->Append(OutputNode(taker ? taker->text : param.name, param.name, node));
  }
  return KVLShellOutcome();
}

KVLShellOutcome EvaluateCall(const KVLShellExpression& expression, KVLShellWork& work, Value& value,
                             KVLShellNode* outputs) {
  KVLShellCall call(work, expression.text, expression.position);
  KVLShellOutcome outcome = call.Prepare();
  if (outcome.IsSuccess()) outcome = KVLShellSetArguments(expression, work, call, nullptr);
  if (outcome.IsSuccess()) outcome = call.Complete(expression.end - 1);
  if (outcome.IsSuccess()) outcome = call.Run();
  if (!outcome.IsSuccess()) return outcome;
  value = call.GetResult();
  return TakeOutputs(expression, work, call, outputs);
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

KVLShellOutcome KVLShellEvaluate(const KVLShellExpression& expression, KVLShellWork& work,
                                 KVLSmartPtr<KVLCodeValue>& value, KVLShellNode* outputs) {
  switch (expression.kind) {
    case KVLShellExpression::Word:
      return EvaluateWord(expression, work, value);
    case KVLShellExpression::Quoted:
      return EvaluateQuoted(expression, work, value);
    case KVLShellExpression::List:
      return EvaluateList(expression, work, value);
    case KVLShellExpression::Session:
      return EvaluateSession(expression, work, value);
    case KVLShellExpression::Call:
      return EvaluateCall(expression, work, value, outputs);
    case KVLShellExpression::Bracketed:
      return KVLShellOutcome(
          KVLShellResult_Argument,
          "'" + KVLShellPrintable(expression.text) + "' has a type only as the argument of a call",
          expression.position);
    case KVLShellExpression::Output:
      return KVLShellOutcome(KVLShellResult_Usage, "'&' stands before an argument of a call",
                             expression.position);
    case KVLShellExpression::Open:
      return KVLShellOutcome(KVLShellResult_Usage,
                             "'_' keeps a parameter open, which only 'bind' can do",
                             expression.position);
  }
  return KVLShellOutcome(KVLResult_Failure, "no such expression", expression.position);
}

KVLShellOutcome KVLShellEvaluate(const KVLShellExpression& expression, KVLShellWork& work,
                                 KVLShellAnswer& answer) {
  KVLSmartPtr<KVLCodeValue> value;
  KVLShellNode outputs;
  KVLShellOutcome outcome = KVLShellEvaluate(expression, work, value, &outputs);
  if (!outcome.IsSuccess()) return outcome;
  MRBUnicodeString text;
  const long code = value->GetValueStr(work.context, text);
  if (KVLFailed(code)) {
    const bool isCall = expression.kind == KVLShellExpression::Call;
    const MRBUnicodeString subject =
        KVLShellPrintable(isCall ? expression.text : Written(expression, work));
    outcome = KVLShellOutcome(
        KVLResult_Failure,
        subject + (isCall ? ": the call failed with " : ": the value cannot be written: ") +
            KVLShellCodeText(code),
        expression.position);
    outcome.cause = code;
    return outcome;
  }
  answer.result = KVLShellNode::NewValue(value->GetTypeName(), text);
  if (outputs.GetKind() != KVLShellNode::Null) answer.result.Set("outputs", outputs);
  answer.layout = KVLShellAnswer::Value;
  return outcome;
}
