#include <gtest/gtest.h>

#include <stdexcept>

#include "KVLCodeFunction.h"
#include "support/TestObjects.h"

namespace {

using kvltest::ContentOf;
using kvltest::FunctionPtr;
using kvltest::In;
using kvltest::InOut;
using kvltest::MakeFunction;
using kvltest::MakeText;
using kvltest::MakeTexts;
using kvltest::Out;
using kvltest::TestCaller;
using kvltest::TestFunction;
using kvltest::TextPtr;
using kvltest::Texts;
using kvltest::TextValue;
using kvltest::TypePtr;
using kvltest::Values;
using kvltest::World;

TextValue& Text(Values& args, int i) {
  return static_cast<TextValue&>(*args[i]);
}

// One parameter of each direction; writes to every one.
FunctionPtr EveryDirection() {
  return MakeFunction(
      "f", "text",
      {{"in", "text", In}, {"out", "text", Out}, {"both", "text", InOut}, {"none", "text", 0}},
      [](Values& args) {
        const MRBUnicodeString seen = Text(args, 0).content + "|" + Text(args, 1).content + "|" +
                                      Text(args, 2).content + "|" + Text(args, 3).content;
        for (int i = 0; i < args.GetCount(); ++i)
          Text(args, i).content = "w" + KVLStringOperations::FromNum(i);
        return MakeText("text", seen);
      });
}

// A type "text" whose values return the codes given.
void RegisterText(World& world, long writeResult, long readResult) {
  world.RegisterType("text")->make = [=](const MRBUnicodeString& valueName) {
    const TextPtr value = new TextValue(valueName, "text");
    value->writeResult = writeResult;
    value->readResult = readResult;
    return value;
  };
}

TEST(KVLCodeFunctionParseAndCall, CarriesTheTextsInAndTheResultOut) {
  const World world;
  const FunctionPtr function = MakeFunction(
      "join", "text", {{"a", "text"}, {"b", "text"}},
      [](Values& args) { return MakeText("text", ContentOf(args[0]) + ContentOf(args[1])); });
  Texts texts = MakeTexts({"x", "y"});
  MRBUnicodeString result;
  EXPECT_EQ(function->ParseAndCall(world.context, texts, result), KVLResult_Success);
  EXPECT_EQ(result, "xy");
  EXPECT_EQ(texts[0], "x");
  EXPECT_EQ(texts[1], "y");
}

TEST(KVLCodeFunctionParseAndCall, ReadsInputsAndWritesOutputsBackAlone) {
  const World world;
  Texts texts = MakeTexts({"a", "b", "c", "d"});
  MRBUnicodeString result;
  EXPECT_EQ(EveryDirection()->ParseAndCall(world.context, texts, result), KVLResult_Success);
  EXPECT_EQ(result, "a||c|");
  EXPECT_EQ(texts[0], "a");
  EXPECT_EQ(texts[1], "w1");
  EXPECT_EQ(texts[2], "w2");
  EXPECT_EQ(texts[3], "d");
}

TEST(KVLCodeFunctionParseAndCall, TooManyTextsAreRefusedBeforeAnythingIsCalled) {
  const World world;
  const FunctionPtr function = MakeFunction("f", "text", {{"a", "text"}});
  Texts texts = MakeTexts({"x", "y"});
  MRBUnicodeString result = "kept";
  EXPECT_EQ(function->ParseAndCall(world.context, texts, result), KVLResult_InvalidArgument);
  EXPECT_EQ(function->nbCallersMade, 0);
  EXPECT_EQ(result, "kept");
  const FunctionPtr none = MakeFunction("f", "text", {});
  EXPECT_EQ(none->ParseAndCall(world.context, texts, result), KVLResult_InvalidArgument);
}

TEST(KVLCodeFunctionParseAndCall, FewerTextsLeaveTheLaterArgumentsAsTheyAre) {
  const World world;
  const FunctionPtr function = EveryDirection();
  Texts texts = MakeTexts({"a", "b"});
  MRBUnicodeString result;
  EXPECT_EQ(function->ParseAndCall(world.context, texts, result), KVLResult_Success);
  EXPECT_EQ(result, "a|||");
  ASSERT_EQ(texts.GetCount(), 2);
  EXPECT_EQ(texts[1], "w1");
  Texts none;
  EXPECT_EQ(function->ParseAndCall(world.context, none, result), KVLResult_Success);
  EXPECT_EQ(result, "|||");
  EXPECT_EQ(none.GetCount(), 0);
}

TEST(KVLCodeFunctionParseAndCall, DefaultsAreNotFilledIn) {
  const World world;
  const FunctionPtr function = MakeFunction("f", "text", {{"a", "text", In, "default"}},
                                            [](Values& args) { return args[0]; });
  Texts none;
  MRBUnicodeString result = "old";
  EXPECT_EQ(function->ParseAndCall(world.context, none, result), KVLResult_Success);
  EXPECT_EQ(result, "");
}

TEST(KVLCodeFunctionParseAndCall, FailsWithoutACaller) {
  const World world;
  const FunctionPtr function = MakeFunction("f", "text", {});
  function->makesCallers = false;
  Texts texts;
  MRBUnicodeString result = "kept";
  EXPECT_EQ(function->ParseAndCall(world.context, texts, result), KVLResult_Failure);
  EXPECT_EQ(result, "kept");
}

TEST(KVLCodeFunctionParseAndCall, FailsWithoutAnInputArgumentBeforeTheCall) {
  const World world;
  const FunctionPtr function = MakeFunction("f", "text", {{"a", "text"}, {"b", "text"}});
  function->nbArgs = 1;
  Texts texts = MakeTexts({"x", "y"});
  MRBUnicodeString result;
  EXPECT_EQ(function->ParseAndCall(world.context, texts, result), KVLResult_Failure);
  EXPECT_EQ(function->nbCalls, 0);
}

TEST(KVLCodeFunctionParseAndCall, FailsWithoutAnOutputArgumentAfterTheResultWasWritten) {
  const World world;
  const FunctionPtr function = MakeFunction("f", "text", {{"a", "text", Out}});
  function->nbArgs = 0;
  Texts texts = MakeTexts({"kept"});
  MRBUnicodeString result;
  EXPECT_EQ(function->ParseAndCall(world.context, texts, result), KVLResult_Failure);
  EXPECT_EQ(function->nbCalls, 1);
  EXPECT_EQ(result, "returned");
  EXPECT_EQ(texts[0], "kept");
}

TEST(KVLCodeFunctionParseAndCall, AnInputThatCannotBeReadGivesItsCodeAndNoCall) {
  World world;
  RegisterText(world, -12, 0);
  const FunctionPtr function = MakeFunction("f", "int", {{"a", "text"}});
  Texts texts = MakeTexts({"x"});
  MRBUnicodeString result = "kept";
  EXPECT_EQ(function->ParseAndCall(world.context, texts, result), -12);
  EXPECT_EQ(function->nbCalls, 0);
  EXPECT_EQ(result, "kept");
}

TEST(KVLCodeFunctionParseAndCall, InputsAreReadInOrderUpToTheFirstThatFails) {
  const World world;
  const FunctionPtr function =
      MakeFunction("f", "text", {{"a", "text"}, {"b", "text"}, {"c", "text"}, {"d", "text"}});
  Values args;
  function->makeArg = [&args](const KVLCodeFunction::Param& param) {
    const TextPtr arg = MakeText(param.typeName);
    if (param.name == "b") arg->writeResult = -12;
    if (param.name == "c") arg->writeResult = -13;
    args.Append(arg);
    return arg;
  };
  Texts texts = MakeTexts({"x", "y", "z", "u"});
  MRBUnicodeString result;
  EXPECT_EQ(function->ParseAndCall(world.context, texts, result), -12);
  EXPECT_EQ(Text(args, 0).content, "x");
  EXPECT_EQ(Text(args, 2).nbWrites, 0);
  EXPECT_EQ(Text(args, 3).nbWrites, 0);
  EXPECT_EQ(function->nbCalls, 0);
}

TEST(KVLCodeFunctionParseAndCall, PositiveCodesDoNotStop) {
  World world;
  RegisterText(world, 12, 13);
  const FunctionPtr function =
      MakeFunction("f", "text", {{"a", "text", InOut}}, [](Values& args) { return args[0]; });
  Texts texts = MakeTexts({"x"});
  MRBUnicodeString result;
  EXPECT_EQ(function->ParseAndCall(world.context, texts, result), KVLResult_Success);
  EXPECT_EQ(result, "x");
}

TEST(KVLCodeFunctionParseAndCall, FailsAfterACallThatReturnsNothingAndWritesNothingBack) {
  const World world;
  const FunctionPtr function =
      MakeFunction("f", "", {{"a", "text", Out}}, [](Values& args) -> KVLSmartPtr<KVLCodeValue> {
        Text(args, 0).content = "written";
        return nullptr;
      });
  Texts texts = MakeTexts({"kept"});
  MRBUnicodeString result = "kept";
  EXPECT_EQ(function->ParseAndCall(world.context, texts, result), KVLResult_Failure);
  EXPECT_EQ(function->nbCalls, 1);
  EXPECT_EQ(texts[0], "kept");
  EXPECT_EQ(result, "kept");
}

TEST(KVLCodeFunctionParseAndCall, AResultThatCannotBeWrittenGivesItsCodeBeforeTheOutputs) {
  const World world;
  const FunctionPtr function = MakeFunction("f", "text", {{"a", "text", Out}}, [](Values&) {
    const TextPtr returned = MakeText("text");
    returned->readResult = -14;
    return returned;
  });
  Texts texts = MakeTexts({"kept"});
  MRBUnicodeString result;
  EXPECT_EQ(function->ParseAndCall(world.context, texts, result), -14);
  EXPECT_EQ(texts[0], "kept");
}

TEST(KVLCodeFunctionParseAndCall, AnOutputThatCannotBeWrittenGivesItsCode) {
  const World world;
  const FunctionPtr function = MakeFunction(
      "f", "text", {{"a", "text", Out}, {"b", "text", Out}, {"c", "text", Out}}, [](Values& args) {
        for (int i = 0; i < 3; ++i)
          Text(args, i).content = "new";
        Text(args, 1).readResult = -15;
        return MakeText("text", "result");
      });
  Texts texts = MakeTexts({"old", "old", "old"});
  MRBUnicodeString result;
  EXPECT_EQ(function->ParseAndCall(world.context, texts, result), -15);
  EXPECT_EQ(result, "result");
  EXPECT_EQ(texts[0], "new");
  EXPECT_EQ(texts[1], "old");
  EXPECT_EQ(texts[2], "old");
}

TEST(KVLCodeFunctionParseAndCall, ReleasesItsCallerWhateverHappens) {
  const World world;
  const int before = TestCaller::nbAlive;
  const FunctionPtr function =
      MakeFunction("f", "text", {{"a", "text"}}, [](Values& args) -> KVLSmartPtr<KVLCodeValue> {
        if (ContentOf(args[0]) == "throw") throw std::logic_error("body");
        if (ContentOf(args[0]) == "null") return nullptr;
        return args[0];
      });
  MRBUnicodeString result;
  for (const char* const text : {"fine", "null"}) {
    Texts texts = MakeTexts({text});
    function->ParseAndCall(world.context, texts, result);
    EXPECT_EQ(TestCaller::nbAlive, before) << text;
  }
  Texts texts = MakeTexts({"throw"});
  EXPECT_THROW(function->ParseAndCall(world.context, texts, result), std::logic_error);
  EXPECT_EQ(TestCaller::nbAlive, before);
}

TEST(KVLCodeFunctionParseAndCall, AMethodOnANullObjectThrows) {
  World world;
  world.RegisterType("Thing")->make = [](const MRBUnicodeString&) {
    const TextPtr thing = MakeText("Thing");
    thing->valued = false;
    return thing;
  };
  const FunctionPtr function = MakeFunction("f", "text", {{"self", "Thing"}});
  function->method = true;
  Texts texts = MakeTexts({"NULL"});
  MRBUnicodeString result = "kept";
  try {
    function->ParseAndCall(world.context, texts, result);
    FAIL() << "nothing was thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "Calling method on null pointer");
  }
  EXPECT_EQ(function->nbCalls, 0);
  EXPECT_EQ(result, "kept");
}

TEST(KVLCodeFunctionParseAndCall, TheFunctionMayWithdrawItselfDuringItsOwnCall) {
  World world;
  const int before = TestFunction::nbAlive;
  {
    const FunctionPtr function = MakeFunction("f", "text", {{"a", "text", InOut}}, [&](Values&) {
      world.types->Remove("functions/f");
      return MakeText("text", "last");
    });
    world.types->Add(*function, "functions/");
  }
  const KVLCodeFunction* const borrowed = world.types->FindObject("functions/f")->AsFunction();
  Texts texts = MakeTexts({"x"});
  MRBUnicodeString result;
  EXPECT_EQ(borrowed->ParseAndCall(world.context, texts, result), KVLResult_Success);
  EXPECT_EQ(result, "last");
  EXPECT_EQ(TestFunction::nbAlive, before);
  EXPECT_TRUE(world.types->FindObject("functions/f").IsNull());
}

TEST(KVLCodeFunctionParseAndCall, MayRecurse) {
  const World world;
  FunctionPtr function;
  function = MakeFunction("f", "text", {{"n", "text"}}, [&](Values& args) {
    const MRBUnicodeString given = ContentOf(args[0]);
    if (given.GetLengthInChar() >= 50) return MakeText("text", given);
    Texts texts;
    texts.Append(given + "x");
    MRBUnicodeString inner;
    EXPECT_EQ(function->ParseAndCall(world.context, texts, inner), KVLResult_Success);
    return MakeText("text", inner);
  });
  Texts texts = MakeTexts({""});
  MRBUnicodeString result;
  EXPECT_EQ(function->ParseAndCall(world.context, texts, result), KVLResult_Success);
  EXPECT_EQ(result.GetLengthInChar(), 50);
  EXPECT_EQ(function->nbCalls, 51);
}

}  // namespace
