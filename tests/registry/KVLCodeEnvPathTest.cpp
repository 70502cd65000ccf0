#include <gtest/gtest.h>

#include <string>

#include "KVLCodeEnv.h"
#include "KVLCodeObjectRegisterer.h"
#include "RegistryObjects.h"

namespace {

using namespace kvltest;

class KVLCodeEnvPaths : public RegistryCase {
 protected:
  const EnvPtr env = new KVLCodeEnv("root");
};

TEST_F(KVLCodeEnvPaths, StartWithNothingBelow) {
  EXPECT_EQ(KeysOf(env->IterOnObjects()), Names());
  EXPECT_EQ(KeysOf(env->IterOnSubEnvs()), Names());
  EXPECT_EQ(env->Check().GetCount(), 0);
}

TEST_F(KVLCodeEnvPaths, EmptyNamesInAPathCountForNothing) {
  KVLCodeEnv& ab = env->GetSubEnv("a/b");
  for (const char* const path : {"a/b", "/a/b", "a/b/", "/a//b/", "a//b", "///a///b///"}) {
    EXPECT_EQ(&env->GetSubEnv(path), &ab) << path;
  }
  for (const char* const path : {"", "/", "//", "///"}) {
    EXPECT_EQ(&env->GetSubEnv(path), env.Get()) << path;
  }
  EXPECT_EQ(KeysOf(env->IterOnSubEnvs()), Names({"a"}));
  EXPECT_EQ(KeysOf(env->GetSubEnv("a").IterOnSubEnvs()), Names({"b"}));
}

TEST_F(KVLCodeEnvPaths, AChildBearsTheNameOfItsComponent) {
  EXPECT_EQ(env->GetSubEnv("a/b").GetName(), "b");
  EXPECT_EQ(env->GetSubEnv("a").GetName(), "a");
}

TEST_F(KVLCodeEnvPaths, NamesOfChildrenAreNotValidated) {
  for (const char* const name : {"_x", " ", ".", "..", "a b", "\\", "\xC3\xA9", "\xFF"}) {
    EXPECT_EQ(env->GetSubEnv(name).GetName(), name);
  }
  EXPECT_EQ(env->Check().GetCount(), 0);
}

TEST_F(KVLCodeEnvPaths, NamesOfObjectsAreNotValidatedAndOnlyASlashSeparates) {
  for (const char* const name :
       {"_x", " ", " x ", ".", "..", "a b", "\\", "a\\b", "a.b", "a:b", "a;b", "\xC3\xA9"}) {
    const TrackedPtr object = MakeObject("own");
    EXPECT_EQ(env->Add(*object, name), KVLResult_Success) << name;
    EXPECT_EQ(env->FindObject(name), object) << name;
    EXPECT_EQ(KeysOf(env->IterOnObjects()), Names({name}));
    EXPECT_EQ(env->Remove(name), KVLResult_Success) << name;
  }
  EXPECT_EQ(KeysOf(env->IterOnSubEnvs()), Names());
  EXPECT_EQ(env->Check().GetCount(), 0);
}

TEST_F(KVLCodeEnvPaths, AChildIsMadeOnce) {
  KVLCodeEnv& child = env->GetSubEnv("a");
  EXPECT_EQ(&env->GetSubEnv("a"), &child);
  EXPECT_EQ(env->FindSubEnv("a"), &child);
  EXPECT_EQ(KeysOf(env->IterOnSubEnvs()), Names({"a"}));
}

TEST_F(KVLCodeEnvPaths, AChildIsHeldByItsParentAlone) {
  EnvPtr own = new KVLCodeEnv();
  own->GetSubEnv("a/b").Add(*MakeObject("x"), "");
  own->GetSubEnv("a").Add(*MakeObject("y"), "");
  EXPECT_EQ(TrackedObject::nbAlive, 2);
  own = nullptr;
  EXPECT_EQ(TrackedObject::nbAlive, 0);
}

TEST_F(KVLCodeEnvPaths, AreCreatedThroughAConstEnvironmentToo) {
  const KVLCodeEnv& constant = *env;
  EXPECT_EQ(constant.GetSubEnv("a").GetName(), "a");
  EXPECT_EQ(constant.FindObject("b/x"), nullptr);
  EXPECT_EQ(constant.FindSubEnv("c/x"), nullptr);
  EXPECT_EQ(KeysOf(constant.IterOnSubEnvs()), Names({"a", "b", "c"}));
}

TEST_F(KVLCodeEnvPaths, NamesMayHoldNulBytes) {
  const MRBUnicodeString one("a\0x", 3);
  const MRBUnicodeString other("a\0y", 3);
  const MRBUnicodeString path("a\0x/a\0y", 7);
  KVLCodeEnv& child = env->GetSubEnv(path);
  EXPECT_EQ(child.GetName(), other);
  EXPECT_EQ(env->FindSubEnv(one), &env->GetSubEnv(one));
  EXPECT_EQ(env->FindSubEnv("a"), nullptr);

  const TrackedPtr first = MakeObject("first");
  const TrackedPtr second = MakeObject("second");
  EXPECT_EQ(env->Add(*first, one), KVLResult_Success);
  EXPECT_EQ(env->Add(*second, other), KVLResult_Success);
  EXPECT_EQ(env->FindObject(one), first);
  EXPECT_EQ(env->FindObject(other), second);
  EXPECT_EQ(env->FindObject("a"), nullptr);
  EXPECT_EQ(env->Remove(other), KVLResult_Success);
  EXPECT_EQ(env->FindObject(one), first);
}

TEST_F(KVLCodeEnvPaths, ObjectsAreAddedUnderTheLastNameOfThePath) {
  const struct {
    const char* path;
    const char* env;
    const char* name;
  } cases[] = {
      {"x", "", "x"},        {"/y", "", "y"},          {"a/x", "a", "x"},
      {"a/b/x", "a/b", "x"}, {"/a/b/y", "a/b", "y"},   {"a//b/z", "a/b", "z"},
      {"", "", "own"},       {"a/", "a", "own"},       {"a/b/", "a/b", "own"},
      {"/c/", "c", "own"},   {"c//d//", "c/d", "own"}, {"//e", "", "e"},
  };
  for (const auto& each : cases) {
    const TrackedPtr object = MakeObject("own");
    EXPECT_EQ(env->Add(*object, each.path), KVLResult_Success) << each.path;
    EXPECT_EQ(env->GetSubEnv(each.env).FindObject(each.name), object) << each.path;
  }
  EXPECT_EQ(KeysOf(env->IterOnObjects()), Names({"x", "y", "own", "e"}));
  EXPECT_EQ(KeysOf(env->GetSubEnv("a/b").IterOnObjects()), Names({"x", "y", "z", "own"}));
}

TEST_F(KVLCodeEnvPaths, ASingleSeparatorAddsTheObjectUnderItsOwnName) {
  const TrackedPtr object = MakeObject("own");
  EXPECT_EQ(env->Add(*object, "/"), KVLResult_Success);
  EXPECT_EQ(env->FindObject("own"), object);
}

TEST_F(KVLCodeEnvPaths, AnOwnNameIsReadAsAPathItself) {
  const TrackedPtr object = MakeObject("p/q");
  EXPECT_EQ(env->Add(*object, "a/"), KVLResult_Success);
  EXPECT_EQ(env->FindObject("a/p/q"), object);
  EXPECT_EQ(KeysOf(env->GetSubEnv("a/p").IterOnObjects()), Names({"q"}));
  EXPECT_EQ(env->Remove(*object, "a/"), KVLResult_Success);
  EXPECT_EQ(env->FindObject("a/p/q"), nullptr);
}

TEST_F(KVLCodeEnvPaths, AnOwnNameThatIsEmptyOrEndsWithASeparatorGivesTheEmptyName) {
  const TrackedPtr nameless = MakeObject("");
  EXPECT_EQ(env->Add(*nameless, ""), KVLResult_Success);
  EXPECT_EQ(env->FindObject(""), nameless);
  EXPECT_EQ(env->FindObject("/"), nameless);
  EXPECT_EQ(KeysOf(env->IterOnObjects()), Names({""}));

  const TrackedPtr open = MakeObject("p/");
  EXPECT_EQ(env->Add(*open, "a/"), KVLResult_Success);
  EXPECT_EQ(env->FindObject("a/p/"), open);
  EXPECT_EQ(KeysOf(env->GetSubEnv("a/p").IterOnObjects()), Names({""}));

  EXPECT_EQ(env->Remove(""), KVLResult_Success);
  EXPECT_EQ(env->FindObject(""), nullptr);
  EXPECT_EQ(env->Remove(*open, "a/"), KVLResult_Success);
}

TEST_F(KVLCodeEnvPaths, RemovingByPathNeverFallsBackOnAnOwnName) {
  const TrackedPtr object = MakeObject("own");
  EXPECT_EQ(env->Add(*object, "a/"), KVLResult_Success);
  EXPECT_EQ(env->Remove("a/"), KVLResult_Failure);
  EXPECT_EQ(env->FindObject("a/own"), object);
  EXPECT_EQ(env->Remove("a/own"), KVLResult_Success);
}

TEST_F(KVLCodeEnvPaths, RemovingAnObjectReadsThePathAsAddingIt) {
  for (const char* const path : {"", "x", "a/", "a/x", "/", "a//b/"}) {
    const TrackedPtr object = MakeObject("own");
    EXPECT_EQ(env->Add(*object, path), KVLResult_Success) << path;
    EXPECT_EQ(env->Remove(*object, path), KVLResult_Success) << path;
    EXPECT_EQ(env->Remove(*object, path), KVLResult_Failure) << path;
  }
}

TEST_F(KVLCodeEnvPaths, RemovingAnObjectLeavesAnotherOneUnderTheName) {
  const TrackedPtr first = MakeObject("x");
  const TrackedPtr other = MakeObject("x");
  EXPECT_EQ(env->Add(*first, "x"), KVLResult_Success);
  EXPECT_EQ(env->Remove(*other, "x"), KVLResult_Failure);
  EXPECT_EQ(env->FindObject("x"), first);
  EXPECT_EQ(env->Remove(*first, "y"), KVLResult_Failure);
  EXPECT_EQ(env->FindObject("x"), first);
}

TEST_F(KVLCodeEnvPaths, RemovingOneNameOfAnObjectLeavesItsOthers) {
  const TrackedPtr object = MakeObject("x");
  EXPECT_EQ(env->Add(*object, "x"), KVLResult_Success);
  EXPECT_EQ(env->Add(*object, "y"), KVLResult_Success);
  EXPECT_EQ(env->Remove(*object, "x"), KVLResult_Success);
  EXPECT_EQ(env->FindObject("x"), nullptr);
  EXPECT_EQ(env->FindObject("y"), object);
}

TEST_F(KVLCodeEnvPaths, RemovingTakesNoChild) {
  env->GetSubEnv("a/b");
  EXPECT_EQ(env->Remove("a"), KVLResult_Failure);
  EXPECT_EQ(env->Remove("a/b"), KVLResult_Failure);
  EXPECT_EQ(env->Remove(env->GetSubEnv("a"), "a"), KVLResult_Failure);
  EXPECT_NE(env->FindSubEnv("a/b"), nullptr);
}

TEST_F(KVLCodeEnvPaths, FindersCreateTheEnvironmentsOfTheirPathButNeverTheLastName) {
  EXPECT_EQ(env->FindObject("a/b/x"), nullptr);
  EXPECT_EQ(KeysOf(env->IterOnSubEnvs()), Names({"a"}));
  EXPECT_EQ(KeysOf(env->GetSubEnv("a").IterOnSubEnvs()), Names({"b"}));
  EXPECT_EQ(KeysOf(env->GetSubEnv("a/b").IterOnSubEnvs()), Names());

  EXPECT_EQ(env->FindSubEnv("c/d/e"), nullptr);
  EXPECT_EQ(KeysOf(env->IterOnSubEnvs()), Names({"a", "c"}));
  EXPECT_EQ(KeysOf(env->GetSubEnv("c/d").IterOnSubEnvs()), Names());
  EXPECT_EQ(env->FindSubEnv("e"), nullptr);
  EXPECT_EQ(env->FindObject("x"), nullptr);
  EXPECT_EQ(KeysOf(env->IterOnSubEnvs()), Names({"a", "c"}));
}

TEST_F(KVLCodeEnvPaths, FindingAChildByAPathThatEndsWithASeparatorFindsNothingAndCreatesIt) {
  EXPECT_EQ(env->FindSubEnv("a/"), nullptr);
  EXPECT_EQ(KeysOf(env->IterOnSubEnvs()), Names({"a"}));
  EXPECT_EQ(env->FindSubEnv("a/"), nullptr);
  EXPECT_NE(env->FindSubEnv("a"), nullptr);
  EXPECT_EQ(env->FindSubEnv(""), nullptr);
  EXPECT_EQ(env->FindSubEnv("/"), nullptr);
}

TEST_F(KVLCodeEnvPaths, RemovingCreatesTheEnvironmentsOfItsPath) {
  EXPECT_EQ(env->Remove("a/b/x"), KVLResult_Failure);
  EXPECT_NE(env->FindSubEnv("a/b"), nullptr);
  const TrackedPtr object = MakeObject("p/q");
  EXPECT_EQ(env->Remove(*object, "c/x"), KVLResult_Failure);
  EXPECT_NE(env->FindSubEnv("c"), nullptr);
  EXPECT_EQ(env->Remove(*object, "d/"), KVLResult_Failure);
  EXPECT_NE(env->FindSubEnv("d/p"), nullptr);
}

TEST_F(KVLCodeEnvPaths, AddingAnEmptyPointerFailsWithoutAMessageAndCreatesNothing) {
  EXPECT_EQ(env->Add(ObjectPtr(), "a/b/x"), KVLResult_Failure);
  EXPECT_EQ(KeysOf(env->IterOnSubEnvs()), Names());
  EXPECT_EQ(env->Check().GetCount(), 0);
}

TEST_F(KVLCodeEnvPaths, AddingByPointerAddsTheObject) {
  EXPECT_EQ(env->Add(ObjectPtr(MakeObject("x")), "a/"), KVLResult_Success);
  EXPECT_EQ(env->FindObject("a/x")->GetName(), "x");
  EXPECT_EQ(env->Add(ObjectPtr(MakeObject("x")), "a/x"), KVLResult_Failure);
  EXPECT_EQ(TrackedObject::nbAlive, 1);
}

TEST_F(KVLCodeEnvPaths, TheTwoTablesAreSeparateNameSpaces) {
  const EnvPtr added = new KVLCodeEnv("a");
  EXPECT_EQ(env->Add(*added, "a"), KVLResult_Success);
  EXPECT_EQ(env->FindSubEnv("a"), nullptr);
  EXPECT_EQ(env->FindObject("a"), added);

  KVLCodeEnv& child = env->GetSubEnv("a");
  EXPECT_NE(&child, added.Get());
  EXPECT_EQ(env->FindObject("a"), added);
  EXPECT_EQ(env->FindSubEnv("a"), &child);

  env->GetSubEnv("c");
  EXPECT_EQ(env->FindObject("c"), nullptr);
}

TEST_F(KVLCodeEnvPaths, AnObjectLivesAsLongAsItsEnvironmentOrSomebodyElseHoldsIt) {
  TrackedPtr object = MakeObject("x");
  EnvPtr own = new KVLCodeEnv();
  own->Add(*object, "x");
  object = nullptr;
  EXPECT_EQ(TrackedObject::nbAlive, 1);
  ObjectPtr found = own->FindObject("x");
  own = nullptr;
  EXPECT_EQ(TrackedObject::nbAlive, 1);
  EXPECT_EQ(found->GetName(), "x");
  found = nullptr;
  EXPECT_EQ(TrackedObject::nbAlive, 0);
}

TEST_F(KVLCodeEnvPaths, AChildOutlivesItsParentWhileSomebodyHoldsIt) {
  EnvPtr own = new KVLCodeEnv();
  own->Add(*MakeObject("x"), "a/b/x");
  const EnvPtr held = own->FindSubEnv("a/b");
  own = nullptr;
  EXPECT_NE(held->FindObject("x"), nullptr);
}

TEST_F(KVLCodeEnvPaths, TheArgumentMayBePartOfTheObjectThatGoes) {
  KVLCodeObject* object = new TrackedObject("a name that is longer than any short text");
  env->Add(*object, object->GetName());
  EXPECT_EQ(env->Remove(object->GetName()), KVLResult_Success);
  EXPECT_EQ(TrackedObject::nbAlive, 0);

  object = new TrackedObject("a name that is longer than any short text");
  env->Add(*object, "");
  EXPECT_EQ(env->Remove(*object, object->GetName()), KVLResult_Success);
  EXPECT_EQ(TrackedObject::nbAlive, 0);
}

TEST_F(KVLCodeEnvPaths, LongNamesDifferInTheirLastByte) {
  const MRBUnicodeString stem(std::string(5000, 'n').c_str());
  const TrackedPtr one = MakeObject("1");
  const TrackedPtr two = MakeObject("2");
  EXPECT_EQ(env->Add(*one, stem + "/" + stem + "1"), KVLResult_Success);
  EXPECT_EQ(env->Add(*two, stem + "/" + stem + "2"), KVLResult_Success);
  EXPECT_EQ(env->FindObject(stem + "/" + stem + "1"), one);
  EXPECT_EQ(env->FindObject(stem + "/" + stem + "2"), two);
  EXPECT_EQ(env->FindObject(stem + "/" + stem), nullptr);
}

class KVLCodeEnvDuplicates : public RegistryCase {
 protected:
  // Registers `object` for good, as from `location`.
  void Locate(KVLCodeObject& object, const KVLSourceLocation& location) {
    const EnvPtr elsewhere = new KVLCodeEnv();
    const KVLCodeObjectRegisterer registerer(*elsewhere, &object, "any", location);
  }

