#include "KVLCodeFunction.h"
#include "KVLCodeValue.h"
#include "KVLShellCommand.h"
#include "KVLShellDescription.h"
#include "KVLShellPath.h"
#include "KVLShellResult.h"
#include "KVLShellValue.h"
#include "KVLStringOperations.h"

namespace {

char LowerCase(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                              : character;
}

MRBUnicodeString InLowerCase(const MRBUnicodeString& text) {
  MRBUnicodeString lower;
  for (int i = 0; i < text.GetLengthInByte(); ++i) {
    const char character = LowerCase(text.ConvertToChar()[i]);
    lower += MRBUnicodeString(&character, 1);
  }
  return lower;
}

bool IsLetterOrDigit(char character) {
  return (character >= 'a' && character <= 'z') || (character >= '0' && character <= '9') ||
         static_cast<unsigned char>(character) >= 0x80;
}

// True when `text` has the form of `pattern`, in which "*" stands for any bytes and "?" for one.
// The last "*" met is the only one that ever needs another try, so the cost is at most quadratic.
bool HasForm(const MRBUnicodeString& text, const MRBUnicodeString& pattern) {
  int i = 0;
  int j = 0;
  int star = -1;
  int tried = 0;
  while (i < text.GetLengthInByte()) {
    const char wanted = KVLStringOperations::GetCharAt(pattern, j);
    if (j < pattern.GetLengthInByte() && wanted == '*') {
      star = j++;
      tried = i;
    } else if (j < pattern.GetLengthInByte() &&
               (wanted == '?' || wanted == text.ConvertToChar()[i])) {
      ++i;
      ++j;
    } else if (star >= 0) {
      j = star + 1;
      i = ++tried;
    } else {
      return false;
    }
  }
  while (KVLStringOperations::GetCharAt(pattern, j) == '*')
    ++j;
  return j == pattern.GetLengthInByte();
}

// True when `word` stands in `text` and no letter or digit touches it.
bool HoldsWord(const MRBUnicodeString& text, const MRBUnicodeString& word) {
  int from = 0;
  while (true) {
    const int at = text.SearchSubString(word, from, MRBUnicodeString::MRBSearchForward);
    if (at < 0) return false;
    const char before = KVLStringOperations::GetCharAt(text, at - 1);
    const char after = KVLStringOperations::GetCharAt(text, at + word.GetLengthInByte());
    if (!IsLetterOrDigit(before) && !IsLetterOrDigit(after)) return true;
    from = at + 1;
  }
}

// What the user looks for; without regard to the case of letters, but for the type.
class Query {
 public:
  Query(const MRBUnicodeString& patternText, const KVLShellWord* kindWord,
        const KVLShellWord* typeWord)
      : pattern(InLowerCase(patternText)),
        isForm(pattern.FindPosition("*", 0) != 0 || pattern.FindPosition("?", 0) != 0),
        kind(kindWord),
        type(typeWord) {}

  // Where `path` leads to `object`: what matches, in a word, or null.
  const char* Match(const MRBUnicodeString& path, const KVLCodeObject& object) const {
    if (kind && kind->text != KVLShellKind(object)) return nullptr;
    if (type && !HasType(object, type->text)) return nullptr;
    if (MatchesName(InLowerCase(path))) return "name";
    if (MatchesType(object)) return "type";
    if (!pattern.IsEmpty() && HoldsWord(InLowerCase(KVLShellDoc(path)), pattern)) return "doc";
    return nullptr;
  }

 private:
  bool MatchesName(const MRBUnicodeString& path) const {
    if (!isForm) return path.FindPosition(pattern, 0) != 0;
    const int end = path.GetLengthInByte() - (KVLStringOperations::EndsWith(path, "/") ? 1 : 0);
    const MRBUnicodeString whole = path.SubString(0, end);
    const int slash = whole.SearchSubString("/", 0, MRBUnicodeString::MRBSearchBackward);
    return HasForm(whole, pattern) || HasForm(whole.SubString(slash + 1, end), pattern);
  }

  bool MatchesType(const KVLCodeObject& object) const {
    const KVLCodeFunction* const function = object.AsFunction();
    if (!function) return false;
    for (const KVLCodeFunction::Param& param : function->GetParams())
      if (InLowerCase(param.typeName) == pattern) return true;
    return false;
  }

  static bool HasType(const KVLCodeObject& object, const MRBUnicodeString& typeName) {
    if (const KVLCodeValue* const variable = object.AsVariable()) {
      return variable->GetTypeName() == typeName;
    }
    const KVLCodeFunction* const function = object.AsFunction();
    if (!function) return false;
    for (const KVLCodeFunction::Param& param : function->GetParams())
      if (param.typeName == typeName) return true;
    return function->GetReturnTypeName() == typeName;
  }

  const MRBUnicodeString pattern;
  const bool isForm;
  const KVLShellWord* const kind;
  const KVLShellWord* const type;
};

KVLShellOutcome Run(const KVLShellArguments& arguments, KVLShellWork&, KVLShellAnswer& answer) {
  static constexpr const char* Columns[] = {"path", "kind", "signature", nullptr};
  const KVLShellWord* const type = arguments.ValueOf("-t");
  const Query query(arguments[0].text, arguments.ValueOf("-k"), type);
  answer.result = KVLShellNode::NewList();
  const bool isDone = KVLShellWalk(
      KVLShellFind("").envs, [&](const MRBUnicodeString& path, const KVLShellChild& child) {
        // Docs are found as what they are about.
        if (KVLStringOperations::StartsWith(path, "doc/")) return true;
        const char* const match = query.Match(path, *child.object);
        if (!match) return true;
        KVLShellNode record = KVLShellNode::NewRecord();
        record.Set("path", path);
        record.Set("kind", KVLShellKind(*child.object));
        const MRBUnicodeString signature = KVLShellSignature(*child.object);
        if (!signature.IsEmpty()) record.Set("signature", signature);
        record.Set("matched", match);
        answer.result.Append(std::move(record));
        return true;
      });
  if (!isDone) return KVLShellOutcome(KVLShellResult_Interrupted, "find: interrupted");
  answer.layout = KVLShellAnswer::Table;
  answer.columns = Columns;
  if (!answer.result.GetItems().empty()) return KVLShellOutcome();
  if (!type || KVLShellFindType(type->text)) return KVLShellOutcome(KVLResult_False, "");
  KVLShellOutcome outcome = KVLShellUnknownType(type->text, type->position);
  outcome.message = "find: " + outcome.message;
  return outcome;
}

}  // namespace

const KVLShellCommand KVLShellFindCommand = {
    "find",
    "find PATTERN [-k KIND] [-t TYPE]",
    "finds objects by name, type or doc",
    "  Looks for PATTERN in paths, for parameters of the type PATTERN, and for the word PATTERN in "
    "the\n"
    "  docs, in capitals or not. \"*\" stands for any text and \"?\" for one character.\n"
    "  With -k, only what is of that kind: function, type, variable or env.\n"
    "  With -t, only variables of that type and functions that take or return it.\n"
    "  Finding nothing is the answer \"no\".\n"
    "    find hypot\n"
    "    find *point* -k function\n"
    "    find * -t Point\n",
    KVLShellStyle_Words,
    Run,
    1,
    1,
    {KVLShellWord_Other},
    {{"-k", "KIND", "function|type|variable|env", KVLShellWord_Other},
     {"-t", "TYPE", nullptr, KVLShellWord_Type}}};
