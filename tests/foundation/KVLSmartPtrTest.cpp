#include "KVLSmartPtr.h"

#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "KVLRefCounted.h"
#include "KVLVector.h"
#include "support/TraceCapture.h"

namespace {

int live = 0;

class Object : public KVLRefCounted {
 public:
  explicit Object(std::string text = "object") : title(std::move(text)) { ++live; }
  Object(const Object& other) : KVLRefCounted(other), title(other.title) { ++live; }
  Object& operator=(const Object&) = default;
  ~Object() override {
    --live;
    if (journal) journal->push_back("~" + title);
    if (watched) watchedWasNull = watched->IsNull();
  }

  KVLSmartPtr<Object> GetNext() const { return next; }

  std::string title;
  KVLSmartPtr<Object> next;
  std::vector<std::string>* journal = nullptr;
  KVLSmartPtr<Object>* watched = nullptr;
  static inline bool watchedWasNull = false;
};

class Derived : public Object {
 public:
  using Object::Object;
};

// The counted base does not come first in it.
struct Side {
  virtual ~Side() = default;
  int number = 7;
};
class SideThenCounted : public Side, public Object {};

class Other : public KVLRefCounted {};

class KVLSmartPtrTest : public testing::Test {
 protected:
  void SetUp() override { live = 0; }
  void TearDown() override { EXPECT_EQ(live, 0); }
};
using KVLRefCountedTest = KVLSmartPtrTest;

template <class To, class From>
constexpr bool Converts = std::is_convertible_v<From, To>;
template <class To, class From>
constexpr bool Assigns = std::is_assignable_v<To&, From>;

// What must compile.
static_assert(Converts<KVLSmartPtr<Object>, Object*>);
static_assert(Converts<KVLSmartPtr<Object>, Derived*>);
static_assert(Converts<KVLSmartPtr<Object>, std::nullptr_t>);
static_assert(Converts<KVLSmartPtr<Object>, const KVLSmartPtr<Derived>&>);
static_assert(Converts<KVLSmartPtr<Object>, KVLSmartPtr<Derived>>);
static_assert(Converts<KVLSmartPtr<const Object>, KVLSmartPtr<Object>>);
static_assert(Converts<KVLSmartPtr<const Object>, KVLSmartPtr<Derived>>);
static_assert(Converts<KVLSmartPtr<const Object>, const Object*>);
static_assert(Converts<KVLSmartPtr<const KVLRefCounted>, KVLSmartPtr<const Object>>);
static_assert(Assigns<KVLSmartPtr<Object>, Object*>);
static_assert(Assigns<KVLSmartPtr<Object>, Derived*>);
static_assert(Assigns<KVLSmartPtr<Object>, std::nullptr_t>);
static_assert(Assigns<KVLSmartPtr<Object>, KVLSmartPtr<Derived>>);
static_assert(Assigns<KVLSmartPtr<const Object>, const KVLSmartPtr<Object>&>);
static_assert(std::is_constructible_v<bool, KVLSmartPtr<Object>>);

// What must not.
static_assert(!Converts<KVLSmartPtr<Derived>, KVLSmartPtr<Object>>);
static_assert(!Converts<KVLSmartPtr<Derived>, Object*>);
static_assert(!Converts<KVLSmartPtr<Object>, KVLSmartPtr<const Object>>);
static_assert(!Converts<KVLSmartPtr<Object>, const Object*>);
static_assert(!Converts<KVLSmartPtr<Object>, KVLSmartPtr<Other>>);
static_assert(!std::is_constructible_v<KVLSmartPtr<Object>, KVLSmartPtr<Other>>);
static_assert(!std::is_constructible_v<KVLSmartPtr<Object>, int>);
static_assert(!Converts<Object*, KVLSmartPtr<Object>>);
static_assert(!std::is_constructible_v<Object*, KVLSmartPtr<Object>>);
static_assert(!Converts<bool, KVLSmartPtr<Object>>);
static_assert(!Converts<int, KVLSmartPtr<Object>>);
static_assert(!Assigns<KVLSmartPtr<Derived>, KVLSmartPtr<Object>>);
static_assert(!Assigns<KVLSmartPtr<Object>, KVLSmartPtr<const Object>>);
static_assert(!Assigns<KVLSmartPtr<Object>, const Object*>);
static_assert(!Assigns<KVLSmartPtr<Object>, int>);

// What is promised.
static_assert(std::is_nothrow_default_constructible_v<KVLSmartPtr<Object>>);
static_assert(std::is_nothrow_constructible_v<KVLSmartPtr<Object>, std::nullptr_t>);
static_assert(std::is_nothrow_move_constructible_v<KVLSmartPtr<Object>>);
static_assert(std::is_nothrow_move_assignable_v<KVLSmartPtr<Object>>);
static_assert(noexcept(std::declval<const KVLSmartPtr<Object>&>().Get()));
static_assert(noexcept(std::declval<const KVLSmartPtr<Object>&>().IsNull()));
static_assert(noexcept(static_cast<bool>(std::declval<const KVLSmartPtr<Object>&>())));
static_assert(sizeof(KVLSmartPtr<Object>) == sizeof(Object*));
static_assert(std::is_same_v<decltype(std::declval<const KVLSmartPtr<Object>&>().Get()), Object*>);
static_assert(std::is_same_v<decltype(*std::declval<const KVLSmartPtr<Object>&>()), Object&>);
static_assert(
    std::is_same_v<decltype(*std::declval<const KVLSmartPtr<const Object>&>()), const Object&>);

static_assert(std::has_virtual_destructor_v<KVLRefCounted>);
static_assert(std::is_same_v<decltype(&KVLRefCounted::AddRef), void (KVLRefCounted::*)() const>);
static_assert(std::is_same_v<decltype(&KVLRefCounted::Release), void (KVLRefCounted::*)() const>);
// A 32-bit count behind the table of virtual operations: a number of the same size fits beside it.
struct CountedNumber : KVLRefCounted {
  int number = 0;
};
static_assert(sizeof(CountedNumber) == sizeof(void*) + 2 * sizeof(int));

TEST_F(KVLRefCountedTest, TheReleaseThatReaches0Destroys) {
  const Object* const object = new Object;
  object->AddRef();
  object->AddRef();
  object->Release();
  EXPECT_EQ(live, 1);
  object->Release();
  EXPECT_EQ(live, 0);
}

TEST_F(KVLRefCountedTest, TellsHowManyReferencesThereAre) {
  const Object* const object = new Object;
  EXPECT_EQ(object->GetNbReferences(), 0);
  object->AddRef();
  EXPECT_EQ(object->GetNbReferences(), 1);
  object->AddRef();
  EXPECT_EQ(object->GetNbReferences(), 2);
  object->Release();
  EXPECT_EQ(object->GetNbReferences(), 1);
  object->Release();
}

TEST_F(KVLRefCountedTest, ACopyStartsAt0) {
  const KVLSmartPtr<Object> first(new Object);
  const KVLSmartPtr<Object> shared(first);
  {
    const KVLSmartPtr<Object> copy(new Object(*first));
    EXPECT_EQ(live, 2);
  }
  EXPECT_EQ(live, 1);
}

TEST_F(KVLRefCountedTest, AssignmentLeavesTheTargetsCountAlone) {
  KVLSmartPtr<Object> first(new Object("first"));
  const KVLSmartPtr<Object> second(new Object("second"));
  const KVLSmartPtr<Object> secondShared(second);
  const KVLSmartPtr<Object> secondSharedAgain(second);
  *first = *second;
  EXPECT_EQ(first->title, "second");
  first = nullptr;
  EXPECT_EQ(live, 1);
}

TEST_F(KVLRefCountedTest, AReleaseTooManyIsReportedAndDestroysNothing) {
  const TraceCapture trace;
  Object object;
  object.Release();
  EXPECT_EQ(live, 1);
  const std::vector<TraceCapture::Report> expected{
      {100, "KVLRefCounted::Release -> too many releases", 0}};
  EXPECT_EQ(trace.GetReports(), expected);
}

TEST_F(KVLRefCountedTest, TheCountStaysNegativeAndEveryFurtherReleaseReports) {
  const TraceCapture trace;
  Object object;
  object.Release();
  object.Release();
  object.Release();
  EXPECT_EQ(trace.GetReports().size(), 3u);
  // Back from -3 to 0: the next release is one too many again.
  object.AddRef();
  object.AddRef();
  object.AddRef();
  object.Release();
  EXPECT_EQ(trace.GetReports().size(), 4u);
  EXPECT_EQ(live, 1);
}

TEST_F(KVLRefCountedTest, OrdinaryReleasesReportNothing) {
  const TraceCapture trace;
  { const KVLSmartPtr<Object> object(new Object); }
  EXPECT_TRUE(trace.GetReports().empty());
}

TEST_F(KVLSmartPtrTest, IsNullByDefault) {
  const KVLSmartPtr<Object> empty;
  EXPECT_TRUE(empty.IsNull());
  EXPECT_FALSE(empty);
  EXPECT_EQ(empty.Get(), nullptr);
  EXPECT_TRUE(KVLSmartPtr<Object>(nullptr).IsNull());
  EXPECT_TRUE(KVLSmartPtr<Object>(static_cast<Object*>(nullptr)).IsNull());
  const KVLSmartPtr<Object> copy(empty);
  EXPECT_TRUE(copy.IsNull());
}

TEST_F(KVLSmartPtrTest, TakesAReferenceFromARawPointerAndGivesItBack) {
  {
    Object* const object = new Object;
    const KVLSmartPtr<Object> pointer(object);
    EXPECT_EQ(pointer.Get(), object);
    EXPECT_EQ(&*pointer, object);
    EXPECT_EQ(pointer->title, "object");
    EXPECT_TRUE(pointer);
    EXPECT_FALSE(pointer.IsNull());
    { const KVLSmartPtr<Object> again(object); }
    EXPECT_EQ(live, 1);
  }
  EXPECT_EQ(live, 0);
}

TEST_F(KVLSmartPtrTest, CopiesShare) {
  KVLSmartPtr<Object> first(new Object);
  KVLSmartPtr<Object> second(first);
  KVLSmartPtr<Object> third;
  third = second;
  first = nullptr;
  second = nullptr;
  EXPECT_EQ(live, 1);
  EXPECT_EQ(third->title, "object");
}

TEST_F(KVLSmartPtrTest, MovesHandTheReferenceOver) {
  KVLSmartPtr<Object> first(new Object);
  Object* const object = first.Get();
  KVLSmartPtr<Object> second(std::move(first));
  EXPECT_TRUE(first.IsNull());
  EXPECT_EQ(second.Get(), object);
  KVLSmartPtr<Object> third(new Object);
  third = std::move(second);
  EXPECT_TRUE(second.IsNull());
  EXPECT_EQ(third.Get(), object);
  EXPECT_EQ(live, 1);
}

TEST_F(KVLSmartPtrTest, SharesWithABaseAndWithConst) {
  KVLSmartPtr<Derived> derived(new Derived);
  const KVLSmartPtr<Object> base(derived);
  KVLSmartPtr<const Object> constant;
  constant = derived;
  EXPECT_EQ(constant.Get(), base.Get());
  derived = nullptr;
  EXPECT_EQ(live, 1);
}

TEST_F(KVLSmartPtrTest, AdjustsThePointerToABaseThatIsNotTheFirst) {
  KVLSmartPtr<SideThenCounted> object(new SideThenCounted);
  KVLSmartPtr<Object> base(object);
  EXPECT_NE(static_cast<void*>(base.Get()), static_cast<void*>(object.Get()));
  EXPECT_TRUE(base == object);
  object = nullptr;
  EXPECT_EQ(live, 1);
  const KVLSmartPtr<SideThenCounted> none;
  base = none;
  EXPECT_TRUE(base.IsNull());
}

TEST_F(KVLSmartPtrTest, AssigningThePointerAlreadyHeldDoesNothing) {
  KVLSmartPtr<Object> pointer(new Object);
  Object* const object = pointer.Get();
  const KVLSmartPtr<Object>& same = pointer;
  pointer = same;
  EXPECT_EQ(live, 1);
  pointer = object;
  EXPECT_EQ(live, 1);
  pointer = std::move(const_cast<KVLSmartPtr<Object>&>(same));
  EXPECT_EQ(live, 1);
  EXPECT_EQ(pointer.Get(), object);
  KVLSmartPtr<Object> other(pointer);
  pointer = std::move(other);
  EXPECT_EQ(pointer.Get(), object);
  EXPECT_TRUE(other.IsNull());
  EXPECT_EQ(live, 1);
}

TEST_F(KVLSmartPtrTest, AssignmentLetsTheOldObjectGoWhileThePointerIsEmpty) {
  std::vector<std::string> journal;
  KVLSmartPtr<Object> pointer(new Object("old"));
  const auto Watch = [&] {
    pointer->journal = &journal;
    pointer->watched = &pointer;
    Object::watchedWasNull = false;
  };
  Watch();
  pointer = new Object("next");
  EXPECT_TRUE(Object::watchedWasNull);
  Watch();
  const KVLSmartPtr<Object> shared(new Object("shared"));
  pointer = shared;
  EXPECT_TRUE(Object::watchedWasNull);
  pointer = new Object("moved over");
  Watch();
  pointer = KVLSmartPtr<Object>(new Object("moved"));
  EXPECT_TRUE(Object::watchedWasNull);
  Watch();
  pointer = nullptr;
  EXPECT_TRUE(Object::watchedWasNull);
  EXPECT_EQ(journal, (std::vector<std::string>{"~old", "~next", "~moved over", "~moved"}));
}

TEST_F(KVLSmartPtrTest, TheNewObjectOutlivesTheOldOneThatAloneHeldIt) {
  // By reference into the dying object, by value, as raw pointer, and moved out of it.
  for (int way = 0; way < 4; ++way) {
    KVLSmartPtr<Object> node(new Object("first"));
    node->next = new Object("second");
    node->next->next = new Object("third");
    if (way == 0) node = node->next;
    if (way == 1) node = node->GetNext();
    if (way == 2) node = node->next.Get();
    if (way == 3) node = std::move(node->next);
    EXPECT_EQ(live, 2);
    EXPECT_EQ(node->title, "second");
    EXPECT_EQ(node->next->title, "third");
  }
}

// Puts another object into the pointer that lets it go.
class Usurper : public Object {
 public:
  explicit Usurper(KVLSmartPtr<Object>& place) : slot(place) {}
  ~Usurper() override { slot = new Object("usurper's"); }

