#include <gtest/gtest.h>

#include <stdexcept>

#include "KVLCodeContext.h"
#include "support/TestObjects.h"

namespace {

using kvltest::ContentOf;
using kvltest::FunctionPtr;
using kvltest::In;
using kvltest::InOut;
using kvltest::MakeFunction;
using kvltest::MakeText;
using kvltest::NumberValue;
using kvltest::Out;
using kvltest::TestCaller;
using kvltest::TestFunction;
using kvltest::TextPtr;
using kvltest::TextValue;
using kvltest::TypePtr;
using kvltest::Values;
using kvltest::World;

// A conversion from "T" that returns a "U".
FunctionPtr Returning(const char* text = "converted") {
  return MakeFunction("U", "U", {{"from", "T"}}, [text](Values&) { return MakeText("U", text); });
}

// A conversion from "T" that gives a "U" back through its second parameter and returns `returned`.
FunctionPtr Storing(const KVLSmartPtr<KVLCodeValue>& returned) {
  return MakeFunction("U", "long", {{"from", "T"}, {"to", "U", Out}}, [returned](Values& args) {
    static_cast<TextValue&>(*args[1]).content = "stored";
    return returned;
  });
}

KVLSmartPtr<KVLCodeValue> Number(std::int32_t number) {
  return KVLSmartPtr<KVLCodeValue>(new NumberValue("", number));
}

int CountSubEnvs(const KVLCodeEnv& env) {
  int count = 0;
  for (const auto& entry : env.IterOnSubEnvs())
    count += 1 + CountSubEnvs(*entry.value);
  return count;
}

// Equal types.

TEST(KVLCodeContextConvert, EqualTypeNamesAreAssignedWithoutALookup) {
  World world;
  const FunctionPtr conversion = MakeFunction("T", "T", {{"from", "T"}});
  world.conversions->Add(*conversion, "T/T");
  const TextPtr to = MakeText("T", "old");
  EXPECT_EQ(world.context.Convert(*MakeText("T", "new"), *to), KVLResult_Success);
  EXPECT_EQ(to->content, "new");
  EXPECT_EQ(to->nbAssigns, 1);
  EXPECT_EQ(conversion->nbCallersMade, 0);
}

TEST(KVLCodeContextConvert, EqualTypeNamesGiveTheCodeOfTheAssignmentAsItIs) {
  const World world;
  for (const long code : {5L, -5L}) {
    const TextPtr to = MakeText("T");
    to->writeResult = code;
    EXPECT_EQ(world.context.Convert(*MakeText("T"), *to), code);
  }
  EXPECT_EQ(CountSubEnvs(*world.conversions), 0);
}

TEST(KVLCodeContextConvert, EqualEmptyTypeNamesAreAssigned) {
  const World world;
  const TextPtr to = MakeText("", "old");
  EXPECT_EQ(world.context.Convert(*MakeText("", "new"), *to), KVLResult_Success);
  EXPECT_EQ(to->content, "new");
}

TEST(KVLCodeContextConvert, TypeNamesAreComparedExactly) {
  const World world;
  const TextPtr to = MakeText("t", "kept");
  EXPECT_EQ(world.context.Convert(*MakeText("T", "new"), *to), KVLResult_Failure);
  EXPECT_EQ(to->content, "kept");
}

// The search.

TEST(KVLCodeContextConvertSearch, AnEmptySourceTypeNameFailsAtOnce) {
  World world;
  world.conversions->Add(*MakeFunction("U", "U", {{"from", ""}}), "/U");
  const TextPtr to = MakeText("U", "kept");
  EXPECT_EQ(world.context.Convert(*MakeText(""), *to), KVLResult_Failure);
  EXPECT_EQ(to->nbAssigns, 0);
  EXPECT_EQ(CountSubEnvs(*world.conversions), 0);
}

TEST(KVLCodeContextConvertSearch, AnEmptyTargetTypeNameIsLookedForAsAnyOther) {
  World world;
  const TextPtr to = MakeText("", "kept");
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *to), KVLResult_Failure);
  EXPECT_EQ(to->content, "kept");
  world.conversions->Add(*MakeFunction("", "", {{"from", "T"}}), "T/");
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *to), KVLResult_Success);
  EXPECT_EQ(to->content, "returned");
}

