#include <exception>

#include "KVLCodeContext.h"
#include "KVLCodeFunction.h"
#include "KVLCodeValue.h"
#include "KVLShellCommand.h"
#include "KVLShellPath.h"
#include "KVLShellResult.h"
#include "KVLStringOperations.h"

namespace {

KVLSmartPtr<const KVLCodeType> FindType(const MRBUnicodeString& typeName) {
  const KVLShellPlace place = KVLShellFind("_types/" + typeName);
  return place.object ? place.object->AsType() : nullptr;
}

// A fresh value of the type that holds what `text` says; null when it cannot be read.
KVLSmartPtr<KVLCodeValue> ReadAs(const KVLCodeContext& context, const MRBUnicodeString& typeName,
                                 const MRBUnicodeString& text) {
  const KVLSmartPtr<const KVLCodeType> type = FindType(typeName);
  const KVLSmartPtr<KVLCodeValue> value = type ? type->CreateValue("value") : nullptr;
  if (!value || KVLFailed(value->SetValueStr(context, text))) return nullptr;
  return value;
}

// The value that a word stands for when its type is not given.
KVLSmartPtr<KVLCodeValue> ReadByForm(const KVLCodeContext& context, const KVLShellWord& word) {
  if (word.isQuoted) return ReadAs(context, "string", word.text);
  for (const char* typeName : {"bool", "int", "double"}) {
    if (const KVLSmartPtr<KVLCodeValue> value = ReadAs(context, typeName, word.text)) return value;
  }
  if (KVLStringOperations::StartsWith(word.text, "[")) {
    return ReadAs(context, "KVLVector<KVLCodeValue_var>", word.text);
  }
  return ReadAs(context, "string", word.text);
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

KVLShellOutcome Refused(const MRBUnicodeString& message, int position) {
  KVLShellOutcome outcome;
  outcome.code = KVLShellResult_Argument;
  outcome.message = "convert: " + message;
  outcome.position = position;
  return outcome;
}

KVLShellOutcome UnknownType(const KVLShellWord& word) {
  KVLShellOutcome outcome;
  outcome.code = KVLShellResult_NotFound;
  outcome.position = word.position;
  outcome.message = "convert: no type '" + KVLShellPrintable(word.text) + "'";
  KVLVector<MRBUnicodeString> typeNames;
  for (const KVLShellChild& child : KVLShellChildren(KVLShellFind("_types/").envs))
    typeNames.Append(child.label);
  const MRBUnicodeString nearest = KVLShellNearest(word.text, typeNames);
  if (!nearest.IsEmpty()) outcome.message += "; did you mean '" + nearest + "'?";
  return outcome;
}

KVLShellOutcome Convert(const KVLShellWord& valueWord, const KVLCodeValue& from,
                        const KVLShellWord& toWord, KVLShellOutput& output) {
  const KVLCodeContext context;
  const KVLSmartPtr<KVLCodeValue> to = FindType(toWord.text)->CreateValue("value");
  if (!to) return Refused("the type '" + toWord.text + "' makes no values", toWord.position);
  const long code = to->AssignFrom(context, from);
  if (KVLFailed(code)) {
    if (!HasConversion(context, from, toWord.text)) {
      return Refused("no conversion from " + from.GetTypeName() + " to " + toWord.text,
                     toWord.position);
    }
    return Refused("'" + KVLShellPrintable(valueWord.text) + "' (" + from.GetTypeName() +
                       ") is refused by the conversion to " + toWord.text + ", with " +
                       KVLShellCodeText(code),
                   valueWord.position);
  }
  MRBUnicodeString text;
  const long writeCode = to->GetValueStr(context, text);
  if (KVLFailed(writeCode)) {
    return Refused("the " + toWord.text + " cannot be written: " + KVLShellCodeText(writeCode),
                   valueWord.position);
  }
  output.Print(text);
  return KVLShellOutcome();
}

}  // namespace

KVLShellOutcome KVLShellConvert(const KVLShellCommandWords& words, KVLShellOutput& output) {
  const int count = words.GetCount();
  if (count < 3) return KVLShellMisused(words, "a value and a type are needed", -1);
  if (count > 4) return KVLShellMisused(words, "takes at most three words", words[4].position);
  for (int i = 2; i < count; ++i) {
    if (FindType(words[i].text)) continue;
    return UnknownType(words[i]);
  }
  const KVLShellWord& valueWord = words[1];
  const KVLShellWord& toWord = words[count - 1];
  const KVLCodeContext context;
  const KVLSmartPtr<KVLCodeValue> from =
      count == 4 ? ReadAs(context, words[2].text, valueWord.text) : ReadByForm(context, valueWord);
  if (!from) {
    const MRBUnicodeString expected = count == 4 ? words[2].text : MRBUnicodeString("value");
    return Refused("'" + KVLShellPrintable(valueWord.text) + "' is no " + expected,
                   valueWord.position);
  }
  try {
    return Convert(valueWord, *from, toWord, output);
  } catch (const std::exception& exception) {
    return Refused(exception.what(), valueWord.position);
  } catch (...) {
    return Refused("the conversion threw something that is no std::exception", valueWord.position);
  }
}
