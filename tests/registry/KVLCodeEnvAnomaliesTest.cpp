#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

#include "KVLCodeEnv.h"
#include "RegistryObjects.h"
#include "support/TestObjects.h"

namespace {

using namespace kvltest;

static_assert(std::is_same_v<decltype(KVLCodeEnv::Anomaly::object), KVLSmartPtr<KVLCodeObject>>);
static_assert(std::is_same_v<decltype(KVLCodeEnv::Anomaly::message), MRBUnicodeString>);
static_assert(std::is_same_v<decltype(KVLCodeEnv::Anomaly::path), MRBUnicodeString>);

/// An anomaly as expected: "path: message".
using Report = std::vector<std::string>;

class KVLCodeEnvAnomalies : public RegistryCase {
 protected:
  static Report ReportOn(const KVLCodeEnv& checked) {
    Report report;
    for (const KVLCodeEnv::Anomaly& anomaly : checked.ComputeAnomalies())
      report.push_back((anomaly.path + ": " + anomaly.message).ConvertToChar());
    return report;
  }
  Report GetReport() const { return ReportOn(*env); }

  TrackedPtr AddNoted(const MRBUnicodeString& path, const MRBUnicodeString& message) {
    const TrackedPtr object = MakeObject("own");
    object->Note(message);
    EXPECT_EQ(env->Add(*object, path), KVLResult_Success);
    return object;
  }
  // Gives the environment at `path` a message of its own.
  void NoteAt(const MRBUnicodeString& path) {
    const MRBUnicodeString inside = path + "/twice";
    env->Add(*MakeObject("1"), inside);
    EXPECT_EQ(env->Add(*MakeObject("2"), inside), KVLResult_Failure);
  }

  static constexpr const char* Twice =
      "Tried to add two times object with name 'twice'. First (effective) registration done at "
      "'<unknown>'. Second (uneffective) registration done at '<unknown>'.";

