#include <KVLCodeObjectRegisterer.h>

#include <cstdio>

int main() {
  const KVLSmartPtr<KVLCodeEnv> env = new KVLCodeEnv("env");
  const KVLSmartPtr<KVLCodeObject> pi = new KVLCodeObject("pi");
  {
    const KVLCodeObjectRegisterer first(*env, pi, "math/pi", KVLSourceLocation("a.cpp", 3, ""));
    const KVLCodeObjectRegisterer second(*env, new KVLCodeObject("other"), "math/pi",
                                         KVLSourceLocation("b.cpp", 8, ""));
    std::puts(env->FindObject("math/pi") == pi ? "the first one stays" : "replaced");
    for (const MRBUnicodeString& message : env->GetSubEnv("math").Check())
      std::puts(message);
  }
  std::puts(env->FindObject("math/pi") ? "still there" : "withdrawn");
  // Where an object was registered stays on record.
  std::puts(pi->GetRegistrationLocations()[0].ToString());
}
