#include "FailingAllocations.h"

#include <atomic>
#include <cstddef>
#include <new>

namespace {

// How many allocations to go until the one that fails; 0 or less when none is to fail.
std::atomic<long> untilFailure{0};
std::atomic<bool> failed{false};

}  // namespace

// Through the throwing form, so that a sanitizer sees a pair of new and delete.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  if (untilFailure.load() > 0 && untilFailure.fetch_sub(1) == 1) {
    failed = true;
    return nullptr;
  }
  try {
    return ::operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

FailingAllocations::FailingAllocations(long nth) {
  failed = false;
  untilFailure = nth;
}

FailingAllocations::~FailingAllocations() {
  untilFailure = 0;
}

bool FailingAllocations::HasFailed() const {
  return failed;
}

bool FailingAllocations::IsAvailable() {
#if defined(_WIN32)
  return false;
#else
  return true;
#endif
}
