#include "KVLCodeFunctionCaller.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "support/TestObjects.h"

namespace {

using kvltest::CallerPtr;
using kvltest::ContentOf;
using kvltest::FunctionPtr;
using kvltest::MakeFunction;
using kvltest::MakeText;
using kvltest::TestCaller;
using kvltest::TestFunction;
using kvltest::TextPtr;
using kvltest::TextValue;
using kvltest::Values;
using kvltest::World;

TextValue& TextArg(KVLCodeFunctionCaller& caller, int i) {
  return static_cast<TextValue&>(*caller.GetArg(i));
}

TEST(KVLCodeFunctionCaller, IsNamedAsItsFunctionAndReady) {
  const World world;
  const FunctionPtr function = MakeFunction("f", "int", {{"a", "int"}});
  const CallerPtr caller = function->CreateCaller(world.context);
  EXPECT_EQ(caller->GetName(), "f");
  EXPECT_TRUE(caller->IsReady());
  EXPECT_EQ(&caller->GetFunction(), function.Get());
  EXPECT_EQ(caller->ToString(), "KVLCodeObject 'f'");
  EXPECT_EQ(caller->ToStringCode(), "f");
  static_assert(std::has_virtual_destructor_v<KVLCodeFunctionCaller>);
}

TEST(KVLCodeFunctionCaller, IsReadyWithoutArgumentsAndAfterACallToo) {
  const World world;
  const CallerPtr caller = MakeFunction("f", "int", {})->CreateCaller(world.context);
  EXPECT_TRUE(caller->IsReady());
  EXPECT_EQ(caller->Call(), KVLResult_Success);
  EXPECT_TRUE(caller->IsReady());
}

TEST(KVLCodeFunctionCaller, IsNoneOfTheKinds) {
  const World world;
  const CallerPtr caller = MakeFunction("f", "", {})->CreateCaller(world.context);
  EXPECT_EQ(caller->AsFunction(), nullptr);
  EXPECT_EQ(caller->AsVariable(), nullptr);
  EXPECT_EQ(caller->AsType(), nullptr);
  EXPECT_EQ(caller->AsEnv(), nullptr);
}

TEST(KVLCodeFunctionCaller, KeepsItsFunctionAlive) {
  const World world;
  const int before = TestFunction::nbAlive;
  {
    const CallerPtr caller = MakeFunction("f", "", {})->CreateCaller(world.context);
    EXPECT_EQ(TestFunction::nbAlive, before + 1);
    EXPECT_EQ(caller->GetFunction().GetName(), "f");
  }
  EXPECT_EQ(TestFunction::nbAlive, before);
}

TEST(KVLCodeFunctionCaller, HandsOutItsArgumentObjects) {
  const World world;
  const CallerPtr caller =
      MakeFunction("f", "", {{"a", "int"}, {"b", "text"}})->CreateCaller(world.context);
  ASSERT_EQ(caller->GetNbArgs(), 2);
  Values args = caller->GetArgs();
  ASSERT_EQ(args.GetCount(), 2);
  EXPECT_EQ(args[1], caller->GetArg(1));
  EXPECT_EQ(caller->GetArg(1)->GetTypeName(), "text");
  args.Resize(0);
  EXPECT_EQ(caller->GetNbArgs(), 2);
}

TEST(KVLCodeFunctionCaller, AnArgumentOutOfRangeIsNullAndFails) {
  const World world;
  const CallerPtr caller = MakeFunction("f", "", {{"a", "int"}})->CreateCaller(world.context);
  for (const int i : {-1, 1, 2147483647, -2147483647 - 1}) {
    MRBUnicodeString text = "kept";
    EXPECT_TRUE(caller->GetArg(i).IsNull());
    EXPECT_EQ(caller->GetArgStr(i, text), KVLResult_Failure);
    EXPECT_EQ(caller->SetArgStr(i, "x"), KVLResult_Failure);
    EXPECT_EQ(caller->SetArg(i, MakeText("int")), KVLResult_Failure);
    EXPECT_EQ(text, "kept");
  }
}

TEST(KVLCodeFunctionCaller, AMissingArgumentFails) {
  const World world;
  const FunctionPtr function = MakeFunction("f", "", {{"a", "int"}});
  function->makeArg = [](const KVLCodeFunction::Param&) { return nullptr; };
  const CallerPtr caller = function->CreateCaller(world.context);
  MRBUnicodeString text;
  EXPECT_EQ(caller->GetNbArgs(), 1);
  EXPECT_TRUE(caller->GetArg(0).IsNull());
  EXPECT_EQ(caller->GetArgStr(0, text), KVLResult_Failure);
  EXPECT_EQ(caller->SetArgStr(0, "x"), KVLResult_Failure);
  EXPECT_EQ(caller->SetArg(0, MakeText("int")), KVLResult_Failure);
}

TEST(KVLCodeFunctionCaller, ANullValueCannotBeSet) {
  const World world;
  const CallerPtr caller = MakeFunction("f", "", {{"a", "int"}})->CreateCaller(world.context);
  EXPECT_EQ(caller->SetArg(0, nullptr), KVLResult_Failure);
  EXPECT_EQ(TextArg(*caller, 0).nbAssigns, 0);
}

TEST(KVLCodeFunctionCaller, SettingChangesTheArgumentAndNeverReplacesIt) {
  const World world;
  const CallerPtr caller = MakeFunction("f", "", {{"a", "int"}})->CreateCaller(world.context);
  const KVLSmartPtr<KVLCodeValue> arg = caller->GetArg(0);
  const TextPtr value = MakeText("int", "1");
  EXPECT_EQ(caller->SetArg(0, value), KVLResult_Success);
  EXPECT_EQ(ContentOf(arg), "1");
  EXPECT_EQ(caller->SetArgStr(0, "2"), KVLResult_Success);
  EXPECT_EQ(ContentOf(arg), "2");
  EXPECT_EQ(value->content, "1");
  EXPECT_EQ(caller->GetArg(0), arg);
}

TEST(KVLCodeFunctionCaller, SetArgConvertsThroughTheContext) {
  World world;
  world.conversions->Add(*MakeFunction("int", "int", {{"from", "text"}}), "text/");
  const CallerPtr caller = MakeFunction("f", "", {{"a", "int"}})->CreateCaller(world.context);
  EXPECT_EQ(caller->SetArg(0, MakeText("text")), KVLResult_Success);
  EXPECT_EQ(TextArg(*caller, 0).content, "returned");
}

TEST(KVLCodeFunctionCaller, SetArgTurnsAPositiveCodeIntoZeroAndKeepsANegativeOne) {
  const World world;
  const CallerPtr caller = MakeFunction("f", "", {{"a", "int"}})->CreateCaller(world.context);
  TextArg(*caller, 0).writeResult = 5;
  EXPECT_EQ(caller->SetArg(0, MakeText("int")), KVLResult_Success);
  TextArg(*caller, 0).writeResult = -5;
  EXPECT_EQ(caller->SetArg(0, MakeText("int")), -5);
}

TEST(KVLCodeFunctionCaller, SetArgStrKeepsEveryCode) {
  const World world;
  const CallerPtr caller = MakeFunction("f", "", {{"a", "int"}})->CreateCaller(world.context);
  for (const long code : {0L, 5L, -5L}) {
    TextArg(*caller, 0).writeResult = code;
    EXPECT_EQ(caller->SetArgStr(0, "x"), code);
  }
}

TEST(KVLCodeFunctionCaller, GetArgStrWritesTheArgumentAndKeepsEveryCode) {
  const World world;
  const CallerPtr caller = MakeFunction("f", "", {{"a", "int"}})->CreateCaller(world.context);
  EXPECT_EQ(caller->SetArgStr(0, "7"), KVLResult_Success);
  for (const long code : {0L, 5L, -5L}) {
    TextArg(*caller, 0).readResult = code;
    MRBUnicodeString text = "kept";
    EXPECT_EQ(caller->GetArgStr(0, text), code);
    EXPECT_EQ(text, code < 0 ? "kept" : "7");
  }
}

TEST(KVLCodeFunctionCaller, AnArgumentMayBeSetFromItself) {
  const World world;
  const CallerPtr caller = MakeFunction("f", "", {{"a", "int"}})->CreateCaller(world.context);
  EXPECT_EQ(caller->SetArgStr(0, "7"), KVLResult_Success);
  EXPECT_EQ(caller->SetArg(0, caller->GetArg(0)), KVLResult_Success);
  EXPECT_EQ(TextArg(*caller, 0).content, "7");
}

// Keeps the context that it was last used in.
class Witness : public KVLCodeValue {
 public:
  Witness() : KVLCodeValue("witness", "Witness") {}
  long GetValueStr(const KVLCodeContext& context, MRBUnicodeString&) const override {
    seen = &context;
    return KVLResult_Success;
  }
  long SetValueStr(const KVLCodeContext& context, const MRBUnicodeString&) override {
    seen = &context;
    return KVLResult_Success;
  }
  long AssignFrom(const KVLCodeContext& context, const KVLCodeValue&) override {
    seen = &context;
    return KVLResult_Success;
  }

