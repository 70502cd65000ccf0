#include <exception>

#include "KVLCodeFunction.h"
#include "KVLShellCommand.h"
#include "KVLShellEvaluate.h"
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
KVLSmartPtr<KVLCodeValue> ReadByForm(const KVLShellWord& word, const KVLShellWork& work) {
  if (!word.isQuoted) {
    if (KVLStringOperations::StartsWith(word.text, "$")) {
      return work.session.FindVariable(word.text.SubString(1, word.text.GetLengthInByte()));
    }
    if (const auto value = KVLShellReadScalar(work.context, word.text)) return value;
    if (KVLStringOperations::StartsWith(word.text, "[")) {
      return KVLShellReadList(work.context, {word.text, word.text, ""});
    }
  }
  return KVLShellReadAs(work.context, "string", word.text);
}

// One conversion on its way: where it is looked for, and what is found. The parents of the source's
// type form no loop.
class Conversion {
 public:
  Conversion(const KVLCodeValue& source, const MRBUnicodeString& targetName)
      : from(source), toName(targetName) {
    Search();
  }

  bool IsFound() const { return isFound; }
  // Records of "path" and "found", the declaration of what is there or null.
  const KVLShellNode& GetSteps() const { return steps; }

  // How the content travels when no conversion does it, or null when it does not.
  const char* WayOfText() const {
    if (from.GetTypeName() == toName) return "the types are equal: assigned";
    const KVLSmartPtr<const KVLCodeType> source = KVLShellFindType(from.GetTypeName());
    const KVLSmartPtr<const KVLCodeType> target = KVLShellFindType(toName);
    if (!source || !target) return "a type is not registered: copied as text";
    if (source->IsDummy() || target->IsDummy()) return "a type stands for any: copied as text";
    return isDescendant ? "a descendant: copied as text" : nullptr;
  }

 private:
  void Search() {
    if (from.GetTypeName() == toName) return;
    MRBUnicodeString typeName = from.GetTypeName();
    while (!isFound) {
      AddStep("_conversions/" + typeName + "/" + toName);
      const KVLSmartPtr<const KVLCodeType> type = KVLShellFindType(typeName);
      if (!type || type->GetParentTypeName().IsEmpty()) break;
      typeName = type->GetParentTypeName();
      if (typeName == toName) isDescendant = true;
    }
  }

  void AddStep(const MRBUnicodeString& path) {
    const KVLShellPlace place = KVLShellFind(path);
    const KVLCodeFunction* const function = place.object ? place.object->AsFunction() : nullptr;
    KVLShellNode step = KVLShellNode::NewRecord();
    step.Set("path", path);
    step.Set("found", function ? KVLShellNode(function->ToStringCode()) : KVLShellNode());
    isFound = function != nullptr;
    const MRBUnicodeString found = isFound ? function->ToStringCode() : "none";
    steps.Append(step.ShowAs(path + ": " + found));
  }

  const KVLCodeValue& from;
  const MRBUnicodeString& toName;
  KVLShellNode steps = KVLShellNode::NewList();
  bool isFound = false;
  bool isDescendant = false;
};

// Assigns, and keeps an exception's words.
long Assign(const KVLCodeValue& from, KVLCodeValue& to, const KVLCodeContext& context,
            MRBUnicodeString& thrown) {
  try {
    return to.AssignFrom(context, from);
  } catch (const std::exception& exception) {
    thrown = exception.what();
    return KVLResult_Failure;
  }
}

KVLShellOutcome Convert(const KVLShellWord& valueWord, const KVLCodeValue& from,
                        const KVLShellWord& toWord, KVLShellWork& work, bool isExplained,
                        KVLShellAnswer& answer) {
  const MRBUnicodeString& toName = toWord.text;
  const KVLSmartPtr<KVLCodeValue> to = KVLShellFindType(toName)->CreateValue("value");
  if (!to) return Refused("the type '" + toName + "' makes no values", toWord, toName, 0);
  if (from.GetTypeName() != toName && KVLShellDescendsInALoop(from.GetTypeName())) {
    return Refused("the parents of " + from.GetTypeName() + " form a loop", valueWord, toName, 0);
  }
  const Conversion conversion(from, toName);
  MRBUnicodeString thrown;
  const long code = Assign(from, *to, work.context, thrown);
  KVLShellNode explained = KVLShellNode::NewRecord();
  if (isExplained) {
    const KVLShellNode source = KVLShellValueNode(work.context, from);
    explained.Set("from", source).ShowAs(source.ToText() + " (" + from.GetTypeName() + ")");
    explained.Set("steps", conversion.GetSteps());
    const char* const way = conversion.IsFound() ? nullptr : conversion.WayOfText();
    if (way) explained.Set("way", way);
  }
  if (KVLFailed(code)) {
    if (isExplained) {
      answer.result = explained;
      answer.layout = KVLShellAnswer::Sheet;
    }
    if (!conversion.IsFound() && !conversion.WayOfText()) {
      return Refused("no conversion from " + from.GetTypeName() + " to " + toName, toWord, toName,
                     code);
    }
    return Refused("'" + KVLShellPrintable(valueWord.text) + "' (" + from.GetTypeName() +
                       ") is refused by the conversion to " + toName +
                       (thrown.IsEmpty() ? ", with " + KVLShellCodeText(code) : ": " + thrown),
                   valueWord, toName, code);
  }
  MRBUnicodeString text;
  const long writeCode = to->GetValueStr(work.context, text);
  if (KVLFailed(writeCode)) {
    return Refused("the " + toName + " cannot be written: " + KVLShellCodeText(writeCode),
                   valueWord, toName, writeCode);
  }
  const KVLShellNode value = KVLShellNode::NewValue(toName, text);
  if (isExplained) {
    explained.Set("to", value).ShowAs(text + " (" + toName + ")");
    answer.result = explained;
    answer.layout = KVLShellAnswer::Sheet;
  } else {
    answer.result = value;
    answer.layout = KVLShellAnswer::Value;
  }
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
                 : ReadByForm(valueWord, work);
  if (!from && count == 2 && !valueWord.isQuoted &&
      KVLStringOperations::StartsWith(valueWord.text, "$")) {
    const MRBUnicodeString name = valueWord.text.SubString(1, valueWord.text.GetLengthInByte());
    return KVLShellUnknownVariable(name, work, valueWord.position);
  }
  if (!from) {
    return Refused("'" + KVLShellPrintable(valueWord.text) + "' is no " +
                       (count == 3 ? fromName : MRBUnicodeString("value")),
                   valueWord, fromName, 0);
  }
  return Convert(valueWord, *from, arguments[count - 1], work, arguments.Has("--explain"), answer);
}

}  // namespace

const KVLShellCommand KVLShellConvertCommand = {
    "convert",
    "convert VALUE [FROM] TO [--explain]",
    "converts a value to another type",
    "  Without FROM, the value is taken as a list when it begins with \"[\", else as a bool, an "
    "int\n"
    "  or a double when it reads as one, else (or when it is quoted) as a string; $NAME is a "
    "session\n"
    "  value. With --explain, tells every place where a conversion was looked for.\n"
    "    convert 3 double\n"
    "    convert 2.0 double int\n"
    "    convert \"12\" int\n",
    KVLShellStyle_Words,
    Run,
    2,
    3,
    {KVLShellWord_Other, KVLShellWord_Type, KVLShellWord_Type},
    {{"--explain", nullptr, nullptr, KVLShellWord_Other}}};
