#include <KVLKernel.h>

#include "Text.h"

namespace {

// Text greet(Text name)
class Greet : public KVLCodeFunction {
 public:
  Greet() : KVLCodeFunction("greet", 1) {
    params[0] = Param{"name", "Text", "", Input};
    returnTypeName = "Text";
  }
  bool IsMethod() const override { return false; }
  KVLSmartPtr<KVLCodeFunctionCaller> CreateCaller(const KVLCodeContext& context) const override {
    return new Caller(*this, context);
  }

 private:
  struct Caller : KVLCodeFunctionCaller {
    Caller(const Greet& greet, const KVLCodeContext& callContext)
        : KVLCodeFunctionCaller(greet, callContext) {
      args.Append(new Text("name"));
    }
    KVLSmartPtr<KVLCodeValue> CallInternal() override {
      return new Text("greeting", "Hello, " + static_cast<const Text&>(*args[0]).content + "!");
    }
  };
};

const KVLCodeObjectRegisterer greetRegisterer(KVLCodeEnv::GetDefault(), new Greet, "text/greet",
                                              KVLSourceLocation(__FILE__, __LINE__, ""));

}  // namespace