  const EnvPtr env = new KVLCodeEnv("root");
  const TrackedPtr first = MakeObject("first");
  const TrackedPtr second = MakeObject("second");
};

TEST_F(KVLCodeEnvDuplicates, LeaveTheFirstAndOneMessage) {
  EXPECT_EQ(env->Add(*first, "x"), KVLResult_Success);
  EXPECT_EQ(env->Add(*second, "x"), KVLResult_Failure);
  EXPECT_EQ(env->FindObject("x"), first);
  EXPECT_EQ(KeysOf(env->IterOnObjects()), Names({"x"}));
  ASSERT_EQ(env->Check().GetCount(), 1);
  EXPECT_EQ(env->Check()[0],
            "Tried to add two times object with name 'x'. First (effective) registration done at "
            "'<unknown>'. Second (uneffective) registration done at '<unknown>'.");
  EXPECT_EQ(first->Check().GetCount(), 0);
  EXPECT_EQ(second->Check().GetCount(), 0);
}

TEST_F(KVLCodeEnvDuplicates, NameTheFirstPlacesOfBothObjects) {
  Locate(*first, KVLSourceLocation("a/b.cpp", 12, "init"));
  Locate(*first, KVLSourceLocation("later.cpp", 1, ""));
  Locate(*second, KVLSourceLocation("", 7, ""));
  Locate(*second, KVLSourceLocation("later.cpp", 2, ""));
  env->Add(*first, "p/x");
  EXPECT_EQ(env->Add(*second, "p/x"), KVLResult_Failure);
  ASSERT_EQ(env->GetSubEnv("p").Check().GetCount(), 1);
  EXPECT_EQ(env->GetSubEnv("p").Check()[0],
            "Tried to add two times object with name 'x'. First (effective) registration done at "
            "'a/b.cpp:12<init>'. Second (uneffective) registration done at 'Line 7'.");
  EXPECT_EQ(env->Check().GetCount(), 0);
}

TEST_F(KVLCodeEnvDuplicates, APlaceThatPrintsAsEmptyIsNotAnUnknownOne) {
  Locate(*first, KVLSourceLocation());
  Locate(*first, KVLSourceLocation("later.cpp", 1, ""));
  env->Add(*first, "x");
  env->Add(*second, "x");
  ASSERT_EQ(env->Check().GetCount(), 1);
  EXPECT_EQ(env->Check()[0],
            "Tried to add two times object with name 'x'. First (effective) registration done at "
            "''. Second (uneffective) registration done at '<unknown>'.");
}

TEST_F(KVLCodeEnvDuplicates, AreTheSameObjectTwiceToo) {
  Locate(*first, KVLSourceLocation("a", 1, ""));
  EXPECT_EQ(env->Add(*first, ""), KVLResult_Success);
  EXPECT_EQ(env->Add(*first, ""), KVLResult_Failure);
  ASSERT_EQ(env->Check().GetCount(), 1);
  EXPECT_EQ(env->Check()[0],
            "Tried to add two times object with name 'first'. First (effective) registration done "
            "at 'a:1'. Second (uneffective) registration done at 'a:1'.");
}

TEST_F(KVLCodeEnvDuplicates, LeaveAMessageEachTime) {
  env->Add(*first, "x");
  for (int i = 1; i <= 3; ++i) {
    EXPECT_EQ(env->Add(*second, "x"), KVLResult_Failure);
    EXPECT_EQ(env->Check().GetCount(), i);
  }
}

TEST_F(KVLCodeEnvDuplicates, LeaveTheirMessagesInTheOrderInWhichTheyWereTried) {
  for (const char* const path : {"x", "y"}) {
    env->Add(*first, path);
    env->Add(*second, path);
  }
  ASSERT_EQ(env->Check().GetCount(), 2);
  EXPECT_NE(env->Check()[0].FindPosition("'x'", 0), 0);
  EXPECT_NE(env->Check()[1].FindPosition("'y'", 0), 0);
}

TEST_F(KVLCodeEnvDuplicates, NameTheLocalNameWhichMayBeEmpty) {
  const TrackedPtr nameless = MakeObject("");
  env->Add(*nameless, "a/b/");
  EXPECT_EQ(env->Add(*nameless, "a/b/"), KVLResult_Failure);
  ASSERT_EQ(env->GetSubEnv("a/b").Check().GetCount(), 1);
  EXPECT_EQ(env->GetSubEnv("a/b").Check()[0],
            "Tried to add two times object with name ''. First (effective) registration done at "
            "'<unknown>'. Second (uneffective) registration done at '<unknown>'.");
}

TEST_F(KVLCodeEnvDuplicates, AreNotThoseInOtherTablesOrEnvironments) {
  const EnvPtr lender = new KVLCodeEnv("lender");
  lender->Add(*first, "x");
  env->AggregateEnv(*lender);
  env->GetSubEnv("x");
  EXPECT_EQ(env->Add(*second, "x"), KVLResult_Success);
  EXPECT_EQ(env->FindObject("x"), second);
  EXPECT_EQ(env->Check().GetCount(), 0);
  EXPECT_EQ(lender->Check().GetCount(), 0);
}

TEST_F(KVLCodeEnvDuplicates, EndWithTheRemovalOfTheFirst) {
  env->Add(*first, "x");
  env->Add(*second, "x");
  EXPECT_EQ(env->Remove("x"), KVLResult_Success);
  EXPECT_EQ(env->FindObject("x"), nullptr);
  EXPECT_EQ(env->Add(*second, "x"), KVLResult_Success);
  EXPECT_EQ(env->FindObject("x"), second);
  EXPECT_EQ(env->Check().GetCount(), 1);
}

}  // namespace
