#ifndef KVL_TESTS_ALLOCATION_COUNTER_H
#define KVL_TESTS_ALLOCATION_COUNTER_H

/// Counts the heap allocations of the whole process (malloc, calloc, realloc, operator new), those
/// made inside the kernel library included, from its construction on.
///
/// The program that uses it has `AllocationCounter.cpp` among its sources. Counters may be nested.
///
///     if (!AllocationCounter::IsAvailable()) GTEST_SKIP();
///     const AllocationCounter counter;
///     UseTheKernel();
///     EXPECT_EQ(counter.GetCount(), 0);
class AllocationCounter {
 public:
  AllocationCounter();

  long GetCount() const;

  /// False where allocations cannot be observed from the program; the count stays 0 there.
  static bool IsAvailable();

 private:
  long before;
};

#endif
