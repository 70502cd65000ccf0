#include "KVLCodeFunctionCallerBinding.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "KVLCodeFunctionBinding.h"
#include "support/TestObjects.h"

namespace {

using kvltest::CallerPtr;
using kvltest::ContentOf;
using kvltest::FixedValues;
using kvltest::FunctionPtr;
using kvltest::In;
using kvltest::InOut;
using kvltest::MakeFunction;
using kvltest::MakeText;
using kvltest::Out;
using kvltest::TestCaller;
using kvltest::TextPtr;
using kvltest::TextValue;
using kvltest::Values;
using kvltest::World;

using BindingPtr = KVLSmartPtr<KVLCodeFunctionBinding>;

// Fixes the first parameter of `function` by `value`.
BindingPtr Bind(const FunctionPtr& function, const TextPtr& value) {
  return new KVLCodeFunctionBinding(*function, KVLSmartPtr<const KVLCodeValue>(value));
}

// Writes "out" to its first argument.
FunctionPtr Writer(unsigned int direction, const KVLSmartPtr<KVLCodeValue>& returned) {
  return MakeFunction("f", "T", {{"a", "T", direction}}, [returned](Values& args) {
    static_cast<TextValue&>(*args[0]).content = "out";
    return returned;
  });
}

TEST(KVLCodeFunctionCallerBinding, ExposesTheOpenArgumentsOfTheInnerCaller) {
  const World world;
  const FunctionPtr function = MakeFunction("f", "T", {{"a", "T"}, {"b", "T"}, {"c", "T"}});
  FixedValues values;
  values.Append(MakeText("T", "first"));
  values.Append(nullptr);
  values.Append(MakeText("T", "third"));
  const BindingPtr binding = new KVLCodeFunctionBinding(*function, values);
  const CallerPtr caller = binding->CreateCaller(world.context);
  KVLCodeFunctionCaller& inner = *function->lastCaller;
  ASSERT_EQ(caller->GetNbArgs(), 1);
  EXPECT_EQ(caller->GetArg(0), inner.GetArg(1));
  EXPECT_EQ(ContentOf(inner.GetArg(0)), "first");
  EXPECT_EQ(ContentOf(inner.GetArg(2)), "third");
  EXPECT_EQ(&caller->GetFunction(), binding.Get());
  EXPECT_EQ(caller->GetName(), "f");
}

TEST(KVLCodeFunctionCallerBinding, FixedValuesAreConvertedToTheArgumentsType) {
  World world;
  world.conversions->Add(*MakeFunction("T", "T", {{"from", "S"}}), "S/T");
  const FunctionPtr function = MakeFunction("f", "T", {{"a", "T"}});
  const CallerPtr caller = Bind(function, MakeText("S"))->CreateCaller(world.context);
  EXPECT_EQ(ContentOf(function->lastCaller->GetArg(0)), "returned");
}

TEST(KVLCodeFunctionCallerBinding, FixedValuesAreCopiedInOnceWhenTheCallerIsMade) {
  const World world;
  const TextPtr fixed = MakeText("T", "early");
  const FunctionPtr function = MakeFunction("f", "T", {{"a", "T"}});
  const CallerPtr caller = Bind(function, fixed)->CreateCaller(world.context);
  const KVLSmartPtr<KVLCodeValue> arg = function->lastCaller->GetArg(0);
  fixed->content = "late";
  EXPECT_EQ(caller->Call(), KVLResult_Success);
  EXPECT_EQ(ContentOf(arg), "early");
  EXPECT_EQ(static_cast<const TextValue&>(*arg).nbAssigns, 1);
}

TEST(KVLCodeFunctionCallerBinding, AFixedValueThatCannotBeAssignedIsIgnored) {
  const World world;
  const TextPtr fixed = MakeText("T");
  fixed->readResult = -3;
  const FunctionPtr function = MakeFunction("f", "T", {{"a", "T"}, {"b", "T"}});
  const CallerPtr caller = Bind(function, fixed)->CreateCaller(world.context);
  ASSERT_TRUE(caller);
  EXPECT_EQ(caller->GetNbArgs(), 1);
  EXPECT_EQ(ContentOf(function->lastCaller->GetArg(0)), "");
  EXPECT_EQ(caller->Call(), KVLResult_Success);
  EXPECT_EQ(function->nbCalls, 1);
}

TEST(KVLCodeFunctionCallerBinding, ReturnsWhatTheFunctionReturned) {
  const World world;
  const TextPtr returned = MakeText("T", "r");
  const CallerPtr caller = Bind(Writer(In, returned), MakeText("T"))->CreateCaller(world.context);
  EXPECT_EQ(caller->Call(), KVLResult_Success);
  EXPECT_EQ(caller->GetReturnedValue(), returned);
}

TEST(KVLCodeFunctionCallerBinding, FixedOutputsReceiveTheResult) {
  const World world;
  for (const unsigned int direction : {Out, InOut}) {
    const TextPtr fixed = MakeText("T", "fixed");
    const CallerPtr caller =
        Bind(Writer(direction, MakeText("T")), fixed)->CreateCaller(world.context);
    EXPECT_EQ(fixed->content, "fixed");
    EXPECT_EQ(caller->Call(), KVLResult_Success);
    EXPECT_EQ(fixed->content, "out");
  }
}

TEST(KVLCodeFunctionCallerBinding, FixedOutputsAreConvertedBack) {
  World world;
  world.conversions->Add(*MakeFunction("S", "S", {{"from", "T"}}), "T/");
  const TextPtr fixed = MakeText("S", "fixed");
  const CallerPtr caller = Bind(Writer(Out, MakeText("T")), fixed)->CreateCaller(world.context);
  EXPECT_EQ(caller->Call(), KVLResult_Success);
  EXPECT_EQ(fixed->content, "returned");
}

TEST(KVLCodeFunctionCallerBinding, AValueThatFixesTwoOutputsEndsWithTheLater) {
  const World world;
  const FunctionPtr function =
      MakeFunction("f", "T", {{"a", "T", Out}, {"b", "T", Out}}, [](Values& args) {
        static_cast<TextValue&>(*args[0]).content = "first";
        static_cast<TextValue&>(*args[1]).content = "second";
        return MakeText("T");
      });
  const TextPtr fixed = MakeText("T");
  FixedValues values;
  values.Append(fixed);
  values.Append(fixed);
  const BindingPtr binding = new KVLCodeFunctionBinding(*function, values);
  EXPECT_EQ(binding->CreateCaller(world.context)->Call(), KVLResult_Success);
  EXPECT_EQ(fixed->content, "second");
}

TEST(KVLCodeFunctionCallerBinding, FixedInputsStayAsTheyAre) {
  const World world;
  const TextPtr fixed = MakeText("T", "fixed");
  const CallerPtr caller = Bind(Writer(In, MakeText("T")), fixed)->CreateCaller(world.context);
  EXPECT_EQ(caller->Call(), KVLResult_Success);
  EXPECT_EQ(fixed->content, "fixed");
  EXPECT_EQ(fixed->nbAssigns, 0);
}

TEST(KVLCodeFunctionCallerBinding, FixedOutputsAreCopiedBackAfterEveryCall) {
  const World world;
  const TextPtr fixed = MakeText("T");
  const CallerPtr caller = Bind(Writer(Out, MakeText("T")), fixed)->CreateCaller(world.context);
  for (int calls = 1; calls <= 3; ++calls) {
    EXPECT_EQ(caller->Call(), KVLResult_Success);
    EXPECT_EQ(fixed->nbAssigns, calls);
  }
}

TEST(KVLCodeFunctionCallerBinding, FixedOutputsAreCopiedBackWhenNothingWasReturned) {
  const World world;
  const TextPtr fixed = MakeText("T");
  const CallerPtr caller = Bind(Writer(Out, nullptr), fixed)->CreateCaller(world.context);
  EXPECT_EQ(caller->Call(), KVLResult_Success);
  EXPECT_TRUE(caller->GetReturnedValue().IsNull());
  EXPECT_EQ(fixed->content, "out");
}

TEST(KVLCodeFunctionCallerBinding, AFailedCopyBackStopsNeitherTheOthersNorTheResult) {
  const World world;
  const TextPtr returned = MakeText("T", "r");
  const FunctionPtr function =
      MakeFunction("f", "T", {{"a", "T", Out}, {"b", "T", Out}}, [&returned](Values& args) {
        for (const KVLSmartPtr<KVLCodeValue>& arg : args)
          static_cast<TextValue&>(*arg).content = "out";
        return returned;
      });
  const TextPtr failing = MakeText("T", "fixed");
  const TextPtr working = MakeText("T", "fixed");
  failing->assignResult = -4;
  FixedValues values;
  values.Append(failing);
  values.Append(working);
  const BindingPtr binding = new KVLCodeFunctionBinding(*function, values);
  const CallerPtr caller = binding->CreateCaller(world.context);
  EXPECT_EQ(caller->Call(), KVLResult_Success);
  EXPECT_EQ(failing->content, "fixed");
  EXPECT_EQ(working->content, "out");
  EXPECT_EQ(caller->GetReturnedValue(), returned);
}

TEST(KVLCodeFunctionCallerBinding, ACallThatThrowsCopiesNothingBack) {
  const World world;
  const FunctionPtr function =
      MakeFunction("f", "T", {{"a", "T", Out}},
                   [](Values&) -> KVLSmartPtr<KVLCodeValue> { throw std::logic_error("body"); });
  const TextPtr fixed = MakeText("T", "fixed");
  const CallerPtr caller = Bind(function, fixed)->CreateCaller(world.context);
  EXPECT_THROW(caller->Call(), std::logic_error);
  EXPECT_EQ(fixed->content, "fixed");
  EXPECT_EQ(fixed->nbAssigns, 0);
}

// Registers a conversion of "from" to "to" that throws.
void RegisterThrowing(World& world, const char* from, const char* to) {
  const FunctionPtr conversion =
      MakeFunction(to, to, {{"from", from}},
                   [](Values&) -> KVLSmartPtr<KVLCodeValue> { throw std::logic_error("body"); });
  world.conversions->Add(*conversion, MRBUnicodeString(from) + "/");
}

TEST(KVLCodeFunctionCallerBinding, AConversionThatThrowsLeavesNoCallerBehind) {
  World world;
  RegisterThrowing(world, "S", "T");
  const int callersBefore = TestCaller::nbAlive;
  const BindingPtr binding = Bind(MakeFunction("f", "T", {{"a", "T"}}), MakeText("S"));
  EXPECT_THROW(binding->CreateCaller(world.context), std::logic_error);
  EXPECT_EQ(TestCaller::nbAlive, callersBefore);
}

TEST(KVLCodeFunctionCallerBinding, AConversionBackThatThrowsLeavesTheFormerReturnedValue) {
  World world;
  RegisterThrowing(world, "T", "S");
  const CallerPtr caller =
      Bind(Writer(Out, MakeText("T")), MakeText("S"))->CreateCaller(world.context);
  EXPECT_THROW(caller->Call(), std::logic_error);
  EXPECT_TRUE(caller->GetReturnedValue().IsNull());
}

TEST(KVLCodeFunctionCallerBinding, AMethodBoundToANullObjectThrows) {
  World world;
  world.RegisterType("Thing")->make = [](const MRBUnicodeString&) {
    const TextPtr thing = MakeText("Thing");
    thing->valued = false;
    return thing;
  };
  const FunctionPtr function = MakeFunction("f", "T", {{"self", "Thing"}});
  function->method = true;
  const CallerPtr caller = Bind(function, MakeText("Thing"))->CreateCaller(world.context);
  EXPECT_THROW(caller->Call(), std::runtime_error);
  EXPECT_EQ(function->nbCalls, 0);
}

TEST(KVLCodeFunctionCallerBinding, WithoutAnInnerCallerReturnsNothing) {
  const World world;
  const FunctionPtr function = MakeFunction("f", "T", {{"a", "T"}});
  function->makesCallers = false;
  const CallerPtr caller = Bind(function, MakeText("T"))->CreateCaller(world.context);
  ASSERT_TRUE(caller);
  EXPECT_EQ(caller->GetNbArgs(), 0);
  EXPECT_EQ(caller->Call(), KVLResult_Success);
  EXPECT_TRUE(caller->GetReturnedValue().IsNull());
}

TEST(KVLCodeFunctionCallerBinding, MissingInnerArgumentsAreLeftOut) {
  const World world;
  const FunctionPtr function = MakeFunction("f", "T", {{"a", "T", Out}, {"b", "T"}});
  function->nbArgs = 0;
  const TextPtr fixed = MakeText("T", "fixed");
  const CallerPtr none = Bind(function, fixed)->CreateCaller(world.context);
  EXPECT_EQ(none->GetNbArgs(), 0);
  EXPECT_EQ(none->Call(), KVLResult_Success);
  EXPECT_EQ(fixed->content, "fixed");
}

TEST(KVLCodeFunctionCallerBinding, ANullInnerArgumentKeepsItsPlace) {
  const World world;
  const FunctionPtr function = MakeFunction("f", "T", {{"a", "T", Out}, {"b", "T"}, {"c", "T"}});
  function->makeArg = [](const KVLCodeFunction::Param& param) {
    return param.name == "c" ? MakeText("T") : TextPtr();
  };
  const TextPtr fixed = MakeText("T", "fixed");
  const CallerPtr caller = Bind(function, fixed)->CreateCaller(world.context);
  ASSERT_EQ(caller->GetNbArgs(), 2);
  EXPECT_TRUE(caller->GetArg(0).IsNull());
  EXPECT_EQ(caller->GetArg(1), function->lastCaller->GetArg(2));
  EXPECT_EQ(caller->Call(), KVLResult_Success);
  EXPECT_EQ(fixed->nbAssigns, 0);
}

TEST(KVLCodeFunctionCallerBinding, OfABindingPassesThroughBoth) {
  const World world;
  const FunctionPtr function =
      MakeFunction("f", "T", {{"a", "T", InOut}, {"b", "T"}, {"c", "T", InOut}}, [](Values& args) {
        const TextPtr returned =
            MakeText("T", ContentOf(args[0]) + ContentOf(args[1]) + ContentOf(args[2]));
        static_cast<TextValue&>(*args[0]).content = "out a";
        static_cast<TextValue&>(*args[2]).content = "out c";
        return returned;
      });
  const TextPtr first = MakeText("T", "1");
  const TextPtr third = MakeText("T", "3");
  FixedValues values;
  values.Append(nullptr);
  values.Append(third);
  const BindingPtr outer = new KVLCodeFunctionBinding(*Bind(function, first), values);
  const CallerPtr caller = outer->CreateCaller(world.context);
  ASSERT_EQ(caller->GetNbArgs(), 1);
  EXPECT_EQ(caller->SetArgStr(0, "2"), KVLResult_Success);
  EXPECT_EQ(caller->Call(), KVLResult_Success);
  EXPECT_EQ(ContentOf(caller->GetReturnedValue()), "123");
  EXPECT_EQ(first->content, "out a");
  EXPECT_EQ(third->content, "out c");
}

TEST(KVLCodeFunctionCallerBinding, KeepsBindingAndInnerCallerAlive) {
  const World world;
  const int callersBefore = TestCaller::nbAlive;
  {
    const CallerPtr caller =
        Bind(Writer(Out, MakeText("T", "r")), MakeText("T"))->CreateCaller(world.context);
    EXPECT_EQ(TestCaller::nbAlive, callersBefore + 1);
    EXPECT_EQ(caller->Call(), KVLResult_Success);
    EXPECT_EQ(ContentOf(caller->GetReturnedValue()), "r");
  }
  EXPECT_EQ(TestCaller::nbAlive, callersBefore);
}

TEST(KVLCodeFunctionCallerBinding, ACopySharesTheInnerCallerAndItsArguments) {
  const World world;
  const FunctionPtr function = MakeFunction("f", "T", {{"a", "T"}, {"b", "T"}});
  const BindingPtr binding = Bind(function, MakeText("T"));
  const KVLSmartPtr<KVLCodeFunctionCallerBinding> caller =
      new KVLCodeFunctionCallerBinding(*binding, world.context);
  const KVLSmartPtr<KVLCodeFunctionCallerBinding> copy = new KVLCodeFunctionCallerBinding(*caller);
  EXPECT_EQ(function->nbCallersMade, 1);
  EXPECT_EQ(copy->GetArg(0), caller->GetArg(0));
  EXPECT_EQ(copy->Call(), KVLResult_Success);
  EXPECT_EQ(copy->GetReturnedValue(), function->lastCaller->GetReturnedValue());
}

}  // namespace
