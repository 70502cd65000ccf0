#include <KVLCodeEnv.h>
#include <KVLTypeConversion.h>

#include <cstdio>

int main() {
  const KVLSmartPtr<KVLCodeObject> object = new KVLCodeObject("answer");
  object->Dump();
  std::puts(object->AsEnv() ? "an environment" : "no environment");

  const KVLSmartPtr<KVLCodeObject> env = new KVLCodeEnv("math");
  env->Dump();
  // The same question as a plain function pointer.
  using ToEnv = KVLTypeConversion<KVLCodeObject*, KVLCodeEnv*>;
  std::puts(ToEnv::convert(env.Get()) ? "an environment" : "no environment");

  const KVLSourceLocation place("src\\Fw\\PublicInterfaces\\add.h", 12, "init");
  std::puts(place.ToString());
  std::puts(place.GetPath(true, "/"));
}
