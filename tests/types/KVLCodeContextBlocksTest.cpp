// When the blocks kept alive by a context are freed, how often and in which order: seen from the
// heap itself, where a program may stand in for it.

#include <gtest/gtest.h>

#include <cstdlib>

#include "KVLCodeContext.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define KVL_TEST_HEAP_IS_TAKEN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || \
    __has_feature(memory_sanitizer)
#define KVL_TEST_HEAP_IS_TAKEN 1
#endif
#endif

#if defined(__linux__) && !defined(KVL_TEST_HEAP_IS_TAKEN)

#include <dlfcn.h>

namespace {

constexpr int NbMarked = 3;

// Blocks of no heap, so that freeing one twice harms nothing.
char marked[NbMarked];
int nbFrees[NbMarked];
int order[4 * NbMarked];
int nbFreed = 0;

int IndexOf(const void* block) {
  for (int i = 0; i < NbMarked; ++i) {
    if (block == &marked[i]) return i;
  }
  return -1;
}

}  // namespace

extern "C" void free(void* block) noexcept {
  const int index = IndexOf(block);
  if (index >= 0) {
    ++nbFrees[index];
    order[nbFreed++] = index;
    return;
  }
  using Free = void (*)(void*);
  static const Free heapFree = reinterpret_cast<Free>(dlsym(RTLD_NEXT, "free"));
  heapFree(block);
}

namespace {

class KVLCodeContextBlocks : public testing::Test {
 protected:
  void SetUp() override {
    for (int& count : nbFrees)
      count = 0;
    nbFreed = 0;
  }
};

TEST_F(KVLCodeContextBlocks, AreFreedOnceWhenTheContextDies) {
  {
    const KVLCodeContext context;
    context.KeepAliveAlloc(&marked[0]);
    EXPECT_EQ(nbFrees[0], 0);
  }
  EXPECT_EQ(nbFrees[0], 1);
}

TEST_F(KVLCodeContextBlocks, KeptTwiceAreFreedOnce) {
  {
    const KVLCodeContext context;
    context.KeepAliveAlloc(&marked[0]);
    context.KeepAliveAlloc(&marked[0]);
  }
  EXPECT_EQ(nbFrees[0], 1);
}

TEST_F(KVLCodeContextBlocks, AreFreedInTheOrderInWhichTheyCame) {
  {
    const KVLCodeContext context;
    context.KeepAliveAlloc(&marked[2]);
    context.KeepAliveAlloc(&marked[0]);
    context.KeepAliveAlloc(&marked[1]);
    context.KeepAliveAlloc(&marked[2]);
  }
  ASSERT_EQ(nbFreed, 3);
  EXPECT_EQ(order[0], 2);
  EXPECT_EQ(order[1], 0);
  EXPECT_EQ(order[2], 1);
}

TEST_F(KVLCodeContextBlocks, KeepTheirOrderAmongManyOthers) {
  {
    const KVLCodeContext context;
    context.KeepAliveAlloc(&marked[1]);
    for (int i = 0; i < 100; ++i)
      context.KeepAliveAlloc(std::malloc(8));
    context.KeepAliveAlloc(&marked[0]);
    context.KeepAliveAlloc(&marked[1]);
  }
  ASSERT_EQ(nbFreed, 2);
  EXPECT_EQ(order[0], 1);
  EXPECT_EQ(order[1], 0);
}

TEST_F(KVLCodeContextBlocks, OfACopyAreFreedByBothContexts) {
  {
    const KVLCodeContext context;
    context.KeepAliveAlloc(&marked[0]);
    {
      const KVLCodeContext copy(context);
      EXPECT_EQ(nbFrees[0], 0);
    }
    EXPECT_EQ(nbFrees[0], 1);
  }
  EXPECT_EQ(nbFrees[0], 2);
}

TEST_F(KVLCodeContextBlocks, KeptAfterTheCopyAreFreedByTheirContextAlone) {
  {
    const KVLCodeContext context;
    const KVLCodeContext copy(context);
    context.KeepAliveAlloc(&marked[0]);
    copy.KeepAliveAlloc(&marked[1]);
  }
  EXPECT_EQ(nbFrees[0], 1);
  EXPECT_EQ(nbFrees[1], 1);
}

// Counts the frees that have been made when it dies.
class Witness : public MRBBaseUnknown {
 public:
  explicit Witness(int& seenFrees) : seen(seenFrees) {}
  ~Witness() override { seen = nbFreed; }

 private:
  int& seen;
};

TEST_F(KVLCodeContextBlocks, AreFreedBeforeTheHostObjectsAreReleased) {
  int seen = -1;
  {
    const KVLCodeContext context;
    context.KeepAlive(MRBBaseUnknown_var(new Witness(seen)));
    context.KeepAliveAlloc(&marked[0]);
    context.KeepAliveAlloc(&marked[1]);
    EXPECT_EQ(seen, -1);
  }
  EXPECT_EQ(seen, 2);
}

}  // namespace

#else

TEST(KVLCodeContextBlocks, AreFreedWhenTheContextDies) {
  GTEST_SKIP() << "the heap's free cannot be replaced here";
}

#endif
