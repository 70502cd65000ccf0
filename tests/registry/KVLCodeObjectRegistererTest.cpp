#include "KVLCodeObjectRegisterer.h"

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

#include "RegistryObjects.h"

namespace {

using namespace kvltest;

static_assert(!std::is_copy_assignable_v<KVLCodeObjectRegisterer>);
static_assert(!std::is_move_assignable_v<KVLCodeObjectRegisterer>);
static_assert(std::is_copy_constructible_v<KVLCodeObjectRegisterer>);
static_assert(!std::is_polymorphic_v<KVLCodeObjectRegisterer>);

using RegistererPtr = std::unique_ptr<KVLCodeObjectRegisterer>;

class KVLCodeObjectRegisterers : public RegistryCase {
 protected:
  RegistererPtr Register(const TrackedPtr& object, const MRBUnicodeString& path,
                         const KVLSourceLocation& location = KVLSourceLocation("here", 1, "")) {
    return std::make_unique<KVLCodeObjectRegisterer>(*env, object, path, location);
  }

  const EnvPtr env = new KVLCodeEnv("root");
  const TrackedPtr a = MakeObject("a");
  const TrackedPtr b = MakeObject("b");
};

TEST_F(KVLCodeObjectRegisterers, TieAnEntryToTheirLife) {
  RegistererPtr registerer = Register(a, "x");
  EXPECT_EQ(env->FindObject("x"), a);
  registerer = nullptr;
  EXPECT_EQ(env->FindObject("x"), nullptr);
}

TEST_F(KVLCodeObjectRegisterers, RecordTheirPlaceOnTheObjectForGood) {
  RegistererPtr registerer = Register(a, "x", KVLSourceLocation("a.cpp", 3, "d"));
  ASSERT_EQ(a->GetRegistrationLocations().GetCount(), 1);
  EXPECT_TRUE(a->GetRegistrationLocations()[0] == KVLSourceLocation("a.cpp", 3, "d"));
  registerer = nullptr;
  EXPECT_EQ(a->GetRegistrationLocations().GetCount(), 1);
}

TEST_F(KVLCodeObjectRegisterers, RecordDistinctPlacesInTheOrderOfFirstRegistration) {
  const RegistererPtr registerers[] = {
      Register(a, "1", KVLSourceLocation("z", 1, "")), Register(a, "2", KVLSourceLocation()),
      Register(a, "3", KVLSourceLocation("z", 1, "d")), Register(a, "4", KVLSourceLocation()),
      Register(a, "5", KVLSourceLocation("z", 1, ""))};
  const KVLVector<KVLSourceLocation>& locations = a->GetRegistrationLocations();
  ASSERT_EQ(locations.GetCount(), 3);
  EXPECT_EQ(locations[0].ToString(), "z:1");
  EXPECT_EQ(locations[1].ToString(), "");
  EXPECT_EQ(locations[2].ToString(), "z:1<d>");
}

TEST_F(KVLCodeObjectRegisterers, TakeAPlaceThatIsTheObjectsOwn) {
  const RegistererPtr first = Register(a, "x", KVLSourceLocation("a long enough path.cpp", 1, ""));
  const RegistererPtr second = Register(a, "y", a->GetRegistrationLocations()[0]);
  const RegistererPtr third = Register(b, "z", a->GetRegistrationLocations()[0]);
  EXPECT_EQ(a->GetRegistrationLocations().GetCount(), 1);
  EXPECT_EQ(b->GetRegistrationLocations()[0].ToString(), "a long enough path.cpp:1");
}

TEST_F(KVLCodeObjectRegisterers, ThatAreRefusedLeaveTheFirstTheirPlaceAndAMessage) {
  RegistererPtr first = Register(a, "x", KVLSourceLocation("a.cpp", 1, ""));
  RegistererPtr second = Register(b, "x", KVLSourceLocation("b.cpp", 2, "again"));
  EXPECT_EQ(env->FindObject("x"), a);
  ASSERT_EQ(b->GetRegistrationLocations().GetCount(), 1);
  EXPECT_EQ(b->GetRegistrationLocations()[0].ToString(), "b.cpp:2<again>");
  ASSERT_EQ(env->Check().GetCount(), 1);
  EXPECT_EQ(env->Check()[0],
            "Tried to add two times object with name 'x'. First (effective) registration done at "
            "'a.cpp:1'. Second (uneffective) registration done at 'b.cpp:2<again>'.");
  second = nullptr;
  EXPECT_EQ(env->FindObject("x"), a);
  first = nullptr;
  EXPECT_EQ(env->FindObject("x"), nullptr);
}

TEST_F(KVLCodeObjectRegisterers, ThatAreRefusedHoldNothing) {
  const RegistererPtr first = Register(a, "x");
  const RegistererPtr refused = Register(MakeObject("c"), "x");
  EXPECT_EQ(TrackedObject::nbAlive, 2);
  EXPECT_EQ(env->Remove("x"), KVLResult_Success);
  EXPECT_EQ(env->FindObject("x"), nullptr);
}

TEST_F(KVLCodeObjectRegisterers, ThatWereRefusedDoNotWithdrawALaterRegistrationOfTheirObject) {
  RegistererPtr first = Register(a, "x");
  RegistererPtr refused = Register(b, "x");
  first = nullptr;
  EXPECT_EQ(env->Add(*b, "x"), KVLResult_Success);
  refused = nullptr;
  EXPECT_EQ(env->FindObject("x"), b);
}

TEST_F(KVLCodeObjectRegisterers, OfTheSameObjectTwiceUnderOneNameNameItsFirstPlaceTwice) {
  RegistererPtr first = Register(a, "x", KVLSourceLocation("a.cpp", 1, ""));
  RegistererPtr second = Register(a, "x", KVLSourceLocation("a.cpp", 2, ""));
  EXPECT_EQ(a->GetRegistrationLocations().GetCount(), 2);
  ASSERT_EQ(env->Check().GetCount(), 1);
  EXPECT_EQ(env->Check()[0],
            "Tried to add two times object with name 'x'. First (effective) registration done at "
            "'a.cpp:1'. Second (uneffective) registration done at 'a.cpp:1'.");
  second = nullptr;
  EXPECT_EQ(env->FindObject("x"), a);
  first = nullptr;
  EXPECT_EQ(env->FindObject("x"), nullptr);
}

TEST_F(KVLCodeObjectRegisterers, WithAnEmptyPlaceGiveAMessageWithAnEmptyPlace) {
  const RegistererPtr first = Register(a, "x", KVLSourceLocation());
  const RegistererPtr second = Register(b, "x", KVLSourceLocation());
  ASSERT_EQ(env->Check().GetCount(), 1);
  EXPECT_EQ(env->Check()[0],
            "Tried to add two times object with name 'x'. First (effective) registration done at "
            "''. Second (uneffective) registration done at ''.");
}

TEST_F(KVLCodeObjectRegisterers, WithoutAnObjectDoNothing) {
  {
    const KVLCodeObjectRegisterer registerer(*env, ObjectPtr(), "p/x", KVLSourceLocation());
    const KVLCodeObjectRegisterer copy(registerer);
    EXPECT_EQ(KeysOf(env->IterOnSubEnvs()), Names());
  }
  EXPECT_EQ(KeysOf(env->IterOnSubEnvs()), Names());
  EXPECT_EQ(env->Check().GetCount(), 0);
}

TEST_F(KVLCodeObjectRegisterers, CreateTheEnvironmentsOfTheirPathAndLeaveThemInPlace) {
  RegistererPtr registerer = Register(a, "p/q/x");
  EXPECT_EQ(env->FindObject("p/q/x"), a);
  registerer = nullptr;
  EXPECT_EQ(env->FindObject("p/q/x"), nullptr);
  EXPECT_EQ(KeysOf(env->IterOnSubEnvs()), Names({"p"}));
  EXPECT_EQ(KeysOf(env->GetSubEnv("p").IterOnSubEnvs()), Names({"q"}));
}

TEST_F(KVLCodeObjectRegisterers, WithAPathThatNamesNoObjectUseItsOwnName) {
  RegistererPtr here = Register(a, "");
  RegistererPtr below = Register(b, "p/");
  EXPECT_EQ(env->FindObject("a"), a);
  EXPECT_EQ(env->FindObject("p/b"), b);
  here = nullptr;
  below = nullptr;
  EXPECT_EQ(env->FindObject("a"), nullptr);
  EXPECT_EQ(env->FindObject("p/b"), nullptr);
}

TEST_F(KVLCodeObjectRegisterers, NeverWithdrawSomebodyElsesObject) {
  RegistererPtr registerer = Register(a, "x");
  EXPECT_EQ(env->Remove("x"), KVLResult_Success);
  EXPECT_EQ(env->Add(*b, "x"), KVLResult_Success);
  registerer = nullptr;
  EXPECT_EQ(env->FindObject("x"), b);
}

TEST_F(KVLCodeObjectRegisterers, MayDieAfterTheirEntryIsGone) {
  RegistererPtr registerer = Register(a, "x");
  EXPECT_EQ(env->Remove("x"), KVLResult_Success);
  registerer = nullptr;
  EXPECT_EQ(env->FindObject("x"), nullptr);
}

TEST_F(KVLCodeObjectRegisterers, KeepTheirObjectAlive) {
  RegistererPtr registerer = Register(MakeObject("c"), "x");
  EXPECT_EQ(env->Remove("x"), KVLResult_Success);
  EXPECT_EQ(TrackedObject::nbAlive, 3);
  registerer = nullptr;
  EXPECT_EQ(TrackedObject::nbAlive, 2);
}

TEST_F(KVLCodeObjectRegisterers, HaveCopiesThatKeepTheirObjectAliveToo) {
  RegistererPtr original = Register(MakeObject("c"), "x");
  RegistererPtr copy = std::make_unique<KVLCodeObjectRegisterer>(*original);
  original = nullptr;
  EXPECT_EQ(env->FindObject("x"), nullptr);
  EXPECT_EQ(TrackedObject::nbAlive, 3);
  copy = nullptr;
  EXPECT_EQ(TrackedObject::nbAlive, 2);
}

TEST_F(KVLCodeObjectRegisterers, AreEndedByTheFirstCopyThatDies) {
  RegistererPtr original = Register(a, "x");
  RegistererPtr copy = std::make_unique<KVLCodeObjectRegisterer>(*original);
  RegistererPtr third = std::make_unique<KVLCodeObjectRegisterer>(*copy);
  EXPECT_EQ(env->FindObject("x"), a);
  EXPECT_EQ(env->Check().GetCount(), 0);
  EXPECT_EQ(a->GetRegistrationLocations().GetCount(), 1);
  copy = nullptr;
  EXPECT_EQ(env->FindObject("x"), nullptr);
  EXPECT_EQ(env->Add(*b, "x"), KVLResult_Success);
  original = nullptr;
  third = nullptr;
  EXPECT_EQ(env->FindObject("x"), b);
}

TEST_F(KVLCodeObjectRegisterers, ACopyOfWhichDiesWithdrawsTheObjectFromWhereItWasPutBack) {
  RegistererPtr original = Register(a, "x");
  RegistererPtr copy = std::make_unique<KVLCodeObjectRegisterer>(*original);
  original = nullptr;
  EXPECT_EQ(env->Add(*a, "x"), KVLResult_Success);
  copy = nullptr;
  EXPECT_EQ(env->FindObject("x"), nullptr);
}

TEST_F(KVLCodeObjectRegisterers, OfARefusedOneHaveCopiesThatWithdrawNothing) {
  const RegistererPtr first = Register(a, "x");
  RegistererPtr refused = Register(b, "x");
  RegistererPtr copy = std::make_unique<KVLCodeObjectRegisterer>(*refused);
  refused = nullptr;
  copy = nullptr;
  EXPECT_EQ(env->FindObject("x"), a);
}

TEST_F(KVLCodeObjectRegisterers, InTheDefaultEnvironmentAndItsRootsPublishAndWithdraw) {
  KVLCodeEnv& root = KVLCodeEnv::GetDefault();
  {
    const KVLCodeObjectRegisterer object(root, ObjectPtr(a), "registerers/a", KVLSourceLocation());
    const KVLCodeObjectRegisterer type(KVLCodeEnv::GetDefaultTypeRoot(), ObjectPtr(b), "b",
                                       KVLSourceLocation());
    EXPECT_EQ(root.FindObject("registerers/a"), a);
    EXPECT_EQ(root.FindObject("_types/b"), b);
  }
  EXPECT_EQ(root.FindObject("registerers/a"), nullptr);
  EXPECT_EQ(root.FindObject("_types/b"), nullptr);
}

TEST(KVLCodeEnvDefault, IsOneEnvironmentWithoutAName) {
  KVLCodeEnv& root = KVLCodeEnv::GetDefault();
  EXPECT_EQ(&KVLCodeEnv::GetDefault(), &root);
  EXPECT_EQ(root.GetName(), "");
}

TEST(KVLCodeEnvDefault, HasThreeRootsThatAreItsChildren) {
  KVLCodeEnv& root = KVLCodeEnv::GetDefault();
  const KVLCodeEnv& type = KVLCodeEnv::GetDefaultTypeRoot();
  EXPECT_EQ(root.FindSubEnv("_types"), &type);
  EXPECT_EQ(&KVLCodeEnv::GetDefaultTypeRoot(), &type);
  EXPECT_EQ(type.GetName(), "_types");
  const KVLCodeEnv& members = KVLCodeEnv::GetDefaultMembersRoot();
  EXPECT_EQ(root.FindSubEnv("_members"), &members);
  EXPECT_EQ(&KVLCodeEnv::GetDefaultMembersRoot(), &members);
  EXPECT_EQ(members.GetName(), "_members");
  const KVLCodeEnv& conversions = KVLCodeEnv::GetDefaultConversionsRoot();
  EXPECT_EQ(root.FindSubEnv("_conversions"), &conversions);
  EXPECT_EQ(&KVLCodeEnv::GetDefaultConversionsRoot(), &conversions);
  EXPECT_EQ(conversions.GetName(), "_conversions");
  EXPECT_EQ(&root.GetSubEnv("_types"), &type);
}

}  // namespace