  mutable const KVLCodeContext* seen = nullptr;
};

TEST(KVLCodeFunctionCaller, WorksInItsContextThroughoutAndSoDoesACopy) {
  const World world;
  const KVLSmartPtr<Witness> witness = new Witness();
  const FunctionPtr function =
      MakeFunction("f", "", {{"a", "Witness"}}, [](Values& args) { return args[0]; });
  function->makeArg = [&witness](const KVLCodeFunction::Param&) { return witness; };
  const KVLSmartPtr<TestCaller> original = new TestCaller(*function, world.context);
  EXPECT_EQ(original->Call(), KVLResult_Success);
  for (const KVLSmartPtr<TestCaller>& caller : {original, {new TestCaller(*original)}}) {
    MRBUnicodeString text;
    EXPECT_EQ(caller->GetArgStr(0, text), KVLResult_Success);
    EXPECT_EQ(std::exchange(witness->seen, nullptr), &world.context);
    EXPECT_EQ(caller->SetArgStr(0, "x"), KVLResult_Success);
    EXPECT_EQ(std::exchange(witness->seen, nullptr), &world.context);
    EXPECT_EQ(caller->SetArg(0, MakeText("T")), KVLResult_Success);
    EXPECT_EQ(std::exchange(witness->seen, nullptr), &world.context);
    EXPECT_EQ(caller->GetReturnedValueStr(text), KVLResult_Success);
    EXPECT_EQ(std::exchange(witness->seen, nullptr), &world.context);
  }
}

// The call.

TEST(KVLCodeFunctionCallerCall, ReturnsZeroAndKeepsTheReturnedValue) {
  const World world;
  const TextPtr returned = MakeText("int", "7");
  const CallerPtr caller = MakeFunction("f", "int", {}, [&returned](Values&) {
                             return returned;
                           })->CreateCaller(world.context);
  EXPECT_TRUE(caller->GetReturnedValue().IsNull());
  EXPECT_EQ(caller->Call(), KVLResult_Success);
  EXPECT_EQ(caller->GetReturnedValue(), returned);
}

TEST(KVLCodeFunctionCallerCall, EachCallReplacesTheReturnedValueAndReleasesTheFormerOne) {
  const World world;
  int nbCalls = 0;
  const CallerPtr caller = MakeFunction("f", "int", {}, [&nbCalls](Values&) {
                             return ++nbCalls == 3 ? TextPtr() : MakeText("int");
                           })->CreateCaller(world.context);
  const int before = TextValue::nbAlive;
  EXPECT_EQ(caller->Call(), KVLResult_Success);
  const KVLCodeValue* const first = caller->GetReturnedValue().Get();
  EXPECT_NE(first, nullptr);
  EXPECT_EQ(caller->Call(), KVLResult_Success);
  EXPECT_EQ(TextValue::nbAlive, before + 1);
  EXPECT_EQ(caller->Call(), KVLResult_Success);
  EXPECT_TRUE(caller->GetReturnedValue().IsNull());
  EXPECT_EQ(TextValue::nbAlive, before);
}

TEST(KVLCodeFunctionCallerCall, TheReturnedTextFailsWithoutAReturnedValue) {
  const World world;
  const CallerPtr caller =
      MakeFunction("f", "", {}, [](Values&) { return nullptr; })->CreateCaller(world.context);
  MRBUnicodeString text = "kept";
  EXPECT_EQ(caller->GetReturnedValueStr(text), KVLResult_Failure);
  EXPECT_EQ(caller->Call(), KVLResult_Success);
  EXPECT_EQ(caller->GetReturnedValueStr(text), KVLResult_Failure);
  EXPECT_EQ(text, "kept");
}

TEST(KVLCodeFunctionCallerCall, TheReturnedTextKeepsEveryCode) {
  const World world;
  const TextPtr returned = MakeText("int", "7");
  const CallerPtr caller = MakeFunction("f", "int", {}, [&returned](Values&) {
                             return returned;
                           })->CreateCaller(world.context);
  EXPECT_EQ(caller->Call(), KVLResult_Success);
  for (const long code : {0L, 5L, -5L}) {
    returned->readResult = code;
    MRBUnicodeString text = "kept";
    EXPECT_EQ(caller->GetReturnedValueStr(text), code);
    EXPECT_EQ(text, code < 0 ? "kept" : "7");
  }
}

TEST(KVLCodeFunctionCallerCall, ACallThatThrowsLeavesTheFormerReturnedValue) {
  const World world;
  bool throws = false;
  const TextPtr returned = MakeText("int", "7");
  const CallerPtr caller = MakeFunction("f", "int", {}, [&](Values&) {
                             if (throws) throw std::string("body");
                             return returned;
                           })->CreateCaller(world.context);
  EXPECT_EQ(caller->Call(), KVLResult_Success);
  throws = true;
  EXPECT_THROW(caller->Call(), std::string);
  EXPECT_EQ(caller->GetReturnedValue(), returned);
}

TEST(KVLCodeFunctionCallerCall, AMethodOnANullObjectThrowsBeforeItsBodyRuns) {
  const World world;
  const FunctionPtr function = MakeFunction("f", "int", {{"self", "Thing"}});
  function->method = true;
  const CallerPtr caller = function->CreateCaller(world.context);
  EXPECT_EQ(caller->Call(), KVLResult_Success);
  const KVLSmartPtr<KVLCodeValue> former = caller->GetReturnedValue();
  TextArg(*caller, 0).valued = false;
  try {
    caller->Call();
    FAIL() << "nothing was thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(typeid(error), typeid(std::runtime_error));
    EXPECT_STREQ(error.what(), "Calling method on null pointer");
  }
  EXPECT_EQ(function->nbCalls, 1);
  EXPECT_EQ(caller->GetReturnedValue(), former);
}

TEST(KVLCodeFunctionCallerCall, AMethodWithoutAnObjectArgumentIsNotStopped) {
  const World world;
  const FunctionPtr none = MakeFunction("f", "int", {{"self", "Thing"}});
  none->method = true;
  none->nbArgs = 0;
  EXPECT_EQ(none->CreateCaller(world.context)->Call(), KVLResult_Success);
  const FunctionPtr null = MakeFunction("f", "int", {{"self", "Thing"}});
  null->method = true;
  null->makeArg = [](const KVLCodeFunction::Param&) { return nullptr; };
  EXPECT_EQ(null->CreateCaller(world.context)->Call(), KVLResult_Success);
}

TEST(KVLCodeFunctionCallerCall, APlainFunctionMayReceiveANullObject) {
  const World world;
  const FunctionPtr function = MakeFunction("f", "int", {{"a", "Thing"}});
  const CallerPtr caller = function->CreateCaller(world.context);
  TextArg(*caller, 0).valued = false;
  EXPECT_EQ(caller->Call(), KVLResult_Success);
}

TEST(KVLCodeFunctionCallerCall, OnlyTheFirstArgumentOfAMethodIsItsObject) {
  const World world;
  const FunctionPtr function = MakeFunction("f", "int", {{"self", "Thing"}, {"a", "Thing"}});
  function->method = true;
  const CallerPtr caller = function->CreateCaller(world.context);
  TextArg(*caller, 1).valued = false;
  EXPECT_EQ(caller->Call(), KVLResult_Success);
}

TEST(KVLCodeFunctionCallerCall, MayCallItselfAgain) {
  const World world;
  KVLCodeFunctionCaller* self = nullptr;
  int depth = 0;
  const CallerPtr caller = MakeFunction("f", "int", {}, [&](Values&) {
                             const int level = ++depth;
                             if (level < 4) self->Call();
                             return MakeText("int", KVLStringOperations::FromNum(level));
                           })->CreateCaller(world.context);
  self = caller.Get();
  const int before = TextValue::nbAlive;
  EXPECT_EQ(caller->Call(), KVLResult_Success);
  EXPECT_EQ(depth, 4);
  // The outermost call ends last.
  EXPECT_EQ(ContentOf(caller->GetReturnedValue()), "1");
  EXPECT_EQ(TextValue::nbAlive, before + 1);
}

TEST(KVLCodeFunctionCallerCall, MayReturnAnArgument) {
  const World world;
  const CallerPtr caller = MakeFunction("f", "int", {{"a", "int"}}, [](Values& args) {
                             return args[0];
                           })->CreateCaller(world.context);
  EXPECT_EQ(caller->Call(), KVLResult_Success);
  EXPECT_EQ(caller->GetReturnedValue(), caller->GetArg(0));
}

TEST(KVLCodeFunctionCallerCopy, SharesArgumentsReturnedValueAndFunction) {
  const World world;
  const FunctionPtr function = MakeFunction("f", "int", {{"a", "int"}});
  const KVLSmartPtr<TestCaller> caller = new TestCaller(*function, world.context);
  EXPECT_EQ(caller->Call(), KVLResult_Success);
  const KVLSmartPtr<TestCaller> copy = new TestCaller(*caller);
  EXPECT_EQ(copy->GetName(), "f");
  EXPECT_EQ(&copy->GetFunction(), function.Get());
  EXPECT_EQ(copy->GetArg(0), caller->GetArg(0));
  EXPECT_EQ(copy->GetReturnedValue(), caller->GetReturnedValue());
  EXPECT_EQ(copy->Call(), KVLResult_Success);
  EXPECT_NE(copy->GetReturnedValue(), caller->GetReturnedValue());
}

}  // namespace
