#include "KVLVector.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <type_traits>
#include <utility>
#include <vector>

#include "MRBUnicodeString.h"
#include "support/AllocationCounter.h"
#include "support/CountedElement.h"

namespace {

static_assert(std::is_nothrow_default_constructible_v<KVLVector<MRBUnicodeString>>);
static_assert(std::is_nothrow_move_constructible_v<KVLVector<CopyOnlyElement>>);
static_assert(std::is_nothrow_move_assignable_v<KVLVector<CopyOnlyElement>>);
static_assert(std::is_copy_constructible_v<KVLVector<int>>);
static_assert(noexcept(
    std::declval<KVLVector<CopyOnlyElement>&>().Swap(std::declval<KVLVector<CopyOnlyElement>&>())));
static_assert(noexcept(std::declval<const KVLVector<int>&>().GetCount()));
static_assert(noexcept(std::declval<const KVLVector<int>&>().GetCapacity()));
static_assert(std::is_same_v<decltype(std::declval<KVLVector<int>&>()[0]), int&>);
static_assert(std::is_same_v<decltype(std::declval<const KVLVector<int>&>()[0]), const int&>);

template <class T>
std::vector<int> Numbers(const KVLVector<T>& vector) {
  std::vector<int> numbers;
  for (const T& element : vector)
    numbers.push_back(element.GetNumber());
  return numbers;
}
std::vector<int> Numbers(const KVLVector<int>& vector) {
  return std::vector<int>(vector.begin(), vector.end());
}

template <class T>
void Fill(KVLVector<T>& vector, int count) {
  for (int i = 0; i < count; ++i)
    vector.Append(T(i));
}

// Each case begins and ends without a live element.
template <class T>
class Scope {
 public:
  Scope() { T::Reset(); }
  ~Scope() {
    EXPECT_EQ(T::Counts().GetLive(), 0);
    EXPECT_EQ(T::Counts().misuses, 0);
  }
};

TEST(KVLVector, IsEmptyAndWithoutStorageByDefault) {
  KVLVector<int> vector;
  EXPECT_EQ(vector.GetCount(), 0);
  EXPECT_EQ(vector.GetCapacity(), 0);
  EXPECT_TRUE(vector.IsEmpty());
  EXPECT_EQ(vector.GetData(), nullptr);
  EXPECT_EQ(vector.begin(), vector.end());
}

TEST(KVLVector, HoldsCountCapacityAndDataInThatOrder) {
  KVLVector<int> vector;
  Fill(vector, 3);
  struct Fields {
    int count;
    int capacity;
    int* data;
  } fields;
  static_assert(sizeof fields == sizeof vector);
  std::memcpy(&fields, static_cast<const void*>(&vector), sizeof fields);
  EXPECT_EQ(fields.count, 3);
  EXPECT_EQ(fields.capacity, 4);
  EXPECT_EQ(fields.data, vector.GetData());
}

TEST(KVLVector, CapacityDoublesUnderAppends) {
  KVLVector<int> vector;
  std::vector<int> capacities;
  for (int i = 0; i < 33; ++i) {
    vector.Append(i);
    if (capacities.empty() || capacities.back() != vector.GetCapacity())
      capacities.push_back(vector.GetCapacity());
    EXPECT_EQ(vector.GetCount(), i + 1);
  }
  EXPECT_EQ(capacities, (std::vector<int>{1, 2, 4, 8, 16, 32, 64}));
  for (int i = 0; i < 33; ++i)
    EXPECT_EQ(vector[i], i);
}

TEST(KVLVector, StoresItsElementsContiguouslyInIndexOrder) {
  KVLVector<int> vector;
  Fill(vector, 5);
  for (int i = 0; i < 5; ++i)
    EXPECT_EQ(&vector[i], vector.GetData() + i);
  EXPECT_EQ(vector.end() - vector.begin(), 5);
}

TEST(KVLVector, GrowthMovesWhereMovesDoNotThrow) {
  const Scope<CountedElement> scope;
  KVLVector<CountedElement> vector;
  Fill(vector, 9);
  EXPECT_EQ(CountedElement::Counts().copies, 0);
  EXPECT_EQ(CountedElement::Counts().GetLive(), 9);
  EXPECT_EQ(Numbers(vector), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(KVLVector, GrowthCopiesWhereMovesMayThrow) {
  const Scope<UnsureMoveElement> scope;
  KVLVector<UnsureMoveElement> vector;
  vector.Reserve(4);
  Fill(vector, 4);
  const int moves = UnsureMoveElement::Counts().moves;
  vector.Reserve(8);
  EXPECT_EQ(UnsureMoveElement::Counts().moves, moves);
  EXPECT_EQ(UnsureMoveElement::Counts().copies, 4);
  EXPECT_EQ(UnsureMoveElement::Counts().GetLive(), 4);
}

TEST(KVLVector, GrowthCopiesWhatHasNoMove) {
  const Scope<CopyOnlyElement> scope;
  KVLVector<CopyOnlyElement> vector;
  Fill(vector, 9);
  EXPECT_EQ(CopyOnlyElement::Counts().GetLive(), 9);
  EXPECT_EQ(Numbers(vector), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(KVLVector, ACopyThatThrowsDuringGrowthLeavesTheElementsAsTheyWere) {
  const Scope<CopyOnlyElement> scope;
  KVLVector<CopyOnlyElement> vector;
  Fill(vector, 4);
  const CopyOnlyElement added(4);
  int failures = 0;
  for (int nth = 1;; ++nth) {
    CopyOnlyElement::FailCopy(nth);
    try {
      vector.Append(added);
      break;
    } catch (const CopyFailure&) {
      ++failures;
      EXPECT_EQ(Numbers(vector), (std::vector<int>{0, 1, 2, 3}));
      EXPECT_EQ(CopyOnlyElement::Counts().GetLive(), 5);
    }
  }
  CopyOnlyElement::FailCopy(0);
  EXPECT_GE(failures, 5);
  EXPECT_EQ(Numbers(vector), (std::vector<int>{0, 1, 2, 3, 4}));
}

TEST(KVLVector, AppendsAnElementOfItselfAtEveryCapacity) {
  KVLVector<MRBUnicodeString> vector;
  vector.Append("a text too long for the inside of the object");
  for (int i = 0; i < 40; ++i)
    vector.Append(vector[0]);
  for (const MRBUnicodeString& element : vector)
    EXPECT_EQ(element, "a text too long for the inside of the object");
}

TEST(KVLVector, AppendsAnElementOfItselfThatHasNoMove) {
  const Scope<CopyOnlyElement> scope;
  KVLVector<CopyOnlyElement> vector;
  vector.Append(7);
  for (int i = 0; i < 8; ++i)
    vector.Append(vector[i]);
  EXPECT_EQ(Numbers(vector), std::vector<int>(9, 7));
}

TEST(KVLVector, AppendsAMovedElementOfItself) {
  const Scope<CountedElement> scope;
  KVLVector<CountedElement> vector;
  vector.Append(7);
  vector.Append(std::move(vector[0]));
  EXPECT_TRUE(vector[0].IsMovedFrom());
  EXPECT_EQ(vector[1].GetNumber(), 7);
  vector.Append(std::move(vector[1]));
  vector.Append(std::move(vector[2]));
  EXPECT_EQ(vector[3].GetNumber(), 7);
  EXPECT_EQ(CountedElement::Counts().copies, 0);
}

TEST(KVLVector, ReserveAllocatesExactly) {
  const Scope<CountedElement> scope;
  KVLVector<CountedElement> vector;
  vector.Reserve(5);
  EXPECT_EQ(vector.GetCapacity(), 5);
  EXPECT_EQ(vector.GetCount(), 0);
  EXPECT_EQ(CountedElement::Counts().GetLive(), 0);
  Fill(vector, 3);
  vector.Reserve(7);
  EXPECT_EQ(vector.GetCapacity(), 7);
  EXPECT_EQ(Numbers(vector), (std::vector<int>{0, 1, 2}));
}

TEST(KVLVector, GrowthAfterAReserveDoublesTheReservedCapacity) {
  KVLVector<int> vector;
  vector.Reserve(5);
  Fill(vector, 6);
  EXPECT_EQ(vector.GetCapacity(), 10);
}

TEST(KVLVector, ReserveToTheCountFreesUnusedPlaces) {
  const Scope<CountedElement> scope;
  KVLVector<CountedElement> vector;
  Fill(vector, 5);
  EXPECT_EQ(vector.GetCapacity(), 8);
  vector.Reserve(5);
  EXPECT_EQ(vector.GetCapacity(), 5);
  EXPECT_EQ(Numbers(vector), (std::vector<int>{0, 1, 2, 3, 4}));
}

TEST(KVLVector, ReserveBelowTheCountDoesNothing) {
  KVLVector<int> vector;
  Fill(vector, 5);
  const int* const data = vector.GetData();
  for (const int places : {4, 1, 0, -1, INT_MIN}) {
    vector.Reserve(places);
    EXPECT_EQ(vector.GetCapacity(), 8);
    EXPECT_EQ(vector.GetData(), data);
  }
  EXPECT_EQ(Numbers(vector), (std::vector<int>{0, 1, 2, 3, 4}));
}

TEST(KVLVector, ReserveToTheCapacityDoesNothing) {
  KVLVector<int> vector;
  Fill(vector, 5);
  const int* const data = vector.GetData();
  vector.Reserve(8);
  EXPECT_EQ(vector.GetData(), data);
}

TEST(KVLVector, ReserveOfNothingGivesAnEmptyVectorsStorageBack) {
  KVLVector<int> vector;
  vector.Reserve(5);
  vector.Reserve(0);
  EXPECT_EQ(vector.GetCapacity(), 0);
  EXPECT_EQ(vector.GetData(), nullptr);
  vector.Reserve(-3);
  EXPECT_EQ(vector.GetCapacity(), 0);
  EXPECT_EQ(vector.GetData(), nullptr);
}

TEST(KVLVector, ResizeUpAppendsDefaultElementsAndGrowsToTheLargerOfNeededAndDouble) {
  const Scope<CountedElement> scope;
  KVLVector<CountedElement> vector;
  vector.Resize(3);
  EXPECT_EQ(vector.GetCapacity(), 3);
  EXPECT_EQ(Numbers(vector), (std::vector<int>{0, 0, 0}));
  vector.Resize(4);
  EXPECT_EQ(vector.GetCapacity(), 6);
  vector.Resize(6);
  EXPECT_EQ(vector.GetCapacity(), 6);
  vector.Resize(100);
  EXPECT_EQ(vector.GetCapacity(), 100);
  EXPECT_EQ(CountedElement::Counts().constructions, 100);
}

TEST(KVLVector, ResizeUpDoublesTheCapacityNotTheCount) {
  KVLVector<int> vector;
  vector.Reserve(5);
  Fill(vector, 2);
  vector.Resize(6);
  EXPECT_EQ(vector.GetCapacity(), 10);
  EXPECT_EQ(Numbers(vector), (std::vector<int>{0, 1, 0, 0, 0, 0}));
}

TEST(KVLVector, ResizeUpMakesNumbersAndPointersNull) {
  KVLVector<int> numbers;
  KVLVector<void*> pointers;
  for (int round = 0; round < 2; ++round) {
    numbers.Resize(50);
    pointers.Resize(50);
    for (int i = 0; i < 50; ++i) {
      EXPECT_EQ(numbers[i], 0);
      EXPECT_EQ(pointers[i], nullptr);
      numbers[i] = -1;
      pointers[i] = &numbers;
    }
    numbers.Resize(0);
    pointers.Resize(0);
  }
}

// Writes its number down when it dies.
struct Journalist {
  explicit Journalist(int value = 0, std::vector<int>* log = nullptr)
      : number(value), journal(log) {}
  Journalist(const Journalist&) = default;
  Journalist(Journalist&& other) noexcept : number(other.number), journal(other.journal) {
    other.journal = nullptr;
  }
  Journalist& operator=(const Journalist&) = default;
  ~Journalist() {
    if (journal) journal->push_back(number);
  }
  int number;
  std::vector<int>* journal;
};

TEST(KVLVector, ResizeDownDestroysFromTheLastAndKeepsTheCapacity) {
  std::vector<int> journal;
  KVLVector<Journalist> vector;
  for (int i = 0; i < 5; ++i)
    vector.Append(Journalist(i, &journal));
  EXPECT_TRUE(journal.empty());
  vector.Resize(2);
  EXPECT_EQ(journal, (std::vector<int>{4, 3, 2}));
  EXPECT_EQ(vector.GetCount(), 2);
  EXPECT_EQ(vector.GetCapacity(), 8);
  vector.Resize(2);
  EXPECT_EQ(vector.GetCount(), 2);
  vector.Resize(-1);
  EXPECT_EQ(vector.GetCount(), 0);
  EXPECT_EQ(vector.GetCapacity(), 8);
  EXPECT_EQ(journal, (std::vector<int>{4, 3, 2, 1, 0}));
}

TEST(KVLVector, DestructionDestroysFromTheLast) {
  std::vector<int> journal;
  {
    KVLVector<Journalist> vector;
    for (int i = 0; i < 3; ++i)
      vector.Append(Journalist(i, &journal));
  }
  EXPECT_EQ(journal, (std::vector<int>{2, 1, 0}));
}

// Looks at the vector that it dies in.
struct Onlooker {
  KVLVector<Onlooker>* home = nullptr;
  int seen = -1;
  int* report = nullptr;
  ~Onlooker() {
    if (report) *report = home->GetCount();
  }
};

TEST(KVLVector, ADyingElementIsNoLongerCounted) {
  int count = -1;
  KVLVector<Onlooker> vector;
  vector.Resize(3);
  vector[2].home = &vector;
  vector[2].report = &count;
  vector.Resize(2);
  EXPECT_EQ(count, 2);
}

TEST(KVLVector, EraseKeepsTheOrderAndTheCapacity) {
  const Scope<CountedElement> scope;
  KVLVector<CountedElement> vector;
  Fill(vector, 5);
  vector.Erase(2);
  EXPECT_EQ(Numbers(vector), (std::vector<int>{0, 1, 3, 4}));
  vector.Erase(0);
  EXPECT_EQ(Numbers(vector), (std::vector<int>{1, 3, 4}));
  vector.Erase(2);
  EXPECT_EQ(Numbers(vector), (std::vector<int>{1, 3}));
  EXPECT_EQ(vector.GetCapacity(), 8);
  EXPECT_EQ(CountedElement::Counts().GetLive(), 2);
}

TEST(KVLVector, EraseMovesTheLaterElementsBitByBit) {
  const Scope<CountedElement> scope;
  KVLVector<CountedElement> vector;
  Fill(vector, 5);
  const ElementCounts before = CountedElement::Counts();
  vector.Erase(1);
  EXPECT_EQ(CountedElement::Counts().copies, before.copies);
  EXPECT_EQ(CountedElement::Counts().moves, before.moves);
  EXPECT_EQ(CountedElement::Counts().assignments, before.assignments);
  EXPECT_EQ(CountedElement::Counts().destructions, before.destructions + 1);
}

TEST(KVLVector, StringsSurviveTheEraseOfOneBeforeThem) {
  KVLVector<MRBUnicodeString> vector;
  for (const char* const text : {"", "short", "123456789012345", "1234567890123456",
                                 "a much longer"
                                 " text than fits inside the object",
                                 "last"})
    vector.Append(text);
  vector.Erase(0);
  ASSERT_EQ(vector.GetCount(), 5);
  EXPECT_EQ(vector[0], "short");
  EXPECT_EQ(vector[1], "123456789012345");
  EXPECT_EQ(vector[2], "1234567890123456");
  EXPECT_EQ(vector[3], "a much longer text than fits inside the object");
  EXPECT_EQ(vector[4], "last");
  vector[1].Append("6");
  EXPECT_EQ(vector[1], vector[2]);
  while (!vector.IsEmpty())
    vector.Erase(0);
}

TEST(KVLVector, CopiesIntoExactlyAsManyPlacesAsThereAreElements) {
  const Scope<CountedElement> scope;
  KVLVector<CountedElement> vector;
  Fill(vector, 5);
  const KVLVector<CountedElement> copy(vector);
  EXPECT_EQ(copy.GetCapacity(), 5);
  EXPECT_EQ(Numbers(copy), (std::vector<int>{0, 1, 2, 3, 4}));
  EXPECT_NE(copy.GetData(), vector.GetData());
  EXPECT_EQ(CountedElement::Counts().copies, 5);
}

TEST(KVLVector, TheCopyOfAnEmptyVectorAllocatesNothing) {
  KVLVector<int> vector;
  vector.Reserve(8);
  const AllocationCounter counter;
  const KVLVector<int> copy(vector);
  EXPECT_EQ(counter.GetCount(), 0);
  EXPECT_EQ(copy.GetCapacity(), 0);
  EXPECT_EQ(copy.GetData(), nullptr);
}

TEST(KVLVector, ACopyThatThrowsLeavesNoElementBehind) {
  const Scope<CopyOnlyElement> scope;
  KVLVector<CopyOnlyElement> vector;
  Fill(vector, 4);
  CopyOnlyElement::FailCopy(3);
  EXPECT_THROW(KVLVector<CopyOnlyElement>{vector}, CopyFailure);
  EXPECT_EQ(CopyOnlyElement::Counts().GetLive(), 4);
  KVLVector<CopyOnlyElement> target;
  Fill(target, 2);
  CopyOnlyElement::FailCopy(3);
  EXPECT_THROW(target = vector, CopyFailure);
  EXPECT_EQ(Numbers(target), (std::vector<int>{0, 1}));
}

TEST(KVLVector, AssignsByCopyAndToItself) {
  const Scope<CountedElement> scope;
  KVLVector<CountedElement> vector;
  Fill(vector, 3);
  KVLVector<CountedElement> target;
  Fill(target, 1);
  target = vector;
  EXPECT_EQ(Numbers(target), Numbers(vector));
  const KVLVector<CountedElement>& same = target;
  target = same;
  EXPECT_EQ(Numbers(target), (std::vector<int>{0, 1, 2}));
}

TEST(KVLVector, MovesTakeTheStorageAndLeaveTheSourceEmpty) {
  const Scope<CountedElement> scope;
  KVLVector<CountedElement> vector;
  Fill(vector, 3);
  CountedElement* const data = vector.GetData();
  KVLVector<CountedElement> assigned;
  Fill(assigned, 1);
  const int moves = CountedElement::Counts().moves;
  KVLVector<CountedElement> taken(std::move(vector));
  EXPECT_EQ(taken.GetData(), data);
  EXPECT_EQ(vector.GetCount(), 0);
  EXPECT_EQ(vector.GetCapacity(), 0);
  assigned = std::move(taken);
  EXPECT_EQ(assigned.GetData(), data);
  EXPECT_TRUE(taken.IsEmpty());
  assigned = std::move(static_cast<KVLVector<CountedElement>&>(assigned));
  EXPECT_EQ(Numbers(assigned), (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(CountedElement::Counts().moves, moves);
}

TEST(KVLVector, SwapExchangesTheContents) {
  KVLVector<int> one;
  Fill(one, 3);
  KVLVector<int> other;
  one.Swap(other);
  EXPECT_TRUE(one.IsEmpty());
  EXPECT_EQ(Numbers(other), (std::vector<int>{0, 1, 2}));
  other.Swap(other);
  EXPECT_EQ(other.GetCount(), 3);
}

TEST(KVLVector, HoldsVectors) {
  KVLVector<KVLVector<MRBUnicodeString>> vectors;
  for (int i = 0; i < 10; ++i) {
    vectors.Append(KVLVector<MRBUnicodeString>());
    for (int j = 0; j <= i; ++j)
      vectors[i].Append("element of an inner vector");
  }
  vectors.Erase(0);
  for (int i = 0; i < 9; ++i)
    EXPECT_EQ(vectors[i].GetCount(), i + 2);
}

}  // namespace
