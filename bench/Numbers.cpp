#include "Numbers.h"

namespace kvlbench {

const MRBUnicodeString IntName("int");
const MRBUnicodeString DoubleName("double");
const MRBUnicodeString DescendantNames[3] = {"count", "index", "position"};

}  // namespace kvlbench
