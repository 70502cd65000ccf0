// A shell library: the command's text is the number that it returns. It notes each load and each
// command in the trace channel.

#include <cstdlib>

#include "KVLCodeEnvAccess.h"
#include "MRBHost.h"

namespace {

constexpr int NoteLevel = 7;

struct Note {
  Note() { MRBSysBftier(NoteLevel, "+KVLCodeEnvShell", 0); }
  ~Note() { MRBSysBftier(NoteLevel, "-KVLCodeEnvShell", 0); }
};
const Note note;

}  // namespace

extern "C" KVL_ENTRY_EXPORT long KVLCodeShellStaticRun(const MRBUnicodeString& command) {
  MRBSysBftier(NoteLevel, command.ConvertToChar(), command.GetLengthInByte());
  return std::atol(command.ConvertToChar());
}
