#include "KVLCodeFunctionBinding.h"
#include "KVLShellCommand.h"
#include "KVLShellEvaluate.h"
#include "KVLShellPath.h"
#include "KVLShellResult.h"
#include "KVLStringOperations.h"

namespace {

// The outcome when nothing can be published under `name`.
KVLShellOutcome CheckName(const KVLShellWord& name, const KVLShellSession& session) {
  const MRBUnicodeString shown = KVLShellPrintable(name.text);
  KVLShellOutcome outcome(KVLShellResult_Usage, "", name.position);
  outcome.got = name.text;
  if (name.text.IsEmpty() || KVLStringOperations::EndsWith(name.text, "/")) {
    outcome.message = "bind: '" + shown + "' names no function";
    return outcome;
  }
  for (const MRBUnicodeString& piece : KVLStringOperations::Split(name.text, "/")) {
    if (!KVLStringOperations::StartsWith(piece, "_")) continue;
    outcome.message = "bind: '" + shown + "' is no place for functions: '_' begins reserved names";
    return outcome;
  }
  const KVLShellPlace place = KVLShellFind(name.text);
  if (!place.object || session.HasBinding(place.path)) return KVLShellOutcome();
  outcome.code = KVLResult_Failure;
  outcome.path = place.path;
  outcome.message = "bind: '" + shown + "' is there already";
  return outcome;
}

KVLShellOutcome Run(const KVLShellArguments& arguments, KVLShellWork& work,
                    KVLShellAnswer& answer) {
  const KVLShellStatement& statement = arguments.GetStatement();
  if (!statement.hasExpression) return arguments.Misused("a name and a call are needed", -1);
  const KVLShellExpression& expression = statement.expression;
  if (expression.kind != KVLShellExpression::Call) {
    return arguments.Misused("what is bound is a call", expression.position);
  }
  for (const KVLShellExpression& argument : expression.items) {
    if (argument.kind != KVLShellExpression::Output) continue;
    return KVLShellOutcome(KVLShellResult_Usage,
                           "bind: '&' takes an output of a call; leave the parameter open instead",
                           argument.position);
  }
  const KVLShellWord& name = arguments[0];
  KVLShellOutcome outcome = CheckName(name, work.session);
  if (!outcome.IsSuccess()) return outcome;

  const KVLShellPlace place = KVLShellFind(expression.text);
  KVLShellCall call(work, expression.text, expression.position);
  KVLVector<int> open;
  outcome = call.Prepare();
  if (outcome.IsSuccess()) outcome = KVLShellSetArguments(expression, work, call, &open);
  if (!outcome.IsSuccess()) return outcome;
  KVLVector<KVLSmartPtr<const KVLCodeValue>> values;
  for (int i = 0; i < call.GetNbParameters(); ++i) {
    const bool isBound = call.IsSet(i);
    values.Append(isBound ? KVLSmartPtr<const KVLCodeValue>(call.GetArgument(i)) : nullptr);
  }
  const KVLSmartPtr<KVLCodeFunction> binding =
      new KVLCodeFunctionBinding(*place.object->AsFunction(), values);
  const MRBUnicodeString path = KVLShellFind(name.text).path;
  work.session.Bind(path, binding);
  answer.result = KVLShellNode::NewRecord();
  answer.result.Set("name", path);
  answer.result.Set("signature", binding->ToStringCode());
  return KVLShellOutcome();
}

}  // namespace

const KVLShellCommand KVLShellBindCommand = {"bind",
                                             "bind NAME = PATH(ARGUMENT, ...)",
                                             "makes a function of a call",
                                             "  The arguments given are fixed; \"_\", and what is "
                                             "left out, stays open. The function is there\n"
                                             "  for the session, or until 'unset NAME'.\n"
                                             "    bind half = math/mul(_, 0.5)\n"
                                             "    half(9)\n",
                                             KVLShellStyle_Binding,
                                             Run,
                                             0,
                                             -1,
                                             {},
                                             {}};
