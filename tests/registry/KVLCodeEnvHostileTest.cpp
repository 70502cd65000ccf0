#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "KVLCodeEnv.h"
#include "KVLCodeObjectRegisterer.h"
#include "RegistryObjects.h"

namespace {

using namespace kvltest;

/// Code that runs while an object dies and calls the environment that held it.
class KVLCodeEnvReentrance : public RegistryCase {
 protected:
  // An environment with `nbOthers` further objects, small or large.
  static EnvPtr MakeEnv(int nbOthers) {
    const EnvPtr env = new KVLCodeEnv("root");
    for (int i = 0; i < nbOthers; ++i)
      env->Add(*MakeObject(NameOf(i)), "");
    return env;
  }
  static MRBUnicodeString NameOf(int i) {
    return ("an_object_with_a_long_name_" + std::to_string(i)).c_str();
  }

  static constexpr int Sizes[] = {0, 1, 7, 8, 22, 100};
};

TEST_F(KVLCodeEnvReentrance, ARemovedObjectNoLongerMeetsItselfWhenItDies) {
  for (const int size : Sizes) {
    const EnvPtr env = MakeEnv(size);
    bool died = false;
    env->Add(*new TrackedObject("dying",
                                [&] {
                                  died = true;
                                  EXPECT_EQ(env->FindObject("dying"), nullptr);
                                  EXPECT_EQ(env->Remove("dying"), KVLResult_Failure);
                                  EXPECT_EQ(KeysOf(env->IterOnObjects()).size(),
                                            static_cast<std::size_t>(size));
                                }),
             "");
    EXPECT_EQ(env->Remove("dying"), KVLResult_Success);
    EXPECT_TRUE(died);
  }
}

TEST_F(KVLCodeEnvReentrance, ARemovedObjectMayRemoveOthersWhenItDies) {
  for (const int size : Sizes) {
    const EnvPtr env = MakeEnv(size);
    env->Add(*new TrackedObject("dying",
                                [&] {
                                  for (int i = 0; i < size; ++i)
                                    EXPECT_EQ(env->Remove(NameOf(i)), KVLResult_Success);
                                }),
             "");
    EXPECT_EQ(env->Remove("dying"), KVLResult_Success);
    EXPECT_EQ(KeysOf(env->IterOnObjects()), Names());
    EXPECT_EQ(TrackedObject::nbAlive, 0);
  }
}

TEST_F(KVLCodeEnvReentrance, ARemovedObjectMayAddOthersWhenItDies) {
  for (const int size : Sizes) {
    const EnvPtr env = MakeEnv(size);
    env->Add(*new TrackedObject("dying",
                                [&] {
                                  for (int i = 0; i < 50; ++i)
                                    env->Add(*MakeObject(NameOf(size + i)), "");
                                  env->Add(*MakeObject("dying"), "");
                                  env->GetSubEnv("made/below");
                                }),
             "");
    EXPECT_EQ(env->Remove("dying"), KVLResult_Success);
    EXPECT_EQ(KeysOf(env->IterOnObjects()).size(), static_cast<std::size_t>(size) + 51);
    for (int i = 0; i < size + 50; ++i)
      EXPECT_NE(env->FindObject(NameOf(i)), nullptr);
    EXPECT_NE(env->FindObject("dying"), nullptr);
  }
}

TEST_F(KVLCodeEnvReentrance, AnObjectRemovedByIdentityMayCallBackWhenItDies) {
  const EnvPtr env = MakeEnv(8);
  KVLCodeObject* const dying = new TrackedObject("dying", [&] {
    EXPECT_EQ(env->Remove(NameOf(0)), KVLResult_Success);
    env->Add(*MakeObject("added"), "");
  });
  env->Add(*dying, "");
  EXPECT_EQ(env->Remove(*dying, "dying"), KVLResult_Success);
  EXPECT_EQ(env->FindObject(NameOf(0)), nullptr);
  EXPECT_NE(env->FindObject("added"), nullptr);
}

TEST_F(KVLCodeEnvReentrance, ARemovedObjectMayTakeTheLastReferenceToItsEnvironmentWithIt) {
  EnvPtr env = MakeEnv(8);
  KVLCodeEnv& borrowed = *env;
  env->Add(*new TrackedObject("dying", [&] { env = nullptr; }), "");
  EXPECT_EQ(borrowed.Remove("dying"), KVLResult_Success);
  EXPECT_TRUE(env.IsNull());
  EXPECT_EQ(TrackedObject::nbAlive, 0);
}

TEST_F(KVLCodeEnvReentrance, AnObjectMayLookAroundInADyingEnvironment) {
  for (const int size : Sizes) {
    EnvPtr env = MakeEnv(size);
    KVLCodeEnv& borrowed = *env;
    int nbDeaths = 0;
    for (int i = 0; i < 3; ++i) {
      env->Add(*new TrackedObject(("dying" + std::to_string(i)).c_str(),
                                  [&] {
                                    ++nbDeaths;
                                    EXPECT_EQ(borrowed.FindObject("absent"), nullptr);
                                    EXPECT_EQ(borrowed.FindSubEnv("absent"), nullptr);
                                    for (int j = 0; j < size; ++j)
                                      (void)borrowed.FindObject(NameOf(j));
                                    KeysOf(borrowed.IterOnObjects());
                                    KeysOf(borrowed.IterOnSubEnvs());
                                  }),
               "");
    }
    env = nullptr;
    EXPECT_EQ(nbDeaths, 3);
    EXPECT_EQ(TrackedObject::nbAlive, 0);
  }
}

TEST_F(KVLCodeEnvReentrance, AnObjectMayRemoveOthersFromADyingEnvironment) {
  for (const int size : Sizes) {
    EnvPtr env = MakeEnv(size);
    KVLCodeEnv& borrowed = *env;
    env->Add(*new TrackedObject("dying",
                                [&] {
                                  for (int i = 0; i < size; ++i)
                                    (void)borrowed.Remove(NameOf(i));
                                  EXPECT_EQ(borrowed.Remove("dying"), KVLResult_Failure);
                                }),
             "");
    env = nullptr;
    EXPECT_EQ(TrackedObject::nbAlive, 0);
  }
}

TEST_F(KVLCodeEnvReentrance, AnObjectMayAddOthersToADyingEnvironmentAndTheyDieWithIt) {
  for (const int size : Sizes) {
    EnvPtr env = MakeEnv(size);
    KVLCodeEnv& borrowed = *env;
    int nbDeaths = 0;
    env->Add(*new TrackedObject("dying",
                                [&] {
                                  ++nbDeaths;
                                  for (int i = 0; i < 50; ++i) {
                                    borrowed.Add(*MakeObject(NameOf(size + i)), "");
                                    borrowed.Add(*MakeObject("x"), "made/" + NameOf(i) + "/");
                                  }
                                  borrowed.AggregateEnv(*new TrackedEnv("lender"));
                                }),
             "");
    env = nullptr;
    EXPECT_EQ(nbDeaths, 1);
    EXPECT_EQ(TrackedObject::nbAlive, 0);
    EXPECT_EQ(TrackedEnv::nbAlive, 0);
  }
}

TEST_F(KVLCodeEnvReentrance, AnObjectAddedToADyingEnvironmentMayCallItInItsTurn) {
  EnvPtr env = MakeEnv(10);
  KVLCodeEnv& borrowed = *env;
  int nbDeaths = 0;
  std::function<void()> addAnother = [&] {
    if (++nbDeaths < 5) borrowed.Add(*new TrackedObject("another", addAnother), "");
    EXPECT_EQ(borrowed.FindObject("absent"), nullptr);
  };
  env->Add(*new TrackedObject("dying", addAnother), "");
  env = nullptr;
  EXPECT_EQ(nbDeaths, 5);
  EXPECT_EQ(TrackedObject::nbAlive, 0);
}

TEST_F(KVLCodeEnvReentrance, ObjectsOfAChildMayCallTheDyingParentAndTheChildItself) {
  EnvPtr env = MakeEnv(10);
  KVLCodeEnv& parent = *env;
  KVLCodeEnv& child = parent.GetSubEnv("p/q");
  int nbDeaths = 0;
  for (int i = 0; i < 20; ++i) {
    child.Add(*new TrackedObject(NameOf(i),
                                 [&] {
                                   ++nbDeaths;
                                   (void)parent.FindObject("p/q/x");
                                   (void)parent.Remove(NameOf(3));
                                   (void)child.Remove(NameOf(4));
                                   child.Add(*MakeObject("made"), "");
                                   parent.Add(*MakeObject("made"), "p/made/");
                                 }),
              "");
  }
  env = nullptr;
  EXPECT_EQ(nbDeaths, 20);
  EXPECT_EQ(TrackedObject::nbAlive, 0);
}

TEST_F(KVLCodeEnvReentrance, ADyingEnvironmentReleasesTheAggregatedOnesThenChildrenThenObjects) {
  EnvPtr env = new KVLCodeEnv("root");
  std::string order;
  env->Add(*new TrackedObject("x", [&] { order += "object "; }), "");
  env->Add(*new TrackedObject("x", [&] { order += "child "; }), "p/");
  KVLCodeEnv* const lender = new KVLCodeEnv("lender");
  lender->Add(*new TrackedObject("x", [&] { order += "aggregated "; }), "");
  env->AggregateEnv(*lender);
  env = nullptr;
  EXPECT_EQ(order, "aggregated child object ");
}

TEST_F(KVLCodeEnvReentrance, TheEndOfAnAggregationMayEndTheAggregatedEnvironmentThatCallsBack) {
  const EnvPtr env = MakeEnv(3);
  const EnvPtr last = new KVLCodeEnv("last");
  bool died = false;
  KVLCodeEnv* const lender = new TrackedEnv("lender");
  lender->Add(*new TrackedObject("x",
                                 [&] {
                                   died = true;
                                   EXPECT_EQ(env->FindObject("x"), nullptr);
                                   EXPECT_EQ(env->UnAggregateEnv(*last), KVLResult_Success);
                                   for (int i = 0; i < 20; ++i)
                                     env->AggregateEnv(*new TrackedEnv("more"));
                                   EXPECT_EQ(KeysOf(env->IterOnObjects()).size(), 3u);
                                 }),
              "");
  env->AggregateEnv(*lender);
  env->AggregateEnv(*last);
  EXPECT_EQ(env->UnAggregateEnv(*lender), KVLResult_Success);
  EXPECT_TRUE(died);
  EXPECT_EQ(TrackedEnv::nbAlive, 20);
}

TEST_F(KVLCodeEnvReentrance, AnObjectMayWithdrawARegistrationInItsDyingEnvironment) {
  struct Publisher : TrackedObject {
    Publisher(KVLCodeEnv& env, const MRBUnicodeString& objectName)
        : TrackedObject(objectName),
          registerer(env, MakeObject("published"), objectName + "'s", KVLSourceLocation()) {}
    const KVLCodeObjectRegisterer registerer;
  };
  for (const int size : Sizes) {
    EnvPtr env = MakeEnv(size);
    for (int i = 0; i < 3; ++i)
      env->Add(*new Publisher(*env, ("publisher" + std::to_string(i)).c_str()), "");
    EXPECT_EQ(env->Remove("publisher1"), KVLResult_Success);
    EXPECT_EQ(env->FindObject("publisher1's"), nullptr);
    EXPECT_NE(env->FindObject("publisher2's"), nullptr);
    env = nullptr;
    EXPECT_EQ(TrackedObject::nbAlive, 0);
  }
}

class KVLCodeEnvDepth : public RegistryCase {
 protected:
  static constexpr int Depth = 1000000;

