// A module with one mistake.

#include "KVLKernel.h"

namespace {

const KVLCodeObjectRegisterer registerer(KVLCodeEnv::GetDefaultMembersRoot(),
                                         new KVLCodeObject("Thing"), "Plant/Thing",
                                         KVLSourceLocation(__FILE__, __LINE__, ""));

}  // namespace
