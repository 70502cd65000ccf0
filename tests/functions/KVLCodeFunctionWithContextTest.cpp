#include "KVLCodeFunctionWithContext.h"

#include <gtest/gtest.h>

#include "KVLCodeFunctionCallerWithContext.h"
#include "support/TestObjects.h"

// The kernel never looks into a session, so any object will do.
class KVLCodeSession {
 public:
  int payload = 0;
};

namespace {

using kvltest::CallerPtr;
using kvltest::ContentOf;
using kvltest::FunctionPtr;
using kvltest::In;
using kvltest::MakeFunction;
using kvltest::MakeText;
using kvltest::MakeTexts;
using kvltest::Out;
using kvltest::TextPtr;
using kvltest::Texts;
using kvltest::TextValue;
using kvltest::Values;
using kvltest::World;

using WithContextPtr = KVLSmartPtr<KVLCodeFunctionWithContext>;

FunctionPtr Hidden() {
  return MakeFunction(
      "f", "T", {{"a", "T"}, {"ctx", "KVLCodeContext"}, {"ses", "KVLCodeSession"}, {"b", "T"}},
      [](Values& args) { return MakeText("T", ContentOf(args[0])); });
}

// Counts the changes of a pointer.
class HookedPointer : public KVLCodePointerValue {
 public:
  explicit HookedPointer(const MRBUnicodeString& nameOfType)
      : KVLCodePointerValue("", nameOfType) {}
  void OnChanged() override { ++nbChanges; }

