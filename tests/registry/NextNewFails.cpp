#include "NextNewFails.h"

#include <cstddef>
#include <cstdlib>
#include <new>

bool kvltest::nextNewFails = false;

void* operator new(std::size_t size) {
  void* const block = kvltest::nextNewFails ? nullptr : std::malloc(size > 0 ? size : 1);
  kvltest::nextNewFails = false;
  if (!block) throw std::bad_alloc();
  return block;
}

// Replaced too, so that every block that the forms of delete below get is from `malloc`.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return std::malloc(size > 0 ? size : 1);
}

void operator delete(void* block) noexcept {
  std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
  std::free(block);
}
