#include <KVLCodeContext.h>
#include <KVLCodeEnv.h>
#include <KVLCodeFunction.h>
#include <KVLCodeFunctionCaller.h>

#include <cstdio>
#include <cstdlib>

#include "Number.h"

namespace {

// A text that is no number: another type, with a value class of its own.
class Word : public KVLCodeValue {
 public:
  explicit Word(const MRBUnicodeString& valueName) : KVLCodeValue(valueName, "Word") {}
  long GetValueStr(const KVLCodeContext&, MRBUnicodeString& text) const override {
    text = content;
    return KVLResult_Success;
  }
  long SetValueStr(const KVLCodeContext&, const MRBUnicodeString& text) override {
    content = text;
    return KVLResult_Success;
  }

 private:
  MRBUnicodeString content;
};

// Number Number(Word word): the length of the word.
class WordToNumber : public KVLCodeFunction {
 public:
  WordToNumber() : KVLCodeFunction("Number", 1) {
    params[0].typeName = "Word";
    params[0].direction = Input;
    returnTypeName = "Number";
  }
  bool IsMethod() const override { return false; }
  KVLSmartPtr<KVLCodeFunctionCaller> CreateCaller(const KVLCodeContext& context) const override {
    return new Caller(*this, context);
  }

 private:
  class Caller : public KVLCodeFunctionCaller {
   public:
    Caller(const KVLCodeFunction& called, const KVLCodeContext& callContext)
        : KVLCodeFunctionCaller(called, callContext) {
      args.Append(new Word("word"));
    }

   protected:
    KVLSmartPtr<KVLCodeValue> CallInternal() override {
      MRBUnicodeString text;
      GetArgStr(0, text);
      return new Number("", text.GetLengthInChar());
    }
  };
};

// An object of the host that must stay alive while values point into it.
class Document : public MRBBaseUnknown {
 public:
  ~Document() override { std::puts("document closed"); }
};

}  // namespace

int main() {
  const KVLSmartPtr<KVLCodeEnv> typesEnv = new KVLCodeEnv("types");
  const KVLSmartPtr<KVLCodeEnv> conversions = new KVLCodeEnv("conversions");
  typesEnv->Add(new NumberType, "");
  {
    const KVLCodeContext context(*typesEnv, *conversions);
    context.KeepAlive(MRBBaseUnknown_var(new Document));
    context.KeepAliveAlloc(std::malloc(64));  // freed with the context

    Word word("word");
    word.SetValueStr(context, "seven");
    Number number("number");
    std::printf("%ld\n", context.Convert(word, number));  // no conversion yet

    conversions->Add(new WordToNumber, "Word/");  // source type / target type
    std::printf("%ld\n", context.Convert(word, number));
    std::printf("%g\n", number.content);
  }
  std::puts("end");
}