  int nbChanges = 0;
};

TEST(KVLCodeFunctionWithContext, HidesTheParametersOfTheTwoTypes) {
  const FunctionPtr function = Hidden();
  const WithContextPtr bound = new KVLCodeFunctionWithContext(*function);
  EXPECT_EQ(bound->ToStringCode(), "T f(T a, T b)");
  EXPECT_EQ(&bound->GetBindedFunc(), function.Get());
  EXPECT_EQ(bound->AsFunction(), bound.Get());
  EXPECT_EQ(bound->Init("x"), KVLResult_NotImplemented);
}

TEST(KVLCodeFunctionWithContext, PlaceholdersAreNamelessPointersToNothing) {
  const WithContextPtr bound = new KVLCodeFunctionWithContext(*Hidden());
  const auto& values = bound->GetBindedValues();
  ASSERT_EQ(values.GetCount(), 4);
  EXPECT_TRUE(values[0].IsNull());
  EXPECT_TRUE(values[3].IsNull());
  ASSERT_TRUE(values[1]);
  ASSERT_TRUE(values[2]);
  EXPECT_EQ(values[1]->GetTypeName(), "KVLCodeContext");
  EXPECT_EQ(values[2]->GetTypeName(), "KVLCodeSession");
  EXPECT_EQ(values[1]->GetName(), "");
  EXPECT_FALSE(values[1]->IsValued());
  EXPECT_FALSE(values[2]->IsValued());
}

TEST(KVLCodeFunctionWithContext, TypeNamesAreComparedExactly) {
  const FunctionPtr function = MakeFunction(
      "f", "T", {{"a", "kvlCodeContext"}, {"b", "KVLCodeContext "}, {"c", "KVLCodeSessions"}});
  const WithContextPtr bound = new KVLCodeFunctionWithContext(*function);
  EXPECT_EQ(bound->GetNbParameters(), 3);
}

TEST(KVLCodeFunctionWithContext, HidingTheObjectOfAMethodMakesAPlainFunction) {
  const FunctionPtr function = MakeFunction("f", "T", {{"self", "KVLCodeContext"}, {"a", "T"}});
  function->method = true;
  EXPECT_FALSE(WithContextPtr(new KVLCodeFunctionWithContext(*function))->IsMethod());
}

TEST(KVLCodeFunctionCallerWithContext, FillsInTheContextAndItsSession) {
  const World world;
  KVLCodeSession session;
  KVLCodeContext context(*world.types, *world.conversions);
  context.SetSession(&session);
  const FunctionPtr function = Hidden();
  const WithContextPtr bound = new KVLCodeFunctionWithContext(*function);
  const CallerPtr caller = bound->CreateCaller(context);
  ASSERT_EQ(caller->GetNbArgs(), 2);
  KVLCodeFunctionCaller& inner = *function->lastCaller;
  EXPECT_EQ(inner.GetArg(1)->GetValuePtr(), &context);
  EXPECT_EQ(inner.GetArg(2)->GetValuePtr(), &session);
  EXPECT_EQ(caller->GetArg(1), inner.GetArg(3));
  // The placeholders themselves stay empty.
  EXPECT_FALSE(bound->GetBindedValues()[1]->IsValued());
}

TEST(KVLCodeFunctionCallerWithContext, WithoutASessionTheArgumentWritesNull) {
  const World world;
  const FunctionPtr function = Hidden();
  const WithContextPtr bound = new KVLCodeFunctionWithContext(*function);
  const CallerPtr caller = bound->CreateCaller(world.context);
  MRBUnicodeString text;
  EXPECT_EQ(function->lastCaller->GetArgStr(2, text), KVLResult_Success);
  EXPECT_EQ(text, "NULL");
}

TEST(KVLCodeFunctionCallerWithContext, EachCallerGetsItsOwnContext) {
  const World first;
  const World second;
  const FunctionPtr function = Hidden();
  const WithContextPtr bound = new KVLCodeFunctionWithContext(*function);
  const CallerPtr one = bound->CreateCaller(first.context);
  KVLCodeFunctionCaller& innerOne = *function->lastCaller;
  const CallerPtr two = bound->CreateCaller(second.context);
  EXPECT_EQ(innerOne.GetArg(1)->GetValuePtr(), &first.context);
  EXPECT_EQ(function->lastCaller->GetArg(1)->GetValuePtr(), &second.context);
}

TEST(KVLCodeFunctionCallerWithContext, TheArgumentsOwnTypeNameDecides) {
  const World world;
  KVLCodeSession session;
  KVLCodeContext context(*world.types, *world.conversions);
  context.SetSession(&session);
  const FunctionPtr function = MakeFunction(
      "f", "T", {{"a", "KVLCodeContext"}, {"b", "KVLCodeSession"}, {"c", "KVLCodeContext"}});
  function->makeArg = [](const KVLCodeFunction::Param& param) -> KVLSmartPtr<KVLCodeValue> {
    if (param.name == "a") return new KVLCodePointerValue("", "KVLCodeSession");
    if (param.name == "b") return new KVLCodePointerValue("", "KVLCodeContext");
    return MakeText("other", "old");
  };
  const WithContextPtr bound = new KVLCodeFunctionWithContext(*function);
  const CallerPtr caller = bound->CreateCaller(context);
  KVLCodeFunctionCaller& inner = *function->lastCaller;
  EXPECT_EQ(inner.GetArg(0)->GetValuePtr(), &session);
  EXPECT_EQ(inner.GetArg(1)->GetValuePtr(), &context);
  // An argument of another type is given the text of the empty placeholder, and nothing more.
  EXPECT_EQ(ContentOf(inner.GetArg(2)), "NULL");
}

TEST(KVLCodeFunctionCallerWithContext, AnOpenArgumentIsLeftAloneWhateverItsOwnType) {
  const World world;
  const FunctionPtr function = MakeFunction("f", "T", {{"a", "T"}});
  function->makeArg = [](const KVLCodeFunction::Param&) {
    return KVLSmartPtr<KVLCodeValue>(new KVLCodePointerValue("", "KVLCodeContext"));
  };
  const WithContextPtr bound = new KVLCodeFunctionWithContext(*function);
  const CallerPtr caller = bound->CreateCaller(world.context);
  ASSERT_EQ(caller->GetNbArgs(), 1);
  EXPECT_FALSE(caller->GetArg(0)->IsValued());
}

TEST(KVLCodeFunctionCallerWithContext, ChangeComesForThePlaceholderAndForThePointer) {
  const World world;
  const FunctionPtr function =
      MakeFunction("f", "T", {{"ctx", "KVLCodeContext"}, {"ses", "KVLCodeSession"}});
  function->makeArg = [](const KVLCodeFunction::Param& param) {
    return KVLSmartPtr<KVLCodeValue>(new HookedPointer(param.typeName));
  };
  const WithContextPtr bound = new KVLCodeFunctionWithContext(*function);
  const CallerPtr caller = bound->CreateCaller(world.context);
  KVLCodeFunctionCaller& inner = *function->lastCaller;
  EXPECT_EQ(static_cast<const HookedPointer&>(*inner.GetArg(0)).nbChanges, 2);
  // A session that is null is set too.
  EXPECT_EQ(static_cast<const HookedPointer&>(*inner.GetArg(1)).nbChanges, 2);
}

TEST(KVLCodeFunctionCallerWithContext, EveryParameterOfTheTwoTypesIsFilledIn) {
  const World world;
  KVLCodeSession session;
  KVLCodeContext context(*world.types, *world.conversions);
  context.SetSession(&session);
  const FunctionPtr function = MakeFunction("f", "T",
                                            {{"a", "KVLCodeSession"},
                                             {"b", "KVLCodeContext"},
                                             {"c", "KVLCodeContext"},
                                             {"d", "KVLCodeSession"}});
  const WithContextPtr bound = new KVLCodeFunctionWithContext(*function);
  const CallerPtr caller = bound->CreateCaller(context);
  EXPECT_EQ(caller->GetNbArgs(), 0);
  KVLCodeFunctionCaller& inner = *function->lastCaller;
  EXPECT_EQ(inner.GetArg(0)->GetValuePtr(), &session);
  EXPECT_EQ(inner.GetArg(1)->GetValuePtr(), &context);
  EXPECT_EQ(inner.GetArg(2)->GetValuePtr(), &context);
  EXPECT_EQ(inner.GetArg(3)->GetValuePtr(), &session);
}

TEST(KVLCodeFunctionCallerWithContext, TheSessionIsTheOneOfTheMomentWhenTheCallerIsMade) {
  const World world;
  KVLCodeSession session;
  KVLCodeSession later;
  KVLCodeContext context(*world.types, *world.conversions);
  context.SetSession(&session);
  const FunctionPtr function = Hidden();
  const WithContextPtr bound = new KVLCodeFunctionWithContext(*function);
  const CallerPtr caller = bound->CreateCaller(context);
  context.SetSession(&later);
  EXPECT_EQ(caller->Call(), KVLResult_Success);
  EXPECT_EQ(function->lastCaller->GetArg(2)->GetValuePtr(), &session);
}

TEST(KVLCodeFunctionCallerWithContext, MissingInnerArgumentsAreNotFilledIn) {
  const World world;
  const FunctionPtr function = Hidden();
  function->body = [](Values&) { return MakeText("T", "called"); };
  const WithContextPtr bound = new KVLCodeFunctionWithContext(*function);
  function->makeArg = [](const KVLCodeFunction::Param&) { return nullptr; };
  const CallerPtr null = bound->CreateCaller(world.context);
  EXPECT_EQ(null->GetNbArgs(), 2);
  EXPECT_EQ(null->Call(), KVLResult_Success);
  EXPECT_EQ(ContentOf(null->GetReturnedValue()), "called");
  function->nbArgs = 1;
  EXPECT_EQ(bound->CreateCaller(world.context)->GetNbArgs(), 1);
}

TEST(KVLCodeFunctionCallerWithContext, NeitherContextNorSessionIsOwned) {
  const World world;
  KVLCodeSession session;
  KVLCodeContext context(*world.types, *world.conversions);
  context.SetSession(&session);
  const WithContextPtr bound = new KVLCodeFunctionWithContext(*Hidden());
  for (int i = 0; i < 2; ++i)
    EXPECT_EQ(bound->CreateCaller(context)->Call(), KVLResult_Success);
  EXPECT_EQ(context.GetSession(), &session);
}

TEST(KVLCodeFunctionCallerWithContext, WithoutAnInnerCallerThereIsNothingToFill) {
  const World world;
  const FunctionPtr function = Hidden();
  function->makesCallers = false;
  const CallerPtr caller =
      WithContextPtr(new KVLCodeFunctionWithContext(*function))->CreateCaller(world.context);
  ASSERT_TRUE(caller);
  EXPECT_EQ(caller->Call(), KVLResult_Success);
  EXPECT_TRUE(caller->GetReturnedValue().IsNull());
}

TEST(KVLCodeFunctionCallerWithContext, IsCalledByTextWithoutTheHiddenParameters) {
  const World world;
  const void* seen = nullptr;
  const FunctionPtr function = Hidden();
  function->body = [&seen](Values& args) {
    seen = args[1]->GetValuePtr();
    return MakeText("T", ContentOf(args[0]) + ContentOf(args[3]));
  };
  const WithContextPtr bound = new KVLCodeFunctionWithContext(*function);
  Texts texts = MakeTexts({"x", "y"});
  MRBUnicodeString result;
  EXPECT_EQ(bound->ParseAndCall(world.context, texts, result), KVLResult_Success);
  EXPECT_EQ(result, "xy");
  EXPECT_EQ(seen, &world.context);
  Texts tooMany = MakeTexts({"x", "y", "z"});
  EXPECT_EQ(bound->ParseAndCall(world.context, tooMany, result), KVLResult_InvalidArgument);
}

TEST(KVLCodeFunctionCallerWithContext, ACopySharesTheInnerCaller) {
  const World world;
  const FunctionPtr function = Hidden();
  const WithContextPtr bound = new KVLCodeFunctionWithContext(*function);
  const KVLSmartPtr<KVLCodeFunctionCallerWithContext> caller =
      new KVLCodeFunctionCallerWithContext(*bound, world.context);
  const KVLSmartPtr<KVLCodeFunctionCallerWithContext> copy =
      new KVLCodeFunctionCallerWithContext(*caller);
  EXPECT_EQ(function->nbCallersMade, 1);
  EXPECT_EQ(copy->GetArg(0), caller->GetArg(0));
}

}  // namespace
