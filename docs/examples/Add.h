#ifndef ADD_H
#define ADD_H

#include <KVLCodeFunction.h>
#include <KVLCodeFunctionCaller.h>

#include "Number.h"

// Number add(Number a, Number b=1)
class Add : public KVLCodeFunction {
 public:
  Add() : KVLCodeFunction("add", 2) {
    for (Param& param : params) {
      param.typeName = "Number";
      param.direction = Input;
    }
    returnTypeName = "Number";
    Init("a, b = 1");
  }

  bool IsMethod() const override { return false; }

  KVLSmartPtr<KVLCodeFunctionCaller> CreateCaller(const KVLCodeContext& context) const override {
    return new Caller(*this, context);
  }

 private:
  class Caller : public KVLCodeFunctionCaller {
   public:
    Caller(const Add& add, const KVLCodeContext& callContext)
        : KVLCodeFunctionCaller(add, callContext) {
      // One value a parameter; a default is the text that its value starts from.
      for (const Param& param : add.GetParams()) {
        args.Append(new Number(param.name));
        if (!param.defaultValue.IsEmpty()) SetArgStr(args.GetCount() - 1, param.defaultValue);
      }
    }

   protected:
    KVLSmartPtr<KVLCodeValue> CallInternal() override { return new Number("", Term(0) + Term(1)); }

   private:
    double Term(int i) const { return static_cast<const Number&>(*args[i]).content; }
  };
};

#endif
