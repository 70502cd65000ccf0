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

  bool Refuses(std::size_t size) {
    lastRequest = size;
    return untilRefusal > 0 && --untilRefusal == 0;
  }
};
Heap heap;

}  // namespace

extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void __libc_free(void* block);

void* malloc(std::size_t size) noexcept {
  if (heap.Refuses(size)) return nullptr;
  void* const block = __libc_malloc(size);
  if (block) ++heap.liveBlocks;
  return block;
}

void* calloc(std::size_t count, std::size_t size) noexcept {
  if (heap.Refuses(count * size)) return nullptr;
  void* const block = __libc_calloc(count, size);
  if (block) ++heap.liveBlocks;
  return block;
}

void* realloc(void* block, std::size_t size) noexcept {
  if (heap.Refuses(size)) return nullptr;
  void* const moved = __libc_realloc(block, size);
  if (moved && !block) ++heap.liveBlocks;
  return moved;
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

TEST(KVLVectorOnTheRawHeap, AStorageOfAnySizeGrowsAndShrinksToExactlyThePlacesAskedFor) {
  const long before = heap.liveBlocks;
  {
    KVLVector<String> texts;
    for (int i = 0; i < 3000; ++i) {
      const int capacity = texts.GetCapacity();
      texts.Append("a text too long for the inside of the object");
      if (texts.GetCapacity() != capacity) continue;
      EXPECT_EQ(heap.lastRequest, static_cast<std::size_t>(texts[0].GetLengthInByte()) + 1);
    }
    EXPECT_EQ(texts.GetCapacity(), 4096);
    for (const int places : {3001, 20000, 3000}) {
      texts.Reserve(places);
      EXPECT_EQ(heap.lastRequest, static_cast<std::size_t>(places) * sizeof(String));
      EXPECT_EQ(texts.GetCapacity(), places);
    }
    EXPECT_EQ(heap.liveBlocks, before + 3001);
    for (const String& text : texts)
      ASSERT_EQ(text, "a text too long for the inside of the object");
  }
  EXPECT_EQ(heap.liveBlocks, before);
}

TEST(KVLVectorOnTheRawHeap, ResizedFromNothingTakesExactlyThePlaces) {
  KVLVector<int> numbers;
  numbers.Resize(1000);
  EXPECT_EQ(heap.lastRequest, 1000 * sizeof(int));
  EXPECT_EQ(numbers.GetCapacity(), 1000);
  for (const int number : numbers)
    ASSERT_EQ(number, 0);
}

TEST(KVLVectorOnTheRawHeap, ALargeStorageThatMayNotGrowIsGivenBack) {
  const long before = heap.liveBlocks;
  KVLVector<int> vector;
  vector.Resize(5000);
  heap.untilRefusal = 1;
  vector.Reserve(6000);
  EXPECT_EQ(heap.untilRefusal, 0);
  EXPECT_EQ(vector.GetData(), nullptr);
  EXPECT_EQ(heap.liveBlocks, before);
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
