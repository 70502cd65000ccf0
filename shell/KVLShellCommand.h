#ifndef KVL_SHELL_COMMAND_H
#define KVL_SHELL_COMMAND_H

#include "KVLShellAnswer.h"
#include "KVLShellOutcome.h"
#include "KVLShellSyntax.h"
#include "KVLShellWork.h"

class KVLShellArguments;

/// How the text behind a command's name is read.
enum KVLShellStyle {
  KVLShellStyle_Words,        ///< words and options
  KVLShellStyle_WordsOrCall,  ///< words, none of them an option, or one call
  KVLShellStyle_Expression,   ///< an expression
  KVLShellStyle_Binding,      ///< NAME = EXPRESSION; the name is the second word
  KVLShellStyle_Rest          ///< the rest of the line as one word
};

/// What a word of a command is, for its completion.
enum KVLShellWordKind {
  KVLShellWord_Other,     ///< nothing that the shell knows
  KVLShellWord_Path,      ///< an object or an environment
  KVLShellWord_Function,  ///< a function
  KVLShellWord_Env,       ///< an environment
  KVLShellWord_Type,      ///< the name of a type
  KVLShellWord_Used,      ///< an environment that is in use
  KVLShellWord_Name,      ///< a session value or a binding
  KVLShellWord_Library,   ///< a library that can be loaded
  KVLShellWord_Loaded,    ///< a library that the session has loaded
  KVLShellWord_Topic      ///< a help topic
};

/// An option of a command: a word that begins with "-".
struct KVLShellOption {
  const char* name;       ///< with its "-"
  const char* value;      ///< what the next word is, in capitals; null for an option without
  const char* choices;    ///< the values possible, separated by "|"; null for any
  KVLShellWordKind kind;  ///< of the value
};

/// A command of the shell. Each is defined as a constant in a file of its own and listed in
/// KVLShellCommand.cpp: help, completion and the check of words and options follow from it.
struct KVLShellCommand {
  const char* name;
  const char* usage;    ///< the name and the words it takes
  const char* summary;  ///< one line
  const char* details;  ///< further lines, each with its newline
  KVLShellStyle style;
  /// Does the work and fills `answer`; the outcome tells how it ended. Exceptions are caught.
  KVLShellOutcome (*run)(const KVLShellArguments& arguments, KVLShellWork& work,
                         KVLShellAnswer& answer);
  int minWords;               ///< least number of words behind the name, options apart
  int maxWords;               ///< most; -1 for any number
  KVLShellWordKind words[3];  ///< what they are; the last goes for all that follow
  KVLShellOption options[4];  ///< up to the first without a name
};

/// The command of that name, or null. Borrowed, for ever.
const KVLShellCommand* KVLShellLookUpCommand(const MRBUnicodeString& commandName);

/// All commands, sorted by name, and their number. Borrowed, for ever.
const KVLShellCommand* const* KVLShellCommands(int* count);

/// The words of a command, sorted into options and others.
class KVLShellArguments {
 public:
  explicit KVLShellArguments(const KVLShellStatement& commandStatement)
      : statement(commandStatement) {}

  /// Sorts the words, and checks them against what the command takes.
  KVLShellOutcome Read();

  const KVLShellStatement& GetStatement() const { return statement; }
  /// The words behind the name that are no options, nor values of options.
  int GetCount() const { return words.GetCount(); }
  const KVLShellWord& operator[](int i) const { return *words[i]; }
  bool Has(const char* optionName) const;
  /// The value of an option, or null when it is not given.
  const KVLShellWord* ValueOf(const char* optionName) const;

  /// The outcome for words that the command does not take; `message` says why.
  KVLShellOutcome Misused(const MRBUnicodeString& message, int position) const;

 private:
  struct Given {
    const KVLShellWord* option;
    const KVLShellWord* value;  // null when the option takes none
  };

  KVLShellOutcome ReadOption(int& i);

  const KVLShellStatement& statement;
  KVLVector<const KVLShellWord*> words;  // borrowed from the statement
  KVLVector<Given> given;
};

/// The option that every command takes: its answer as JSON.
extern const char* const KVLShellJsonOption;

/// True when a word is meant as an option: it begins with "-", is not quoted and no number.
bool KVLShellIsOption(const KVLShellWord& word);

/// The topics that `help` tells about besides the commands.
KVLVector<MRBUnicodeString> KVLShellTopicNames();
/// The modules that come with the kernel, without "KVLCodeEnv_".
KVLVector<MRBUnicodeString> KVLShellModuleNames();

extern const KVLShellCommand KVLShellBindCommand;
extern const KVLShellCommand KVLShellCallCommand;
extern const KVLShellCommand KVLShellCheckCommand;
extern const KVLShellCommand KVLShellCompleteCommand;
extern const KVLShellCommand KVLShellConvertCommand;
extern const KVLShellCommand KVLShellExportCommand;
extern const KVLShellCommand KVLShellFindCommand;
extern const KVLShellCommand KVLShellHelpCommand;
extern const KVLShellCommand KVLShellHistoryCommand;
extern const KVLShellCommand KVLShellInfoCommand;
extern const KVLShellCommand KVLShellLoadCommand;
extern const KVLShellCommand KVLShellLsCommand;
extern const KVLShellCommand KVLShellModulesCommand;
extern const KVLShellCommand KVLShellQuitCommand;
extern const KVLShellCommand KVLShellSourceCommand;
extern const KVLShellCommand KVLShellTimeCommand;
extern const KVLShellCommand KVLShellUnloadCommand;
extern const KVLShellCommand KVLShellUnsetCommand;
extern const KVLShellCommand KVLShellUnuseCommand;
extern const KVLShellCommand KVLShellUseCommand;
extern const KVLShellCommand KVLShellVarsCommand;

#endif