  const TrackedEnvPtr env = new TrackedEnv("checked");
};

TEST_F(KVLCodeEnvAnomalies, AreNoneInAnEmptyEnvironment) {
  EXPECT_EQ(env->ComputeAnomalies().GetCount(), 0);
}

TEST_F(KVLCodeEnvAnomalies, AreNoneWhereAllIsWell) {
  env->Add(*MakeObject("x"), "a/b/x");
  env->Add(*KVLSmartPtr<TestType>(new TestType("Point")), "_types/");
  env->Add(*MakeFunction("Move", "", {{"p", "Point"}}), "_members/Point/");
  env->Add(*MakeFunction("f", "", {}), "_conversions/int/long");
  env->Add(*MakeObject("o"), "_operators/any/thing");
  EXPECT_EQ(GetReport(), Report());
}

TEST_F(KVLCodeEnvAnomalies, BeginWithTheMessagesOfTheEnvironmentAtAnEmptyPath) {
  env->Note("first");
  env->Note("second");
  const KVLVector<KVLCodeEnv::Anomaly> anomalies = env->ComputeAnomalies();
  ASSERT_EQ(anomalies.GetCount(), 2);
  EXPECT_EQ(anomalies[0].object, env);
  EXPECT_EQ(anomalies[0].message, "first");
  EXPECT_EQ(anomalies[0].path, "");
  EXPECT_EQ(anomalies[1].message, "second");
  EXPECT_EQ(anomalies[1].path, "");
}

TEST_F(KVLCodeEnvAnomalies, CarryTheObjectThatTheMessageIsOf) {
  const TrackedPtr object = AddNoted("x", "noted");
  const KVLVector<KVLCodeEnv::Anomaly> anomalies = env->ComputeAnomalies();
  ASSERT_EQ(anomalies.GetCount(), 1);
  EXPECT_EQ(anomalies[0].object, object);
}

TEST_F(KVLCodeEnvAnomalies, HoldTheirObjects) {
  AddNoted("x", "noted");
  KVLVector<KVLCodeEnv::Anomaly> anomalies = env->ComputeAnomalies();
  env->Remove("x");
  EXPECT_EQ(TrackedObject::nbAlive, 1);
  anomalies.Resize(0);
  EXPECT_EQ(TrackedObject::nbAlive, 0);
}

TEST_F(KVLCodeEnvAnomalies, OfObjectsComeByObjectInStorageOrderUnderTheirNames) {
  AddNoted("b", "b1")->Note("b2");
  AddNoted("a", "a1");
  EXPECT_EQ(GetReport(), Report({"b: b1", "b: b2", "a: a1"}));
}

TEST_F(KVLCodeEnvAnomalies, OfASubEnvironmentComeWithItsNameInFrontAndItsOwnMessagesAtASlash) {
  NoteAt("a");
  AddNoted("a/f", "noted");
  const KVLVector<KVLCodeEnv::Anomaly> anomalies = env->ComputeAnomalies();
  EXPECT_EQ(GetReport(), Report({std::string("a/: ") + Twice, "a/f: noted"}));
  ASSERT_EQ(anomalies.GetCount(), 2);
  EXPECT_EQ(anomalies[0].object.Get(), &env->GetSubEnv("a"));
}

TEST_F(KVLCodeEnvAnomalies, OfDeeperEnvironmentsCarryEveryNameOfTheWay) {
  NoteAt("a/b");
  AddNoted("a/b/c/f", "noted");
  EXPECT_EQ(GetReport(), Report({std::string("a/b/: ") + Twice, "a/b/c/f: noted"}));
  EXPECT_EQ(ReportOn(env->GetSubEnv("a/b")), Report({std::string(": ") + Twice, "c/f: noted"}));
}

TEST_F(KVLCodeEnvAnomalies, ComeByEnvironmentThenItsObjectsThenEachSubEnvironmentInTurn) {
  AddNoted("z/2/x", "5");
  AddNoted("z/x", "3");
  AddNoted("y/x", "7");
  AddNoted("z/1/x", "6");
  AddNoted("z/y", "4");
  AddNoted("x", "2");
  env->Note("1");
  EXPECT_EQ(GetReport(),
            Report({": 1", "x: 2", "z/x: 3", "z/y: 4", "z/2/x: 5", "z/1/x: 6", "y/x: 7"}));
}

TEST_F(KVLCodeEnvAnomalies, AreNamesOfSubEnvironmentsThatBeginWithAnUnderscoreAndAreNotReserved) {
  for (const char* const name : {"_x", "_", "__types", "_Types", "_types2", "_type", "_member"}) {
    const TrackedEnvPtr own = new TrackedEnv("own");
    KVLCodeEnv& child = own->GetSubEnv(name);
    const KVLVector<KVLCodeEnv::Anomaly> anomalies = own->ComputeAnomalies();
    ASSERT_EQ(anomalies.GetCount(), 1) << name;
    EXPECT_EQ(anomalies[0].object.Get(), &child);
    EXPECT_EQ(anomalies[0].path, name);
    EXPECT_EQ(anomalies[0].message, MRBUnicodeString("Used path '") + name +
                                        "'. Only special predefined keywords can start with '_'.");
  }
}

TEST_F(KVLCodeEnvAnomalies, AreNotNamesThatHoldAnUnderscoreLaterOrThoseOfObjects) {
  env->GetSubEnv("x_");
  env->GetSubEnv("a_b");
  env->Add(*MakeObject("_x"), "");
  EXPECT_EQ(GetReport(), Report());
}

TEST_F(KVLCodeEnvAnomalies, OfABadNameComeBeforeThoseOfItsContent) {
  AddNoted("_x/f", "noted");
  NoteAt("_x/g");
  EXPECT_EQ(GetReport(),
            Report({"_x: Used path '_x'. Only special predefined keywords can start with '_'.",
                    "_x/f: noted", std::string("_x/g/: ") + Twice}));
}

TEST_F(KVLCodeEnvAnomalies, OfBadNamesBelowAreReportedAtTheirWholePath) {
  env->GetSubEnv("a/_x/_y");
  EXPECT_EQ(GetReport(),
            Report({"a/_x: Used path '_x'. Only special predefined keywords can start with '_'.",
                    "a/_x/_y: Used path '_y'. Only special predefined keywords can start with "
                    "'_'."}));
}

TEST_F(KVLCodeEnvAnomalies, OfReservedNamesBelowAreCheckedAtTheirWholePath) {
  env->Add(*MakeObject("x"), "a/_types/Int");
  env->Add(*MakeObject("x"), "a/_members/Point/Move");
  EXPECT_EQ(GetReport(),
            Report({"a/_types/Int: Object registered under '_types' is not a type.",
                    "a/_members/Point/Move: Object registered under '_members' is not a "
                    "function."}));
}

TEST_F(KVLCodeEnvAnomalies, AreObjectsUnderTypesThatAreNoTypesAndCarryNoObject) {
  env->Add(*KVLSmartPtr<TestType>(new TestType("Good")), "_types/");
  env->Add(*MakeText("int"), "_types/Int");
  env->Add(*KVLSmartPtr<KVLCodeEnv>(new KVLCodeEnv("e")), "_types/Env");
  env->Add(*MakeObject("x"), "_types/deeper/Int");
  const KVLVector<KVLCodeEnv::Anomaly> anomalies = env->ComputeAnomalies();
  EXPECT_EQ(GetReport(), Report({"_types/Int: Object registered under '_types' is not a type.",
                                 "_types/Env: Object registered under '_types' is not a type."}));
  for (const KVLCodeEnv::Anomaly& anomaly : anomalies)
    EXPECT_TRUE(anomaly.object.IsNull());
}

TEST_F(KVLCodeEnvAnomalies, AreMembersThatAreNoFunctionsAndCarryNoObject) {
  env->Add(*MakeText("int"), "_members/Point/x");
  const KVLVector<KVLCodeEnv::Anomaly> anomalies = env->ComputeAnomalies();
  ASSERT_EQ(anomalies.GetCount(), 1);
  EXPECT_TRUE(anomalies[0].object.IsNull());
  EXPECT_EQ(anomalies[0].path, "_members/Point/x");
  EXPECT_EQ(anomalies[0].message, "Object registered under '_members' is not a function.");
}

TEST_F(KVLCodeEnvAnomalies, AreMembersWhoseFirstParameterIsOfAnotherType) {
  const FunctionPtr wrong = MakeFunction("f", "", {{"p", "point"}, {"q", "Point"}});
  const FunctionPtr none = MakeFunction("f", "Point", {});
  env->Add(*wrong, "_members/Point/Wrong");
  env->Add(*none, "_members/Point/None");
  env->Add(*MakeFunction("f", "", {{"p", "Point"}}), "_members/Point/Right");
  const KVLVector<KVLCodeEnv::Anomaly> anomalies = env->ComputeAnomalies();
  EXPECT_EQ(GetReport(),
            Report({"_members/Point/Wrong: 'this' parameter of function registered as member of "
                    "'Point' is of unexpected type 'point'.",
                    "_members/Point/None: 'this' parameter of function registered as member of "
                    "'Point' is of unexpected type ''."}));
  ASSERT_EQ(anomalies.GetCount(), 2);
  EXPECT_EQ(anomalies[0].object, wrong);
  EXPECT_EQ(anomalies[1].object, none);
}

TEST_F(KVLCodeEnvAnomalies, AreNotObjectsThatLieUnderMembersTooHighOrTooDeep) {
  env->Add(*MakeObject("x"), "_members/x");
  env->Add(*MakeObject("x"), "_members/Point/deeper/x");
  EXPECT_EQ(GetReport(), Report());
}

TEST_F(KVLCodeEnvAnomalies, OfReservedEnvironmentsComeBeforeThoseThatTheirContentKeeps) {
  const FunctionPtr member = MakeFunction("f", "", {});
  member->Init("surplus");
  env->Add(*member, "_members/Point/Move");
  const Report report = GetReport();
  ASSERT_EQ(report.size(), 2u);
  EXPECT_EQ(report[0],
            "_members/Point/Move: 'this' parameter of function registered as member of 'Point' is "
            "of unexpected type ''.");
  EXPECT_EQ(report[1].substr(0, 21), "_members/Point/Move: ");
  EXPECT_EQ(report[1], "_members/Point/Move: " + std::string(member->Check()[0].ConvertToChar()));
}

TEST_F(KVLCodeEnvAnomalies, OfConversionsAndOperatorsAreOnlyThoseThatTheirContentKeeps) {
  AddNoted("_conversions/int/long", "noted");
  AddNoted("_operators/x", "noted");
  NoteAt("_conversions");
  env->GetSubEnv("_operators/_x");
  EXPECT_EQ(
      GetReport(),
      Report({std::string("_conversions/: ") + Twice, "_conversions/int/long: noted",
              "_operators/x: noted",
              "_operators/_x: Used path '_x'. Only special predefined keywords can start with "
              "'_'."}));
}

TEST_F(KVLCodeEnvAnomalies, OfAReservedEnvironmentCheckedItselfAreOnlyThoseThatItKeeps) {
  env->Add(*MakeObject("x"), "_types/Int");
  env->Add(*MakeObject("x"), "_members/Point/Move");
  EXPECT_EQ(ReportOn(env->GetSubEnv("_types")), Report());
  EXPECT_EQ(ReportOn(env->GetSubEnv("_members")), Report());
}

TEST_F(KVLCodeEnvAnomalies, ComeFromAggregatedEnvironmentsTooButNotTheirOwnMessages) {
  const TrackedEnvPtr lender = new TrackedEnv("lender");
  lender->Note("not told");
  const TrackedPtr object = MakeObject("x");
  object->Note("noted");
  lender->Add(*object, "x");
  lender->Add(*object, "a/x");
  lender->GetSubEnv("_x");
  lender->Add(*object, "_types/x");
  env->AggregateEnv(*lender);
  EXPECT_EQ(
      GetReport(),
      Report({"x: noted", "a/x: noted",
              "_x: Used path '_x'. Only special predefined keywords can start with '_'.",
              "_types/x: Object registered under '_types' is not a type.", "_types/x: noted"}));
}

TEST_F(KVLCodeEnvAnomalies, OfReservedEnvironmentsComeFromWhatThoseAggregateToo) {
  const EnvPtr lender = new KVLCodeEnv("lender");
  lender->Add(*MakeObject("x"), "Int");
  lender->Add(*MakeObject("x"), "Point/Move");
  env->GetSubEnv("_types").AggregateEnv(*lender);
  env->GetSubEnv("_members").AggregateEnv(*lender);
  EXPECT_EQ(GetReport(), Report({"_types/Int: Object registered under '_types' is not a type.",
                                 "_members/Point/Move: Object registered under '_members' is not a "
                                 "function."}));
}

TEST_F(KVLCodeEnvAnomalies, OfAnEnvironmentOnTwoWaysComeTwice) {
  const EnvPtr lender = new KVLCodeEnv("lender");
  const TrackedPtr object = MakeObject("x");
  object->Note("noted");
  lender->Add(*object, "a/x");
  env->AggregateEnv(*lender);
  env->AggregateEnv(*lender);
  EXPECT_EQ(GetReport(), Report({"a/x: noted", "a/x: noted"}));
}

TEST_F(KVLCodeEnvAnomalies, OfAnEnvironmentThatIsBeingCheckedFurtherUpAreNotToldAgain) {
  AddNoted("a/x", "noted");
  KVLCodeEnv& child = env->GetSubEnv("a");
  child.AggregateEnv(*env);  // so that `a` lies in `a` again
  EXPECT_EQ(GetReport(), Report({"a/x: noted"}));
  EXPECT_EQ(ReportOn(child), Report({"x: noted"}));
  child.UnAggregateEnv(*env);
}

TEST_F(KVLCodeEnvAnomalies, EndForAnEnvironmentThatAggregatesItself) {
  env->Note("own");
  AddNoted("x", "object");
  AddNoted("a/x", "deeper");
  env->AggregateEnv(*env);
  EXPECT_EQ(GetReport(), Report({": own", "x: object", "a/x: deeper"}));
  env->UnAggregateEnv(*env);
}

TEST_F(KVLCodeEnvAnomalies, OfAnEnvironmentThatWasAddedAsAnObjectAreItsMessagesOnly) {
  const TrackedEnvPtr added = new TrackedEnv("added");
  added->Note("noted");
  added->GetSubEnv("_x");
  env->Add(*added, "e");
  EXPECT_EQ(GetReport(), Report({"e: noted"}));
}

TEST_F(KVLCodeEnvAnomalies, MayBeOfAnObjectWithAnEmptyName) {
  const TrackedPtr nameless = MakeObject("");
  nameless->Note("noted");
  env->Add(*nameless, "");
  env->Add(*nameless, "a/");
  EXPECT_EQ(GetReport(), Report({": noted", "a/: noted"}));
}

TEST_F(KVLCodeEnvAnomalies, ComeFromWhatTheObjectAnswersNow) {
  struct Answering : KVLCodeObject {
    using KVLCodeObject::KVLCodeObject;
    KVLVector<MRBUnicodeString> Check() const override {
      KVLVector<MRBUnicodeString> answer;
      answer.Append("asked");
      return answer;
    }
  };
  env->Add(*new Answering("x"), "");
  EXPECT_EQ(GetReport(), Report({"x: asked"}));
}

}  // namespace