TEST(KVLCodeContextConvertSearch, AnUnregisteredSourceIsLookedUpOnceInEachEnvironment) {
  const World world;
  // A lookup leaves the environments of its path behind, which shows what was looked up.
  const TextPtr to = MakeText("U", "kept");
  EXPECT_EQ(world.context.Convert(*MakeText("lib/T"), *to), KVLResult_Failure);
  EXPECT_EQ(to->content, "kept");
  EXPECT_FALSE(world.conversions->FindSubEnv("lib/T").IsNull());
  EXPECT_EQ(CountSubEnvs(*world.conversions), 2);
  EXPECT_FALSE(world.types->FindSubEnv("lib").IsNull());
  EXPECT_EQ(CountSubEnvs(*world.types), 1);
}

TEST(KVLCodeContextConvertSearch, FindsTheFunctionUnderSourceSlashTarget) {
  World world;
  world.conversions->Add(*Returning(), "T/U");
  const TextPtr to = MakeText("U");
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *to), KVLResult_Success);
  EXPECT_EQ(to->content, "converted");
}

TEST(KVLCodeContextConvertSearch, TheTypesNeedNotBeRegistered) {
  World world;
  world.conversions->Add(*Returning(), "T/U");
  EXPECT_EQ(CountSubEnvs(*world.types), 0);
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *MakeText("U")), KVLResult_Success);
}

TEST(KVLCodeContextConvertSearch, ClimbsTheParentsOfTheSource) {
  World world;
  world.RegisterType("T");
  world.RegisterType("B", "T");
  world.RegisterType("C", "B");
  world.conversions->Add(*Returning(), "T/U");
  const TextPtr to = MakeText("U");
  EXPECT_EQ(world.context.Convert(*MakeText("C"), *to), KVLResult_Success);
  EXPECT_EQ(to->content, "converted");
}

TEST(KVLCodeContextConvertSearch, TheFunctionOfAnAncestorReceivesTheDescendantItself) {
  World world;
  world.RegisterType("T");
  world.RegisterType("B", "T");
  MRBUnicodeString assignedTypeName;
  class Receiver : public TextValue {
   public:
    Receiver(const KVLCodeFunction::Param& param, MRBUnicodeString& seen)
        : TextValue(param.name, param.typeName), sourceTypeName(seen) {}
    long AssignFrom(const KVLCodeContext& context, const KVLCodeValue& source) override {
      sourceTypeName = source.GetTypeName();
      return TextValue::AssignFrom(context, source);
    }

   private:
    MRBUnicodeString& sourceTypeName;
  };
  const FunctionPtr conversion = MakeFunction(
      "U", "U", {{"from", "T"}}, [](Values& args) { return MakeText("U", ContentOf(args[0])); });
  conversion->makeArg = [&assignedTypeName](const KVLCodeFunction::Param& param) {
    return KVLSmartPtr<KVLCodeValue>(new Receiver(param, assignedTypeName));
  };
  world.conversions->Add(*conversion, "T/U");
  const TextPtr to = MakeText("U");
  EXPECT_EQ(world.context.Convert(*MakeText("B", "b"), *to), KVLResult_Success);
  EXPECT_EQ(assignedTypeName, "B");
  EXPECT_EQ(to->content, "b");
}

TEST(KVLCodeContextConvertSearch, TheNearestFunctionWins) {
  World world;
  world.RegisterType("T");
  world.RegisterType("B", "T");
  world.conversions->Add(*Returning("far"), "T/U");
  const FunctionPtr near =
      MakeFunction("U", "U", {{"from", "B"}}, [](Values&) { return MakeText("U", "near"); });
  world.conversions->Add(*near, "B/U");
  const TextPtr to = MakeText("U");
  EXPECT_EQ(world.context.Convert(*MakeText("B"), *to), KVLResult_Success);
  EXPECT_EQ(to->content, "near");
}

