#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <utility>

#include "MRBHost.h"
#include "MRBUnicodeString.h"
#include "support/AllocationCounter.h"
#include "support/CountedElement.h"
#include "support/FailingAllocations.h"
#include "support/TraceCapture.h"

namespace {

// The other tests believe what these helpers say.

TEST(AllocationCounter, CountsWhatTheProgramAllocates) {
  if (!AllocationCounter::IsAvailable()) GTEST_SKIP();
  const AllocationCounter counter;
  void* volatile block = std::malloc(10);
  EXPECT_EQ(counter.GetCount(), 1);
  block = std::realloc(block, 20000);
  EXPECT_EQ(counter.GetCount(), 2);
  std::free(block);
  block = std::calloc(3, 7);
  EXPECT_EQ(counter.GetCount(), 3);
  std::free(block);
  block = ::operator new(5);
  EXPECT_EQ(counter.GetCount(), 4);
  ::operator delete(block);
  EXPECT_EQ(counter.GetCount(), 4);
}

TEST(AllocationCounter, CountsWhatTheKernelAllocates) {
  if (!AllocationCounter::IsAvailable()) GTEST_SKIP();
  const MRBUnicodeString text("longer than what fits inside the object");
  const AllocationCounter counter;
  const MRBUnicodeString copy(text);
  EXPECT_EQ(counter.GetCount(), 1);
}

TEST(AllocationCounter, CountsFromItsOwnConstructionOn) {
  if (!AllocationCounter::IsAvailable()) GTEST_SKIP();
  const AllocationCounter outer;
  void* volatile block = std::malloc(10);
  std::free(block);
  const AllocationCounter inner;
  EXPECT_EQ(inner.GetCount(), 0);
  EXPECT_EQ(outer.GetCount(), 1);
}

TEST(FailingAllocations, FailsTheNthAndNoOther) {
  const FailingAllocations failing(2);
  const std::unique_ptr<int> first(new (std::nothrow) int(1));
  EXPECT_NE(first, nullptr);
  EXPECT_FALSE(failing.HasFailed());
  const std::unique_ptr<int> second(new (std::nothrow) int(2));
  EXPECT_EQ(second, nullptr);
  EXPECT_TRUE(failing.HasFailed());
  const std::unique_ptr<int> third(new (std::nothrow) int(3));
  EXPECT_NE(third, nullptr);
}

TEST(FailingAllocations, EndsWithItsLife) {
  { const FailingAllocations failing(1); }
  const std::unique_ptr<int> number(new (std::nothrow) int(1));
  EXPECT_NE(number, nullptr);
}

TEST(CountedElement, CountsEachKindOfConstruction) {
  CountedElement::Reset();
  {
    CountedElement made(5);
    CountedElement copied(made);
    const CountedElement moved(std::move(made));
    EXPECT_EQ(CountedElement::Counts().constructions, 1);
    EXPECT_EQ(CountedElement::Counts().copies, 1);
    EXPECT_EQ(CountedElement::Counts().moves, 1);
    EXPECT_EQ(CountedElement::Counts().GetLive(), 3);
    EXPECT_EQ(moved.GetNumber(), 5);
    EXPECT_EQ(copied.GetNumber(), 5);
  }
  EXPECT_EQ(CountedElement::Counts().GetLive(), 0);
  EXPECT_EQ(CountedElement::Counts().misuses, 0);
}

TEST(CountedElement, NoticesADeadElement) {
  CountedElement::Reset();
  alignas(CountedElement) unsigned char place[sizeof(CountedElement)];
  // Volatile: a compiler that knows what is dead would have a word to say.
  CountedElement* volatile element = ::new (static_cast<void*>(place)) CountedElement(1);
  element->~CountedElement();
  element->~CountedElement();
  EXPECT_EQ(CountedElement::Counts().misuses, 1);
}

TEST(CountedElement, FailsTheCopyItWasToldToFail) {
  CopyOnlyElement::Reset();
  const CopyOnlyElement element(1);
  CopyOnlyElement::FailCopy(2);
  { const CopyOnlyElement copy(element); }
  EXPECT_THROW(CopyOnlyElement{element}, CopyFailure);
  EXPECT_EQ(CopyOnlyElement::Counts().GetLive(), 1);
  EXPECT_EQ(CopyOnlyElement::Counts().misuses, 0);
}

TEST(TraceCapture, CollectsReportsAndPutsTheFormerSinkBack) {
  const TraceCapture outer;
  {
    TraceCapture inner;
    MRBSysBftier(3, "inner", 4);
    EXPECT_EQ(inner.GetReports(), (std::vector<TraceCapture::Report>{{3, "inner", 4}}));
    inner.Clear();
    EXPECT_TRUE(inner.GetReports().empty());
  }
  MRBSysBftier(5, "outer", 6);
  EXPECT_EQ(outer.GetReports(), (std::vector<TraceCapture::Report>{{5, "outer", 6}}));
  EXPECT_EQ(outer.GetTexts(), std::vector<std::string>{"outer"});
}

}  // namespace
