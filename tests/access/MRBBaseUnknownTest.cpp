#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

#include "MRBHost.h"

namespace {

class HostObject : public MRBBaseUnknown {
 public:
  explicit HostObject(int& count) : living(count) { ++living; }
  HostObject(const HostObject& other) : MRBBaseUnknown(other), living(other.living) { ++living; }
  ~HostObject() override { --living; }

 private:
  int& living;
};

// Counts for itself, as a host's own objects may.
class SelfCounting : public MRBBaseUnknown {
 public:
  void AddRef() override { ++references; }
  void Release() override { --references; }

  int references = 0;
};

// Refers to another object of its kind.
class Link : public HostObject {
 public:
  using HostObject::HostObject;
  MRBBaseUnknown_var next;
};

class MRBBaseUnknownTest : public testing::Test {
 protected:
  ~MRBBaseUnknownTest() override { EXPECT_EQ(living, 0); }

  int living = 0;
};

using MRBBaseUnknown_varTest = MRBBaseUnknownTest;

}  // namespace

static_assert(std::has_virtual_destructor_v<MRBBaseUnknown>);
static_assert(std::is_convertible_v<MRBBaseUnknown*, MRBBaseUnknown_var>);
static_assert(sizeof(MRBBaseUnknown_var) == sizeof(void*));

TEST_F(MRBBaseUnknownTest, IsDestroyedByTheLastRelease) {
  HostObject* const object = new HostObject(living);
  object->AddRef();
  object->AddRef();
  object->Release();
  EXPECT_EQ(living, 1);
  object->Release();
  EXPECT_EQ(living, 0);
}

TEST_F(MRBBaseUnknownTest, ACopyStartsWithoutReferencesAndAssignmentLeavesTheCountAlone) {
  HostObject* const object = new HostObject(living);
  object->AddRef();
  object->AddRef();
  HostObject* const copy = new HostObject(*object);
  copy->AddRef();
  copy->Release();
  EXPECT_EQ(living, 1);

  SelfCounting unrelated;
  *static_cast<MRBBaseUnknown*>(object) = unrelated;
  object->Release();
  EXPECT_EQ(living, 1);
  object->Release();
}

TEST_F(MRBBaseUnknown_varTest, HoldsOneReference) {
  SelfCounting object;
  {
    const MRBBaseUnknown_var first(&object);
    EXPECT_EQ(object.references, 1);
    const MRBBaseUnknown_var second(first);
    EXPECT_EQ(object.references, 2);
    EXPECT_EQ(second.Get(), &object);
    second->AddRef();
    EXPECT_EQ(object.references, 3);
    second->Release();
  }
  EXPECT_EQ(object.references, 0);
}

TEST_F(MRBBaseUnknown_varTest, AnEmptyOneHoldsNothing) {
  const MRBBaseUnknown_var byDefault;
  const MRBBaseUnknown_var ofNull(static_cast<MRBBaseUnknown*>(nullptr));
  MRBBaseUnknown_var copy(byDefault);
  copy = ofNull;
  EXPECT_EQ(copy.Get(), nullptr);
  EXPECT_TRUE(byDefault == ofNull);
}

TEST_F(MRBBaseUnknown_varTest, AssignmentSharesTheNewObjectAndLetsGoOfTheOld) {
  SelfCounting first;
  SelfCounting second;
  MRBBaseUnknown_var handle(&first);
  handle = MRBBaseUnknown_var(&second);
  EXPECT_EQ(first.references, 0);
  EXPECT_EQ(second.references, 1);
  handle = MRBBaseUnknown_var();
  EXPECT_EQ(second.references, 0);
}

TEST_F(MRBBaseUnknown_varTest, AssignmentToItselfKeepsTheObject) {
  MRBBaseUnknown_var handle(new HostObject(living));
  const MRBBaseUnknown_var& same = handle;
  handle = same;
  EXPECT_EQ(living, 1);
  handle = MRBBaseUnknown_var(handle.Get());
  EXPECT_EQ(living, 1);
}

TEST_F(MRBBaseUnknown_varTest, AssignmentFromAHandleThatTheOldObjectOwnsKeepsTheNewObject) {
  Link* const first = new Link(living);
  MRBBaseUnknown_var handle(first);
  first->next = MRBBaseUnknown_var(new HostObject(living));
  EXPECT_EQ(living, 2);
  handle = first->next;
  EXPECT_EQ(living, 1);
  EXPECT_NE(handle.Get(), nullptr);
}

TEST_F(MRBBaseUnknown_varTest, AreEqualWhenTheyDesignateTheSameObject) {
  SelfCounting first;
  SelfCounting second;
  const MRBBaseUnknown_var handle(&first);
  EXPECT_TRUE(handle == MRBBaseUnknown_var(&first));
  EXPECT_FALSE(handle != MRBBaseUnknown_var(&first));
  EXPECT_TRUE(handle != MRBBaseUnknown_var(&second));
  EXPECT_FALSE(handle == MRBBaseUnknown_var(&second));
  EXPECT_TRUE(handle != MRBBaseUnknown_var());
}
