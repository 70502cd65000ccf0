#include <gtest/gtest.h>

#include "KitModule.h"
#include "KitShapes.h"

KVL_PUBLISH_TYPE(bool);
KVL_PUBLISH_TYPE(int);
KVL_PUBLISH_TYPE(std::int64_t);
KVL_PUBLISH_TYPE(kvl::Long);
KVL_PUBLISH_TYPE(double);
KVL_PUBLISH_TYPE(MRBUnicodeString);
KVL_PUBLISH_TYPE(void);
KVL_PUBLISH_TYPE(kvl::Any);
KVL_PUBLISH_TYPE(KVLCodeListValue::Elements);
KVL_LIST(int);
KVL_LIST(double);
KVL_LIST(MRBUnicodeString);
KVL_LIST(Spot);
KVL_LIST(KVLVector<int>);
KVL_PUBLISH_TYPE(Spot);
KVL_PUBLISH_TYPE(Grid);
KVL_PUBLISH_TYPE(Hue);

namespace {

struct Pole : Spot {};
bool ParsePole(const MRBUnicodeString& text, Pole& pole) {
  return ParseSpot(text, pole);
}

}  // namespace

KVL_SUBTYPE(Pole, "Pole", "Spot", ParsePole, PrintSpot);

namespace {

KVLSmartPtr<KVLCodeValue> New(const char* typeName) {
  const KVLCodeContext context;
  const KVLSmartPtr<const KVLCodeType> type = context.GetTypeFromName(typeName);
  return type ? type->CreateValue("value") : nullptr;
}

long Set(KVLCodeValue& value, const char* text) {
  return value.SetValueStr(KVLCodeContext(), text);
}

std::string TextOf(const KVLCodeValue& value) {
  MRBUnicodeString text;
  const long result = value.GetValueStr(KVLCodeContext(), text);
  return result == 0 ? text.ConvertToChar() : "code " + std::to_string(result);
}

// Sets a fresh value of the type and writes it again.
std::string Again(const char* typeName, const char* text) {
  const KVLSmartPtr<KVLCodeValue> value = New(typeName);
  const long result = Set(*value, text);
  return result == 0 ? TextOf(*value) : "code " + std::to_string(result);
}

// The type of what a text is read as.
std::string KindOf(const char* text) {
  const KVLSmartPtr<KVLCodeValue> value = New("any");
  if (Set(*value, text) != 0) return "refused";
  const KVLCodeValue* const held = kvl::Unwrapped(*value);
  return held ? held->GetTypeName().ConvertToChar() : "nothing";
}

TEST(KVLKitType, ATypeMakesValuesOfItsName) {
  for (const char* const typeName :
       {"bool", "int", "int64", "long", "double", "string", "void", "any", "Spot", "Grid", "Hue",
        "KVLVector<KVLCodeValue_var>", "KVLVector<double>", "KVLVector<KVLVector<int>>"}) {
    const KVLSmartPtr<KVLCodeValue> value = New(typeName);
    ASSERT_TRUE(value) << typeName;
    EXPECT_EQ(value->GetTypeName(), typeName);
    EXPECT_EQ(value->GetName(), "value");
  }
}

TEST(KVLKitType, ANamedParentIsTold) {
  const KVLCodeContext context;
  EXPECT_EQ(context.GetTypeFromName("Pole")->GetParentTypeName(), "Spot");
  EXPECT_TRUE(context.GetTypeFromName("Pole")->IsSubTypeOf(context, "Spot"));
  EXPECT_EQ(context.GetTypeFromName("Spot")->GetParentTypeName(), "");
}

TEST(KVLKitType, AValueOfADescendingTypeIsTaken) {
  const KVLSmartPtr<KVLCodeValue> pole = New("Pole");
  EXPECT_EQ(Set(*pole, "(1, 2)"), 0);
  const KVLSmartPtr<KVLCodeValue> spot = New("Spot");
  EXPECT_EQ(spot->AssignFrom(KVLCodeContext(), *pole), 0);
  EXPECT_EQ(TextOf(*spot), "(1, 2)");
  EXPECT_EQ(pole->AssignFrom(KVLCodeContext(), *spot), KVLResult_Failure);
}

TEST(KVLKitType, AnEnumerationTellsItsValues) {
  const KVLCodeContext context;
  KVLVector<MRBUnicodeString> values;
  ASSERT_TRUE(context.GetTypeFromName("Hue")->GetEnumValues(values));
  ASSERT_EQ(values.GetCount(), 3);
  EXPECT_EQ(values[0], "Red");
  EXPECT_EQ(values[2], "Blue");
  EXPECT_FALSE(context.GetTypeFromName("int")->GetEnumValues(values));
}

TEST(KVLKitType, AnEnumerationIsWrittenByName) {
  EXPECT_EQ(Again("Hue", "Blue"), "Blue");
  for (const char* const text : {"", "blue", "7", "Red,", "Red, Green", " Red"})
    EXPECT_EQ(Set(*New("Hue"), text), KVLResult_InvalidArgument) << text;
  EXPECT_EQ(TextOf(*kvl::MakeValueOf(static_cast<Hue>(3))), "3");
}

TEST(KVLKitType, ListTypesTellTheirElements) {
  const KVLCodeContext context;
  MRBUnicodeString element;
  EXPECT_TRUE(context.GetTypeFromName("KVLVector<double>")->IsList(&element));
  EXPECT_EQ(element, "double");
  EXPECT_TRUE(context.GetTypeFromName(kvl::AnyListName)->IsList(&element));
  EXPECT_EQ(element, "any");
  EXPECT_FALSE(context.GetTypeFromName("double")->IsList(nullptr));
  EXPECT_EQ(context.GetTypeFromName("KVLVector<double>")->GetParentTypeName(), kvl::AnyListName);
}

TEST(KVLKitValue, ItsDataLieWhereItsPointerSays) {
  const KVLSmartPtr<KVLCodeValue> number = New("double");
  EXPECT_EQ(Set(*number, "2.5"), 0);
  EXPECT_EQ(*static_cast<double*>(number->GetValuePtr()), 2.5);
  const KVLSmartPtr<KVLCodeValue> grid = New("Grid");
  EXPECT_EQ(static_cast<Grid*>(grid->GetValuePtr())->cells[8], 1);
  EXPECT_EQ(New("void")->GetValuePtr(), nullptr);
}

TEST(KVLKitValue, AFailedTextLeavesItAlone) {
  const KVLSmartPtr<KVLCodeValue> spot = New("Spot");
  EXPECT_EQ(Set(*spot, "(1, 2)"), 0);
  EXPECT_EQ(Set(*spot, "(3, y)"), KVLResult_InvalidArgument);
  EXPECT_EQ(TextOf(*spot), "(1, 2)");
}

TEST(KVLKitValue, VoidHasTheEmptyTextAlone) {
  EXPECT_EQ(Again("void", ""), "");
  EXPECT_EQ(Set(*New("void"), "x"), KVLResult_InvalidArgument);
  EXPECT_EQ(New("void")->AssignFrom(KVLCodeContext(), *New("void")), 0);
}

TEST(KVLKitValue, BetweenEqualTypesTheDatumIsCopied) {
  const KVLSmartPtr<KVLCodeValue> source = New("Grid");
  static_cast<Grid*>(source->GetValuePtr())->cells[3] = 0.1;
  const KVLSmartPtr<KVLCodeValue> target = New("Grid");
  EXPECT_EQ(target->AssignFrom(KVLCodeContext(), *source), 0);
  EXPECT_EQ(static_cast<Grid*>(target->GetValuePtr())->cells[3], 0.1);
  EXPECT_NE(target->GetValuePtr(), source->GetValuePtr());
  EXPECT_EQ(target->AssignFrom(KVLCodeContext(), *target), 0);
}

TEST(KVLKitValue, ResetGoesBackToTheDefault) {
  const KVLSmartPtr<KVLCodeValue> text = New("string");
  EXPECT_EQ(Set(*text, "a text of more than fifteen bytes"), 0);
  text->Reset();
  EXPECT_EQ(TextOf(*text), "");
  const KVLSmartPtr<KVLCodeValue> any = New("any");
  EXPECT_EQ(Set(*any, "1"), 0);
  any->Reset();
  EXPECT_EQ(TextOf(*any), "NULL");
}

TEST(KVLKitValue, WhatAnAnyHoldsIsAssigned) {
  const KVLSmartPtr<KVLCodeValue> any = New("any");
  EXPECT_EQ(Set(*any, "3"), 0);
  const KVLSmartPtr<KVLCodeValue> number = New("int");
  EXPECT_EQ(number->AssignFrom(KVLCodeContext(), *any), 0);
  EXPECT_EQ(TextOf(*number), "3");
  EXPECT_EQ(Set(*any, "[1, 2.5]"), 0);
  const KVLSmartPtr<KVLCodeValue> list = New("KVLVector<double>");
  EXPECT_EQ(list->AssignFrom(KVLCodeContext(), *any), 0);
  EXPECT_EQ(TextOf(*list), "[1,2.5]");
  any->Reset();
  EXPECT_EQ(number->AssignFrom(KVLCodeContext(), *any), KVLResult_Failure);
  EXPECT_EQ(TextOf(*number), "3");
}

TEST(KVLKitValue, AnAnyTakesACopyOfWhatItIsAssigned) {
  const KVLSmartPtr<KVLCodeValue> spot = New("Spot");
  const KVLSmartPtr<KVLCodeValue> any = New("any");
  EXPECT_EQ(any->AssignFrom(KVLCodeContext(), *spot), 0);
  EXPECT_EQ(Set(*spot, "(1, 2)"), 0);
  EXPECT_EQ(TextOf(*any), "Spot(0, 0)");
  const KVLSmartPtr<KVLCodeValue> other = New("any");
  EXPECT_EQ(other->AssignFrom(KVLCodeContext(), *any), 0);
  EXPECT_EQ(kvl::Unwrapped(*other)->GetTypeName(), "Spot");
  EXPECT_NE(kvl::Unwrapped(*other), kvl::Unwrapped(*any));
}

TEST(KVLKitValue, ATextSaysWhatAnAnyHolds) {
  EXPECT_EQ(KindOf("true"), "bool");
  EXPECT_EQ(KindOf("12"), "int");
  EXPECT_EQ(KindOf("2147483648"), "int64");
  EXPECT_EQ(KindOf("9223372036854775808"), "double");
  EXPECT_EQ(KindOf("1.0"), "double");
  EXPECT_EQ(KindOf("nan"), "double");
  EXPECT_EQ(KindOf("\"12\""), "string");
  EXPECT_EQ(KindOf("twelve"), "string");
  EXPECT_EQ(KindOf("Spot(1, 2)"), "Spot");
  EXPECT_EQ(KindOf("Spot(1)"), "string");
  EXPECT_EQ(KindOf("Nothing(1)"), "string");
  EXPECT_EQ(KindOf("(1, 2)"), "string");
  EXPECT_EQ(KindOf("[]"), kvl::AnyListName);
  EXPECT_EQ(KindOf("NULL"), "nothing");
  EXPECT_EQ(KindOf(""), "nothing");
  EXPECT_EQ(KindOf("\"a"), "refused");
  EXPECT_EQ(KindOf("[1,"), "refused");
}

TEST(KVLKitValue, WhatAnAnyWritesReadsBackToTheSame) {
  for (const char* const text :
       {"true", "12", "2147483648", "1.5", "12.0", "\"12\"", "\"\"", "\"true\"", "\"NULL\"",
        "\"\\\"\"", "twelve", "two words", "Spot(1, 2)", "[1,\"2\",[3.0],NULL,Spot(0, 1)]", "NULL",
        "\"Spot(1, 2)\"", "\"[1]\""}) {
    EXPECT_EQ(Again("any", text), text);
  }
}

TEST(KVLKitValue, AValueWhoseTextIsNotInParenthesesIsNamedAndQuoted) {
  const KVLSmartPtr<KVLCodeValue> any = New("any");
  EXPECT_EQ(any->AssignFrom(KVLCodeContext(), *New("Hue")), 0);
  EXPECT_EQ(TextOf(*any), "Hue(\"Red\")");
  EXPECT_EQ(KindOf("Hue(\"Blue\")"), "Hue");
  EXPECT_EQ(Again("any", "[Hue(\"Blue\"),1]"), "[Hue(\"Blue\"),1]");
  EXPECT_EQ(KindOf("Hue(\"Mauve\")"), "string");
  EXPECT_EQ(KindOf("Hue("), "string");
  EXPECT_EQ(KindOf("Hue(\""), "string");
  EXPECT_EQ(KindOf("int(\"12\")"), "int");
}

TEST(KVLKitList, StringsAreAlwaysQuoted) {
  EXPECT_EQ(Again("KVLVector<string>", "[a, \"b, c\", d]"), "[\"a\",\"b, c\",\"d\"]");
}

TEST(KVLKitList, ElementsAreReadByTheirType) {
  EXPECT_EQ(Again("KVLVector<double>", "[1, 2.5]"), "[1,2.5]");
  EXPECT_EQ(Again("KVLVector<Spot>", "[(1, 2), (3,4)]"), "[(1, 2),(3, 4)]");
  EXPECT_EQ(Again("KVLVector<KVLVector<int>>", "[[1], [], [2,3]]"), "[[1],[],[2,3]]");
  EXPECT_EQ(Set(*New("KVLVector<double>"), "[1, x]"), KVLResult_InvalidArgument);
  EXPECT_EQ(Set(*New("KVLVector<int>"), "[1.5]"), KVLResult_InvalidArgument);
}

TEST(KVLKitList, AFailedTextLeavesItAlone) {
  const KVLSmartPtr<KVLCodeValue> list = New("KVLVector<int>");
  EXPECT_EQ(Set(*list, "[1, 2]"), 0);
  EXPECT_EQ(Set(*list, "[3, x]"), KVLResult_InvalidArgument);
  EXPECT_EQ(TextOf(*list), "[1,2]");
}

TEST(KVLKitList, NullIsAListWithoutElementsOfItsOwn) {
  EXPECT_EQ(Again("KVLVector<int>", "NULL"), "NULL");
  EXPECT_EQ(Again(kvl::AnyListName, "NULL"), "NULL");
}

TEST(KVLKitList, TheKernelsOwnOperationsReadItsText) {
  const KVLCodeContext context;
  const KVLSmartPtr<KVLCodeValue> list = New("KVLVector<int>");
  EXPECT_EQ(Set(*list, "[1, 2]"), 0);
  KVLVector<MRBUnicodeString> texts;
  EXPECT_EQ(list->ListGetElementsStr(context, texts), 0);
  ASSERT_EQ(texts.GetCount(), 2);
  EXPECT_EQ(texts[1], "2");
  KVLVector<KVLSmartPtr<KVLCodeValue>> elements;
  EXPECT_EQ(list->ListGetElements(context, elements, "element"), 0);
  ASSERT_EQ(elements.GetCount(), 2);
  EXPECT_EQ(elements[1]->GetTypeName(), "int");
}

TEST(KVLKitList, AListOfAnyBecomesATypedOneElementByElement) {
  const KVLSmartPtr<KVLCodeValue> any = New(kvl::AnyListName);
  EXPECT_EQ(Set(*any, "[1, 2.0, \"3\"]"), 0);
  const KVLSmartPtr<KVLCodeValue> list = New("KVLVector<double>");
  EXPECT_EQ(list->AssignFrom(KVLCodeContext(), *any), KVLResult_Failure);
  EXPECT_EQ(Set(*any, "[1, 2.0]"), 0);
  EXPECT_EQ(list->AssignFrom(KVLCodeContext(), *any), 0);
  EXPECT_EQ(TextOf(*list), "[1,2]");
}

TEST(KVLKitList, ATypedListIsSharedByAListOfAny) {
  const KVLSmartPtr<KVLCodeValue> list = New("KVLVector<int>");
  EXPECT_EQ(Set(*list, "[1, 2]"), 0);
  const KVLSmartPtr<KVLCodeValue> any = New(kvl::AnyListName);
  EXPECT_EQ(any->AssignFrom(KVLCodeContext(), *list), 0);
  EXPECT_EQ(any->GetValuePtr(), list->GetValuePtr());
}

TEST(KVLKitList, ListsNestAHundredDeep) {
  const auto nested = [](int depth) {
    return std::string(static_cast<std::size_t>(depth), '[') +
           std::string(static_cast<std::size_t>(depth), ']');
  };
  EXPECT_EQ(Again(kvl::AnyListName, nested(100).c_str()), nested(100));
  EXPECT_EQ(Set(*New(kvl::AnyListName), nested(101).c_str()), KVLResult_InvalidArgument);
  EXPECT_EQ(Set(*New("any"), nested(100000).c_str()), KVLResult_InvalidArgument);
}

TEST(KVLKitList, AListThatHoldsItselfIsNotWritten) {
  auto* const list = new kvl::ListValue("", kvl::AnyListName);
  const KVLSmartPtr<KVLCodeValue> held(list);
  list->MakeOwnElements().Append(held);
  MRBUnicodeString text = "kept";
  EXPECT_EQ(held->GetValueStr(KVLCodeContext(), text), KVLResult_InvalidArgument);
  EXPECT_EQ(text, "kept");
  list->Reset();
}

}  // namespace
