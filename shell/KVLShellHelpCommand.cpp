#include "KVLShellCommand.h"
#include "KVLShellPath.h"
#include "KVLShellResult.h"

namespace {

struct Topic {
  const char* name;
  const char* summary;
  const char* text;
};

constexpr Topic Topics[] = {
    {"expressions", "how values and calls are written",
     "  3.5  -2  true  \"text\"      a number, a truth value, a text; \\\" \\\\ \\n \\r \\t "
     "inside\n"
     "  [1, 2, math/pi]            a list; its elements are expressions\n"
     "  math/pi                    the value of a variable\n"
     "  $x                         a session value; NAME = EXPRESSION sets it\n"
     "  math/lerp(10, 20, t=0.25)  a call; arguments left out take their defaults\n"
     "  math/roots2(1, -3, 2, &a, &b)\n"
     "                             a call that sets the session values a and b\n"
     "  What a parameter takes decides how an argument is read: (3, 4) for a point, X for an "
     "axis.\n"
     "  \";\" separates commands, \"#\" starts a comment.\n"}};

const Topic* FindTopic(const MRBUnicodeString& topicName) {
  for (const Topic& topic : Topics)
    if (topicName == topic.name) return &topic;
  return nullptr;
}

KVLShellOutcome UnknownTopic(const KVLShellWord& word) {
  KVLShellOutcome outcome(KVLShellResult_NotFound,
                          "no help on '" + KVLShellPrintable(word.text) + "'", word.position);
  outcome.got = word.text;
  int count = 0;
  const KVLShellCommand* const* const commands = KVLShellCommands(&count);
  KVLVector<MRBUnicodeString> names;
  for (int i = 0; i < count; ++i)
    names.Append(commands[i]->name);
  for (const Topic& topic : Topics)
    names.Append(topic.name);
  outcome.suggestion = KVLShellNearest(word.text, names);
  return outcome;
}

KVLShellNode NodeOf(const char* name, const char* usage, const char* summary) {
  KVLShellNode node = KVLShellNode::NewRecord();
  node.Set("name", name);
  node.Set("usage", usage);
  node.Set("summary", summary);
  return node;
}

void ListAll(KVLShellAnswer& answer) {
  static constexpr const char* Columns[] = {"usage", "summary", nullptr};
  answer.result = KVLShellNode::NewList();
  int count = 0;
  const KVLShellCommand* const* const commands = KVLShellCommands(&count);
  for (int i = 0; i < count; ++i)
    answer.result.Append(NodeOf(commands[i]->name, commands[i]->usage, commands[i]->summary));
  for (const Topic& topic : Topics) {
    const MRBUnicodeString usage = MRBUnicodeString("help ") + topic.name;
    answer.result.Append(NodeOf(topic.name, usage, topic.summary));
  }
  answer.layout = KVLShellAnswer::Table;
  answer.columns = Columns;
}

KVLShellOutcome Run(const KVLShellArguments& arguments, KVLShellWork&, KVLShellAnswer& answer) {
  if (arguments.GetCount() == 0) {
    ListAll(answer);
    return KVLShellOutcome();
  }
  const MRBUnicodeString& name = arguments[0].text;
  const KVLShellCommand* const command = KVLShellLookUpCommand(name);
  const Topic* const topic = FindTopic(name);
  if (!command && !topic) return UnknownTopic(arguments[0]);
  const char* const usage = command ? command->usage : topic->name;
  const char* const summary = command ? command->summary : topic->summary;
  const char* const details = command ? command->details : topic->text;
  answer.result = NodeOf(command ? command->name : topic->name, usage, summary);
  answer.result.Set("details", details);
  answer.result.ShowAs(MRBUnicodeString(usage) + ": " + summary + "\n" + details);
  answer.layout = KVLShellAnswer::Verbatim;
  return KVLShellOutcome();
}

}  // namespace

KVLVector<MRBUnicodeString> KVLShellTopicNames() {
  KVLVector<MRBUnicodeString> names;
  for (const Topic& topic : Topics)
    names.Append(topic.name);
  return names;
}

const KVLShellCommand KVLShellHelpCommand = {"help",
                                             "help [TOPIC]",
                                             "tells what there is, or how a command is used",
                                             "",
                                             KVLShellStyle_Words,
                                             Run,
                                             0,
                                             1,
                                             {KVLShellWord_Topic},
                                             {}};
