#include <KVLCodeContext.h>
#include <KVLCodeFunctionCaller.h>
#include <KVLCodeFunctionWithContext.h>
#include <KVLCodePointerValue.h>

#include <cstdio>

#include "Number.h"

// The kernel knows sessions by this name only; what they are is the host's business.
class KVLCodeSession {
 public:
  double limit = 10;
};

namespace {

// Number clip(KVLCodeSession session, Number x): at most what the session allows.
class Clip : public KVLCodeFunction {
 public:
  Clip() : KVLCodeFunction("clip", 2) {
    params[0].typeName = "KVLCodeSession";
    params[1].typeName = "Number";
    params[0].direction = params[1].direction = Input;
    returnTypeName = "Number";
    Init("session, x");
  }

  bool IsMethod() const override { return false; }

  KVLSmartPtr<KVLCodeFunctionCaller> CreateCaller(const KVLCodeContext& context) const override {
    return new Caller(*this, context);
  }

 private:
  class Caller : public KVLCodeFunctionCaller {
   public:
    Caller(const Clip& clip, const KVLCodeContext& callContext)
        : KVLCodeFunctionCaller(clip, callContext) {
      args.Append(new KVLCodePointerValue("session", "KVLCodeSession"));
      args.Append(new Number("x"));
    }

   protected:
    KVLSmartPtr<KVLCodeValue> CallInternal() override {
      const auto* const session = static_cast<const KVLCodeSession*>(args[0]->GetValuePtr());
      const double x = static_cast<const Number&>(*args[1]).content;
      return new Number("", session && x > session->limit ? session->limit : x);
    }
  };
};

}  // namespace

int main() {
  const KVLSmartPtr<KVLCodeFunction> clip = new Clip;
  const KVLSmartPtr<KVLCodeFunction> visible = new KVLCodeFunctionWithContext(*clip);
  std::puts(visible->ToStringCode());

  KVLCodeSession session;
  KVLCodeContext context;
  context.SetSession(&session);
  KVLVector<MRBUnicodeString> texts;
  texts.Append("12.5");
  MRBUnicodeString result;
  if (!KVLFailed(visible->ParseAndCall(context, texts, result))) std::puts(result);
}