 private:
  KVLSmartPtr<Object>& slot;
};

TEST_F(KVLSmartPtrTest, WhatTheOldObjectPutsThereWhileItDiesGivesWayToTheNewOne) {
  KVLSmartPtr<Object> pointer;
  pointer = new Usurper(pointer);
  pointer = new Object("new");
  EXPECT_EQ(pointer->title, "new");
  EXPECT_EQ(live, 1);
  pointer = new Usurper(pointer);
  pointer = nullptr;
  EXPECT_TRUE(pointer.IsNull());
}

TEST_F(KVLSmartPtrTest, ComparesWithPointersAndNull) {
  const KVLSmartPtr<Derived> derived(new Derived);
  const KVLSmartPtr<Object> same(derived);
  const KVLSmartPtr<const Object> constant(derived);
  const KVLSmartPtr<Object> other(new Object);
  const KVLSmartPtr<Object> empty;
  EXPECT_TRUE(derived == same && same == derived && constant == same);
  EXPECT_FALSE(derived != same);
  EXPECT_TRUE(same != other && other != empty);
  EXPECT_FALSE(same == other);
  EXPECT_TRUE(same == derived.Get() && derived.Get() == same);
  EXPECT_TRUE(other != derived.Get() && derived.Get() != other);
  EXPECT_FALSE(same != derived.Get() || derived.Get() != same);
  EXPECT_TRUE(empty == nullptr && nullptr == empty);
  EXPECT_FALSE(empty != nullptr || nullptr != empty);
  EXPECT_TRUE(same != nullptr && nullptr != same);
  EXPECT_FALSE(same == nullptr || nullptr == same);
}

TEST_F(KVLSmartPtrTest, SurvivesBeingMovedBitByBit) {
  alignas(KVLSmartPtr<Object>) unsigned char before[sizeof(KVLSmartPtr<Object>)];
  alignas(KVLSmartPtr<Object>) unsigned char after[sizeof(KVLSmartPtr<Object>)];
  ::new (static_cast<void*>(before)) KVLSmartPtr<Object>(new Object);
  std::memcpy(after, before, sizeof before);
  std::memset(before, 0xEE, sizeof before);
  auto* const moved = std::launder(reinterpret_cast<KVLSmartPtr<Object>*>(after));
  EXPECT_EQ((*moved)->title, "object");
  moved->~KVLSmartPtr<Object>();
  EXPECT_EQ(live, 0);
}

TEST_F(KVLSmartPtrTest, AVectorOfPointersGivesEveryReferenceBack) {
  KVLVector<KVLSmartPtr<Object>> vector;
  for (int i = 0; i < 10; ++i)
    vector.Append(new Object(std::to_string(i)));
  EXPECT_EQ(live, 10);
  vector.Erase(3);
  EXPECT_EQ(live, 9);
  EXPECT_EQ(vector[3]->title, "4");
  const KVLVector<KVLSmartPtr<Object>> copy(vector);
  vector.Resize(0);
  EXPECT_EQ(live, 9);
}

}  // namespace
