#include <exception>

#include "KVLShellCommand.h"
#include "KVLShellEvaluate.h"
#include "KVLShellPath.h"
#include "KVLShellResult.h"

namespace {

MRBUnicodeString NearestCommand(const MRBUnicodeString& word) {
  int count = 0;
  const KVLShellCommand* const* const commands = KVLShellCommands(&count);
  KVLVector<MRBUnicodeString> names;
  for (int i = 0; i < count; ++i)
    names.Append(commands[i]->name);
  return KVLShellNearest(word, names);
}

KVLShellOutcome UnknownCommand(const MRBUnicodeString& word, int position) {
  const MRBUnicodeString shown = KVLShellPrintable(word);
  KVLShellOutcome outcome(KVLShellResult_Usage, "unknown command '" + shown + "'", position);
  outcome.got = word;
  outcome.suggestion = NearestCommand(word);
  if (!outcome.suggestion.IsEmpty()) return outcome;
  const KVLShellPlace place = KVLShellFind(word);
  if (place.object && place.object->AsFunction()) {
    outcome.message += "; 'call " + shown + " ...' calls a function";
  } else if (place.IsFound()) {
    outcome.message += "; 'info " + shown + "' tells what is there";
  } else {
    outcome.message += "; 'help' lists the commands";
  }
  return outcome;
}

// A word that stands alone may be meant as a command, a value or a path.
bool IsMeantAsCommand(const KVLShellExpression& expression, const KVLShellSession& session) {
  return expression.kind == KVLShellExpression::Word && expression.text.FindPosition("/", 0) == 0 &&
         !KVLShellFind(expression.text).IsFound() && !session.FindVariable(expression.text) &&
         KVLShellNotFound("object", expression.text, 0).suggestion.IsEmpty();
}

KVLShellOutcome RunExpression(const KVLShellStatement& statement, KVLShellWork& work,
                              KVLShellAnswer& answer) {
  const KVLShellExpression& expression = statement.expression;
  KVLShellOutcome outcome = KVLShellEvaluate(expression, work, answer);
  if (outcome.code == KVLShellResult_NotFound && IsMeantAsCommand(expression, work.session)) {
    return UnknownCommand(expression.text, expression.position);
  }
  return outcome;
}

KVLShellOutcome RunAssignment(const KVLShellStatement& statement, KVLShellWork& work,
                              KVLShellAnswer& answer) {
  const KVLShellWord& name = statement.words[0];
  if (!KVLShellIsIdentifier(name.text)) {
    KVLShellOutcome outcome(KVLShellResult_Usage,
                            "'" + KVLShellPrintable(name.text) +
                                "' cannot name a session value; letters, digits and '_' can",
                            name.position);
    outcome.got = name.text;
    return outcome;
  }
  KVLSmartPtr<KVLCodeValue> value;
  KVLShellNode outputs;
  const KVLShellOutcome outcome = KVLShellEvaluate(statement.expression, work, value, &outputs);
  if (!outcome.IsSuccess()) return outcome;
  // A copy, so that a variable stays as it is now; where none can be made, the value itself.
  const KVLSmartPtr<KVLCodeValue> copy = value->Copy(work.context, name.text);
  if (copy) value = copy;
  (void)work.session.SetVariable(name.text, value);  // an identifier, and not null
  answer.result = KVLShellNode::NewRecord();
  answer.result.Set("name", name.text);
  MRBUnicodeString text;
  const bool isWritten = !KVLFailed(value->GetValueStr(work.context, text));
  answer.result.Set("type", value->GetTypeName());
  answer.result.Set("text", isWritten ? KVLShellNode(text) : KVLShellNode());
  if (outputs.GetKind() != KVLShellNode::Null) answer.result.Set("outputs", outputs);
  return outcome;
}

KVLShellOutcome RunCommand(const KVLShellArguments& arguments, KVLShellWork& work,
                           KVLShellAnswer& answer) {
  return arguments.GetStatement().command->run(arguments, work, answer);
}

KVLShellOutcome Threw(const MRBUnicodeString& what, const KVLShellStatement& statement) {
  const bool isCommand = statement.kind == KVLShellStatement::Command;
  const MRBUnicodeString subject = isCommand ? statement.words[0].text + ": " : "";
  return KVLShellOutcome(KVLResult_Failure, subject + what, statement.position);
}

KVLShellOutcome RunGuarded(const KVLShellStatement& statement, const KVLShellArguments& arguments,
                           KVLShellWork& work, KVLShellAnswer& answer) {
  try {
    switch (statement.kind) {
      case KVLShellStatement::Command:
        return RunCommand(arguments, work, answer);
      case KVLShellStatement::Expression:
        return RunExpression(statement, work, answer);
      case KVLShellStatement::Assignment:
        return RunAssignment(statement, work, answer);
    }
  } catch (const std::exception& exception) {
    if (!KVLShellIsInterrupted()) return Threw(exception.what(), statement);
  } catch (...) {
    if (!KVLShellIsInterrupted()) {
      return Threw("something was thrown that is no std::exception", statement);
    }
  }
  return KVLShellOutcome(KVLShellResult_Interrupted, "interrupted", statement.position);
}

long RunStatement(const MRBUnicodeString& text, const KVLShellStatement& statement,
                  KVLShellSession& session, const KVLShellOutput& output) {
  KVLShellAnswer answer;
  KVLShellOutcome outcome;
  KVLShellArguments arguments(statement);
  unsigned int flags = output.GetFlags();
  if (KVLShellIsInterrupted()) {
    outcome = KVLShellOutcome(KVLShellResult_Interrupted, "interrupted", statement.position);
  } else if (statement.kind == KVLShellStatement::Command && !statement.command) {
    outcome = UnknownCommand(statement.words[0].text, statement.words[0].position);
  } else if (statement.kind == KVLShellStatement::Command) {
    outcome = arguments.Read();
    if (arguments.Has(KVLShellJsonOption)) flags |= KVLShellFlag_Json;
  }
  const KVLShellOutput own = output.WithFlags(flags);
  if (outcome.IsSuccess()) {
    KVLCodeContext context;
    context.SetSession(&session);
    KVLShellWork work{text, session, context, own};
    outcome = RunGuarded(statement, arguments, work, answer);
  }
  own.Write(text, answer, outcome);
  return outcome.code;
}

}  // namespace

long KVLShellRunText(const MRBUnicodeString& text, KVLShellSession& session,
                     const KVLShellOutput& output) {
  std::vector<KVLShellStatement> statements;
  const KVLShellOutcome parsed = KVLShellParse(text, statements);
  // Nothing runs when a part of the text is not understood.
  if (!parsed.IsSuccess()) {
    output.Write(text, KVLShellAnswer(), parsed);
    return parsed.code;
  }
  for (const KVLShellStatement& statement : statements) {
    const long code = RunStatement(text, statement, session, output);
    if (code != KVLResult_Success) return code;
  }
  return KVLResult_Success;
}
