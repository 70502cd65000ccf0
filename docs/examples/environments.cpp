#include <KVLCodeEnv.h>

#include <cstdio>

namespace {

void Show(const char* what, const KVLSmartPtr<KVLCodeObject>& object) {
  std::printf("%s: %s\n", what, object ? object->GetName().ConvertToChar() : "nothing");
}

}  // namespace

int main() {
  const KVLSmartPtr<KVLCodeEnv> env = new KVLCodeEnv("env");
  env->Add(new KVLCodeObject("pi"), "math/");        // under its own name
  env->Add(new KVLCodeObject("tau"), "math/twopi");  // under another one
  Show("math/pi", env->FindObject("math/pi"));
  Show("math/twopi", env->FindObject("math/twopi"));

  // A name is given once; what comes second is refused, and the environment remembers.
  if (KVLFailed(env->Add(new KVLCodeObject("e"), "math/pi"))) {
    std::puts(env->GetSubEnv("math").Check()[0]);
  }

  // Looking into another environment where one's own has nothing.
  const KVLSmartPtr<KVLCodeEnv> physics = new KVLCodeEnv("physics");
  physics->Add(new KVLCodeObject("c"), "");
  env->AggregateEnv(*physics);
  Show("c", env->FindObject("c"));
  env->UnAggregateEnv(*physics);
  Show("c", env->FindObject("c"));

  for (const auto& entry : env->GetSubEnv("math").IterOnObjects()) {
    std::printf("%s -> %s\n", entry.key.ConvertToChar(), entry.value->GetName().ConvertToChar());
  }
}
