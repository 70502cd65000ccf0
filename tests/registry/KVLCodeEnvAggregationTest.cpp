#include <gtest/gtest.h>

#include "KVLCodeEnv.h"
#include "RegistryObjects.h"

namespace {

using namespace kvltest;

class KVLCodeEnvAggregation : public RegistryCase {
 protected:
  // Ends the loops that a case has made.
  void TearDown() override {
    for (const EnvPtr& env : {a, b, c, d}) {
      for (const EnvPtr& other : {a, b, c, d}) {
        while (env->UnAggregateEnv(*other) == KVLResult_Success) {
        }
      }
    }
  }

  static TrackedPtr AddTo(const EnvPtr& env, const char* path) {
    const TrackedPtr object = MakeObject(path);
    EXPECT_EQ(env->Add(*object, path), KVLResult_Success);
    return object;
  }

  const EnvPtr a = new KVLCodeEnv("a");
  const EnvPtr b = new KVLCodeEnv("b");
  const EnvPtr c = new KVLCodeEnv("c");
  const EnvPtr d = new KVLCodeEnv("d");
};

TEST_F(KVLCodeEnvAggregation, OwnObjectsShadowBorrowedOnes) {
  const TrackedPtr own = AddTo(a, "x");
  const TrackedPtr borrowed = AddTo(b, "x");
  EXPECT_EQ(a->AggregateEnv(*b), KVLResult_Success);
  EXPECT_EQ(a->FindObject("x"), own);
  EXPECT_EQ(KeysOf(a->IterOnObjects()), Names({"x", "x"}));
  EXPECT_EQ(a->Remove("x"), KVLResult_Success);
  EXPECT_EQ(a->FindObject("x"), borrowed);
  EXPECT_EQ(a->Remove("x"), KVLResult_Failure);
  EXPECT_EQ(b->FindObject("x"), borrowed);
}

TEST_F(KVLCodeEnvAggregation, IsNeverRemovedFrom) {
  const TrackedPtr borrowed = AddTo(b, "p/x");
  a->AggregateEnv(*b);
  EXPECT_EQ(a->Remove("p/x"), KVLResult_Failure);
  EXPECT_EQ(a->Remove(*borrowed, "p/x"), KVLResult_Failure);
  EXPECT_EQ(b->FindObject("p/x"), borrowed);
}

TEST_F(KVLCodeEnvAggregation, EarlierAggregationsShadowLaterOnes) {
  const TrackedPtr inB = AddTo(b, "x");
  const TrackedPtr inC = AddTo(c, "x");
  a->AggregateEnv(*c);
  a->AggregateEnv(*b);
  EXPECT_EQ(a->FindObject("x"), inC);
  EXPECT_EQ(a->UnAggregateEnv(*c), KVLResult_Success);
  EXPECT_EQ(a->FindObject("x"), inB);
  a->AggregateEnv(*c);
  EXPECT_EQ(a->FindObject("x"), inB);
}

TEST_F(KVLCodeEnvAggregation, IsSearchedDepthFirst) {
  const TrackedPtr inD = AddTo(d, "x");
  AddTo(c, "x");
  b->AggregateEnv(*d);
  a->AggregateEnv(*b);
  a->AggregateEnv(*c);
  EXPECT_EQ(a->FindObject("x"), inD);
  EXPECT_EQ(KeysOf(a->IterOnObjects()), Names({"x", "x"}));
}

TEST_F(KVLCodeEnvAggregation, IsSearchedWithTheWholePath) {
  const TrackedPtr borrowed = AddTo(b, "p/q/x");
  AddTo(c, "x");
  a->AggregateEnv(*b);
  EXPECT_EQ(a->FindSubEnv("p/q"), b->FindSubEnv("p/q"));
  EXPECT_EQ(a->FindObject("p/q/x"), borrowed);
  EXPECT_EQ(a->FindObject("x"), nullptr);
}

TEST_F(KVLCodeEnvAggregation, IsShadowedByTheEmptyEnvironmentsThatALookupMakes) {
  b->GetSubEnv("p/q");
  a->AggregateEnv(*b);
  EXPECT_EQ(a->FindSubEnv("p/q"), b->FindSubEnv("p/q"));
  EXPECT_EQ(a->FindObject("p/q/x"), nullptr);
  EXPECT_NE(a->FindSubEnv("p/q"), b->FindSubEnv("p/q"));
}

TEST_F(KVLCodeEnvAggregation, OfTheReceiverCountsNotThatOfTheEnvironmentThePathLeadsTo) {
  AddTo(b, "x");
  a->GetSubEnv("p").AggregateEnv(*b);
  EXPECT_EQ(a->FindObject("p/x"), nullptr);
  EXPECT_NE(a->GetSubEnv("p").FindObject("x"), nullptr);
  EXPECT_EQ(a->GetSubEnv("p").FindObject("p/x"), nullptr);
  a->GetSubEnv("p").UnAggregateEnv(*b);
}

TEST_F(KVLCodeEnvAggregation, AFailedLookupCreatesTheEnvironmentsOfThePathInEachEnvironmentAsked) {
  a->AggregateEnv(*b);
  b->AggregateEnv(*c);
  AddTo(b, "p/x");
  EXPECT_NE(a->FindObject("p/x"), nullptr);
  EXPECT_EQ(KeysOf(c->IterOnSubEnvs()), Names());
  EXPECT_EQ(a->FindObject("p/y"), nullptr);
  EXPECT_EQ(KeysOf(c->IterOnSubEnvs()), Names({"p"}));
  a->UnAggregateEnv(*b);
  EXPECT_EQ(KeysOf(a->IterOnSubEnvs()), Names({"p"}));
}

TEST_F(KVLCodeEnvAggregation, IsNotAskedOnceAnEarlierOneHasFoundWhatIsWanted) {
  AddTo(b, "p/x");
  b->GetSubEnv("p/q");
  a->AggregateEnv(*b);
  a->AggregateEnv(*c);
  EXPECT_NE(a->FindObject("p/x"), nullptr);
  EXPECT_NE(a->FindSubEnv("p/q"), nullptr);
  EXPECT_EQ(KeysOf(c->IterOnSubEnvs()), Names());
}

TEST_F(KVLCodeEnvAggregation, IsNeverAskedForAChildToBeMade) {
  b->GetSubEnv("p");
  a->AggregateEnv(*b);
  EXPECT_EQ(a->FindSubEnv("p"), b->FindSubEnv("p"));
  EXPECT_NE(&a->GetSubEnv("p"), b->FindSubEnv("p").Get());
  EXPECT_NE(a->FindSubEnv("p"), b->FindSubEnv("p"));
}

TEST_F(KVLCodeEnvAggregation, ChildrenAreBorrowedAlike) {
  b->GetSubEnv("p");
  c->GetSubEnv("p");
  c->GetSubEnv("q");
  a->AggregateEnv(*b);
  a->AggregateEnv(*c);
  EXPECT_EQ(a->FindSubEnv("p"), b->FindSubEnv("p"));
  EXPECT_EQ(a->FindSubEnv("q"), c->FindSubEnv("q"));
  EXPECT_EQ(KeysOf(a->IterOnSubEnvs()), Names({"p", "p", "q"}));
}

TEST_F(KVLCodeEnvAggregation, EndsOncePerCallAndOnlyWhereItBegan) {
  AddTo(b, "x");
  EXPECT_EQ(a->UnAggregateEnv(*b), KVLResult_InvalidArgument);
  EXPECT_EQ(a->AggregateEnv(*b), KVLResult_Success);
  EXPECT_EQ(a->AggregateEnv(*b), KVLResult_Success);
  EXPECT_EQ(KeysOf(a->IterOnObjects()), Names({"x", "x"}));
  EXPECT_EQ(b->UnAggregateEnv(*a), KVLResult_InvalidArgument);
  EXPECT_EQ(a->UnAggregateEnv(*b), KVLResult_Success);
  EXPECT_NE(a->FindObject("x"), nullptr);
  EXPECT_EQ(a->UnAggregateEnv(*b), KVLResult_Success);
  EXPECT_EQ(a->FindObject("x"), nullptr);
  EXPECT_EQ(a->UnAggregateEnv(*b), KVLResult_InvalidArgument);
}

TEST_F(KVLCodeEnvAggregation, EndsWithTheFirstOfSeveralAndKeepsTheOrderOfTheOthers) {
  AddTo(b, "b");
  AddTo(c, "c");
  AddTo(d, "d");
  for (const EnvPtr& env : {b, c, b, d})
    a->AggregateEnv(*env);
  EXPECT_EQ(KeysOf(a->IterOnObjects()), Names({"b", "c", "b", "d"}));
  EXPECT_EQ(a->UnAggregateEnv(*b), KVLResult_Success);
  EXPECT_EQ(KeysOf(a->IterOnObjects()), Names({"c", "b", "d"}));
}

TEST_F(KVLCodeEnvAggregation, KeepsTheEnvironmentAlive) {
  a->AggregateEnv(*new TrackedEnv("lender"));
  EXPECT_EQ(TrackedEnv::nbAlive, 1);
  KVLCodeEnv* const other = new TrackedEnv("other");
  a->AggregateEnv(*other);
  EXPECT_EQ(TrackedEnv::nbAlive, 2);
  EXPECT_EQ(a->UnAggregateEnv(*other), KVLResult_Success);
  EXPECT_EQ(TrackedEnv::nbAlive, 1);
  EnvPtr holder = new KVLCodeEnv();
  holder->AggregateEnv(*new TrackedEnv("held"));
  EXPECT_EQ(TrackedEnv::nbAlive, 2);
  holder = nullptr;
  EXPECT_EQ(TrackedEnv::nbAlive, 1);
}

TEST_F(KVLCodeEnvAggregation, ComparesByIdentityNotByName) {
  const EnvPtr twin = new KVLCodeEnv("b");
  a->AggregateEnv(*b);
  EXPECT_EQ(a->UnAggregateEnv(*twin), KVLResult_InvalidArgument);
  EXPECT_EQ(a->UnAggregateEnv(*b), KVLResult_Success);
}

TEST_F(KVLCodeEnvAggregation, OfAnEnvironmentByItselfEndsLookupsAndIterations) {
  const TrackedPtr own = AddTo(a, "x");
  EXPECT_EQ(a->AggregateEnv(*a), KVLResult_Success);
  EXPECT_EQ(a->FindObject("x"), own);
  EXPECT_EQ(a->FindObject("y"), nullptr);
  EXPECT_EQ(a->FindSubEnv("y"), nullptr);
  EXPECT_EQ(a->FindObject("p/y"), nullptr);
  EXPECT_EQ(KeysOf(a->IterOnObjects()), Names({"x"}));
  EXPECT_EQ(KeysOf(a->IterOnSubEnvs()), Names({"p"}));
}

TEST_F(KVLCodeEnvAggregation, InALoopEndsLookupsAndIterationsWhereverTheyBegin) {
  AddTo(a, "a");
  AddTo(b, "b");
  AddTo(c, "c");
  a->AggregateEnv(*b);
  b->AggregateEnv(*c);
  c->AggregateEnv(*a);
  for (const EnvPtr& env : {a, b, c}) {
    for (const char* const name : {"a", "b", "c"}) {
      EXPECT_NE(env->FindObject(name), nullptr);
    }
    EXPECT_EQ(env->FindObject("y"), nullptr);
    EXPECT_EQ(env->FindObject("y"), nullptr);
    EXPECT_EQ(env->FindSubEnv("y"), nullptr);
  }
  EXPECT_EQ(KeysOf(a->IterOnObjects()), Names({"a", "b", "c"}));
  EXPECT_EQ(KeysOf(b->IterOnObjects()), Names({"b", "c", "a"}));
  EXPECT_EQ(KeysOf(c->IterOnObjects()), Names({"c", "a", "b"}));
}

TEST_F(KVLCodeEnvAggregation, InALoopStillReachesWhatLiesBesideIt) {
  AddTo(d, "d");
  a->AggregateEnv(*b);
  b->AggregateEnv(*a);
  b->AggregateEnv(*d);
  EXPECT_NE(a->FindObject("d"), nullptr);
  EXPECT_EQ(KeysOf(a->IterOnObjects()), Names({"d"}));
  a->AggregateEnv(*d);
  EXPECT_EQ(KeysOf(a->IterOnObjects()), Names({"d", "d"}));
  EXPECT_EQ(KeysOf(b->IterOnObjects()), Names({"d", "d"}));
}

TEST_F(KVLCodeEnvAggregation, OnTwoWaysToOneEnvironmentYieldsItTwice) {
  AddTo(d, "d");
  AddTo(b, "b");
  AddTo(c, "c");
  a->AggregateEnv(*b);
  a->AggregateEnv(*c);
  b->AggregateEnv(*d);
  c->AggregateEnv(*d);
  EXPECT_EQ(KeysOf(a->IterOnObjects()), Names({"b", "d", "c", "d"}));
  EXPECT_NE(a->FindObject("d"), nullptr);
}

TEST_F(KVLCodeEnvAggregation, OfAParentByItsChildEndsLookupsAndIterations) {
  AddTo(a, "x");
  KVLCodeEnv& child = a->GetSubEnv("p");
  child.AggregateEnv(*a);
  EXPECT_NE(child.FindObject("x"), nullptr);
  EXPECT_EQ(child.FindObject("y"), nullptr);
  EXPECT_EQ(KeysOf(child.IterOnObjects()), Names({"x"}));
  EXPECT_EQ(KeysOf(child.IterOnSubEnvs()), Names({"p"}));
  EXPECT_EQ(child.UnAggregateEnv(*a), KVLResult_Success);
}

TEST_F(KVLCodeEnvAggregation, OfAChildByItsParentFindsItsObjectsUnderBothPaths) {
  KVLCodeEnv& child = a->GetSubEnv("p");
  const TrackedPtr object = AddTo(a, "p/x");
  a->AggregateEnv(child);
  EXPECT_EQ(a->FindObject("x"), object);
  EXPECT_EQ(a->FindObject("p/x"), object);
  EXPECT_EQ(a->UnAggregateEnv(child), KVLResult_Success);
}

}  // namespace