TEST(KVLCodeContextConvertSearch, AParentThatIsNotRegisteredIsStillTriedAsAKey) {
  World world;
  world.RegisterType("B", "T");
  world.conversions->Add(*Returning(), "T/U");
  const TextPtr to = MakeText("U");
  EXPECT_EQ(world.context.Convert(*MakeText("B"), *to), KVLResult_Success);
  EXPECT_EQ(to->content, "converted");
}

TEST(KVLCodeContextConvertSearch, AParentThatIsNotRegisteredEndsTheClimb) {
  World world;
  world.RegisterType("B", "Gone");
  EXPECT_EQ(world.context.Convert(*MakeText("B"), *MakeText("U")), KVLResult_Failure);
  EXPECT_FALSE(world.conversions->FindSubEnv("Gone").IsNull());
  EXPECT_EQ(CountSubEnvs(*world.conversions), 2);
}

TEST(KVLCodeContextConvertSearch, TheParentsOfTheTargetAreNeverTried) {
  World world;
  world.RegisterType("T");
  world.RegisterType("U");
  world.RegisterType("V", "U");
  const FunctionPtr conversion = Returning();
  world.conversions->Add(*conversion, "T/U");
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *MakeText("V")), KVLResult_Failure);
  EXPECT_EQ(conversion->nbCallersMade, 0);
}

TEST(KVLCodeContextConvertSearch, ClimbsPastWhatIsNoFunction) {
  World world;
  world.RegisterType("T");
  world.RegisterType("B", "T");
  world.conversions->Add(*MakeText("U"), "B/U");
  world.conversions->Add(*Returning(), "T/U");
  EXPECT_EQ(world.context.Convert(*MakeText("B"), *MakeText("U")), KVLResult_Success);
}

TEST(KVLCodeContextConvertSearch, ALoopOfParentsEndsAtAFunction) {
  World world;
  world.RegisterType("A", "T");
  world.RegisterType("T", "A");
  world.conversions->Add(*Returning(), "T/U");
  // To set the argument, which is a "T", takes a conversion as well.
  world.conversions->Add(*MakeFunction("T", "T", {{"from", "A"}}), "A/T");
  const TextPtr to = MakeText("U");
  EXPECT_EQ(world.context.Convert(*MakeText("A"), *to), KVLResult_Success);
  EXPECT_EQ(to->content, "converted");
}

TEST(KVLCodeContextConvertSearch, ConversionsDoNotChain) {
  World world;
  world.RegisterType("T");
  world.RegisterType("U");
  world.RegisterType("V");
  world.conversions->Add(*Returning(), "T/U");
  world.conversions->Add(*MakeFunction("V", "V", {{"from", "U"}}), "U/V");
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *MakeText("V")), KVLResult_Failure);
}

TEST(KVLCodeContextConvertSearch, WithoutACallerItFails) {
  World world;
  const FunctionPtr conversion = Returning();
  conversion->makesCallers = false;
  world.conversions->Add(*conversion, "T/U");
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *MakeText("U")), KVLResult_Failure);
  EXPECT_EQ(conversion->nbCallersMade, 1);
}

// The function returns the target.

TEST(KVLCodeContextConvertReturning, AssignsWhatTheFunctionReturns) {
  World world;
  const FunctionPtr conversion = MakeFunction("U", "U", {{"from", "T"}}, [](Values& args) {
    return MakeText("U", "from " + ContentOf(args[0]));
  });
  world.conversions->Add(*conversion, "T/U");
  const TextPtr to = MakeText("U");
  EXPECT_EQ(world.context.Convert(*MakeText("T", "x"), *to), KVLResult_Success);
  EXPECT_EQ(to->content, "from x");
  EXPECT_EQ(to->nbAssigns, 1);
  EXPECT_EQ(conversion->nbCalls, 1);
}