  static MRBUnicodeString DeepPath() {
    std::string path;
    path.reserve(2 * Depth);
    for (int i = 0; i < Depth; ++i)
      path += "a/";
    return path.c_str();
  }
};

TEST_F(KVLCodeEnvDepth, OfAPathIsLimitedByMemoryAlone) {
  EnvPtr env = new KVLCodeEnv("root");
  const MRBUnicodeString path = DeepPath();
  const TrackedPtr object = MakeObject("x");
  object->Note("deep");
  EXPECT_EQ(env->Add(*object, path), KVLResult_Success);
  EXPECT_EQ(env->FindObject(path + "x"), object);
  EXPECT_EQ(env->FindObject(path + "y"), nullptr);
  EXPECT_EQ(env->FindSubEnv(path + "y"), nullptr);
  EXPECT_EQ(&env->GetSubEnv(path), env->FindSubEnv(path.SubString(0, 2 * Depth - 1)).Get());

  {
    const KVLVector<KVLCodeEnv::Anomaly> anomalies = env->ComputeAnomalies();
    ASSERT_EQ(anomalies.GetCount(), 1);
    EXPECT_EQ(anomalies[0].object, object);
    EXPECT_TRUE(anomalies[0].path == path + "x");
  }

  EXPECT_EQ(env->Remove(path + "x"), KVLResult_Success);
  EXPECT_EQ(env->Add(*MakeObject("y"), path), KVLResult_Success);
  env = nullptr;
  EXPECT_EQ(TrackedObject::nbAlive, 1);
}

TEST_F(KVLCodeEnvDepth, OfChildrenLeavesEachObjectItsEnvironmentToCall) {
  EnvPtr env = new KVLCodeEnv("root");
  KVLCodeEnv* current = env.Get();
  int nbDeaths = 0;
  constexpr int NbLevels = 5000;
  for (int i = 0; i < NbLevels; ++i) {
    KVLCodeEnv& own = *current;
    own.Add(*new TrackedObject("x",
                               [&own, &nbDeaths] {
                                 ++nbDeaths;
                                 EXPECT_EQ(own.FindObject("x"), nullptr);
                                 own.Add(*MakeObject("y"), "");
                               }),
            "");
    current = &own.GetSubEnv("a");
  }
  env = nullptr;
  EXPECT_EQ(nbDeaths, NbLevels);
  EXPECT_EQ(TrackedObject::nbAlive, 0);
}

TEST_F(KVLCodeEnvDepth, OfEnvironmentsThatHoldOneAnotherAsObjectsMayBeGreat) {
  EnvPtr top = new TrackedEnv("e");
  for (int i = 1; i < Depth; ++i) {
    const EnvPtr above = new TrackedEnv("e");
    above->Add(*top, "");
    top = above;
  }
  EXPECT_EQ(TrackedEnv::nbAlive, Depth);
  top = nullptr;
  EXPECT_EQ(TrackedEnv::nbAlive, 0);
}

TEST_F(KVLCodeEnvDepth, OfEnvironmentsThatAggregateOneAnotherMayBeGreatWhenTheyDie) {
  EnvPtr top = new TrackedEnv("e");
  for (int i = 1; i < Depth; ++i) {
    const EnvPtr above = new TrackedEnv("e");
    above->AggregateEnv(*top);
    top = above;
  }
  top = nullptr;
  EXPECT_EQ(TrackedEnv::nbAlive, 0);
}

}  // namespace
