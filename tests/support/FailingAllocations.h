#ifndef KVL_TESTS_FAILING_ALLOCATIONS_H
#define KVL_TESTS_FAILING_ALLOCATIONS_H

/// While it lives, one `new (std::nothrow)` of the process, inside the kernel library too, yields
/// nothing: the `nth` from its construction on, the first being 1. One at a time.
///
/// The program that uses it has `FailingAllocations.cpp` among its sources.
class FailingAllocations {
 public:
  explicit FailingAllocations(long nth);
  ~FailingAllocations();
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;

  /// True once the allocation was asked for, and refused.
  bool HasFailed() const;

  /// False where the library's allocations do not pass through the program.
  static bool IsAvailable();
};

#endif
