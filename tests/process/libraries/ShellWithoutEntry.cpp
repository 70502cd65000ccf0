// A shell library whose entry has another name.

#include "KVLCodeEnvAccess.h"

extern "C" KVL_ENTRY_EXPORT long KVLCodeShellOtherRun(const MRBUnicodeString&) {
  return 0;
}
