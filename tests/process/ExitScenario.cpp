// Ends the process in a state that the first argument names. Run under a memory checker.

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "KVLCodeEnv.h"
#include "KVLCodeEnvAccess.h"
#include "KVLResult.h"
#include "MRBHost.h"

namespace {

void Expect(long expected, long result, const char* operation) {
  if (result == expected) return;
  std::fprintf(stderr, "%s returned %ld instead of %ld\n", operation, result, expected);
  std::_Exit(1);
}

void LoadAll() {
  Expect(KVLResult_Success, KVLCodeEnvAccess::Load(), "Load");
}

void UnloadAll() {
  Expect(KVLResult_Success, KVLCodeEnvAccess::Unload(), "Unload");
}

bool Reach(const char* state) {
  if (std::strcmp(state, "untouched") == 0) {
  } else if (std::strcmp(state, "roots") == 0) {
    KVLCodeEnv::GetDefaultConversionsRoot().GetSubEnv("a/b");
    KVLCodeEnv::GetDefaultTypeRoot();
    KVLCodeEnv::GetDefaultMembersRoot();
  } else if (std::strcmp(state, "loaded") == 0) {
    LoadAll();
  } else if (std::strcmp(state, "unloaded") == 0) {
    LoadAll();
    UnloadAll();
  } else if (std::strcmp(state, "reloaded") == 0) {
    LoadAll();
    UnloadAll();
    LoadAll();
  } else if (std::strcmp(state, "shell") == 0) {
    LoadAll();
    Expect(5, KVLCodeEnvRun("5"), "Run");
  } else {
    std::fprintf(stderr, "no state '%s'\n", state);
    return false;
  }
  return true;
}

// The modules' notes, and in one state those of libraries that outlive `main`.
void IgnoreTrace(int, const char*, int) {}

}  // namespace

int main(int argc, char** argv) {
  MRBSetTraceSink(IgnoreTrace);
  return argc == 2 && Reach(argv[1]) ? 0 : 2;
}