TEST(KVLCodeContextConvertReturning, AParameterThatIsOutputAsWellServes) {
  World world;
  world.conversions->Add(*MakeFunction("U", "U", {{"from", "T", InOut}}), "T/U");
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *MakeText("U")), KVLResult_Success);
}

TEST(KVLCodeContextConvertReturning, ASourceThatCannotBeSetGivesItsCodeAndNoCall) {
  World world;
  const FunctionPtr conversion = Returning();
  world.conversions->Add(*conversion, "T/U");
  const TextPtr from = MakeText("T");
  from->readResult = -21;
  const TextPtr to = MakeText("U", "kept");
  EXPECT_EQ(world.context.Convert(*from, *to), -21);
  EXPECT_EQ(conversion->nbCalls, 0);
  EXPECT_EQ(to->nbAssigns, 0);
}

TEST(KVLCodeContextConvertReturning, APositiveCodeOfTheSourceDoesNotStop) {
  World world;
  const FunctionPtr conversion = Returning();
  conversion->makeArg = [](const KVLCodeFunction::Param& param) {
    const TextPtr arg = MakeText(param.typeName);
    arg->writeResult = 2;
    return arg;
  };
  world.conversions->Add(*conversion, "T/U");
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *MakeText("U")), KVLResult_Success);
}

TEST(KVLCodeContextConvertReturning, ACallerWithoutTheArgumentFails) {
  World world;
  const FunctionPtr conversion = Returning();
  conversion->nbArgs = 0;
  world.conversions->Add(*conversion, "T/U");
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *MakeText("U")), KVLResult_Failure);
  EXPECT_EQ(conversion->nbCalls, 0);
}

TEST(KVLCodeContextConvertReturning, AFunctionThatReturnsNothingFails) {
  World world;
  const FunctionPtr conversion =
      MakeFunction("U", "U", {{"from", "T"}}, [](Values&) { return nullptr; });
  world.conversions->Add(*conversion, "T/U");
  const TextPtr to = MakeText("U", "kept");
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *to), KVLResult_Failure);
  EXPECT_EQ(conversion->nbCalls, 1);
  EXPECT_EQ(to->nbAssigns, 0);
}

TEST(KVLCodeContextConvertReturning, ANegativeCodeOfTheAssignmentIsReturnedAPositiveOneIsSuccess) {
  World world;
  world.conversions->Add(*Returning(), "T/U");
  const TextPtr to = MakeText("U");
  to->writeResult = -8;
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *to), -8);
  to->writeResult = 8;
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *to), KVLResult_Success);
}

TEST(KVLCodeContextConvertReturning, ANegativeLongThatIsTheResultIsNoFailure) {
  World world;
  world.conversions->Add(
      *MakeFunction("long", "long", {{"from", "T"}}, [](Values&) { return Number(-5); }), "T/long");
  const TextPtr to = MakeText("long");
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *to), KVLResult_Success);
  EXPECT_EQ(to->content, "-5");
}

TEST(KVLCodeContextConvertReturning, AReturnedValueOfAnotherTypeIsAssignedAsAnyOther) {
  World world;
  world.conversions->Add(
      *MakeFunction("U", "U", {{"from", "T"}}, [](Values&) { return MakeText("W", "w"); }), "T/U");
  const TextPtr to = MakeText("U");
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *to), KVLResult_Success);
  EXPECT_EQ(to->content, "w");
}

// The function gives the target back through its second parameter.

TEST(KVLCodeContextConvertStoring, AssignsWhatTheFunctionStored) {
  World world;
  world.conversions->Add(*Storing(Number(0)), "T/U");
  const TextPtr to = MakeText("U");
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *to), KVLResult_Success);
  EXPECT_EQ(to->content, "stored");
}

