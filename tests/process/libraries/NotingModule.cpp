// A module that notes in the trace channel when its globals come and go, and publishes one object
// of a class of its own. LIBRARY_NAME is the name it is loaded by.

#include "KVLCodeEnv.h"
#include "KVLCodeObjectRegisterer.h"
#include "MRBHost.h"

namespace {

constexpr int NoteLevel = 7;

// Defined first: what is noted last happens after the registerer has withdrawn its object.
struct Note {
  Note() { MRBSysBftier(NoteLevel, "+" LIBRARY_NAME, 0); }
  ~Note() { MRBSysBftier(NoteLevel, "-" LIBRARY_NAME, 0); }
};
const Note note;

class Published : public KVLCodeObject {
 public:
  Published() : KVLCodeObject(LIBRARY_NAME) {}
  ~Published() override { MRBSysBftier(NoteLevel, "~" LIBRARY_NAME, 0); }

  MRBUnicodeString ToString() const override { return "published by " LIBRARY_NAME; }
};

const KVLCodeObjectRegisterer registerer(KVLCodeEnv::GetDefault(), new Published(),
                                         "modules/" LIBRARY_NAME,
                                         KVLSourceLocation(LIBRARY_NAME ".cpp", 1, ""));

}  // namespace
