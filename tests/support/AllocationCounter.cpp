#include "AllocationCounter.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>

// What the sanitizers themselves say of the build, under both compilers.
#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KVL_TESTS_ADDRESS_SANITIZER
#elif __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
#define KVL_TESTS_OTHER_SANITIZER
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define KVL_TESTS_ADDRESS_SANITIZER
#elif defined(__SANITIZE_THREAD__)
#define KVL_TESTS_OTHER_SANITIZER
#endif

namespace {

std::atomic<long> allocations{0};

[[maybe_unused]] void CountAllocation() {
  allocations.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace

#if defined(KVL_TESTS_ADDRESS_SANITIZER)

// From the sanitizer's runtime; not every compiler brings its header along.
extern "C" int __sanitizer_install_malloc_and_free_hooks(
    void (*onAllocation)(const volatile void* block, std::size_t size),
    void (*onDeallocation)(const volatile void* block));

namespace {

void OnAllocation(const volatile void*, std::size_t) {
  CountAllocation();
}

void OnDeallocation(const volatile void*) {}

// Hooks cannot be taken out again, and there is room for a few only: installed once.
bool Observe() {
  static const bool observed =
      __sanitizer_install_malloc_and_free_hooks(OnAllocation, OnDeallocation) != 0;
  return observed;
}

}  // namespace

#elif defined(__GLIBC__) && !defined(KVL_TESTS_OTHER_SANITIZER)

// The program's definitions go before those of the C library, also for calls from other libraries.
extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);

void* malloc(std::size_t size) noexcept {
  CountAllocation();
  return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) noexcept {
  CountAllocation();
  return __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size) noexcept {
  CountAllocation();
  return __libc_realloc(block, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
  CountAllocation();
  return __libc_memalign(alignment, size);
}

}  // extern "C"

namespace {

bool Observe() {
  return true;
}

}  // namespace

#else

namespace {

bool Observe() {
  return false;
}

}  // namespace

#endif

AllocationCounter::AllocationCounter() : before(0) {
  Observe();
  before = allocations.load(std::memory_order_relaxed);
}

long AllocationCounter::GetCount() const {
  return allocations.load(std::memory_order_relaxed) - before;
}

bool AllocationCounter::IsAvailable() {
  return Observe();
}
