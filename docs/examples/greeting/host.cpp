#include <KVLKernel.h>

#include <cstdio>

namespace {

long Greet(const char* name) {
  const KVLSmartPtr<KVLCodeObject> object = KVLCodeEnv::GetDefault().FindObject("text/greet");
  const KVLCodeFunction* const greet = object ? object->AsFunction() : nullptr;
  if (!greet) return KVLResult_Failure;
  KVLVector<MRBUnicodeString> texts;
  texts.Append(name);
  MRBUnicodeString greeting;
  const long result = greet->ParseAndCall(KVLCodeContext(), texts, greeting);
  if (!KVLFailed(result)) std::puts(greeting);
  return result;
}

}  // namespace

int main() {
  // Fails when one library is missing; what matters here is whether the function is there.
  (void)KVLCodeEnvAccess::Load();
  const long result = Greet("world");
  // Nothing of the module is held any more.
  (void)KVLCodeEnvAccess::Unload();
  return KVLFailed(result) ? 1 : 0;
}
