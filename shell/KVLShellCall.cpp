#include <exception>

#include "KVLCodeContext.h"
#include "KVLCodeFunction.h"
#include "KVLCodeFunctionCaller.h"
#include "KVLCodeValue.h"
#include "KVLShellCommand.h"
#include "KVLShellPath.h"
#include "KVLShellResult.h"
#include "KVLStringOperations.h"

namespace {

using Param = KVLCodeFunction::Param;

// One call: the words of the command against the parameters of the function.
class Call {
 public:
  Call(const KVLCodeFunction& called, const KVLShellCommandWords& commandWords)
      : function(called), words(commandWords) {}

  KVLShellOutcome Run(KVLShellOutput& output) {
    const KVLShellOutcome prepared = TakeWords();
    if (prepared.code != KVLResult_Success) return prepared;
    MRBUnicodeString result;
    try {
      const long code = function.ParseAndCall(context, texts, result);
      if (KVLFailed(code)) return Explain(code);
    } catch (const std::exception& exception) {
      return Failed(exception.what());
    } catch (...) {
      return Failed("the function threw something that is no std::exception");
    }
    Print(output, result);
    return KVLShellOutcome();
  }

 private:
  // Only input parameters take a word; the texts of the others are there for their outputs.
  KVLShellOutcome TakeWords() {
    const int given = words.GetCount() - FirstArgument;
    int taken = 0;
    for (const Param& param : function.GetParams()) {
      if (!(param.direction & KVLCodeFunction::Input)) {
        texts.Append("");
        positions.Append(-1);
      } else if (taken < given) {
        const KVLShellWord& word = words[FirstArgument + taken];
        texts.Append(word.text);
        positions.Append(word.position);
        ++taken;
      } else if (!param.defaultValue.IsEmpty()) {
        texts.Append(param.defaultValue);
        positions.Append(-1);
      } else {
        return Refused("argument '" + param.name + "' (" + param.typeName + ") is missing", -1);
      }
    }
    if (taken == given) return KVLShellOutcome();
    return Refused("takes " + Count(taken) + ", got " + KVLStringOperations::FromNum(given),
                   words[FirstArgument + taken].position);
  }

  // Finds which argument it was that `ParseAndCall` could not read: its code does not tell.
  KVLShellOutcome Explain(long code) const {
    const KVLSmartPtr<KVLCodeFunctionCaller> caller = function.CreateCaller(context);
    if (!caller) return Failed("the function makes no caller");
    for (int i = 0; i < texts.GetCount(); ++i) {
      const Param& param = function.GetParam(i);
      if (!(param.direction & KVLCodeFunction::Input)) continue;
      if (!caller->GetArg(i)) {
        return Failed("no argument '" + param.name + "' of type '" + param.typeName + "' is made");
      }
      if (!KVLFailed(caller->SetArgStr(i, texts[i]))) continue;
      return Refused("argument '" + param.name + "' expects " + param.typeName + ", got '" +
                         KVLShellPrintable(texts[i]) + "'",
                     positions[i]);
    }
    return Failed("the call failed with " + KVLShellCodeText(code));
  }

  KVLShellOutcome Refused(const MRBUnicodeString& message, int position) const {
    KVLShellOutcome outcome;
    outcome.code = KVLShellResult_Argument;
    outcome.message = words[PathWord].text + ": " + message;
    outcome.position = position;
    return outcome;
  }

  KVLShellOutcome Failed(const MRBUnicodeString& message) const {
    KVLShellOutcome outcome;
    outcome.code = KVLResult_Failure;
    outcome.message = words[PathWord].text + ": " + message;
    return outcome;
  }

  void Print(KVLShellOutput& output, const MRBUnicodeString& result) const {
    if (function.GetReturnTypeName() != "void") output.Print(result);
    for (int i = 0; i < texts.GetCount(); ++i) {
      const Param& param = function.GetParam(i);
      if (param.direction & KVLCodeFunction::Output) output.Print(param.name + " = " + texts[i]);
    }
  }

  static MRBUnicodeString Count(int arguments) {
    return KVLStringOperations::FromNum(arguments) + (arguments == 1 ? " argument" : " arguments");
  }

  static constexpr int PathWord = 1;
  static constexpr int FirstArgument = 2;

  const KVLCodeContext context;
  const KVLCodeFunction& function;
  const KVLShellCommandWords& words;
  KVLVector<MRBUnicodeString> texts;  // one a parameter
  KVLVector<int> positions;           // of the word that gave the text; -1 for none
};

}  // namespace

KVLShellOutcome KVLShellCall(const KVLShellCommandWords& words, KVLShellOutput& output) {
  if (words.GetCount() < 2) {
    return KVLShellMisused(words, "the path of a function is missing", -1);
  }
  const KVLShellWord& pathWord = words[1];
  const KVLShellPlace place = KVLShellFind(pathWord.text);
  if (!place.IsFound()) return KVLShellNotFound("function", pathWord.text, pathWord.position);
  const KVLSmartPtr<KVLCodeObject> object = place.object;  // lives as long as the call
  if (!object || !object->AsFunction()) {
    KVLShellOutcome outcome;
    outcome.code = KVLShellResult_NotFound;
    outcome.position = pathWord.position;
    outcome.message = "'" + KVLShellPrintable(pathWord.text) + "' is not a function";
    return outcome;
  }
  return Call(*object->AsFunction(), words).Run(output);
}
