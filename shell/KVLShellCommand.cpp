#include "KVLShellCommand.h"

#include <cstring>

#include "KVLShellPath.h"
#include "KVLShellResult.h"
#include "KVLStringOperations.h"

namespace {

// Sorted by name.
constexpr const KVLShellCommand* Commands[] = {
    &KVLShellBindCommand,     &KVLShellCallCommand,    &KVLShellCheckCommand,
    &KVLShellCompleteCommand, &KVLShellConvertCommand, &KVLShellExportCommand,
    &KVLShellFindCommand,     &KVLShellHelpCommand,    &KVLShellHistoryCommand,
    &KVLShellInfoCommand,     &KVLShellLoadCommand,    &KVLShellLsCommand,
    &KVLShellModulesCommand,  &KVLShellQuitCommand,    &KVLShellSourceCommand,
    &KVLShellTimeCommand,     &KVLShellUnloadCommand,  &KVLShellUnsetCommand,
    &KVLShellUnuseCommand,    &KVLShellUseCommand,     &KVLShellVarsCommand};

MRBUnicodeString Count(int words) {
  return KVLStringOperations::FromNum(words) + (words == 1 ? " word" : " words");
}

bool IsChoice(const char* choices, const MRBUnicodeString& text) {
  for (const MRBUnicodeString& choice : KVLStringOperations::Split(choices, "|"))
    if (choice == text) return true;
  return false;
}

KVLVector<MRBUnicodeString> OptionNames(const KVLShellCommand& command) {
  KVLVector<MRBUnicodeString> names;
  for (const KVLShellOption& option : command.options)
    if (option.name) names.Append(option.name);
  names.Append(KVLShellJsonOption);
  return names;
}

}  // namespace

const char* const KVLShellJsonOption = "--json";

const KVLShellCommand* KVLShellLookUpCommand(const MRBUnicodeString& commandName) {
  for (const KVLShellCommand* const command : Commands)
    if (commandName == command->name) return command;
  return nullptr;
}

const KVLShellCommand* const* KVLShellCommands(int* count) {
  *count = static_cast<int>(sizeof(Commands) / sizeof(Commands[0]));
  return Commands;
}

KVLShellOutcome KVLShellArguments::Read() {
  const KVLShellCommand& command = *statement.command;
  const bool hasOptions = command.style == KVLShellStyle_Words;
  for (int i = 1; i < statement.words.GetCount(); ++i) {
    if (hasOptions && KVLShellIsOption(statement.words[i])) {
      const KVLShellOutcome outcome = ReadOption(i);
      if (!outcome.IsSuccess()) return outcome;
    } else {
      words.Append(&statement.words[i]);
    }
  }
  const int count = words.GetCount();
  if (statement.hasExpression) return KVLShellOutcome();
  if (count < command.minWords) {
    const bool isExact = command.minWords == command.maxWords;
    return Misused(MRBUnicodeString(isExact ? "takes " : "takes at least ") +
                       Count(command.minWords) + ", got " + KVLStringOperations::FromNum(count),
                   statement.end);
  }
  if (command.maxWords < 0 || count <= command.maxWords) return KVLShellOutcome();
  const bool isExact = command.minWords == command.maxWords;
  const MRBUnicodeString most =
      command.maxWords == 0 ? MRBUnicodeString("no words") : Count(command.maxWords);
  return Misused((isExact ? "takes " : "takes at most ") + most + ", got " +
                     KVLStringOperations::FromNum(count),
                 words[command.maxWords]->position);
}

KVLShellOutcome KVLShellArguments::ReadOption(int& i) {
  const KVLShellWord& word = statement.words[i];
  if (word.text == KVLShellJsonOption) {
    given.Append(Given{&word, nullptr});
    return KVLShellOutcome();
  }
  for (const KVLShellOption& option : statement.command->options) {
    if (!option.name) break;
    if (word.text != option.name) continue;
    if (!option.value) {
      given.Append(Given{&word, nullptr});
      return KVLShellOutcome();
    }
    if (i + 1 == statement.words.GetCount()) {
      return Misused(MRBUnicodeString("'") + option.name + "' takes a " + option.value, word.end);
    }
    const KVLShellWord& value = statement.words[++i];
    given.Append(Given{&word, &value});
    if (!option.choices || IsChoice(option.choices, value.text)) return KVLShellOutcome();
    KVLShellOutcome outcome =
        Misused(MRBUnicodeString("'") + option.name + "' takes " + option.choices + ", got '" +
                    KVLShellPrintable(value.text) + "'",
                value.position);
    outcome.got = value.text;
    return outcome;
  }
  KVLShellOutcome outcome =
      Misused("unknown option '" + KVLShellPrintable(word.text) + "'", word.position);
  // One letter is as near as any other.
  const bool isLong = KVLStringOperations::StartsWith(word.text, "--");
  if (isLong) outcome.suggestion = KVLShellNearest(word.text, OptionNames(*statement.command));
  outcome.got = word.text;
  return outcome;
}

bool KVLShellArguments::Has(const char* optionName) const {
  for (const Given& option : given)
    if (option.option->text == optionName) return true;
  return false;
}

const KVLShellWord* KVLShellArguments::ValueOf(const char* optionName) const {
  for (const Given& option : given)
    if (option.option->text == optionName) return option.value;
  return nullptr;
}

KVLShellOutcome KVLShellArguments::Misused(const MRBUnicodeString& message, int position) const {
  const KVLShellCommand& command = *statement.command;
  KVLShellOutcome outcome(KVLShellResult_Usage, MRBUnicodeString(command.name) + ": " + message,
                          position);
  outcome.usage = command.usage;
  return outcome;
}

bool KVLShellIsOption(const KVLShellWord& word) {
  const char second = KVLStringOperations::GetCharAt(word.text, 1);
  return !word.isQuoted && KVLStringOperations::StartsWith(word.text, "-") &&
         !(second >= '0' && second <= '9');
}
