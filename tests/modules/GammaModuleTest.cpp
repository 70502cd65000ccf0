#include "KVLCodeListValue.h"
#include "LoadedModules.h"

namespace {

constexpr char List[] = "KVLVector<KVLCodeValue_var>";

class Gamma : public LoadedModules {
 protected:
  Gamma() : LoadedModules({"Alpha", "Beta", "Gamma", "Zeta"}) {}

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

}  // namespace
