#include "KVLShellComplete.h"

#include <algorithm>

#include "KVLCodeFunction.h"
#include "KVLCodeType.h"
#include "KVLShellCommand.h"
#include "KVLShellCursor.h"
#include "KVLShellPath.h"
#include "KVLShellValue.h"
#include "KVLStringOperations.h"

namespace {

// What a function is followed by.
enum class AfterFunction { Bracket, Blank, Nothing };

// Which objects are offered besides environments, which lead further.
struct Wanted {
  bool functions = true;
  bool variables = true;
  bool types = true;
  AfterFunction after = AfterFunction::Nothing;
};

constexpr Wanted InExpression{true, true, false, AfterFunction::Bracket};
constexpr Wanted AnyObject{true, true, true, AfterFunction::Nothing};
constexpr Wanted FunctionsOnly{true, false, false, AfterFunction::Blank};
constexpr Wanted EnvsOnly{false, false, false, AfterFunction::Nothing};

bool IsWordText(const MRBUnicodeString& text) {
  for (int i = 0; i < text.GetLengthInByte(); ++i)
    if (!KVLShellIsWordByte(text.ConvertToChar()[i])) return false;
  return true;
}

class Completer {
 public:
  Completer(const MRBUnicodeString& text, const KVLShellCursor& textCursor,
            const KVLShellSession& shellSession)
      : cursor(textCursor),
        session(shellSession),
        token(text.SubString(textCursor.tokenStart, text.GetLengthInByte())) {}

  std::vector<MRBUnicodeString> Complete() {
    switch (cursor.place) {
      case KVLShellCursorPlace::Nothing:
        break;
      case KVLShellCursorPlace::Start:
        OfferCommands(" ");
        OfferExpressions();
        break;
      case KVLShellCursorPlace::Word:
        if (cursor.command) OfferWords(*cursor.command);
        break;
      case KVLShellCursorPlace::Expression:
        OfferExpressions();
        break;
      case KVLShellCursorPlace::Argument:
        OfferArguments();
        break;
    }
    std::sort(words.begin(), words.end());
    words.erase(std::unique(words.begin(), words.end()), words.end());
    return std::move(words);
  }

 private:
  void Offer(const MRBUnicodeString& word) {
    if (KVLStringOperations::StartsWith(word, token)) words.push_back(word);
  }

  void OfferCommands(const char* behind) {
    int count = 0;
    const KVLShellCommand* const* const commands = KVLShellCommands(&count);
    for (int i = 0; i < count; ++i) {
      const bool isWhole = commands[i]->maxWords == 0 && commands[i]->minWords == 0;
      Offer(MRBUnicodeString(commands[i]->name) + (isWhole ? "" : behind));
    }
  }

  void OfferExpressions() {
    OfferSession("$");
    OfferPaths(InExpression);
  }

  void OfferSession(const char* sign) {
    KVLVector<MRBUnicodeString> names;
    session.GetVariableNames(names);
    for (const MRBUnicodeString& name : names)
      Offer(sign + name);
  }

  // The children of the environment that the word leads to already.
  void OfferPaths(const Wanted& wanted) {
    const int slash = token.SearchSubString("/", 0, MRBUnicodeString::MRBSearchBackward);
    const MRBUnicodeString folder = token.SubString(0, slash + 1);
    const MRBUnicodeString start = token.SubString(slash + 1, token.GetLengthInByte());
    for (const KVLShellChild& child : KVLShellChildren(KVLShellFind(folder).envs, start)) {
      // Reserved names are for who asks for them.
      if (start.IsEmpty() && KVLStringOperations::StartsWith(child.label, "_")) continue;
      const char* const behind = BehindChild(child, wanted);
      if (behind && IsWordText(child.label)) words.push_back(folder + child.label + behind);
    }
  }

  // What follows a child, or null when it is not wanted.
  static const char* BehindChild(const KVLShellChild& child, const Wanted& wanted) {
    if (child.env) return "";
    if (child.object->AsFunction()) {
      if (!wanted.functions) return nullptr;
      return wanted.after == AfterFunction::Bracket ? "("
             : wanted.after == AfterFunction::Blank ? " "
                                                    : "";
    }
    if (child.object->AsVariable()) return wanted.variables ? "" : nullptr;
    return wanted.types ? "" : nullptr;
  }

  void OfferArguments() {
    const KVLShellFrame& frame = cursor.frame;
    const KVLShellPlace place = KVLShellFind(frame.path);
    const KVLCodeFunction* const function = place.object ? place.object->AsFunction() : nullptr;
    OfferSession("&");
    OfferExpressions();
    if (!function) return;
    int i = frame.nbArguments;
    if (!frame.parameter.IsEmpty()) {
      i = 0;
      while (i < function->GetNbParameters() && function->GetParam(i).name != frame.parameter)
        ++i;
    } else {
      // Those with names took no place.
      i -= frame.named.GetCount();
      for (int j = i; j < function->GetNbParameters(); ++j)
        if (!IsNamed(function->GetParam(j).name)) Offer(function->GetParam(j).name + "=");
    }
    if (i < function->GetNbParameters()) OfferTexts(function->GetParam(i).typeName);
  }

