#include <KVLKernel.h>

namespace {

class Text : public KVLCodeValue {
 public:
  explicit Text(const MRBUnicodeString& valueName) : KVLCodeValue(valueName, "Text") {}
  long GetValueStr(const KVLCodeContext&, MRBUnicodeString& text) const override {
    text = content;
    return KVLResult_Success;
  }
  long SetValueStr(const KVLCodeContext&, const MRBUnicodeString& text) override {
    content = text;
    return KVLResult_Success;
  }
  MRBUnicodeString content;
};

class Greet : public KVLCodeFunction {
 public:
  Greet() : KVLCodeFunction("greet", 1) {
    params[0] = Param{"name", "Text", "", 1};
    returnTypeName = "Text";
  }
  bool IsMethod() const override { return false; }
  KVLSmartPtr<KVLCodeFunctionCaller> CreateCaller(const KVLCodeContext& context) const override;
};

class GreetCaller : public KVLCodeFunctionCaller {
 public:
  GreetCaller(const Greet& greet, const KVLCodeContext& callContext)
      : KVLCodeFunctionCaller(greet, callContext) {
    args.Append(new Text("name"));
  }

 protected:
  KVLSmartPtr<KVLCodeValue> CallInternal() override {
    const KVLSmartPtr<Text> greeting = new Text("greeting");
    greeting->content = "Hello, " + static_cast<const Text&>(*args[0]).content + "!";
    return greeting;
  }
};

KVLSmartPtr<KVLCodeFunctionCaller> Greet::CreateCaller(const KVLCodeContext& context) const {
  return new GreetCaller(*this, context);
}

// Publishes while the library is loaded, withdraws while it is unloaded.
const KVLCodeObjectRegisterer greetRegisterer(KVLCodeEnv::GetDefault(), new Greet, "text/greet",
                                              KVLSourceLocation(__FILE__, __LINE__, ""));

}  // namespace
