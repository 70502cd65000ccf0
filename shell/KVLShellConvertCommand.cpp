#include "KVLCodeFunction.h"
#include "KVLShellCommand.h"
#include "KVLShellPath.h"
#include "KVLShellResult.h"
#include "KVLShellValue.h"
#include "KVLStringOperations.h"

namespace {

KVLShellOutcome Refused(const MRBUnicodeString& message, const KVLShellWord& word,
                        const MRBUnicodeString& expected, long cause) {
  KVLShellOutcome outcome(KVLShellResult_Argument, "convert: " + message, word.position);
  outcome.expected = expected;
  outcome.got = word.text;
  outcome.cause = cause;
  return outcome;
}

// The value that a word stands for when its type is not given.
KVLSmartPtr<KVLCodeValue> ReadByForm(const KVLCodeContext& context, const KVLShellWord& word) {
  if (!word.isQuoted) {
    if (const auto value = KVLShellReadScalar(context, word.text)) return value;
    if (KVLStringOperations::StartsWith(word.text, "[")) {
      return KVLShellReadList(context, "", word.text);
    }
  }
  return KVLShellReadAs(context, "string", word.text);
}

// True when a conversion from the type or from one of its ancestors is registered.
bool HasConversion(const KVLCodeContext& context, const KVLCodeValue& from,
                   const MRBUnicodeString& to) {
  KVLSmartPtr<const KVLCodeType> type = from.GetType(context);
  while (type) {
    if (KVLShellFind("_conversions/" + type->GetName() + "/" + to).object) return true;
    type = type->GetParentType(context);
  }
  return false;
}

KVLShellOutcome Convert(const KVLShellWord& valueWord, const KVLCodeValue& from,
                        const KVLShellWord& toWord, const KVLCodeContext& context,
                        KVLShellAnswer& answer) {
  const MRBUnicodeString& toName = toWord.text;
  const KVLSmartPtr<KVLCodeValue> to = KVLShellFindType(toName)->CreateValue("value");
  if (!to) return Refused("the type '" + toName + "' makes no values", toWord, toName, 0);
  const long code = to->AssignFrom(context, from);
  if (KVLFailed(code) && !HasConversion(context, from, toName)) {
    return Refused("no conversion from " + from.GetTypeName() + " to " + toName, toWord, toName,
                   code);
  }
  if (KVLFailed(code)) {
    return Refused("'" + KVLShellPrintable(valueWord.text) + "' (" + from.GetTypeName() +
                       ") is refused by the conversion to " + toName + ", with " +
                       KVLShellCodeText(code),
                   valueWord, toName, code);
  }
  MRBUnicodeString text;
  const long writeCode = to->GetValueStr(context, text);
  if (KVLFailed(writeCode)) {
    return Refused("the " + toName + " cannot be written: " + KVLShellCodeText(writeCode),
                   valueWord, toName, writeCode);
  }
  answer.result = KVLShellNode::NewValue(toName, text);
  answer.layout = KVLShellAnswer::Value;
  return KVLShellOutcome();
}

KVLShellOutcome Run(const KVLShellArguments& arguments, KVLShellWork& work,
                    KVLShellAnswer& answer) {
  const int count = arguments.GetCount();
  for (int i = 1; i < count; ++i) {
    if (KVLShellFindType(arguments[i].text)) continue;
    KVLShellOutcome outcome = KVLShellUnknownType(arguments[i].text, arguments[i].position);
    outcome.message = "convert: " + outcome.message;
    return outcome;
  }
  const KVLShellWord& valueWord = arguments[0];
  const MRBUnicodeString fromName = count == 3 ? arguments[1].text : MRBUnicodeString();
  const KVLSmartPtr<KVLCodeValue> from =
      count == 3 ? KVLShellReadAs(work.context, fromName, valueWord.text)
                 : ReadByForm(work.context, valueWord);
  if (!from) {
    return Refused("'" + KVLShellPrintable(valueWord.text) + "' is no " +
                       (count == 3 ? fromName : MRBUnicodeString("value")),
                   valueWord, fromName, 0);
  }
  return Convert(valueWord, *from, arguments[count - 1], work.context, answer);
}

}  // namespace

const KVLShellCommand KVLShellConvertCommand = {
    "convert",
    "convert VALUE [FROM] TO",
    "converts a value to another type",
    "  Without FROM, the value is taken as a list when it begins with \"[\", else as a bool, an "
    "int\n"
    "  or a double when it reads as one, else (or when it is quoted) as a string.\n"
    "    convert 3 double\n"
    "    convert 2.0 double int\n"
    "    convert \"12\" int\n",
    KVLShellStyle_Words,
    Run,
    2,
    3,
    {KVLShellWord_Other, KVLShellWord_Type, KVLShellWord_Type},
    {}};