  bool IsNamed(const MRBUnicodeString& name) const {
    for (const MRBUnicodeString& named : cursor.frame.named)
      if (named == name) return true;
    return false;
  }

  // The texts that a type is known to take.
  void OfferTexts(const MRBUnicodeString& typeName) {
    if (typeName == "bool") {
      Offer("false");
      Offer("true");
    }
    const KVLSmartPtr<const KVLCodeType> type = KVLShellFindType(typeName);
    KVLVector<MRBUnicodeString> values;
    if (!type || !type->GetEnumValues(values)) return;
    for (const MRBUnicodeString& value : values)
      Offer(value);
  }

  void OfferWords(const KVLShellCommand& command) {
    int nbWords = 0;
    for (int i = 1; i < cursor.words.GetCount(); ++i) {
      const KVLShellOption* const option = FindOption(command, cursor.words[i]);
      const bool takesNext = option && option->value;
      if (takesNext && i + 1 == cursor.words.GetCount()) {
        OfferValues(*option);
        return;
      }
      if (takesNext) ++i;
      if (!option) ++nbWords;
    }
    const bool hasOptions = command.style == KVLShellStyle_Words;
    if (hasOptions && KVLStringOperations::StartsWith(token, "-")) {
      for (const KVLShellOption& option : command.options)
        if (option.name) Offer(MRBUnicodeString(option.name) + (option.value ? " " : ""));
      Offer(KVLShellJsonOption);
      return;
    }
    if (command.style == KVLShellStyle_WordsOrCall && nbWords > 0) {
      OfferCallWord(nbWords - 1);
    } else if (command.maxWords < 0 || nbWords < command.maxWords) {
      OfferKind(KindOf(command, nbWords));
    }
  }

  static const KVLShellOption* FindOption(const KVLShellCommand& command,
                                          const MRBUnicodeString& word) {
    for (const KVLShellOption& option : command.options)
      if (option.name && word == option.name) return &option;
    return nullptr;
  }

  static KVLShellWordKind KindOf(const KVLShellCommand& command, int i) {
    constexpr int most = static_cast<int>(sizeof(command.words) / sizeof(command.words[0]));
    return command.words[std::min(i, most - 1)];
  }

  void OfferValues(const KVLShellOption& option) {
    if (!option.choices) {
      OfferKind(option.kind);
      return;
    }
    for (const MRBUnicodeString& choice : KVLStringOperations::Split(option.choices, "|"))
      Offer(choice);
  }

  // A word of `call PATH TEXT...`, which goes to the input parameter at its place.
  void OfferCallWord(int place) {
    const KVLShellPlace function = KVLShellFind(cursor.words[1]);
    if (!function.object || !function.object->AsFunction()) return;
    for (const KVLCodeFunction::Param& param : function.object->AsFunction()->GetParams()) {
      if (!(param.direction & KVLCodeFunction::Input) || place-- > 0) continue;
      OfferTexts(param.typeName);
      return;
    }
  }

  void OfferKind(KVLShellWordKind kind) {
    switch (kind) {
      case KVLShellWord_Other:
        break;
      case KVLShellWord_Path:
        OfferPaths(AnyObject);
        break;
      case KVLShellWord_Function:
        OfferPaths(FunctionsOnly);
        break;
      case KVLShellWord_Env:
        OfferPaths(EnvsOnly);
        break;
      case KVLShellWord_Type:
        for (const KVLShellChild& child : KVLShellChildren(KVLShellFind("_types/").envs, token))
          if (child.object->AsType()) Offer(child.label);
        break;
      case KVLShellWord_Used:
        for (const KVLShellSession::Use& use : session.GetUses())
          Offer(use.path);
        break;
      case KVLShellWord_Name:
        OfferSession("");
        for (const KVLShellSession::Binding& binding : session.GetBindings())
          Offer(binding.path);
        break;
      case KVLShellWord_Library:
        for (const MRBUnicodeString& name : KVLShellModuleNames())
          Offer(name);
        break;
      case KVLShellWord_Loaded:
        for (const KVLShellSession::Library& library : session.GetLibraries())
          Offer(library.name);
        break;
      case KVLShellWord_Topic:
        OfferCommands("");
        for (const MRBUnicodeString& topic : KVLShellTopicNames())
          Offer(topic);
        break;
    }
  }

  const KVLShellCursor& cursor;
  const KVLShellSession& session;
  const MRBUnicodeString token;
  std::vector<MRBUnicodeString> words;
};

}  // namespace

KVLShellCompletion KVLShellComplete(const MRBUnicodeString& text, const KVLShellSession& session) {
  const KVLShellCursor cursor = KVLShellFindCursor(text);
  KVLShellCompletion completion;
  completion.replaceFrom = cursor.tokenStart;
  completion.words = Completer(text, cursor, session).Complete();
  return completion;
}
