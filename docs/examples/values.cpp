#include <KVLCodeContext.h>
#include <KVLCodeEnv.h>

#include <cstdio>

#include "Number.h"

int main() {
  // A types environment of its own; modules use the default one.
  const KVLSmartPtr<KVLCodeEnv> typesEnv = new KVLCodeEnv("types");
  typesEnv->Add(new NumberType, "");
  const KVLCodeContext context(*typesEnv);

  const KVLSmartPtr<KVLCodeValue> half = new Number("half", 0.5);
  half->Dump();
  std::puts(half->ToStringCode());

  MRBUnicodeString text;
  half->GetValueStr(context, text);
  std::puts(text);
  std::puts(KVLFailed(half->SetValueStr(context, "a half")) ? "refused" : "taken");

  // Copying asks the type for a fresh value and assigns to it, here through text.
  const KVLSmartPtr<KVLCodeValue> copy = half->Copy(context, "copy");
  copy->Dump();
  std::puts(copy->CompareValueWith(context, *half) == KVLResult_Success ? "equal" : "different");
  copy->SetDefault(context);
  std::puts(copy->CompareValueWith(context, *half) == KVLResult_Success ? "equal" : "different");
}