TEST(KVLCodeContextConvertStoring, ParametersThatGoBothWaysServe) {
  World world;
  world.conversions->Add(*MakeFunction("U", "", {{"from", "T", InOut}, {"to", "U", InOut}}), "T/U");
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *MakeText("U")), KVLResult_Success);
}

TEST(KVLCodeContextConvertStoring, ANegativeLongIsReturnedAfterTheAssignment) {
  World world;
  world.conversions->Add(*Storing(Number(-5)), "T/U");
  const TextPtr to = MakeText("U");
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *to), -5);
  EXPECT_EQ(to->content, "stored");
}

TEST(KVLCodeContextConvertStoring, TheLongHas32BitsAndASign) {
  World world;
  world.conversions->Add(*Storing(Number(INT32_MIN)), "T/U");
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *MakeText("U")), -2147483647L - 1);
  World other;
  other.conversions->Add(*Storing(Number(static_cast<std::int32_t>(KVLResult_Failure))), "T/U");
  EXPECT_EQ(other.context.Convert(*MakeText("T"), *MakeText("U")), KVLResult_Failure);
}

TEST(KVLCodeContextConvertStoring, ALongAboveZeroIsSuccess) {
  World world;
  world.conversions->Add(*Storing(Number(INT32_MAX)), "T/U");
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *MakeText("U")), KVLResult_Success);
}

TEST(KVLCodeContextConvertStoring, ANegativeNumberOfAnotherTypeNameIsSuccess) {
  for (const char* const typeName : {"int", "Long", "long ", ""}) {
    World world;
    world.conversions->Add(*Storing(KVLSmartPtr<KVLCodeValue>(new NumberValue("", -5, typeName))),
                           "T/U");
    EXPECT_EQ(world.context.Convert(*MakeText("T"), *MakeText("U")), KVLResult_Success);
  }
}

TEST(KVLCodeContextConvertStoring, ALongThatDesignatesNothingIsSuccess) {
  World world;
  const TextPtr returned = MakeText("long");
  returned->valued = false;
  world.conversions->Add(*Storing(returned), "T/U");
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *MakeText("U")), KVLResult_Success);
}

TEST(KVLCodeContextConvertStoring, AFunctionThatReturnsNothingFailsAndNothingIsAssigned) {
  World world;
  world.conversions->Add(*Storing(nullptr), "T/U");
  const TextPtr to = MakeText("U", "kept");
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *to), KVLResult_Failure);
  EXPECT_EQ(to->nbAssigns, 0);
}

TEST(KVLCodeContextConvertStoring, AFailedAssignmentComesBeforeTheReturnedLong) {
  World world;
  world.conversions->Add(*Storing(Number(-5)), "T/U");
  const TextPtr to = MakeText("U");
  to->writeResult = -9;
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *to), -9);
  to->writeResult = 9;
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *to), -5);
}

TEST(KVLCodeContextConvertStoring, APositiveCodeOfTheAssignmentIsSuccess) {
  World world;
  world.conversions->Add(*Storing(Number(0)), "T/U");
  const TextPtr to = MakeText("U");
  to->writeResult = 9;
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *to), KVLResult_Success);
}

TEST(KVLCodeContextConvertStoring, ASourceThatCannotBeSetGivesItsCodeAndNoCall) {
  World world;
  const FunctionPtr conversion = Storing(Number(0));
  world.conversions->Add(*conversion, "T/U");
  const TextPtr from = MakeText("T");
  from->readResult = -21;
  EXPECT_EQ(world.context.Convert(*from, *MakeText("U")), -21);
  EXPECT_EQ(conversion->nbCalls, 0);
}

TEST(KVLCodeContextConvertStoring, ACallerWithoutTheSecondArgumentFails) {
  World world;
  const FunctionPtr conversion = MakeFunction("U", "long", {{"from", "T"}, {"to", "U", Out}},
                                              [](Values&) { return Number(0); });
  conversion->nbArgs = 1;
  world.conversions->Add(*conversion, "T/U");
  const TextPtr to = MakeText("U", "kept");
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *to), KVLResult_Failure);
  EXPECT_EQ(conversion->nbCalls, 1);
  EXPECT_EQ(to->nbAssigns, 0);
}

