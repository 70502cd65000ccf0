#include "KVLShellCommand.h"
#include "KVLShellEvaluate.h"
#include "KVLShellResult.h"
#include "KVLStringOperations.h"

namespace {

constexpr int FirstArgument = 1;

MRBUnicodeString CountOf(int count) {
  return KVLStringOperations::FromNum(count) + (count == 1 ? " argument" : " arguments");
}

// Only input parameters take a word; the others are there for what they give.
KVLShellOutcome SetWords(const KVLShellArguments& words, KVLShellCall& call) {
  int taken = FirstArgument;
  for (int i = 0; i < call.GetNbParameters() && taken < words.GetCount(); ++i) {
    if (!call.IsInput(i)) continue;
    const KVLShellWord& word = words[taken++];
    const KVLShellOutcome outcome = call.SetText(i, word.text, word.position, word.text);
    if (!outcome.IsSuccess()) return outcome;
  }
  if (taken == words.GetCount()) return KVLShellOutcome();
  return call.Refused("takes " + CountOf(taken - FirstArgument) + ", got " +
                          KVLStringOperations::FromNum(words.GetCount() - FirstArgument),
                      words[taken].position);
}

KVLShellOutcome Answer(const KVLShellCall& call, KVLShellAnswer& answer) {
  KVLShellOutcome outcome = call.Describe(*call.GetResult(), answer.result);
  if (!outcome.IsSuccess()) return outcome;
  KVLShellNode outputs = KVLShellNode::NewList();
  for (int i = 0; i < call.GetNbParameters(); ++i) {
    if (!call.IsOutput(i)) continue;
    KVLShellNode value;
    outcome = call.Describe(*call.GetArgument(i), value);
    if (!outcome.IsSuccess()) return outcome;
    KVLShellNode output = KVLShellNode::NewRecord();
    output.Set("name", call.GetParam(i).name);
    output.Set("parameter", call.GetParam(i).name);
    output.Set("type", *value.Find("type"));
    output.Set("text", *value.Find("text"));
    outputs.Append(output);
  }
  if (!outputs.GetItems().empty()) answer.result.Set("outputs", outputs);
  answer.layout = KVLShellAnswer::Value;
  return outcome;
}

KVLShellOutcome Run(const KVLShellArguments& words, KVLShellWork& work, KVLShellAnswer& answer) {
  const KVLShellStatement& statement = words.GetStatement();
  if (statement.hasExpression) return KVLShellEvaluate(statement.expression, work, answer);
  KVLShellCall call(work, words[0].text, words[0].position);
  KVLShellOutcome outcome = call.Prepare();
  if (outcome.IsSuccess()) outcome = SetWords(words, call);
  if (outcome.IsSuccess()) outcome = call.Complete(statement.end);
  if (outcome.IsSuccess()) outcome = call.Run();
  return outcome.IsSuccess() ? Answer(call, answer) : outcome;
}

}  // namespace

const KVLShellCommand KVLShellCallCommand = {
    "call",
    "call PATH TEXT...",
    "calls a function",
    "  Each TEXT is read as the input parameter at its place; those left out take their "
    "defaults.\n"
    "  The result is printed, then each output parameter on a line of its own.\n"
    "    call math/lerp 10 20\n"
    "    call text/upper \"two words\"\n"
    "  'help expressions' tells the other form, PATH(ARGUMENT, ...).\n",
    KVLShellStyle_WordsOrCall,
    Run,
    1,
    -1,
    {KVLShellWord_Function, KVLShellWord_Other},
    {}};
