#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <new>
#include <string>

#include "KVLVector.h"
#include "MRBUnicodeString.h"

// What the containers ask of the process heap, and what they do when it refuses. The program's
// definitions go before those of the C library, also for calls from the kernel.

namespace {

struct Heap {
  std::size_t lastRequest;  // bytes
  long liveBlocks;
  int untilRefusal;  // the requests to go until the one that is refused; 0 when none is to be
};
Heap heap;

}  // namespace

extern "C" {

void* __libc_malloc(std::size_t size);
void __libc_free(void* block);

void* malloc(std::size_t size) noexcept {
  heap.lastRequest = size;
  if (heap.untilRefusal > 0 && --heap.untilRefusal == 0) return nullptr;
  void* const block = __libc_malloc(size);
  if (block) ++heap.liveBlocks;
  return block;
}

void free(void* block) noexcept {
  if (block) --heap.liveBlocks;
  __libc_free(block);
}

}  // extern "C"

namespace {

using String = MRBUnicodeString;

TEST(KVLVectorOnTheRawHeap, AllocatesExactlyThePlacesAskedFor) {
  struct Element {
    char bytes[24];
  };
  KVLVector<Element> vector;
  vector.Reserve(5);
  EXPECT_EQ(heap.lastRequest, 5 * sizeof(Element));
  vector.Resize(3);
  const KVLVector<Element> copy(vector);
  EXPECT_EQ(heap.lastRequest, 3 * sizeof(Element));
  vector.Reserve(3);
  EXPECT_EQ(heap.lastRequest, 3 * sizeof(Element));
  vector.Append(Element());
  EXPECT_EQ(heap.lastRequest, 6 * sizeof(Element));
}

TEST(KVLVectorOnTheRawHeap, GivesEachStorageBack) {
  const long before = heap.liveBlocks;
  {
    KVLVector<int> vector;
    for (int i = 0; i < 40; ++i)
      vector.Append(i);
    EXPECT_EQ(heap.liveBlocks, before + 1);
    vector.Reserve(100);
    EXPECT_EQ(heap.liveBlocks, before + 1);
    KVLVector<int> other(vector);
    EXPECT_EQ(heap.liveBlocks, before + 2);
    other = vector;
    EXPECT_EQ(heap.liveBlocks, before + 2);
    vector.Resize(0);
    vector.Reserve(0);
    EXPECT_EQ(heap.liveBlocks, before + 1);
  }
  EXPECT_EQ(heap.liveBlocks, before);
}

TEST(KVLVectorOnTheRawHeap, ARefusedAllocationLeavesThePlacesPointerNull) {
  KVLVector<int> vector;
  heap.untilRefusal = 1;
  vector.Reserve(5);
  EXPECT_EQ(heap.untilRefusal, 0);
  EXPECT_EQ(vector.GetData(), nullptr);
  EXPECT_EQ(vector.GetCapacity(), 5);
  EXPECT_EQ(vector.GetCount(), 0);
}

// Refuses the first request of `operation`, then the second, until it completes.
template <class Operation>
void ExpectNoChangeWhenRefused(Operation operation) {
  for (const char* const former : {"short", "a text too long for the inside of the object"}) {
    int refusals = 0;
    for (;;) {
      String text(former);
      const long before = heap.liveBlocks;
      heap.untilRefusal = refusals + 1;
      try {
        operation(text);
        heap.untilRefusal = 0;
        break;
      } catch (const std::bad_alloc&) {
        ++refusals;
      }
      EXPECT_EQ(text, former);
      EXPECT_EQ(heap.liveBlocks, before);
    }
    EXPECT_GT(refusals, 0) << former;
  }
}

TEST(MRBUnicodeStringOnTheRawHeap, ARefusedAllocationThrowsAndChangesNothing) {
  const String added(std::string(200, 'x').c_str());
  ExpectNoChangeWhenRefused([&](String& text) { const String copy(added + text); });
  ExpectNoChangeWhenRefused([&](String& text) { text = added; });
  ExpectNoChangeWhenRefused([&](String& text) { text = added.ConvertToChar(); });
  ExpectNoChangeWhenRefused([&](String& text) { text.Append(added); });
  ExpectNoChangeWhenRefused([&](String& text) { text.Insert(2, added); });
  ExpectNoChangeWhenRefused([&](String& text) { text.BuildFromNum(7, "%1000d"); });
}

}  // namespace
