#include <KVLCodeEnv.h>
#include <KVLCodeEnvAccess.h>

#include <cstdio>

int main() {
  KVLCodeEnv& root = KVLCodeEnv::GetDefault();
  std::printf("%ld\n", KVLCodeEnvAccess::CheckAndDump());

  KVLCodeEnv::GetDefaultTypeRoot().Add(new KVLCodeObject("Int"), "");
  root.Add(new KVLCodeObject("pi"), "math/");
  root.Add(new KVLCodeObject("pi"), "math/");
  root.GetSubEnv("_hidden");

  std::printf("%ld\n", KVLCodeEnvAccess::CheckAndDump());
  for (const KVLCodeEnv::Anomaly& anomaly : root.ComputeAnomalies()) {
    std::printf("%s: %s\n", anomaly.path.ConvertToChar(),
                anomaly.object ? anomaly.object->ToString().ConvertToChar() : "no object");
  }
}
