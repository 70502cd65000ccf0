#include "KVLCodeFunctionCaller.h"
#include "KVLCodeListValue.h"
#include "LoadedModules.h"
#include "TestSession.h"

namespace {

constexpr char List[] = "KVLVector<KVLCodeValue_var>";

class Gamma : public LoadedModules {
 protected:
  Gamma() : LoadedModules({"Alpha", "Beta", "Gamma", "Delta", "Epsilon", "Zeta"}) {}

  std::string ElementTypes(const MRBUnicodeString& text) const {
    const Value list = Make(List, text);
    KVLVector<Value> elements;
    EXPECT_EQ(list->ListGetElements(context, elements, "element"), KVLResult_Success);
    std::string types;
    for (const Value& element : elements) {
      const MRBUnicodeString& typeName = element->GetTypeName();
      types += (types.empty() ? "" : " ") +
               std::string(typeName == List ? "list" : typeName.ConvertToChar());
    }
    return types;
  }
};

TEST_F(Gamma, AListIsAListOfAny) {
  const KVLSmartPtr<const KVLCodeType> type = context.GetTypeFromName(List);
  MRBUnicodeString elementTypeName;
  EXPECT_TRUE(type->IsList(&elementTypeName));
  EXPECT_TRUE(type->IsList(nullptr));
  EXPECT_EQ(elementTypeName, "any");
}

TEST_F(Gamma, AnElementsFormDecidesItsType) {
  EXPECT_EQ(
      ElementTypes("[true, 1, -2147483648, 2147483648, 1.0, 1e3, inf, nan, \"1\", a b, [], "
                   "NULL, Point(1, 2), Point(1), (1, 2)]"),
      "bool int int int64 double double double double string string list list Point string string");
}

TEST_F(Gamma, AListReadsBackWhatItWrites) {
  EXPECT_EQ(Through(List, "[]"), "[]");
  EXPECT_EQ(Through(List, "[ ]"), "[]");
  EXPECT_EQ(Through(List, "[ 1 , 2.50 , a b , \"c,]\" , [ x ] , Point(1,2) , true , NULL ]"),
            "[1,2.5,\"a b\",\"c,]\",[\"x\"],Point(1, 2),true,NULL]");
  EXPECT_EQ(Through(List, "[5.0,1e300,-0.0,inf,nan,-inf]"), "[5.0,1e+300,-0.0,inf,nan,-inf]");
  EXPECT_EQ(ElementTypes("[5.0,1e+300,-0.0,inf,nan,-inf]"),
            "double double double double double double");
}

TEST_F(Gamma, AnIllFormedListIsRefused) {
  for (const char* const text :
       {"", "[", "]", "1,2", "[1", "1]", "[1,]", "[,1]", "[1,,2]", "[,]", " []", "[] ", "[\"a]",
        "[\"a\"b]", "[[1]", "[[1,]]", "[\"\\x\"]"}) {
    EXPECT_EQ(Through(List, text), "refused") << text;
  }
}

TEST_F(Gamma, AListWithoutElementsOfItsOwnIsWrittenAsNull) {
  const Value list = Make(List, "[1]");
  EXPECT_EQ(list->SetValueStr(context, "NULL"), KVLResult_Success);
  EXPECT_FALSE(list->IsValued());
  EXPECT_EQ(TextOf(*list), "NULL");
}

TEST_F(Gamma, ListsNestAHundredDeep) {
  const std::string fits = std::string(100, '[') + std::string(100, ']');
  EXPECT_EQ(Through(List, fits.c_str()), fits);
  const std::string tooDeep = "[" + fits + "]";
  EXPECT_EQ(Through(List, tooDeep.c_str()), "refused");
}

TEST_F(Gamma, AListThatHoldsItselfIsNotWritten) {
  const Value list = Make(List);
  KVLVector<Value>& elements = static_cast<KVLCodeListValue&>(*list).MakeOwnElements();
  elements.Append(list);
  MRBUnicodeString text = "untouched";
  EXPECT_EQ(list->GetValueStr(context, text), KVLResult_InvalidArgument);
  EXPECT_EQ(text, "untouched");
  elements.Resize(0);
}

TEST_F(Gamma, AListWithAnEmptyPlaceIsNotWritten) {
  const Value list = Make(List);
  static_cast<KVLCodeListValue&>(*list).MakeOwnElements().Append(Value());
  MRBUnicodeString text;
  EXPECT_EQ(list->GetValueStr(context, text), KVLResult_InvalidArgument);
}

TEST_F(Gamma, Lists) {
  EXPECT_EQ(Result("list/size", {"[1, [2, 3]]"}), "2");
  EXPECT_EQ(Result("list/size", {"NULL"}), "0");
  EXPECT_EQ(Refused("list/size", {"1"}), KVLResult_InvalidArgument);
  EXPECT_EQ(Result("list/get", {"[a, b]"}), "a");
  EXPECT_EQ(Result("list/get", {"[a, [b]]", "1"}), "[\"b\"]");
  EXPECT_EQ(Thrown("list/get", {"[a, b]", "2"}), "index 2 is outside a list of 2");
  EXPECT_EQ(Thrown("list/get", {"[a, b]", "-1"}), "index -1 is outside a list of 2");
  EXPECT_EQ(Thrown("list/get", {"NULL"}), "index 0 is outside a list of 0");
  EXPECT_EQ(Result("list/append", {"[1]", "2"}), "[1,2]");
  EXPECT_EQ(Result("list/append", {"NULL", "x"}), "[\"x\"]");
  EXPECT_EQ(Result("list/reverse", {"[1, 2, 3]"}), "[3,2,1]");
  EXPECT_EQ(Result("list/range", {"1", "3"}), "[1,2,3]");
  EXPECT_EQ(Result("list/range", {"3", "1"}), "[]");
  EXPECT_EQ(Result("list/range", {"5", "1", "-2"}), "[5,3,1]");
  EXPECT_EQ(Result("list/range", {"2147483646", "2147483647"}), "[2147483646,2147483647]");
  EXPECT_EQ(Thrown("list/range", {"1", "3", "0"}), "step must not be 0");
  EXPECT_EQ(Thrown("list/range", {"0", "2147483647"}),
            "the list would have more than 1000000 elements");
}

TEST_F(Gamma, SumConvertsEachElement) {
  EXPECT_EQ(Result("list/sum", {"[1, 2.5, true, \"4\"]"}), "8.5");
  EXPECT_EQ(Result("list/sum", {"[]"}), "0");
  EXPECT_EQ(Thrown("list/sum", {"[1, x]"}), "element 1 is no number");
}

TEST_F(Gamma, TypedListsAreListsOfAnyToo) {
  for (const char* const element : {"bool", "int", "int64", "long", "double", "string"}) {
    const MRBUnicodeString name = MRBUnicodeString("KVLVector<") + element + ">";
    const KVLSmartPtr<const KVLCodeType> type = context.GetTypeFromName(name);
    ASSERT_TRUE(type) << name;
    MRBUnicodeString elementTypeName;
    EXPECT_TRUE(type->IsList(&elementTypeName));
    EXPECT_EQ(elementTypeName, element);
    EXPECT_EQ(type->GetParentTypeName(), List);
    EXPECT_EQ(Through(name, "[]"), "[]");
    EXPECT_EQ(Through(name, "[[]]"), Bytes(element) == "string" ? "[\"[]\"]" : "refused");
  }
  EXPECT_EQ(Through("KVLVector<int>", "[1, -2]"), "[1,-2]");
  EXPECT_EQ(Through("KVLVector<int>", "[1.0]"), "refused");
  EXPECT_EQ(Through("KVLVector<double>", "[1, 2.50]"), "[1,2.5]");
  EXPECT_EQ(Through("KVLVector<string>", "[1, \"a, b\", c d ]"), "[\"1\",\"a, b\",\"c d\"]");
}

TEST_F(Gamma, ListsAreConvertedElementByElement) {
  EXPECT_EQ(Converted(List, "[1, 2.0, true, \"4\"]", "KVLVector<int>"), "[1,2,1,4]");
  EXPECT_EQ(Converted(List, "[1, 2.5]", "KVLVector<int>"), "refused");
  EXPECT_EQ(Converted("KVLVector<int>", "[1, 2]", "KVLVector<string>"), "[\"1\",\"2\"]");
  EXPECT_EQ(Converted("KVLVector<double>", "[1, 2.5]", List), "[1.0,2.5]");
  EXPECT_EQ(Converted(List, "[[1]]", "KVLVector<int>"), "refused");
}

TEST_F(Gamma, AppendTakesAnyElementButNone) {
  EXPECT_EQ(Result("list/append", {"[1]", "\"2\""}), "[1,\"2\"]");
  EXPECT_EQ(Result("list/append", {"[1]", "[2, x]"}), "[1,[2,\"x\"]]");
  EXPECT_EQ(Thrown("list/append", {"[1]"}), "there is no element");
  const Value full = Make(List);
  auto& elements = static_cast<KVLCodeListValue&>(*full).MakeOwnElements();
  const Value one = Make("int", "1");
  for (int i = 0; i < 1000000; ++i)
    elements.Append(one);
  const auto caller =
      KVLCodeEnv::GetDefault().FindObject("list/append")->AsFunction()->CreateCaller(context);
  ASSERT_EQ(caller->SetArg(0, full), KVLResult_Success);
  ASSERT_EQ(caller->SetArg(1, one), KVLResult_Success);
  EXPECT_THROW((void)caller->Call(), std::length_error);
}

TEST_F(Gamma, SliceLeavesOutWhatLiesOutside) {
  const struct {
    const char* from;
    const char* to;
    const char* slice;
  } cases[] = {
      {"0", "2", "[0,1]"},       {"1", "-1", "[1,2]"}, {"-2", "9", "[2,3]"},
      {"-9", "1", "[0]"},        {"2", "2", "[]"},     {"3", "1", "[]"},
      {"-1", "-3", "[]"},        {"9", "10", "[]"},    {"-2147483648", "2147483647", "[0,1,2,3]"},
      {"0", "-2147483648", "[]"}};
  for (const auto& positions : cases) {
    EXPECT_EQ(Result("list/slice", {"[0, 1, 2, 3]", positions.from, positions.to}), positions.slice)
        << positions.from << " " << positions.to;
  }
  EXPECT_EQ(Result("list/slice", {"[0, 1]"}), "[0,1]");
  EXPECT_EQ(Result("list/slice", {"[0, 1]", "1"}), "[1]");
  EXPECT_EQ(Result("list/slice", {"NULL", "-1"}), "[]");
}

TEST_F(Gamma, SortOrdersAlikeElements) {
  EXPECT_EQ(Result("list/sort", {"[3, 1.5, 2, nan, -inf, 2.0]"}), "[-inf,1.5,2,2.0,3,nan]");
  EXPECT_EQ(Result("list/sort", {"[3, 1.5, 2, nan, 2.0]", "true"}), "[nan,3,2,2.0,1.5]");
  EXPECT_EQ(Result("list/sort", {"[b, a, \"\", B, \xC3\xA9]"}),
            "[\"\",\"B\",\"a\",\"b\",\"\xC3\xA9\"]");
  EXPECT_EQ(Result("list/sort", {"[true, false, true]"}), "[false,true,true]");
  EXPECT_EQ(Result("list/sort", {"[]"}), "[]");
  EXPECT_EQ(Result("list/sort", {"NULL"}), "[]");
  EXPECT_EQ(Result("list/sort", {"[9007199254740993, 9007199254740992.0]"}),
            "[9007199254740992.0,9007199254740993]");
  EXPECT_EQ(Thrown("list/sort", {"[1, a]"}), "cannot compare int with string");
  EXPECT_EQ(Thrown("list/sort", {"[true, 1]"}), "cannot compare bool with int");
  EXPECT_EQ(Thrown("list/sort", {"[[1]]"}),
            std::string("cannot compare ") + List + " with " + List);
}

TEST_F(Gamma, MapCallsTheFunctionForEachElement) {
  EXPECT_EQ(Result("list/map", {"[1, 4, 2.25]", "math/sqrt"}), "[1.0,2.0,1.5]");
  EXPECT_EQ(Result("list/map", {"[5, -5]", "/math//clamp"}), "[1.0,0.0]");
  EXPECT_EQ(Result("list/map", {"[a, 1]", "text/upper"}), "[\"A\",\"1\"]");
  EXPECT_EQ(Result("list/map", {"[[1, 2], []]", "list/size"}), "[2,0]");
  EXPECT_EQ(Result("list/map", {"[[x], [[2]]]", "list/get"}), "[\"x\",[2]]");
  EXPECT_EQ(Result("list/map", {"[]", "math/sqrt"}), "[]");
}

TEST_F(Gamma, MapTakesWhatAFunctionWithoutResultGivesBack) {
  EXPECT_EQ(Result("list/map", {"[1, 41]", "math/increment"}), "[2,42]");
}

TEST_F(Gamma, FilterKeepsTheElementsForWhichTheFunctionIsTrue) {
  EXPECT_EQ(Result("list/filter", {"[a, \"\", b]", "text/length"}), "[\"a\",\"b\"]");
  EXPECT_EQ(Thrown("list/filter", {"[ab]", "text/length"}),
            "'text/length' returns neither true nor false for element 0");
  EXPECT_EQ(Result("list/filter", {"[]", "math/sqrt"}), "[]");
}

TEST_F(Gamma, MapAndFilterRefuseWhatIsNoFunctionOfOneElement) {
  for (const char* const path : {"list/map", "list/filter"}) {
    EXPECT_EQ(Thrown(path, {"[1]", "math/nothing"}), "there is no function 'math/nothing'");
    EXPECT_EQ(Thrown(path, {"[1]", "math"}), "there is no function 'math'");
    EXPECT_EQ(Thrown(path, {"[1]", "math/pi"}), "there is no function 'math/pi'");
    EXPECT_EQ(Thrown(path, {"[1]", "mth/sqrt"}), "there is no function 'mth/sqrt'");
    EXPECT_EQ(Thrown(path, {"[1]"}), "there is no function ''");
    EXPECT_EQ(Thrown(path, {"[1]", "math/add"}), "'math/add' takes more than one argument");
    EXPECT_EQ(Thrown(path, {"[1]", "list/map"}), "'list/map' takes more than one argument");
    EXPECT_EQ(Thrown(path, {"[1]", "geom/transform/identity"}),
              "'geom/transform/identity' takes no argument");
    EXPECT_EQ(Thrown(path, {"[1, x]", "math/sqrt"}), "element 1 is no argument for 'math/sqrt'");
    EXPECT_EQ(Thrown(path, {"[-1]", "math/sqrt"}), "square root of a negative number");
  }
  EXPECT_FALSE(KVLCodeEnv::GetDefault().FindSubEnv("mth"));
}

// What a caller makes who fills a list by hand.
TEST_F(Gamma, AnEmptyPlaceInAListIsNoElement) {
  const Value list = Make(List, "[1]");
  KVLCodeListValue::Elements& elements = static_cast<KVLCodeListValue&>(*list).MakeOwnElements();
  elements.Append(Make("int", "1"));
  elements.Append(Value());
  const struct {
    const char* path;
    const char* second;  // argument
    const char* message;
  } cases[] = {{"list/sum", nullptr, "element 1 is no number"},
               {"list/sort", nullptr, "cannot compare int with void"},
               {"list/map", "math/sqrt", "element 1 is no argument for 'math/sqrt'"},
               {"list/filter", "math/clamp", "element 1 is no argument for 'math/clamp'"},
               {"text/join", nullptr, "an element cannot be written"}};
  EXPECT_EQ(Make("KVLVector<double>")->AssignFrom(context, *list), KVLResult_InvalidArgument);
  for (const auto& call : cases) {
    const auto caller =
        KVLCodeEnv::GetDefault().FindObject(call.path)->AsFunction()->CreateCaller(context);
    ASSERT_EQ(caller->SetArg(0, list), KVLResult_Success);
    if (call.second) {
      ASSERT_EQ(caller->SetArgStr(1, call.second), KVLResult_Success);
    }
    try {
      (void)caller->Call();
      ADD_FAILURE() << call.path;
    } catch (const std::exception& exception) {
      EXPECT_STREQ(exception.what(), call.message) << call.path;
    }
  }
}

TEST_F(Gamma, MapAndFilterEndWhenTheSessionIsInterrupted) {
  for (const char* const path : {"list/map", "list/filter"}) {
    TestSession session;
    session.pollsUntilInterrupted = 2;
    context.SetSession(&session);
    EXPECT_EQ(Thrown(path, {"[1, 1, 1, 1, 1]", "math/sqrt"}), "interrupted");
    EXPECT_EQ(session.polls, 3);
    context.SetSession(nullptr);
  }
}

}  // namespace
