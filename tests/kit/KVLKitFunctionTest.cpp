#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

#include "KVLCodeFunctionBinding.h"
#include "KitModule.h"
#include "KitShapes.h"

namespace {

// Reads nothing, and throws.
struct Sour {};
bool ParseSour(const MRBUnicodeString& text, Sour&) {
  throw std::out_of_range(text.ConvertToChar());
}
MRBUnicodeString PrintSour(const Sour&) {
  return "sour";
}

double Hypot(double a, double b) {
  return std::hypot(a, b);
}
int Twice(int number) noexcept {
  return 2 * number;
}
const MRBUnicodeString& Longer(const MRBUnicodeString& a, const MRBUnicodeString& b) {
  return b.GetLengthInByte() > a.GetLengthInByte() ? b : a;
}
int calls = 0;

}  // namespace

KVL_TYPE(Sour, "Sour", ParseSour, PrintSour);
KVL_FUNCTION("kit/sour", "a = sweet", "", [](const Sour&) { return 1; });
KVL_FUNCTION("kit/hypot", "a, b = 4", "Length of (a, b).", Hypot);
KVL_FUNCTION("kit/twice", "number", "", &Twice);
KVL_FUNCTION("kit/longer", "a, b", "", Longer);
KVL_FUNCTION("kit/sine", "angle", "", kvl::Overload<double(double)>(std::sin));
KVL_FUNCTION("kit/polar", "radius, angle = 0", "", &Spot::Polar);
KVL_FUNCTION("kit/lerp", "a, b, t = 0.5", "Between a and b.",
             [](double a, double b, double t) { return a + (b - a) * t; });
KVL_FUNCTION("_members/Spot/DistanceTo", "this, other = (0, 0)", "", &Spot::DistanceTo);
KVL_FUNCTION("_members/Spot/Move", "this, dx, dy = 0", "", &Spot::Move);
KVL_FUNCTION("_members/Spot/Mirror", "this", "", [](Spot& spot) { spot.x = -spot.x; });
KVL_FUNCTION("kit/divmod", "a, b, quotient, remainder", "",
             [](int a, int b, kvl::Out<int> quotient, kvl::Out<int> remainder) {
               quotient = a / b;
               remainder = a % b;
             });
KVL_FUNCTION("kit/increment", "number, by = 1", "", [](int& number, const int& by) {
  number += by;
  return number;
});
KVL_FUNCTION("kit/nothing", "", "", [] { ++calls; });
KVL_FUNCTION("kit/fail", "text", "",
             [](std::string text) -> int { throw std::runtime_error(text); });
KVL_FUNCTION("kit/fail_half_way", "list, number", "",
             [](KVLVector<int>& list, kvl::Out<int> number) {
               list.Append(7);
               number = 7;
               throw std::runtime_error("half way");
             });
KVL_FUNCTION("kit/is_known", "type, times = 1", "",
             [](const KVLCodeContext& context, const MRBUnicodeString& type,
                KVLCodeSession* session, int times) {
               const bool isKnown = !context.GetTypeFromName(type).IsNull();
               return std::to_string(isKnown ? times : 0) + (session ? " session" : "");
             });
KVL_FUNCTION("kit/context_alone", "", "",
             [](const KVLCodeContext& context) { return context.GetSession() == nullptr; });
KVL_FUNCTION("kit/text", "text", "", [](const std::string& text) { return text + "!"; });
KVL_FUNCTION("kit/change_text", "text", "", [](std::string& text) { text += "!"; });
KVL_FUNCTION("kit/sum", "list = [1, 2, 3]", "", [](const KVLVector<double>& list) {
  double sum = 0;
  for (const double element : list)
    sum += element;
  return sum;
});
KVL_FUNCTION("kit/upto", "count", "", [](int count) {
  std::vector<int> list;
  for (int i = 1; i <= count; ++i)
    list.push_back(i);
  return list;
});
KVL_FUNCTION("kit/double_all", "list", "", [](std::vector<std::string>& list) {
  for (std::string& text : list)
    text += text;
});
KVL_FUNCTION("kit/split", "list, even, odd", "",
             [](const KVLVector<int>& list, kvl::Out<KVLVector<int>> even,
                kvl::Out<KVLVector<int>> odd) {
               for (const int number : list)
                 (number % 2 == 0 ? even : odd)->Append(number);
             });