// Functions of any other form.

TEST(KVLCodeContextConvertForm, AnythingElseFailsWithoutACall) {
  const FunctionPtr functions[] = {
      MakeFunction("none", "U", {}),
      MakeFunction("returns another type", "W", {{"from", "T"}}),
      MakeFunction("returns nothing", "", {{"from", "T"}}),
      MakeFunction("takes another type", "U", {{"from", "W"}}),
      MakeFunction("takes output alone", "U", {{"from", "T", Out}}),
      MakeFunction("takes no direction", "U", {{"from", "T", 0}}),
      MakeFunction("stores another type", "long", {{"from", "T"}, {"to", "W", Out}}),
      MakeFunction("stores into an input", "long", {{"from", "T"}, {"to", "U", In}}),
      MakeFunction("stores from another type", "long", {{"from", "W"}, {"to", "U", Out}}),
      MakeFunction("stores from an output", "long", {{"from", "T", Out}, {"to", "U", Out}}),
      MakeFunction("stores the wrong way round", "long", {{"to", "U", Out}, {"from", "T"}}),
      MakeFunction("returns and takes two", "U", {{"from", "T"}, {"more", "T"}}),
      MakeFunction("three", "U", {{"from", "T"}, {"to", "U", Out}, {"more", "T"}}),
  };
  for (const FunctionPtr& function : functions) {
    World world;
    world.conversions->Add(*function, "T/U");
    const TextPtr to = MakeText("U", "kept");
    EXPECT_EQ(world.context.Convert(*MakeText("T"), *to), KVLResult_Failure) << function->GetName();
    EXPECT_EQ(function->nbCallersMade, 1) << function->GetName();
    EXPECT_EQ(function->nbCalls, 0) << function->GetName();
    EXPECT_EQ(to->nbAssigns, 0) << function->GetName();
  }
}

TEST(KVLCodeContextConvertForm, TheParameterMustBearTheTypeAtWhichTheSearchStopped) {
  World world;
  world.RegisterType("T");
  world.RegisterType("B", "T");
  const FunctionPtr conversion = MakeFunction("U", "U", {{"from", "B"}});
  world.conversions->Add(*conversion, "T/U");
  EXPECT_EQ(world.context.Convert(*MakeText("B"), *MakeText("U")), KVLResult_Failure);
  EXPECT_EQ(conversion->nbCalls, 0);
}

TEST(KVLCodeContextConvertForm, TheFirstOfTwoParametersMustBearTheTypeAtWhichTheSearchStopped) {
  for (const char* const typeName : {"T", "B"}) {
    World world;
    world.RegisterType("T");
    world.RegisterType("B", "T");
    const FunctionPtr conversion = MakeFunction("U", "", {{"from", typeName}, {"to", "U", Out}});
    world.conversions->Add(*conversion, "T/U");
    const bool serves = MRBUnicodeString(typeName) == "T";
    EXPECT_EQ(world.context.Convert(*MakeText("B"), *MakeText("U")),
              serves ? KVLResult_Success : KVLResult_Failure);
    EXPECT_EQ(conversion->nbCalls, serves ? 1 : 0);
  }
}

TEST(KVLCodeContextConvertForm, AFunctionOfAnotherFormEndsTheClimb) {
  World world;
  world.RegisterType("T");
  world.RegisterType("B", "T");
  world.conversions->Add(*MakeFunction("U", "W", {{"from", "B"}}), "B/U");
  const FunctionPtr conversion = Returning();
  world.conversions->Add(*conversion, "T/U");
  EXPECT_EQ(world.context.Convert(*MakeText("B"), *MakeText("U")), KVLResult_Failure);
  EXPECT_EQ(conversion->nbCallersMade, 0);
}

// Lifetimes.

