#ifndef KVL_TESTS_NEXT_NEW_FAILS_H
#define KVL_TESTS_NEXT_NEW_FAILS_H

namespace kvltest {

/// Set to have the next `operator new` of the process, the kernel's included, throw; it is unset by
/// that. Only where the kernel's allocations pass through the program.
extern bool nextNewFails;

}  // namespace kvltest

#endif
