#include "KVLShellCommand.h"
#include "KVLShellEvaluate.h"
#include "KVLShellPath.h"
#include "KVLShellResult.h"
#include "KVLShellValue.h"

#include <chrono>
#include <cstdlib>

namespace {

KVLShellOutcome RunVars(const KVLShellArguments&, KVLShellWork& work, KVLShellAnswer& answer) {
  static constexpr const char* Columns[] = {"name", "type", "text", nullptr};
  KVLVector<MRBUnicodeString> names;
  work.session.GetVariableNames(names);
  answer.result = KVLShellNode::NewList();
  for (const MRBUnicodeString& name : names) {
    const KVLShellNode value = KVLShellValueNode(work.context, *work.session.FindVariable(name));
    KVLShellNode node = KVLShellNode::NewRecord();
    node.Set("name", name);
    node.Set("type", *value.Find("type"));
    node.Set("text", *value.Find("text"));
    answer.result.Append(std::move(node));
  }
  answer.layout = KVLShellAnswer::Table;
  answer.columns = Columns;
  return KVLShellOutcome();
}

KVLShellOutcome RunUnset(const KVLShellArguments& arguments, KVLShellWork& work,
                         KVLShellAnswer& answer) {
  const KVLShellWord& word = arguments[0];
  if (work.session.RemoveVariable(word.text) || work.session.Unbind(word.text)) {
    answer.result = KVLShellNode::NewRecord();
    answer.result.Set("name", word.text);
    return KVLShellOutcome();
  }
  KVLShellOutcome outcome(
      KVLShellResult_NotFound,
      "unset: no session value or binding '" + KVLShellPrintable(word.text) + "'", word.position);
  outcome.got = word.text;
  KVLVector<MRBUnicodeString> names;
  work.session.GetVariableNames(names);
  for (const KVLShellSession::Binding& binding : work.session.GetBindings())
    names.Append(binding.path);
  outcome.suggestion = KVLShellNearest(word.text, names);
  return outcome;
}

KVLShellOutcome RunHistory(const KVLShellArguments&, KVLShellWork& work, KVLShellAnswer& answer) {
  answer.result = KVLShellNode::NewList();
  for (const MRBUnicodeString& text : work.session.GetHistory())
    answer.result.Append(text);
  answer.layout = KVLShellAnswer::Lines;
  return KVLShellOutcome();
}

KVLShellOutcome RunQuit(const KVLShellArguments& arguments, KVLShellWork&, KVLShellAnswer& answer) {
  constexpr int HighestCode = 255;
  int code = 0;
  if (arguments.GetCount() == 1) {
    const MRBUnicodeString& text = arguments[0].text;
    const int length = text.GetLengthInByte();
    for (int i = 0; i < length && code <= HighestCode; ++i) {
      const char digit = text.ConvertToChar()[i];
      code = digit >= '0' && digit <= '9' ? 10 * code + (digit - '0') : HighestCode + 1;
    }
    if (length == 0 || code > HighestCode) {
      KVLShellOutcome outcome = arguments.Misused(
          "the code is a number from 0 to 255, got '" + KVLShellPrintable(text) + "'",
          arguments[0].position);
      outcome.got = text;
      return outcome;
    }
  }
  answer.result = KVLShellNode::NewRecord();
  answer.result.Set("quit", code);
  return KVLShellOutcome(KVLShellResult_Quit | code, "");
}

// Three digits, in the largest unit that leaves one before the point.
MRBUnicodeString DurationText(double seconds) {
  constexpr double Kilo = 1e3;
  const char* const units[] = {" s", " ms", " us", " ns"};
  int i = 0;
  for (; i < 3 && seconds < 1; ++i)
    seconds *= Kilo;
  MRBUnicodeString text;
  text.BuildFromNum(seconds, seconds < 999.5 ? "%.3g" : "%.0f");
  return text + units[i];
}

KVLShellOutcome RunTime(const KVLShellArguments& arguments, KVLShellWork& work,
                        KVLShellAnswer& answer) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  KVLShellOutcome outcome = KVLShellEvaluate(arguments.GetStatement().expression, work, answer);
  const std::chrono::duration<double> elapsed = Clock::now() - start;
  if (outcome.IsSuccess()) {
    answer.result.Set("seconds", elapsed.count()).ShowAs(DurationText(elapsed.count()));
  }
  return outcome;
}

}  // namespace

const KVLShellCommand KVLShellHistoryCommand = {
    "history", "history", "lists the texts run so far", "", KVLShellStyle_Words, RunHistory, 0, 0,
    {},        {}};

const KVLShellCommand KVLShellQuitCommand = {
    "quit",
    "quit [CODE]",
    "ends the session",
    "  CODE, from 0 to 255, is what the program exits with; 0 when it is left out.\n",
    KVLShellStyle_Words,
    RunQuit,
    0,
    1,
    {},
    {}};

const KVLShellCommand KVLShellTimeCommand = {"time",
                                             "time EXPRESSION",
                                             "tells how long an expression takes",
                                             "  Prints its value, then the seconds.\n",
                                             KVLShellStyle_Expression,
                                             RunTime,
                                             1,
                                             -1,
                                             {},
                                             {}};

const KVLShellCommand KVLShellUnsetCommand = {"unset",
                                              "unset NAME",
                                              "forgets a session value or a binding",
                                              "",
                                              KVLShellStyle_Words,
                                              RunUnset,
                                              1,
                                              1,
                                              {KVLShellWord_Name},
                                              {}};

const KVLShellCommand KVLShellVarsCommand = {
    "vars",
    "vars",
    "lists the session values",
    "  NAME = EXPRESSION sets one, $NAME stands for it, 'unset NAME' forgets it.\n",
    KVLShellStyle_Words,
    RunVars,
    0,
    0,
    {},
    {}};
