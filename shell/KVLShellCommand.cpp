#include "KVLShellCommand.h"

#include "KVLCodeEnvAccess.h"
#include "KVLShellPath.h"
#include "KVLShellResult.h"
#include "KVLStringOperations.h"

namespace {

KVLShellOutcome Check(const KVLShellCommandWords& words, KVLShellOutput&) {
  if (words.GetCount() > 1) return KVLShellMisused(words, "takes no words", words[1].position);
  // The report goes to standard output; there is nothing to add to it.
  KVLShellOutcome outcome;
  outcome.code = KVLCodeEnvAccess::CheckAndDump();
  return outcome;
}

KVLShellOutcome Help(const KVLShellCommandWords& words, KVLShellOutput& output);

constexpr KVLShellCommand Commands[] = {
    {"call", "call PATH TEXT...", "calls a function",
     "  Each TEXT is read as the input parameter at its place; those left out take their "
     "defaults.\n"
     "  The result is printed, then each output parameter on a line of its own.\n"
     "    call math/add 3.5 4.25\n"
     "    call text/join [1,\"a b\",true] \" - \"\n"
     "    call _members/Point/Distance (0,0) (3,4)\n",
     KVLShellCall},
    {"check", "check", "checks the registry and prints what is wrong with it", "", Check},
    {"convert", "convert VALUE [FROM] TO", "converts a value to another type",
     "  Without FROM, the value is taken as a list when it begins with \"[\", else as a bool, an "
     "int\n"
     "  or a double when it reads as one, else (or when it is quoted) as a string.\n"
     "    convert 3 double\n"
     "    convert 2.0 double int\n"
     "    convert \"12\" int\n",
     KVLShellConvert},
    {"help", "help [COMMAND]", "tells what there is, or how a command is used", "", Help},
    {"info", "info PATH", "tells what is known about what a path leads to", "", KVLShellInfo},
    {"ls", "ls [-r] [PATH]", "lists an environment",
     "  With -r, also everything below it. A name with \"/\" behind it is an environment.\n",
     KVLShellLs}};

MRBUnicodeString Padded(const MRBUnicodeString& text, int width) {
  MRBUnicodeString padded = text;
  while (padded.GetLengthInByte() < width)
    padded += " ";
  return padded;
}

KVLVector<MRBUnicodeString> CommandNames() {
  KVLVector<MRBUnicodeString> names;
  for (const KVLShellCommand& command : Commands)
    names.Append(command.name);
  return names;
}

KVLShellOutcome UnknownCommand(const KVLShellWord& word, long code) {
  KVLShellOutcome outcome;
  outcome.code = code;
  outcome.position = word.position;
  outcome.message = "unknown command '" + KVLShellPrintable(word.text) + "'";
  const MRBUnicodeString nearest = KVLShellNearest(word.text, CommandNames());
  if (!nearest.IsEmpty()) {
    outcome.message += "; did you mean '" + nearest + "'?";
  } else if (KVLShellFind(word.text).object) {
    outcome.message += "; 'call " + KVLShellPrintable(word.text) + " ...' calls a function";
  } else {
    outcome.message += "; 'help' lists the commands";
  }
  return outcome;
}

KVLShellOutcome Help(const KVLShellCommandWords& words, KVLShellOutput& output) {
  if (words.GetCount() > 2) {
    return KVLShellMisused(words, "takes at most one word", words[2].position);
  }
  if (words.GetCount() == 2) {
    const KVLShellCommand* const command = KVLShellFindCommand(words[1].text);
    if (!command) return UnknownCommand(words[1], KVLShellResult_NotFound);
    output.Print(MRBUnicodeString(command->usage) + ": " + command->summary);
    for (const MRBUnicodeString& line : KVLStringOperations::Split(command->details, "\n"))
      output.Print(line);
    return KVLShellOutcome();
  }
  constexpr int UsageWidth = 26;
  for (const KVLShellCommand& command : Commands)
    output.Print(Padded(command.usage, UsageWidth) + command.summary);
  output.Print(
      "\";\" separates commands, \"#\" starts a comment. \"...\" quotes a word that holds");
  output.Print("blanks; between brackets, as in [1, \"a b\"], all belongs to the word.");
  return KVLShellOutcome();
}

}  // namespace

const KVLShellCommand* KVLShellFindCommand(const MRBUnicodeString& commandName) {
  for (const KVLShellCommand& command : Commands)
    if (commandName == command.name) return &command;
  return nullptr;
}

KVLShellOutcome KVLShellRunCommand(const KVLShellCommandWords& words, KVLShellOutput& output) {
  const KVLShellCommand* const command = KVLShellFindCommand(words[0].text);
  if (!command) return UnknownCommand(words[0], KVLShellResult_Usage);
  return command->run(words, output);
}

KVLShellOutcome KVLShellMisused(const KVLShellCommandWords& words, const MRBUnicodeString& message,
                                int position) {
  KVLShellOutcome outcome;
  outcome.code = KVLShellResult_Usage;
  outcome.position = position;
  outcome.message = words[0].text + ": " + message;
  const KVLShellCommand* const command = KVLShellFindCommand(words[0].text);
  if (command) outcome.message += MRBUnicodeString("; usage: ") + command->usage;
  return outcome;
}

bool KVLShellIsOption(const KVLShellWord& word) {
  const char second = KVLStringOperations::GetCharAt(word.text, 1);
  return !word.isQuoted && KVLStringOperations::StartsWith(word.text, "-") &&
         !(second >= '0' && second <= '9');
}