TEST(KVLCodeContextConvertLifetime, ValuesOnTheStackSurvive) {
  const int before = TextValue::nbAlive;
  for (const FunctionPtr& conversion : {Returning(), Storing(Number(0))}) {
    World world;
    world.conversions->Add(*conversion, "T/U");
    const TextValue from("from", "T", "x");
    TextValue to("to", "U");
    EXPECT_EQ(world.context.Convert(from, to), KVLResult_Success);
    EXPECT_EQ(from.content, "x");
    EXPECT_FALSE(to.content.IsEmpty());
    EXPECT_EQ(TextValue::nbAlive, before + 2);
  }
  EXPECT_EQ(TextValue::nbAlive, before);
}

TEST(KVLCodeContextConvertLifetime, ValuesWithoutAnyReferenceSurvive) {
  World world;
  world.conversions->Add(*Returning(), "T/U");
  TextValue* const from = new TextValue("from", "T");
  TextValue* const to = new TextValue("to", "U");
  EXPECT_EQ(world.context.Convert(*from, *to), KVLResult_Success);
  EXPECT_EQ(to->content, "converted");
  delete from;
  delete to;
}

TEST(KVLCodeContextConvertLifetime, TheCallerIsGoneAfterwards) {
  World world;
  world.conversions->Add(*Returning(), "T/U");
  const int before = TestCaller::nbAlive;
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *MakeText("U")), KVLResult_Success);
  EXPECT_EQ(TestCaller::nbAlive, before);
}

TEST(KVLCodeContextConvertLifetime, AConversionMayWithdrawItselfWhileItRuns) {
  World world;
  const int before = TestFunction::nbAlive;
  {
    const FunctionPtr conversion = MakeFunction("U", "U", {{"from", "T"}}, [&world](Values&) {
      world.conversions->Remove("T/U");
      return MakeText("U", "last");
    });
    world.conversions->Add(*conversion, "T/U");
  }
  EXPECT_EQ(TestFunction::nbAlive, before + 1);
  const TextPtr to = MakeText("U");
  EXPECT_EQ(world.context.Convert(*MakeText("T"), *to), KVLResult_Success);
  EXPECT_EQ(to->content, "last");
  EXPECT_EQ(TestFunction::nbAlive, before);
}

TEST(KVLCodeContextConvertLifetime, ExceptionsOfTheFunctionPassAndLeaveNothingBehind) {
  World world;
  const FunctionPtr conversion =
      MakeFunction("U", "U", {{"from", "T"}},
                   [](Values&) -> KVLSmartPtr<KVLCodeValue> { throw std::logic_error("body"); });
  world.conversions->Add(*conversion, "T/U");
  const int before = TestCaller::nbAlive;
  const TextPtr to = MakeText("U", "kept");
  EXPECT_THROW(world.context.Convert(*MakeText("T"), *to), std::logic_error);
  EXPECT_THROW(to->AssignFrom(world.context, *MakeText("T")), std::logic_error);
  EXPECT_EQ(to->content, "kept");
  EXPECT_EQ(TestCaller::nbAlive, before);
}

TEST(KVLCodeContextConvertLifetime, AConversionMayConvertAgain) {
  World world;
  const FunctionPtr inner = MakeFunction("W", "W", {{"from", "T"}}, [](Values& args) {
    return MakeText("W", ContentOf(args[0]) + " inner");
  });
  world.conversions->Add(*inner, "T/W");
  const FunctionPtr outer = MakeFunction("U", "U", {{"from", "T"}}, [&world](Values& args) {
    const TextPtr between = MakeText("W");
    world.context.Convert(*args[0], *between);
    return MakeText("U", between->content + " outer");
  });
  world.conversions->Add(*outer, "T/U");
  const TextPtr to = MakeText("U");
  EXPECT_EQ(world.context.Convert(*MakeText("T", "x"), *to), KVLResult_Success);
  EXPECT_EQ(to->content, "x inner outer");
}

}  // namespace