KVL_FUNCTION("kit/nested", "lists", "",
             [](const std::vector<std::vector<int>>& lists) { return lists.size() == 2; });
KVL_FUNCTION("kit/first", "list", "",
             [](const KVLCodeListValue::Elements& list) { return kvl::Any(list[0]); });
KVL_FUNCTION("kit/append", "list, element", "",
             [](KVLCodeListValue::Elements& list, const kvl::Any& element) {
               list.Append(element.GetValue());
             });
KVL_FUNCTION("kit/typeof", "value = NULL", "", [](const kvl::Any& value) {
  return value ? value->GetTypeName() : MRBUnicodeString("nothing");
});
KVL_FUNCTION("kit/next_hue", "hue = Red", "",
             [](Hue hue) { return hue == Hue::Red ? Hue::Green : Hue::Blue; });
KVL_FUNCTION("kit/corner", "grid", "", [](const Grid& grid) { return grid.cells[8]; });
KVL_FUNCTION("kit/surplus", "a = x, b", "", [](int a) { return a; });

namespace {

TEST(KVLKitFunction, APlainFunctionIsCalledByText) {
  EXPECT_EQ(KitResult("kit/hypot", {"3", "4"}), "5");
  EXPECT_EQ(KitResult("kit/twice", {"21"}), "42");
  EXPECT_EQ(KitResult("kit/longer", {"a", "bc"}), "bc");
}

TEST(KVLKitFunction, AChosenOverloadIsPublished) {
  EXPECT_EQ(KitResult("kit/sine", {"0"}), "0");
  EXPECT_EQ(KitDeclaration("kit/sine"), "double sine(double angle)");
}

TEST(KVLKitFunction, AStaticMethodIsAFunction) {
  EXPECT_EQ(KitResult("kit/polar", {"2"}), "(2, 0)");
  EXPECT_FALSE(KitFind("kit/polar")->IsMethod());
}

TEST(KVLKitFunction, ALambdaWithCommasIsPublished) {
  EXPECT_EQ(KitResult("kit/lerp", {"10", "20", "0.25"}), "12.5");
}

TEST(KVLKitFunction, TheDeclarationTellsNamesTypesAndDefaults) {
  EXPECT_EQ(KitDeclaration("kit/hypot"), "double hypot(double a, double b=4)");
  EXPECT_EQ(KitDeclaration("kit/divmod"),
            "void divmod(int a, int b, int& quotient, int& remainder)");
  EXPECT_EQ(KitDeclaration("kit/sum"), "double sum(KVLVector<double> list=[1, 2, 3])");
  EXPECT_EQ(KitDeclaration("kit/first"), "any first(KVLVector<KVLCodeValue_var> list)");
  EXPECT_EQ(KitDeclaration("kit/nested"), "bool nested(KVLVector<KVLVector<int>> lists)");
  EXPECT_EQ(KitDeclaration("kit/text"), "string text(string text)");
}

TEST(KVLKitFunction, DirectionsFollowTheCppTypes) {
  const KVLCodeFunction& divmod = *KitFind("kit/divmod");
  EXPECT_EQ(divmod.GetParam(0).direction, 1u);
  EXPECT_EQ(divmod.GetParam(2).direction, 2u);
  const KVLCodeFunction& increment = *KitFind("kit/increment");
  EXPECT_EQ(increment.GetParam(0).direction, 3u);
  EXPECT_EQ(increment.GetParam(1).direction, 1u);
}

TEST(KVLKitFunction, TrailingArgumentsMayBeLeftOut) {
  EXPECT_EQ(KitResult("kit/hypot", {"3"}), "5");
  EXPECT_EQ(KitResult("kit/lerp", {"10", "20"}), "15");
  EXPECT_EQ(KitResult("kit/sum", {}), "6");
  EXPECT_EQ(KitResult("kit/next_hue", {}), "Green");
  EXPECT_EQ(KitResult("kit/typeof", {}), "nothing");
  EXPECT_EQ(KitResult("_members/Spot/DistanceTo", {"(3, 4)"}), "5");
}

TEST(KVLKitFunction, ArgumentsWithoutDefaultsAreFresh) {
  EXPECT_EQ(KitResult("kit/hypot", {}), "4");
  EXPECT_EQ(KitResult("kit/longer", {}), "");
  EXPECT_EQ(KitResult("kit/corner", {}), "1");
}

TEST(KVLKitFunction, EveryCallerBeginsWithTheDefaults) {
  const KVLCodeContext context;
  const KVLCodeFunction& increment = *KitFind("kit/increment");
  for (int round = 0; round < 3; ++round) {
    const KVLSmartPtr<KVLCodeFunctionCaller> caller = increment.CreateCaller(context);
    EXPECT_EQ(caller->SetArgStr(0, "5"), 0);
    EXPECT_EQ(caller->SetArgStr(1, round == 0 ? "10" : "1"), 0);
    EXPECT_EQ(caller->Call(), 0);
    const KVLSmartPtr<KVLCodeFunctionCaller> other = increment.CreateCaller(context);
    MRBUnicodeString text;
    EXPECT_EQ(other->GetArgStr(0, text), 0);
    EXPECT_EQ(text, "0");
    EXPECT_EQ(other->GetArgStr(1, text), 0);
    EXPECT_EQ(text, "1");
  }
}

TEST(KVLKitFunction, DefaultsHoldThroughABinding) {
  const KVLSmartPtr<KVLCodeObject> lerp = KVLCodeEnv::GetDefault().FindObject("kit/lerp");
  const KVLSmartPtr<const KVLCodeValue> ten(kvl::MakeValueOf(10.0).Get());
  const KVLSmartPtr<KVLCodeFunctionBinding> fromTen =
      new KVLCodeFunctionBinding(*lerp->AsFunction(), ten);
  KVLVector<MRBUnicodeString> texts;
  texts.Append("20");
  MRBUnicodeString result;
  EXPECT_EQ(fromTen->ParseAndCall(KVLCodeContext(), texts, result), 0);
  EXPECT_EQ(result, "15");
}

TEST(KVLKitFunction, OutputsComeBack) {
  EXPECT_EQ(KitArgument("kit/divmod", {"17", "5", "", ""}, 2), "3");
  EXPECT_EQ(KitArgument("kit/divmod", {"17", "5", "", ""}, 3), "2");
  EXPECT_EQ(KitResult("kit/divmod", {"17", "5"}), "");
}

TEST(KVLKitFunction, AReferenceGoesInAndOut) {
  EXPECT_EQ(KitArgument("kit/increment", {"41"}, 0), "42");
  EXPECT_EQ(KitResult("kit/increment", {"41", "2"}), "43");
  EXPECT_EQ(KitArgument("kit/change_text", {"hey"}, 0), "hey!");
}

TEST(KVLKitFunction, AVoidFunctionReturnsAValueOfTypeVoid) {
  const KVLCodeContext context;
  const KVLSmartPtr<KVLCodeFunctionCaller> caller = KitFind("kit/nothing")->CreateCaller(context);
  const int before = calls;
  EXPECT_EQ(caller->Call(), 0);
  EXPECT_EQ(calls, before + 1);
  ASSERT_TRUE(caller->GetReturnedValue());
  EXPECT_EQ(caller->GetReturnedValue()->GetTypeName(), "void");
  MRBUnicodeString text = "untouched";
  EXPECT_EQ(caller->GetReturnedValueStr(text), 0);
  EXPECT_EQ(text, "");
}

TEST(KVLKitFunction, AMethodTakesItsObjectFirst) {
  EXPECT_TRUE(KitFind("_members/Spot/DistanceTo")->IsMethod());
  EXPECT_EQ(KitDeclaration("_members/Spot/DistanceTo"),
            "double DistanceTo(Spot this, Spot other=(0, 0))");
  EXPECT_EQ(KitDeclaration("_members/Spot/Move"), "void Move(Spot& this, double dx, double dy=0)");
  EXPECT_EQ(KitArgument("_members/Spot/Move", {"(1, 2)", "0.5"}, 0), "(1.5, 2)");
}

TEST(KVLKitFunction, AFunctionWhoseFirstParameterIsNamedThisIsAMethod) {
  EXPECT_TRUE(KitFind("_members/Spot/Mirror")->IsMethod());
  EXPECT_EQ(KitArgument("_members/Spot/Mirror", {"(1, 2)"}, 0), "(-1, 2)");
  EXPECT_FALSE(KitFind("kit/hypot")->IsMethod());
}

TEST(KVLKitFunction, ExceptionsPassThrough) {
  try {
    (void)KitCall("kit/fail", {"the reason"});
    FAIL() << "nothing was thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "the reason");
  }
}

TEST(KVLKitFunction, AListThatWasChangedBeforeAnExceptionIsAsItWas) {
  const KVLCodeContext context;
  const KVLSmartPtr<KVLCodeFunctionCaller> caller =
      KitFind("kit/fail_half_way")->CreateCaller(context);
  EXPECT_EQ(caller->SetArgStr(0, "[1]"), 0);
  EXPECT_THROW((void)caller->Call(), std::runtime_error);
  MRBUnicodeString text;
  EXPECT_EQ(caller->GetArgStr(0, text), 0);
  EXPECT_EQ(text, "[1]");
}

class Session final : public KVLCodeSession {
 public:
  KVLSmartPtr<KVLCodeValue> FindVariable(const MRBUnicodeString&) const override { return nullptr; }
  long SetVariable(const MRBUnicodeString&, KVLSmartPtr<KVLCodeValue>) override { return 0; }
  bool RemoveVariable(const MRBUnicodeString&) override { return false; }
  void GetVariableNames(KVLVector<MRBUnicodeString>&) const override {}
  bool IsInterrupted() const override { return false; }
};

TEST(KVLKitFunction, ContextAndSessionAreFilledAndNoParameters) {
  EXPECT_EQ(KitDeclaration("kit/is_known"), "string is_known(string type, int times=1)");
  EXPECT_EQ(KitResult("kit/is_known", {"Spot"}), "1");
  EXPECT_EQ(KitResult("kit/is_known", {"Spot", "5"}), "5");
  EXPECT_EQ(KitResult("kit/is_known", {"Nothing"}), "0");
  Session session;
  EXPECT_EQ(KitCall("kit/is_known", {"Spot"}, &session).result, "1 session");
  EXPECT_EQ(KitDeclaration("kit/context_alone"), "bool context_alone()");
  EXPECT_EQ(KitResult("kit/context_alone", {}), "true");
}

TEST(KVLKitFunction, StandardStringsAreTexts) {
  EXPECT_EQ(KitResult("kit/text", {"a"}), "a!");
}

TEST(KVLKitFunction, ListsOfAKnownTypeAreVectors) {
  EXPECT_EQ(KitResult("kit/sum", {"[0.5, 1]"}), "1.5");
  EXPECT_EQ(KitResult("kit/upto", {"3"}), "[1,2,3]");
  EXPECT_EQ(KitResult("kit/upto", {"0"}), "[]");
  EXPECT_EQ(KitArgument("kit/double_all", {"[a, \"b, c\"]"}, 0), "[\"aa\",\"b, cb, c\"]");
  EXPECT_EQ(KitArgument("kit/split", {"[1, 2, 3]", "", ""}, 1), "[2]");
  EXPECT_EQ(KitArgument("kit/split", {"[1, 2, 3]", "", ""}, 2), "[1,3]");
  EXPECT_EQ(KitResult("kit/nested", {"[[1, 2], []]"}), "true");
  EXPECT_EQ(KitResult("kit/sum", {"NULL"}), "0");
}

TEST(KVLKitFunction, AnElementOfAnotherTypeIsConverted) {
  const KVLCodeContext context;
  const KVLSmartPtr<KVLCodeFunctionCaller> caller = KitFind("kit/sum")->CreateCaller(context);
  auto* const list = new KVLCodeListValue("", "KVLVector<double>");
  const KVLSmartPtr<const KVLCodeValue> held(list);
  KVLCodeListValue::Elements& elements = list->MakeOwnElements();
  elements.Append(kvl::MakeValueOf(3));
  elements.Append(kvl::MakeValueOf(0.5));
  EXPECT_EQ(caller->SetArg(0, held), 0);
  EXPECT_EQ(caller->Call(), 0);
  MRBUnicodeString text;
  EXPECT_EQ(caller->GetReturnedValueStr(text), 0);
  EXPECT_EQ(text, "3.5");
}

TEST(KVLKitFunction, AnElementThatCannotBeConvertedIsNamed) {
  const KVLCodeContext context;
  const KVLSmartPtr<KVLCodeFunctionCaller> caller = KitFind("kit/sum")->CreateCaller(context);
  auto* const list = new KVLCodeListValue("", "KVLVector<double>");
  const KVLSmartPtr<const KVLCodeValue> held(list);
  KVLCodeListValue::Elements& elements = list->MakeOwnElements();
  elements.Append(kvl::MakeValueOf(0.5));
  elements.Append(kvl::MakeValueOf(MRBUnicodeString("x")));
  EXPECT_EQ(caller->SetArg(0, held), 0);
  try {
    (void)caller->Call();
    FAIL() << "nothing was thrown";
  } catch (const std::invalid_argument& error) {
    EXPECT_STREQ(error.what(), "element 1 is no double");
  }
  list->MakeOwnElements().Append(nullptr);
  EXPECT_EQ(caller->SetArg(0, held), 0);
  EXPECT_THROW((void)caller->Call(), std::invalid_argument);
}

TEST(KVLKitFunction, AChangedListLeavesTheOneItWasAssignedFromAlone) {
  const KVLCodeContext context;
  const KVLSmartPtr<KVLCodeFunctionCaller> caller = KitFind("kit/append")->CreateCaller(context);
  auto* const list = new KVLCodeListValue("");
  const KVLSmartPtr<const KVLCodeValue> held(list);
  list->MakeOwnElements().Append(kvl::MakeValueOf(1));
  EXPECT_EQ(caller->SetArg(0, held), 0);
  EXPECT_EQ(caller->SetArgStr(1, "two"), 0);
  EXPECT_EQ(caller->Call(), 0);
  MRBUnicodeString text;
  EXPECT_EQ(caller->GetArgStr(0, text), 0);
  EXPECT_EQ(text, "[1,\"two\"]");
  EXPECT_EQ(held->GetValueStr(context, text), 0);
  EXPECT_EQ(text, "[1]");
}

TEST(KVLKitFunction, AnyTakesAndGivesValuesOfEveryType) {
  EXPECT_EQ(KitResult("kit/typeof", {"12"}), "int");
  EXPECT_EQ(KitResult("kit/typeof", {"[1]"}), "KVLVector<KVLCodeValue_var>");
  EXPECT_EQ(KitResult("kit/typeof", {"Spot(1, 2)"}), "Spot");
  EXPECT_EQ(KitResult("kit/first", {"[Spot(1, 2), 3]"}), "Spot(1, 2)");
}

TEST(KVLKitFunction, EnumerationsAndBigTypesArePassed) {
  EXPECT_EQ(KitResult("kit/next_hue", {"Green"}), "Blue");
  EXPECT_EQ(KitResult("kit/corner", {"(1, 2, 3, 4, 5, 6, 7, 8, 9)"}), "9");
}

TEST(KVLKitFunction, ADefaultThatIsNotReadAndASurplusNameLeaveMessages) {
  const KVLVector<MRBUnicodeString> messages = KitFind("kit/surplus")->Check();
  ASSERT_EQ(messages.GetCount(), 2);
  EXPECT_EQ(messages[0], "Too many parameters. Expected 1, got 2.");
  EXPECT_EQ(messages[1], "Default value 'x' of parameter 'a' is no int.");
  EXPECT_EQ(KitResult("kit/surplus", {}), "0");
}

TEST(KVLKitFunction, AParserThatThrowsOnADefaultLeavesAMessage) {
  ASSERT_TRUE(KitFind("kit/sour"));
  const KVLVector<MRBUnicodeString> messages = KitFind("kit/sour")->Check();
  ASSERT_EQ(messages.GetCount(), 1);
  EXPECT_EQ(messages[0], "Default value 'sweet' of parameter 'a' is no Sour.");
}

TEST(KVLKitFunction, ACallThatIsMadeAgainGivesAFreshResult) {
  const KVLCodeContext context;
  const KVLSmartPtr<KVLCodeFunctionCaller> caller = KitFind("kit/hypot")->CreateCaller(context);
  EXPECT_EQ(caller->SetArgStr(0, "3"), 0);
  EXPECT_EQ(caller->Call(), 0);
  const KVLSmartPtr<KVLCodeValue> first = caller->GetReturnedValue();
  EXPECT_EQ(caller->SetArgStr(0, "0"), 0);
  EXPECT_EQ(caller->Call(), 0);
  MRBUnicodeString text;
  EXPECT_EQ(first->GetValueStr(context, text), 0);
  EXPECT_EQ(text, "5");
  EXPECT_EQ(caller->GetReturnedValueStr(text), 0);
  EXPECT_EQ(text, "4");
}

TEST(KVLKitFunction, ArgumentsThatAreHeldBeyondTheCallerAreNoOnesElse) {
  const KVLCodeContext context;
  KVLSmartPtr<KVLCodeValue> held;
  {
    const KVLSmartPtr<KVLCodeFunctionCaller> caller = KitFind("kit/hypot")->CreateCaller(context);
    held = caller->GetArg(0);
    EXPECT_EQ(caller->SetArgStr(0, "3"), 0);
  }
  const KVLSmartPtr<KVLCodeFunctionCaller> caller = KitFind("kit/hypot")->CreateCaller(context);
  EXPECT_NE(caller->GetArg(0).Get(), held.Get());
  EXPECT_EQ(caller->SetArgStr(0, "8"), 0);
  MRBUnicodeString text;
  EXPECT_EQ(held->GetValueStr(context, text), 0);
  EXPECT_EQ(text, "3");
}

TEST(KVLKitFunction, AFunctionThatCallsItselfHasArgumentsOfItsOwn) {
  const KVLCodeContext context;
  const KVLSmartPtr<KVLCodeFunctionCaller> outer = KitFind("kit/hypot")->CreateCaller(context);
  const KVLSmartPtr<KVLCodeFunctionCaller> inner = KitFind("kit/hypot")->CreateCaller(context);
  EXPECT_EQ(outer->SetArgStr(0, "3"), 0);
  EXPECT_EQ(inner->SetArgStr(0, "0"), 0);
  EXPECT_EQ(inner->Call(), 0);
  EXPECT_EQ(outer->Call(), 0);
  MRBUnicodeString text;
  EXPECT_EQ(outer->GetReturnedValueStr(text), 0);
  EXPECT_EQ(text, "5");
  EXPECT_EQ(inner->GetReturnedValueStr(text), 0);
  EXPECT_EQ(text, "4");
}

}  // namespace
