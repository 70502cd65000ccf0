#include "KVLShellEvaluate.h"

#include "KVLShellCommand.h"
#include "KVLShellPath.h"
#include "KVLShellResult.h"
#include "KVLShellValue.h"
#include "KVLStringOperations.h"

namespace {

using Value = KVLSmartPtr<KVLCodeValue>;

// The part of the text that an expression was written as.
MRBUnicodeString Written(const KVLShellExpression& expression, const KVLShellWork& work) {
  return work.text.SubString(expression.position, expression.end - expression.position);
}

KVLShellOutcome WithoutType(const char* what, const char* typeName, int position) {
  KVLShellOutcome outcome(
      KVLShellResult_Argument,
      MRBUnicodeString("no type '") + typeName + "' is registered for a " + what, position);
  outcome.expected = typeName;
  outcome.isMissing = true;
  return outcome;
}

KVLShellOutcome EvaluateScalar(const KVLShellExpression& word, KVLShellWork& work, Value& value) {
  value = KVLShellReadScalar(work.context, word.text);
  if (value) return KVLShellOutcome();
  const char* const typeName = KVLShellIsTruth(word.text) ? "bool" : "int";
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
  if (KVLShellIsNumber(word.text) || KVLShellIsTruth(word.text))
    return EvaluateScalar(word, work, value);
  if (!place.IsFound()) return KVLShellUnknownWord(word, work);
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
  return value ? KVLShellOutcome() : KVLShellUnknownVariable(name.text, work, name.position);
}

KVLShellOutcome EvaluateList(const KVLShellExpression& list, KVLShellWork& work, Value& value) {
  KVLShellListTexts texts;
  const KVLShellOutcome outcome = KVLShellWriteList(list, work, texts);
  if (!outcome.IsSuccess()) return outcome;
  value = KVLShellReadList(work.context, texts);
  if (value) return outcome;
  KVLShellOutcome refused(
      KVLShellResult_Argument,
      "no list type is registered that reads '" + KVLShellPrintable(texts.typed) + "'",
      list.position);
  refused.got = texts.typed;
  return refused;
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

bool IsLiteral(const KVLShellExpression& expression) {
  return expression.kind == KVLShellExpression::Quoted ||
         (expression.kind == KVLShellExpression::Word &&
          (KVLShellIsNumber(expression.text) || KVLShellIsTruth(expression.text)));
}

// The texts of one element, and its type.
KVLShellOutcome WriteElement(const KVLShellExpression& item, KVLShellWork& work,
                             KVLShellListTexts& element) {
  if (item.kind == KVLShellExpression::Bracketed) {
    element.typed = item.text;
    element.any = item.text;
    return KVLShellOutcome();
  }
  if (item.kind == KVLShellExpression::List) {
    const KVLShellOutcome outcome = KVLShellWriteList(item, work, element);
    element.elementTypeName = "";
    return outcome;
  }
  Value value;
  const KVLShellOutcome outcome = KVLShellEvaluate(item, work, value, nullptr);
  if (!outcome.IsSuccess()) return outcome;
  MRBUnicodeString text;
  const long code = value->GetValueStr(work.context, text);
  if (KVLFailed(code)) {
    KVLShellOutcome unwritten(KVLResult_Failure,
                              "the element cannot be written: " + KVLShellCodeText(code),
                              item.position);
    unwritten.cause = code;
    return unwritten;
  }
  // A number stays as it was written.
  const bool isNumber = item.kind == KVLShellExpression::Word && KVLShellIsNumber(item.text);
  element.typed = isNumber ? item.text : KVLShellElementText(*value, text);
  element.any =
      IsLiteral(item) ? element.typed : KVLShellAnyElementText(work.context, *value, element.typed);
  element.elementTypeName = value->GetTypeName();
  return KVLShellOutcome();
}

}  // namespace

KVLShellOutcome KVLShellUnknownVariable(const MRBUnicodeString& name, const KVLShellWork& work,
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

KVLShellOutcome KVLShellUnknownWord(const KVLShellExpression& word, const KVLShellWork& work) {
  KVLShellOutcome outcome = KVLShellNotFound("object", word.text, word.position);
  if (work.session.FindVariable(word.text)) outcome.suggestion = "$" + word.text;
  return outcome;
}

KVLShellOutcome KVLShellWriteList(const KVLShellExpression& list, KVLShellWork& work,
                                  KVLShellListTexts& texts) {
  texts.typed = "[";
  texts.any = "[";
  bool isFirst = true;
  for (const KVLShellExpression& item : list.items) {
    if (KVLShellIsInterrupted()) {
      return KVLShellOutcome(KVLShellResult_Interrupted, "interrupted", list.position);
    }
    KVLShellListTexts element;
    const KVLShellOutcome outcome = WriteElement(item, work, element);
    if (!outcome.IsSuccess()) return outcome;
    if (!isFirst) {
      texts.typed += ",";
      texts.any += ",";
    }
    texts.typed += element.typed;
    texts.any += element.any;
    if (isFirst) {
      texts.elementTypeName = element.elementTypeName;
    } else if (texts.elementTypeName != element.elementTypeName) {
      texts.elementTypeName = "";
    }
    isFirst = false;
  }
  texts.typed += "]";
  texts.any += "]";
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
