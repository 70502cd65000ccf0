#include <KVLCodeContext.h>

#include <cstdio>

#include "Add.h"

int main() {
  const KVLSmartPtr<KVLCodeFunction> add = new Add;
  std::puts(add->ToStringCode());
  add->Dump();
  const KVLCodeContext context;

  // From text to text, in one step.
  KVLVector<MRBUnicodeString> texts;
  texts.Append("3.5");
  texts.Append("4.25");
  MRBUnicodeString result;
  if (!KVLFailed(add->ParseAndCall(context, texts, result))) std::puts(result);

  texts[0] = "x";
  std::printf("%ld\n", add->ParseAndCall(context, texts, result));

  // Step by step, with values where they are at hand.
  const KVLSmartPtr<KVLCodeFunctionCaller> caller = add->CreateCaller(context);
  caller->SetArg(0, KVLSmartPtr<const KVLCodeValue>(new Number("", 41)));
  caller->Call();  // b is left at its default
  caller->GetReturnedValueStr(result);
  std::puts(result);
}
