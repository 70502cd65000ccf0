#include <KVLCodeContext.h>
#include <KVLCodeFunctionBinding.h>

#include <cstdio>

#include "Add.h"

int main() {
  const KVLSmartPtr<KVLCodeFunction> add = new Add;
  const KVLCodeContext context;

  // One entry a parameter of the function; null leaves it open.
  KVLVector<KVLSmartPtr<const KVLCodeValue>> fixed;
  fixed.Append(nullptr);
  fixed.Append(KVLSmartPtr<const KVLCodeValue>(new Number("", 100)));
  const KVLSmartPtr<KVLCodeFunction> addHundred = new KVLCodeFunctionBinding(*add, fixed);
  std::puts(addHundred->ToStringCode());

  KVLVector<MRBUnicodeString> texts;
  texts.Append("1");
  MRBUnicodeString result;
  if (!KVLFailed(addHundred->ParseAndCall(context, texts, result))) std::puts(result);
}
