#include "KVLCodeFunction.h"

#include <gtest/gtest.h>

#include "support/FailingAllocations.h"
#include "support/TestObjects.h"

namespace {

using kvltest::FunctionPtr;
using kvltest::In;
using kvltest::InOut;
using kvltest::MakeFunction;
using kvltest::Out;
using kvltest::Texts;

// A function that overrides nothing but what it must.
class PlainFunction : public KVLCodeFunction {
 public:
  using KVLCodeFunction::KVLCodeFunction;
  bool IsMethod() const override { return false; }
  KVLSmartPtr<KVLCodeFunctionCaller> CreateCaller(const KVLCodeContext&) const override {
    return nullptr;
  }
};

using PlainPtr = KVLSmartPtr<PlainFunction>;

// The example of the two printed forms.
FunctionPtr Example() {
  return MakeFunction("f", "int", {{"x", "double", In, "1"}, {"r", "int", Out}});
}

TEST(KVLCodeFunction, ByNameAloneHasNoParametersAndNoReturnType) {
  const PlainPtr function = new PlainFunction("f");
  EXPECT_EQ(function->GetName(), "f");
  EXPECT_EQ(function->GetNbParameters(), 0);
  EXPECT_EQ(function->GetParams().GetCount(), 0);
  EXPECT_EQ(function->GetReturnTypeName(), "");
}

TEST(KVLCodeFunction, ParametersAreNumberedFromOneAndElseEmpty) {
  const PlainPtr function = new PlainFunction("f", 11);
  ASSERT_EQ(function->GetNbParameters(), 11);
  EXPECT_EQ(function->GetParam(0).name, "param1");
  EXPECT_EQ(function->GetParam(1).name, "param2");
  EXPECT_EQ(function->GetParam(10).name, "param11");
  for (const KVLCodeFunction::Param& param : function->GetParams()) {
    EXPECT_EQ(param.typeName, "");
    EXPECT_EQ(param.defaultValue, "");
    EXPECT_EQ(param.direction, 0U);
  }
}

TEST(KVLCodeFunction, ACountBelowOneGivesNoParameters) {
  EXPECT_EQ(PlainPtr(new PlainFunction("f", 0))->GetNbParameters(), 0);
  EXPECT_EQ(PlainPtr(new PlainFunction("f", -1))->GetNbParameters(), 0);
  EXPECT_EQ(PlainPtr(new PlainFunction("f", -2147483647 - 1))->GetNbParameters(), 0);
}

TEST(KVLCodeFunction, ACopyHasParametersAndReturnTypeOfItsOwn) {
  const FunctionPtr function = Example();
  const FunctionPtr copy = new kvltest::TestFunction(*function);
  EXPECT_EQ(copy->ToString(), function->ToString());
  EXPECT_EQ(copy->Init("renamed"), KVLResult_Success);
  EXPECT_EQ(copy->GetParam(0).name, "renamed");
  EXPECT_EQ(function->GetParam(0).name, "x");
}

TEST(KVLCodeFunction, ACopyTakesTheMessagesAlongAndGathersItsOwnFromThenOn) {
  const FunctionPtr function = Example();
  EXPECT_EQ(function->Init("a,b,c"), KVLResult_Success);
  const FunctionPtr copy = new kvltest::TestFunction(*function);
  ASSERT_EQ(copy->Check().GetCount(), 1);
  EXPECT_EQ(copy->Check()[0], "Too many parameters. Expected 2, got 3.");
  EXPECT_EQ(copy->Init("a="), KVLResult_Success);
  EXPECT_EQ(copy->Check().GetCount(), 2);
  EXPECT_EQ(function->Check().GetCount(), 1);
}

TEST(KVLCodeFunction, IsAFunctionAndNothingElse) {
  const PlainPtr function = new PlainFunction("f");
  KVLCodeObject& object = *function;
  const KVLCodeObject& constObject = object;
  EXPECT_EQ(object.AsFunction(), function.Get());
  EXPECT_EQ(constObject.AsFunction(), function.Get());
  EXPECT_EQ(object.AsType(), nullptr);
  EXPECT_EQ(object.AsVariable(), nullptr);
  EXPECT_EQ(object.AsEnv(), nullptr);
  EXPECT_EQ(constObject.AsType(), nullptr);
  EXPECT_EQ(constObject.AsVariable(), nullptr);
  EXPECT_EQ(constObject.AsEnv(), nullptr);
}

// The printed forms.

TEST(KVLCodeFunctionText, ClosesItsBraceWithARoundBracket) {
  EXPECT_EQ(Example()->ToString(),
            "Function { name=f, returnType=int, params=[[in] double x=1, [out] int r])");
}

TEST(KVLCodeFunctionText, ShowsEveryDirection) {
  EXPECT_EQ(
      MakeFunction("f", "", {{"a", "A", 0}, {"b", "B", In}, {"c", "C", Out}, {"d", "D", InOut}})
          ->ToString(),
      "Function { name=f, returnType=, params=[[] A a, [in] B b, [out] C c, [inout] D d])");
}

TEST(KVLCodeFunctionText, OtherDirectionBitsDoNotShow) {
  EXPECT_EQ(MakeFunction("f", "int", {{"a", "A", 4}})->ToString(),
            "Function { name=f, returnType=int, params=[[] A a])");
}

TEST(KVLCodeFunctionText, WithoutParametersTheListIsEmpty) {
  const PlainPtr function = new PlainFunction("f");
  EXPECT_EQ(function->ToString(), "Function { name=f, returnType=, params=[])");
  EXPECT_EQ(function->ToStringCode(), " f()");
}

TEST(KVLCodeFunctionText, IsADeclarationAsCode) {
  EXPECT_EQ(Example()->ToStringCode(), "int f(double x=1, int& r)");
}

TEST(KVLCodeFunctionText, TheInputBitDoesNotShowInTheDeclaration) {
  EXPECT_EQ(MakeFunction("f", "int", {{"a", "A", 0}, {"b", "B", In}, {"c", "C", InOut, "3"}})
                ->ToStringCode(),
            "int f(A a, B b, C& c=3)");
}

TEST(KVLCodeFunctionText, UndescribedParametersPrintTheirNamesAlone) {
  const PlainPtr function = new PlainFunction("f", 2);
  EXPECT_EQ(function->ToString(),
            "Function { name=f, returnType=, params=[[]  param1, []  param2])");
  EXPECT_EQ(function->ToStringCode(), " f( param1,  param2)");
}

// The parameter text.

struct InitCase {
  const char* text;
  int nbParams;
  const char* expected;  // the declaration
  int nbMessages;
};

TEST(KVLCodeFunctionInit, NamesAndDefaultsAsTheTextSays) {
  const InitCase cases[] = {
      {"", 2, " f( param1,  param2)", 0},
      {"a", 2, " f( a,  param2)", 0},
      {"a,b", 2, " f( a,  b)", 0},
      {"a, b = 2, c = {1, 2}", 3, " f( a,  b=2,  c={1, 2})", 0},
      {"x,,z=\"p,q\"", 3, " f( x,  param2,  z=\"p,q\")", 0},
      {"s=\"x,y\", t", 2, " f( s=\"x,y\",  t)", 0},
      {"=5", 1, " f( param1=5)", 0},
      {" = 5 ", 1, " f( param1=5)", 0},
      {"a=", 1, " f( a)", 1},
      {"=", 1, " f( param1)", 1},
      {"a= \t\n ", 1, " f( a)", 1},
      {"a=b=c", 1, " f( a=b=c)", 0},
      {"a==", 1, " f( a==)", 0},
      {"a(x=1)", 1, " f( a(x=1))", 0},
      {"\"q=r\"", 1, " f( \"q=r\")", 0},
      {"a=(1,2),b=[3,4]", 2, " f( a=(1,2),  b=[3,4])", 0},
      {"a=(1,b,c", 3, " f( a=(1,b,c,  param2,  param3)", 0},
      {"a=\"\\\",\",b", 2, " f( a=\"\\\",\",  b)", 0},
      {"\ta\n,\r b c \f", 2, " f( a,  b c)", 0},
      {"  ,b", 2, " f( param1,  b)", 0},
      {",", 2, " f( param1,  param2)", 0},
      {"a,a", 2, " f( a,  a)", 0},
      {"a,b,", 2, " f( a,  b)", 0},
      {"a,b,c", 2, " f( a,  b)", 1},
      {"a,b,", 1, " f( a)", 1},
      {"a", 0, " f()", 1},
  };
  for (const InitCase& item : cases) {
    const PlainPtr function = new PlainFunction("f", item.nbParams);
    EXPECT_EQ(function->Init(item.text), KVLResult_Success) << item.text;
    EXPECT_EQ(function->ToStringCode(), item.expected) << item.text;
    EXPECT_EQ(function->Check().GetCount(), item.nbMessages) << item.text;
    EXPECT_EQ(function->GetNbParameters(), item.nbParams) << item.text;
  }
}

TEST(KVLCodeFunctionInit, AnEqualsSignAtAnyDepthSeparatesNameAndDefault) {
  const PlainPtr function = new PlainFunction("f", 1);
  EXPECT_EQ(function->Init("g(x = 1)"), KVLResult_Success);
  EXPECT_EQ(function->GetParam(0).name, "g(x");
  EXPECT_EQ(function->GetParam(0).defaultValue, "1)");
}

TEST(KVLCodeFunctionInit, TooManyItemsLeaveAMessageAndTheFirstOnesCount) {
  const PlainPtr function = new PlainFunction("f", 2);
  EXPECT_EQ(function->Init("a,b,c"), KVLResult_Success);
  const Texts messages = function->Check();
  ASSERT_EQ(messages.GetCount(), 1);
  EXPECT_EQ(messages[0], "Too many parameters. Expected 2, got 3.");
  EXPECT_EQ(function->GetParam(1).name, "b");
}

TEST(KVLCodeFunctionInit, AnItemForAFunctionWithoutParametersIsTooMany) {
  const PlainPtr function = new PlainFunction("f");
  EXPECT_EQ(function->Init("a"), KVLResult_Success);
  const Texts messages = function->Check();
  ASSERT_EQ(messages.GetCount(), 1);
  EXPECT_EQ(messages[0], "Too many parameters. Expected 0, got 1.");
}

TEST(KVLCodeFunctionInit, AnEmptyDefaultLeavesAMessageWithTheFormerName) {
  const PlainPtr function = new PlainFunction("f", 2);
  EXPECT_EQ(function->Init("a=, b ="), KVLResult_Success);
  EXPECT_EQ(function->GetParam(0).name, "a");
  EXPECT_EQ(function->Init("c= "), KVLResult_Success);
  const Texts messages = function->Check();
  ASSERT_EQ(messages.GetCount(), 3);
  EXPECT_EQ(messages[0], "Default value for parameter 'param1' provided but empty.");
  EXPECT_EQ(messages[1], "Default value for parameter 'param2' provided but empty.");
  EXPECT_EQ(messages[2], "Default value for parameter 'a' provided but empty.");
}

TEST(KVLCodeFunctionInit, TheMessageAboutTooManyComesFirst) {
  const PlainPtr function = new PlainFunction("f", 1);
  EXPECT_EQ(function->Init("a=,b="), KVLResult_Success);
  const Texts messages = function->Check();
  ASSERT_EQ(messages.GetCount(), 2);
  EXPECT_EQ(messages[0], "Too many parameters. Expected 1, got 2.");
  EXPECT_EQ(messages[1], "Default value for parameter 'param1' provided but empty.");
}

TEST(KVLCodeFunctionInit, AnEmptyDefaultTakesTheFormerOneAway) {
  const PlainPtr function = new PlainFunction("f", 1);
  EXPECT_EQ(function->Init("a=1"), KVLResult_Success);
  EXPECT_EQ(function->Init("="), KVLResult_Success);
  EXPECT_EQ(function->ToStringCode(), " f( a)");
}

TEST(KVLCodeFunctionInit, AgainChangesWhatItReachesAndLeavesTheRest) {
  const PlainPtr function = new PlainFunction("f", 3);
  EXPECT_EQ(function->Init("a=1,b=2,c=3"), KVLResult_Success);
  EXPECT_EQ(function->Init("d,=4"), KVLResult_Success);
  EXPECT_EQ(function->ToStringCode(), " f( d=1,  b=4,  c=3)");
}

TEST(KVLCodeFunctionInit, LeavesTypesAndDirectionsAlone) {
  const FunctionPtr function = Example();
  EXPECT_EQ(function->Init("a=2,b"), KVLResult_Success);
  EXPECT_EQ(function->ToStringCode(), "int f(double a=2, int& b)");
}

TEST(KVLCodeFunctionInit, ReturnsWhatTheHookReturnsWhateverTheMessages) {
  const FunctionPtr function = Example();
  for (const long code : {0L, 3L, -3L}) {
    function->initResult = code;
    EXPECT_EQ(function->Init("a=,b,c"), code);
  }
  EXPECT_EQ(function->nbInits, 3);
  EXPECT_EQ(function->Check().GetCount(), 6);
}

TEST(KVLCodeFunctionInit, TheHookIsCalledForAnEmptyTextToo) {
  const FunctionPtr function = Example();
  function->initResult = -3;
  EXPECT_EQ(function->Init(""), -3);
  EXPECT_EQ(function->nbInits, 1);
}

TEST(KVLCodeFunctionInit, TheHookComesLast) {
  class Hooked : public PlainFunction {
   public:
    Hooked() : PlainFunction("f", 1) {}
    MRBUnicodeString seen;

   protected:
    long InitImpl() override {
      seen = ToStringCode();
      return KVLResult_Success;
    }
  };
  const KVLSmartPtr<Hooked> function = new Hooked();
  EXPECT_EQ(function->Init("a=1"), KVLResult_Success);
  EXPECT_EQ(function->seen, " f( a=1)");
}

TEST(KVLCodeFunctionInit, AFailedSplitGivesItsCodeAndChangesNothing) {
  if (!FailingAllocations::IsAvailable()) GTEST_SKIP();
  const FunctionPtr function = Example();
  const FailingAllocations failing(1);
  EXPECT_EQ(function->Init("a,b,c"), KVLResult_Failure);
  EXPECT_TRUE(failing.HasFailed());
  EXPECT_EQ(function->ToStringCode(), "int f(double x=1, int& r)");
  EXPECT_EQ(function->Check().GetCount(), 0);
  EXPECT_EQ(function->nbInits, 0);
}

TEST(KVLCodeFunctionInit, MayBeGivenATextOfTheFunctionsOwn) {
  const PlainPtr function = new PlainFunction("f", 2);
  EXPECT_EQ(function->Init("a=(x=1,y)"), KVLResult_Success);
  EXPECT_EQ(function->Init(function->GetParam(0).defaultValue), KVLResult_Success);
  EXPECT_EQ(function->ToStringCode(), " f( (x=1,y),  param2)");
  EXPECT_EQ(function->Init(function->GetParam(0).name), KVLResult_Success);
  EXPECT_EQ(function->ToStringCode(), " f( (x=1,y),  param2)");
}

TEST(KVLCodeFunctionInit, ALongTextIsTakenItemByItem) {
  constexpr int Many = 2000;
  MRBUnicodeString text;
  for (int i = 0; i < Many; ++i)
    text += "p" + KVLStringOperations::FromNum(i) + " = " + KVLStringOperations::FromNum(i) + ",";
  const PlainPtr function = new PlainFunction("f", Many);
  EXPECT_EQ(function->Init(text), KVLResult_Success);
  EXPECT_EQ(function->GetParam(Many - 1).name, "p1999");
  EXPECT_EQ(function->GetParam(Many - 1).defaultValue, "1999");
  EXPECT_EQ(function->Check().GetCount(), 0);
}

}  // namespace
