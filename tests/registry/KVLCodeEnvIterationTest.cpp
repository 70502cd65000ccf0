#include <gtest/gtest.h>

#include <string>

#include "KVLCodeEnv.h"
#include "RegistryObjects.h"
#include "support/AllocationCounter.h"
#include "support/FailingAllocations.h"

namespace {

using namespace kvltest;

class KVLCodeEnvIteration : public RegistryCase {
 protected:
  void Add(const char* names) {
    for (; *names; ++names)
      EXPECT_EQ(env->Add(*MakeObject(MRBUnicodeString(names, 1)), ""), KVLResult_Success);
  }
  std::string GetOrder() const {
    std::string order;
    for (const std::string& key : KeysOf(env->IterOnObjects()))
      order += key;
    return order;
  }

  const EnvPtr env = new KVLCodeEnv("root");
};

TEST_F(KVLCodeEnvIteration, YieldsNamesAndObjectsInTheOrderOfInsertion) {
  const TrackedPtr one = MakeObject("one");
  const TrackedPtr two = MakeObject("two");
  env->Add(*two, "b");
  env->Add(*one, "a");
  KVLCodeEnv::ObjectIter iter = env->IterOnObjects();
  EXPECT_EQ(iter.GetStatus(), KVLResult_Success);
  KVLKeyValue<MRBUnicodeString, KVLSmartPtr<KVLCodeObject>> entry;
  EXPECT_EQ(iter.Next(entry), KVLResult_Success);
  EXPECT_EQ(entry.key, "b");
  EXPECT_EQ(entry.value, two);
  EXPECT_EQ(iter.Next(entry), KVLResult_Success);
  EXPECT_EQ(entry.key, "a");
  EXPECT_EQ(entry.value, one);
  EXPECT_EQ(iter.Next(entry), KVLResult_False);
  EXPECT_EQ(iter.GetStatus(), KVLResult_False);
  EXPECT_EQ(entry.key, "a");
  EXPECT_EQ(iter.Next(entry), KVLResult_False);
}

TEST_F(KVLCodeEnvIteration, YieldsChildrenInTheOrderOfTheirMaking) {
  for (const char* const name : {"c", "a", "b"})
    env->GetSubEnv(name);
  EXPECT_EQ(KeysOf(env->IterOnSubEnvs()), Names({"c", "a", "b"}));
  for (const auto& child : env->IterOnSubEnvs()) {
    EXPECT_EQ(child.value->GetName(), child.key);
    EXPECT_EQ(child.value.Get(), &env->GetSubEnv(child.key));
  }
}

TEST_F(KVLCodeEnvIteration, DoesNotDescend) {
  env->Add(*MakeObject("x"), "a/x");
  EXPECT_EQ(KeysOf(env->IterOnObjects()), Names());
  EXPECT_EQ(KeysOf(env->IterOnSubEnvs()), Names({"a"}));
}

TEST_F(KVLCodeEnvIteration, KeepsTheOrderAfterARemovalFromASmallTable) {
  Add("abc");
  env->Remove("a");
  EXPECT_EQ(GetOrder(), "bc");
  Add("defgha");
  EXPECT_EQ(GetOrder(), "bcdefgha");
  env->Remove("d");
  env->Remove("a");
  EXPECT_EQ(GetOrder(), "bcefgh");
}

TEST_F(KVLCodeEnvIteration, KeepsTheOrderWhenATableGrowsFromSmallToLarge) {
  Add("abcdefgh");
  EXPECT_EQ(GetOrder(), "abcdefgh");
  Add("i");
  EXPECT_EQ(GetOrder(), "abcdefghi");
}

TEST_F(KVLCodeEnvIteration, PutsTheLastIntoTheHoleThatARemovalLeavesInALargeTable) {
  Add("abcdefghi");
  env->Remove("a");
  EXPECT_EQ(GetOrder(), "ibcdefgh");
  env->Remove("h");
  EXPECT_EQ(GetOrder(), "ibcdefg");
  env->Remove("c");
  EXPECT_EQ(GetOrder(), "ibgdef");
}

TEST_F(KVLCodeEnvIteration, OfATableThatWasLargeOnceMovesTheLastForever) {
  Add("abcdefghi");
  for (const char* const name : {"i", "h", "g", "f", "e", "d"})
    env->Remove(name);
  EXPECT_EQ(GetOrder(), "abc");
  env->Remove("a");
  EXPECT_EQ(GetOrder(), "cb");
  Add("x");
  EXPECT_EQ(GetOrder(), "cbx");
}

TEST_F(KVLCodeEnvIteration, KeepsTheOrderThroughEveryFurtherGrowth) {
  Names expected;
  for (int i = 0; i < 1000; ++i) {
    expected.push_back("object" + std::to_string(i));
    env->Add(*MakeObject(expected.back().c_str()), "");
  }
  EXPECT_EQ(KeysOf(env->IterOnObjects()), expected);
}

TEST_F(KVLCodeEnvIteration, YieldsOwnContentsThenThoseOfEachAggregatedEnvironment) {
  const EnvPtr b = new KVLCodeEnv("b");
  const EnvPtr c = new KVLCodeEnv("c");
  const EnvPtr d = new KVLCodeEnv("d");
  env->AggregateEnv(*b);
  env->AggregateEnv(*c);
  b->AggregateEnv(*d);
  Add("xy");
  b->Add(*MakeObject("y"), "");
  d->Add(*MakeObject("x"), "");
  c->Add(*MakeObject("z"), "");
  EXPECT_EQ(GetOrder(), "xyyxz");
}

TEST_F(KVLCodeEnvIteration, PassesOverEmptyAggregatedEnvironments) {
  const EnvPtr full = new KVLCodeEnv("full");
  full->Add(*MakeObject("x"), "");
  for (int i = 0; i < 3; ++i) {
    env->AggregateEnv(*new KVLCodeEnv("empty"));
    env->AggregateEnv(*full);
  }
  EXPECT_EQ(GetOrder(), "xxx");
}

TEST_F(KVLCodeEnvIteration, MayMoveToAnotherHandleHalfWay) {
  const EnvPtr b = new KVLCodeEnv("b");
  const EnvPtr c = new KVLCodeEnv("c");
  env->AggregateEnv(*b);
  b->AggregateEnv(*c);
  Add("x");
  b->Add(*MakeObject("y"), "");
  c->Add(*MakeObject("z"), "");
  c->AggregateEnv(*env);
  KVLCodeEnv::ObjectIter iter = env->IterOnObjects();
  KVLKeyValue<MRBUnicodeString, KVLSmartPtr<KVLCodeObject>> entry;
  std::string order;
  while (iter.Next(entry) == KVLResult_Success) {
    order += entry.key.ConvertToChar();
    KVLCodeEnv::ObjectIter moved(std::move(iter));
    iter = std::move(moved);
  }
  EXPECT_EQ(order, "xyz");
  c->UnAggregateEnv(*env);
}

TEST_F(KVLCodeEnvIteration, SharesTheObjectsItYields) {
  Add("x");
  ObjectPtr kept;
  for (const auto& entry : env->IterOnObjects())
    kept = entry.value;
  env->Remove("x");
  EXPECT_EQ(TrackedObject::nbAlive, 1);
  EXPECT_EQ(kept->GetName(), "x");
}

// Fails the first allocation of an iteration, then the second, until it comes through; each time
// the failure must show as the status and end the elements. `iterate` returns the status at the
// end.
template <class Iterate>
void FailEachAllocation(Iterate iterate, int& nbFailed) {
  nbFailed = 0;
  for (long nth = 1; nth < 100; ++nth) {
    const FailingAllocations failing(nth);
    const long status = iterate();
    if (!failing.HasFailed()) {
      EXPECT_EQ(status, KVLResult_False);
      return;
    }
    ++nbFailed;
    EXPECT_TRUE(status == KVLResult_Failure || status == KVLResult_OutOfMemory) << status;
  }
  FAIL() << "the iteration never came through";
}

TEST_F(KVLCodeEnvIteration, WithoutMemoryForACursorCarriesAFailureAndYieldsIt) {
  if (!FailingAllocations::IsAvailable()) GTEST_SKIP() << "allocations cannot be made to fail";
  Add("x");
  const FailingAllocations failing(1);
  KVLCodeEnv::ObjectIter iter = env->IterOnObjects();
  EXPECT_TRUE(failing.HasFailed());
  EXPECT_TRUE(KVLFailed(iter.GetStatus()));
  KVLKeyValue<MRBUnicodeString, KVLSmartPtr<KVLCodeObject>> entry;
  EXPECT_EQ(iter.Next(entry), iter.GetStatus());
  EXPECT_TRUE(KVLFailed(iter.Next(entry)));
  EXPECT_TRUE(entry.value.IsNull());
}

TEST_F(KVLCodeEnvIteration, CarriesTheFailureOfACursorFromTheBeginningWithAggregationsToo) {
  if (!FailingAllocations::IsAvailable()) GTEST_SKIP() << "allocations cannot be made to fail";
  Add("x");
  env->AggregateEnv(*new KVLCodeEnv("lender"));
  for (long nth = 1; nth <= 3; ++nth) {
    const FailingAllocations failing(nth);
    const KVLCodeEnv::ObjectIter iter = env->IterOnObjects();
    EXPECT_TRUE(failing.HasFailed());
    EXPECT_TRUE(iter.GetStatus() == KVLResult_Failure || iter.GetStatus() == KVLResult_OutOfMemory)
        << nth;
  }
}

TEST_F(KVLCodeEnvIteration, FailsWithAStatusWhicheverOfItsCursorsCannotBeMade) {
  if (!FailingAllocations::IsAvailable()) GTEST_SKIP() << "allocations cannot be made to fail";
  const EnvPtr b = new KVLCodeEnv("b");
  const EnvPtr c = new KVLCodeEnv("c");
  env->AggregateEnv(*b);
  b->AggregateEnv(*c);
  Add("x");
  b->Add(*MakeObject("y"), "");
  c->Add(*MakeObject("z"), "p/z");
  int nbObjects = 0;
  const auto iterateObjects = [&] {
    nbObjects = 0;
    KVLCodeEnv::ObjectIter iter = env->IterOnObjects();
    KVLKeyValue<MRBUnicodeString, KVLSmartPtr<KVLCodeObject>> entry;
    while (iter.Next(entry) == KVLResult_Success)
      ++nbObjects;
    return iter.GetStatus();
  };
  const auto iterateChildren = [&] {
    KVLCodeEnv::SubEnvIter iter = env->IterOnSubEnvs();
    KVLKeyValue<MRBUnicodeString, KVLSmartPtr<KVLCodeEnv>> entry;
    while (iter.Next(entry) == KVLResult_Success) {
    }
    return iter.GetStatus();
  };
  int nbFailed = 0;
  FailEachAllocation(iterateObjects, nbFailed);
  EXPECT_EQ(nbObjects, 2);
  EXPECT_GT(nbFailed, 4);
  FailEachAllocation(iterateChildren, nbFailed);
  EXPECT_GT(nbFailed, 4);
}

// One that collected its elements, or began with every aggregated environment, would allocate more.
TEST_F(KVLCodeEnvIteration, BeginsWithNoMoreWorkForManyObjectsAndAggregationsThanForFew) {
  if (!AllocationCounter::IsAvailable()) GTEST_SKIP() << "allocations cannot be counted";
  const auto countAllocations = [this] {
    const AllocationCounter counter;
    const KVLCodeEnv::ObjectIter objects = env->IterOnObjects();
    const KVLCodeEnv::SubEnvIter subEnvs = env->IterOnSubEnvs();
    return counter.GetCount();
  };
  const EnvPtr lender = new KVLCodeEnv("lender");
  lender->Add(*MakeObject("x"), "p/");
  env->AggregateEnv(*lender);
  Add("a");
  const long nbForFew = countAllocations();
  Add("bcdefghijklm");
  for (int i = 0; i < 20; ++i)
    env->AggregateEnv(*lender);
  EXPECT_EQ(countAllocations(), nbForFew);
}

class KVLCodeEnvAllocations : public RegistryCase {
 protected:
  const EnvPtr env = new KVLCodeEnv("root");
};

TEST_F(KVLCodeEnvAllocations, AreNoneInALookupOfAnExistingPath) {
  if (!AllocationCounter::IsAvailable()) GTEST_SKIP() << "allocations cannot be counted";
  const MRBUnicodeString paths[] = {
      "a/b/x", "an_environment_with_a_long_name/another_one_with_a_long_name/an_object_likewise"};
  for (const MRBUnicodeString& path : paths) {
    const TrackedPtr object = MakeObject("x");
    env->Add(*object, path);
    const AllocationCounter counter;
    const ObjectPtr found = env->FindObject(path);
    EXPECT_EQ(counter.GetCount(), 0) << path;
    EXPECT_EQ(found, object);
  }
}

TEST_F(KVLCodeEnvAllocations, AreNoneInALookupThroughLargeTablesAndAggregations) {
  if (!AllocationCounter::IsAvailable()) GTEST_SKIP() << "allocations cannot be counted";
  const EnvPtr lender = new KVLCodeEnv("lender");
  env->AggregateEnv(*new KVLCodeEnv("empty"));
  env->AggregateEnv(*lender);
  const MRBUnicodeString stem = "an_environment_with_a_long_name";
  for (int i = 0; i < 100; ++i) {
    const MRBUnicodeString name = stem + std::to_string(i).c_str();
    lender->Add(*MakeObject(name), stem + "/" + name + "/" + name);
    lender->Add(*MakeObject(name), stem + "/" + name);
  }
  const MRBUnicodeString path = stem + "/" + stem + "57/" + stem + "57";
  EXPECT_NE(env->FindObject(path), nullptr);
  const MRBUnicodeString missing = stem + "57";
  const AllocationCounter counter;
  const ObjectPtr found = env->FindObject(path);
  const ObjectPtr absent = env->FindObject(missing);
  const EnvPtr child = env->FindSubEnv(stem);
  EXPECT_EQ(counter.GetCount(), 0);
  EXPECT_NE(found, nullptr);
  EXPECT_EQ(absent, nullptr);
  EXPECT_NE(child, nullptr);
}

TEST_F(KVLCodeEnvAllocations, AreNoneInGettingAnExistingChild) {
  if (!AllocationCounter::IsAvailable()) GTEST_SKIP() << "allocations cannot be counted";
  const MRBUnicodeString path = "/an_environment_with_a_long_name//b/c/";
  KVLCodeEnv& child = env->GetSubEnv(path);
  const AllocationCounter counter;
  KVLCodeEnv& again = env->GetSubEnv(path);
  EXPECT_EQ(counter.GetCount(), 0);
  EXPECT_EQ(&again, &child);
}

}  // namespace
