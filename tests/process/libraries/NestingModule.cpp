// A module that has all modules loaded when it comes, and unloaded when it goes.

#include "KVLCodeEnvAccess.h"
#include "MRBHost.h"

namespace {

constexpr int NoteLevel = 7;

struct Nesting {
  Nesting() {
    MRBSysBftier(NoteLevel, "+" LIBRARY_NAME, static_cast<int>(KVLCodeEnvAccess::Load()));
  }
  ~Nesting() {
    MRBSysBftier(NoteLevel, "-" LIBRARY_NAME, static_cast<int>(KVLCodeEnvAccess::Unload()));
  }
};
const Nesting nesting;

}  // namespace
