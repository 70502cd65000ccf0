// A library for the loader's tests. It notes in the trace channel when it comes and goes.

#include "MRBHost.h"

namespace {

struct Note {
  Note() { MRBSysBftier(7, "+KVLHostTestLibrary", 0); }
  ~Note() { MRBSysBftier(7, "-KVLHostTestLibrary", 0); }
};
const Note note;

}  // namespace

extern "C" KVL_ENTRY_EXPORT int KVLHostTestTwice(int number) {
  return 2 * number;
}
