// The list operations that every value has.

#include <gtest/gtest.h>

#include "KVLCodeListValue.h"
#include "KVLCodeValue.h"
#include "support/FailingAllocations.h"
#include "support/TestObjects.h"

namespace {

using kvltest::ContentOf;
using kvltest::MakeText;
using kvltest::MakeTexts;
using kvltest::TextListType;
using kvltest::TextPtr;
using kvltest::Texts;
using kvltest::TextValue;
using kvltest::TypePtr;
using kvltest::Values;
using kvltest::World;

// A world in which "ints" is a list of "int" whose values hold text.
class ListWorld : public World {
 public:
  ListWorld() : element(RegisterType("int")), list(RegisterType("ints")) {
    list->list = true;
    list->elementTypeName = "int";
  }

  const TypePtr element;
  const TypePtr list;
};

TEST(KVLCodeValueIsList, FailsWhenTheTypeIsNotRegistered) {
  const World world;
  EXPECT_EQ(MakeText("T")->IsList(world.context), KVLResult_Failure);
}

TEST(KVLCodeValueIsList, SaysNoForARegisteredTypeThatIsNoList) {
  World world;
  world.RegisterType("T");
  EXPECT_EQ(MakeText("T")->IsList(world.context), KVLResult_False);
}

TEST(KVLCodeValueIsList, SaysYesForAListType) {
  const ListWorld world;
  EXPECT_EQ(MakeText("ints")->IsList(world.context), KVLResult_Success);
}

// The texts of the elements.

TEST(KVLCodeValueListGetElementsStr, SplitsAtTheOutermostCommas) {
  const ListWorld world;
  Texts pieces;
  EXPECT_EQ(MakeText("ints", "[a,[b,c],d]")->ListGetElementsStr(world.context, pieces),
            KVLResult_Success);
  ASSERT_EQ(pieces.GetCount(), 3);
  EXPECT_EQ(pieces[0], "a");
  EXPECT_EQ(pieces[1], "[b,c]");
  EXPECT_EQ(pieces[2], "d");
}

TEST(KVLCodeValueListGetElementsStr, EveryKindOfDepthProtectsItsCommas) {
  const ListWorld world;
  Texts pieces;
  EXPECT_EQ(MakeText("ints", "[(a,b),{c,d},[e,f],\"g,\\\",h\"]")
                ->ListGetElementsStr(world.context, pieces),
            KVLResult_Success);
  ASSERT_EQ(pieces.GetCount(), 4);
  EXPECT_EQ(pieces[0], "(a,b)");
  EXPECT_EQ(pieces[1], "{c,d}");
  EXPECT_EQ(pieces[2], "[e,f]");
  EXPECT_EQ(pieces[3], "\"g,\\\",h\"");
}

TEST(KVLCodeValueListGetElementsStr, AppendsToWhatIsThere) {
  const ListWorld world;
  Texts pieces = MakeTexts({"kept"});
  const TextPtr value = MakeText("ints", "[1,2]");
  EXPECT_EQ(value->ListGetElementsStr(world.context, pieces), KVLResult_Success);
  EXPECT_EQ(value->ListGetElementsStr(world.context, pieces), KVLResult_Success);
  ASSERT_EQ(pieces.GetCount(), 5);
  EXPECT_EQ(pieces[0], "kept");
  EXPECT_EQ(pieces[1], "1");
  EXPECT_EQ(pieces[4], "2");
}

TEST(KVLCodeValueListGetElementsStr, TheEmptyListHasNoPieces) {
  const ListWorld world;
  Texts pieces;
  EXPECT_EQ(MakeText("ints", "[]")->ListGetElementsStr(world.context, pieces), KVLResult_Success);
  EXPECT_EQ(pieces.GetCount(), 0);
}

TEST(KVLCodeValueListGetElementsStr, PiecesAreNotTrimmedAndMayBeEmpty) {
  const ListWorld world;
  Texts pieces;
  EXPECT_EQ(MakeText("ints", "[ a ,,b,]")->ListGetElementsStr(world.context, pieces),
            KVLResult_Success);
  ASSERT_EQ(pieces.GetCount(), 3);
  EXPECT_EQ(pieces[0], " a ");
  EXPECT_EQ(pieces[1], "");
  EXPECT_EQ(pieces[2], "b");
}

TEST(KVLCodeValueListGetElementsStr, FailsWithoutBothBrackets) {
  const ListWorld world;
  for (const char* const text : {"", "[", "]", "a,b", " [a]", "[a] ", "[a", "a]", "(a)"}) {
    Texts pieces = MakeTexts({"kept"});
    EXPECT_EQ(MakeText("ints", text)->ListGetElementsStr(world.context, pieces), KVLResult_Failure)
        << text;
    EXPECT_EQ(pieces.GetCount(), 1) << text;
  }
}

TEST(KVLCodeValueListGetElementsStr, FailsForWhatIsNoListWithoutReadingIt) {
  const ListWorld world;
  for (const char* const typeName : {"int", "unknown"}) {
    Texts pieces;
    const TextPtr value = MakeText(typeName, "[1]");
    EXPECT_EQ(value->ListGetElementsStr(world.context, pieces), KVLResult_Failure) << typeName;
    EXPECT_EQ(value->nbReads, 0);
    EXPECT_EQ(pieces.GetCount(), 0);
  }
}

TEST(KVLCodeValueListGetElementsStr, TheNegativeCodeOfTheTextIsReturned) {
  const ListWorld world;
  const TextPtr value = MakeText("ints", "[1]");
  value->readResult = -9;
  Texts pieces;
  EXPECT_EQ(value->ListGetElementsStr(world.context, pieces), -9);
  value->readResult = 9;
  EXPECT_EQ(value->ListGetElementsStr(world.context, pieces), KVLResult_Success);
  EXPECT_EQ(pieces.GetCount(), 1);
}

TEST(KVLCodeValueListGetElementsStr, AFailedSplitIsReturned) {
  if (!FailingAllocations::IsAvailable()) GTEST_SKIP();
  const ListWorld world;
  const TextPtr value = MakeText("ints", "[1,2]");
  Texts pieces = MakeTexts({"kept"});
  const FailingAllocations failing(1);
  EXPECT_EQ(value->ListGetElementsStr(world.context, pieces), KVLResult_Failure);
  EXPECT_TRUE(failing.HasFailed());
  EXPECT_EQ(pieces.GetCount(), 1);
}

// Setting from texts and values.

TEST(KVLCodeValueListSetElementsStr, JoinsWithCommasBetweenBrackets) {
  const ListWorld world;
  const TextPtr value = MakeText("ints");
  EXPECT_EQ(value->ListSetElementsStr(world.context, MakeTexts({"1", "2"})), KVLResult_Success);
  EXPECT_EQ(value->content, "[1,2]");
}

TEST(KVLCodeValueListSetElementsStr, NoTextsGiveTheEmptyList) {
  const ListWorld world;
  const TextPtr value = MakeText("ints", "[1]");
  EXPECT_EQ(value->ListSetElementsStr(world.context, Texts()), KVLResult_Success);
  EXPECT_EQ(value->content, "[]");
}

TEST(KVLCodeValueListSetElementsStr, NothingIsQuotedOrEscaped) {
  const ListWorld world;
  const TextPtr value = MakeText("ints");
  EXPECT_EQ(value->ListSetElementsStr(world.context, MakeTexts({" a,b ", "", "\"c"})),
            KVLResult_Success);
  EXPECT_EQ(value->content, "[ a,b ,,\"c]");
}

TEST(KVLCodeValueListSetElementsStr, TheCodeOfTheWriteIsReturnedAsItIs) {
  const World world;
  const TextPtr value = MakeText("anything");
  for (const long code : {4L, -4L}) {
    value->writeResult = code;
    EXPECT_EQ(value->ListSetElementsStr(world.context, MakeTexts({"1"})), code);
  }
}

TEST(KVLCodeValueListSetElementsStr, TextsThatCannotBeJoinedAreNotSet) {
  if (!FailingAllocations::IsAvailable()) GTEST_SKIP();
  const ListWorld world;
  const TextPtr value = MakeText("ints", "kept");
  const Texts texts = MakeTexts({"1"});
  const FailingAllocations failing(1);
  EXPECT_EQ(value->ListSetElementsStr(world.context, texts), KVLResult_Failure);
  EXPECT_TRUE(failing.HasFailed());
  EXPECT_EQ(value->content, "kept");
}

TEST(KVLCodeValueListSetElements, SetsFromTheTextsOfTheElements) {
  const ListWorld world;
  const TextPtr value = MakeText("ints");
  Values elements;
  elements.Append(MakeText("int", "1"));
  elements.Append(MakeText("other", "[2,3]"));
  EXPECT_EQ(value->ListSetElements(world.context, elements), KVLResult_Success);
  EXPECT_EQ(value->content, "[1,[2,3]]");
  EXPECT_EQ(value->ListSetElements(world.context, Values()), KVLResult_Success);
  EXPECT_EQ(value->content, "[]");
}

TEST(KVLCodeValueListSetElements, TheFirstNegativeCodeIsReturnedAndNothingIsSet) {
  const ListWorld world;
  const TextPtr value = MakeText("ints", "kept");
  const TextPtr positive = MakeText("int", "1");
  const TextPtr negative = MakeText("int", "2");
  const TextPtr unread = MakeText("int", "3");
  positive->readResult = 5;
  negative->readResult = -5;
  unread->readResult = -6;
  Values elements;
  elements.Append(positive);
  elements.Append(negative);
  elements.Append(unread);
  EXPECT_EQ(value->ListSetElements(world.context, elements), -5);
  EXPECT_EQ(value->content, "kept");
  EXPECT_EQ(value->nbWrites, 0);
  EXPECT_EQ(unread->nbReads, 0);
}

TEST(KVLCodeValueListSetElements, MayHoldTheListItself) {
  const ListWorld world;
  const TextPtr value = MakeText("ints", "[1]");
  Values elements;
  elements.Append(value);
  elements.Append(value);
  EXPECT_EQ(value->ListSetElements(world.context, elements), KVLResult_Success);
  EXPECT_EQ(value->content, "[[1],[1]]");
}

// The elements as values.

TEST(KVLCodeValueListGetElements, MakesFreshValuesOfTheElementType) {
  const ListWorld world;
  const TextPtr value = MakeText("ints", "[1,2]");
  Values elements;
  EXPECT_EQ(value->ListGetElements(world.context, elements, "element"), KVLResult_Success);
  ASSERT_EQ(elements.GetCount(), 2);
  EXPECT_EQ(ContentOf(elements[0]), "1");
  EXPECT_EQ(ContentOf(elements[1]), "2");
  EXPECT_EQ(elements[0]->GetName(), "element");
  EXPECT_EQ(elements[1]->GetTypeName(), "int");
  EXPECT_EQ(world.element->nbCreated, 2);

  Values again;
  EXPECT_EQ(value->ListGetElements(world.context, again, "element"), KVLResult_Success);
  EXPECT_NE(again[0], elements[0]);
}

TEST(KVLCodeValueListGetElements, ClearsFirstAlsoWhenItFails) {
  const ListWorld world;
  Values elements;
  elements.Append(MakeText("int", "old"));
  EXPECT_EQ(MakeText("ints", "[1]")->ListGetElements(world.context, elements, ""),
            KVLResult_Success);
  ASSERT_EQ(elements.GetCount(), 1);
  EXPECT_EQ(ContentOf(elements[0]), "1");
  EXPECT_EQ(MakeText("int", "1")->ListGetElements(world.context, elements, ""), KVLResult_Failure);
  EXPECT_EQ(elements.GetCount(), 0);
}

TEST(KVLCodeValueListGetElements, TheCodeOfTheElementTextsIsReturned) {
  const ListWorld world;
  const TextPtr value = MakeText("ints", "[1]");
  value->readResult = -8;
  Values elements;
  EXPECT_EQ(value->ListGetElements(world.context, elements, ""), -8);
  EXPECT_EQ(elements.GetCount(), 0);
}

TEST(KVLCodeValueListGetElements, FailsWhenTheElementTypeIsNotRegistered) {
  const ListWorld world;
  world.list->elementTypeName = "gone";
  Values elements;
  EXPECT_EQ(MakeText("ints", "[1]")->ListGetElements(world.context, elements, ""),
            KVLResult_Failure);
  EXPECT_EQ(elements.GetCount(), 0);
}

TEST(KVLCodeValueListGetElements, FailsWithoutAnElementTypeAlsoForTheEmptyList) {
  const ListWorld world;
  world.list->elementTypeName = "gone";
  Values elements;
  EXPECT_EQ(MakeText("ints", "[]")->ListGetElements(world.context, elements, ""),
            KVLResult_Failure);
}

TEST(KVLCodeValueListGetElements, FailsWhereTheElementTypeMakesNoValueAndKeepsTheEarlierOnes) {
  const ListWorld world;
  world.element->make = [&world](const MRBUnicodeString&) {
    return world.element->nbCreated == 2 ? nullptr : MakeText("int");
  };
  Values elements;
  EXPECT_EQ(MakeText("ints", "[1,2,3]")->ListGetElements(world.context, elements, ""),
            KVLResult_Failure);
  ASSERT_EQ(elements.GetCount(), 1);
  EXPECT_EQ(ContentOf(elements[0]), "1");
}

TEST(KVLCodeValueListGetElements, AnElementThatCannotBeSetEndsTheWorkAndStaysInTheVector) {
  const ListWorld world;
  world.element->make = [&world](const MRBUnicodeString&) {
    const TextPtr fresh = MakeText("int", "fresh");
    if (world.element->nbCreated == 2) fresh->writeResult = -6;
    if (world.element->nbCreated == 1) fresh->writeResult = 6;
    return fresh;
  };
  Values elements;
  EXPECT_EQ(MakeText("ints", "[1,2,3]")->ListGetElements(world.context, elements, ""), -6);
  ASSERT_EQ(elements.GetCount(), 2);
  EXPECT_EQ(ContentOf(elements[0]), "1");
  EXPECT_EQ(ContentOf(elements[1]), "fresh");
}

TEST(KVLCodeValueListGetElements, GivesTheSharedElementsOfAGenericList) {
  const World world;
  const KVLSmartPtr<KVLCodeListValue> list = new KVLCodeListValue("l");
  const TextPtr element = MakeText("int", "1");
  list->MakeOwnElements().Append(element);
  Values elements;
  EXPECT_EQ(list->ListGetElements(world.context, elements, "ignored"), KVLResult_Success);
  ASSERT_EQ(elements.GetCount(), 1);
  EXPECT_EQ(elements[0], element);
  EXPECT_EQ(elements[0]->GetName(), "value");
}

TEST(KVLCodeValueListGetElements, AGenericListWithoutAVectorHasNoElements) {
  const World world;
  const KVLSmartPtr<KVLCodeListValue> list = new KVLCodeListValue("l");
  Values elements;
  elements.Append(MakeText("int"));
  EXPECT_EQ(list->ListGetElements(world.context, elements, ""), KVLResult_Success);
  EXPECT_EQ(elements.GetCount(), 0);
}

TEST(KVLCodeValueListGetElements, GivesTheSharedElementsOfADescendantOfTheGenericList) {
  World world;
  world.Register(new TextListType("ints", "int", "KVLVector<KVLCodeValue_var>"));
  const KVLSmartPtr<KVLCodeListValue> list = new KVLCodeListValue("l", "ints");
  const TextPtr element = MakeText("int", "1");
  list->MakeOwnElements().Append(element);
  Values elements;
  EXPECT_EQ(list->ListGetElements(world.context, elements, ""), KVLResult_Success);
  ASSERT_EQ(elements.GetCount(), 1);
  EXPECT_EQ(elements[0], element);
}

TEST(KVLCodeValueListGetElements, GivesFreshElementsOfAnotherListValue) {
  World world;
  world.RegisterType("int");
  world.Register(new TextListType("ints", "int"));
  const KVLSmartPtr<KVLCodeListValue> list = new KVLCodeListValue("l", "ints");
  const TextPtr element = MakeText("int", "1");
  list->MakeOwnElements().Append(element);
  Values elements;
  EXPECT_EQ(list->ListGetElements(world.context, elements, "e"), KVLResult_Success);
  ASSERT_EQ(elements.GetCount(), 1);
  EXPECT_NE(elements[0], element);
  EXPECT_EQ(elements[0]->GetName(), "e");
  EXPECT_EQ(ContentOf(elements[0]), "1");
}

TEST(KVLCodeValueListGetElements, GivesTheElementsThatARegisteredGenericTypeReadsFromTheText) {
  ListWorld world;
  // A value of an unknown type goes into the generic list through its text, which this type reads.
  world.Register(new TextListType("KVLVector<KVLCodeValue_var>", "int"));
  Values elements;
  EXPECT_EQ(MakeText("unknown", "[1,2]")->ListGetElements(world.context, elements, ""),
            KVLResult_Success);
  ASSERT_EQ(elements.GetCount(), 2);
  EXPECT_EQ(ContentOf(elements[1]), "2");
  EXPECT_EQ(world.element->nbCreated, 0);
}

// Remembers the name of the value that it was last asked to fill.
class NamingType : public KVLCodeListType {
 public:
  NamingType() : KVLCodeListType("KVLVector<KVLCodeValue_var>") {}
  long Parse(const KVLCodeContext&, const MRBUnicodeString&, KVLCodeValue& value) const override {
    filledName = value.GetName();
    return KVLResult_Success;
  }

  mutable MRBUnicodeString filledName;
};

TEST(KVLCodeValueListGetElements, TheGenericListThatTakesTheContentIsCalledElements) {
  World world;
  const KVLSmartPtr<NamingType> type = world.Register(new NamingType());
  Values elements;
  EXPECT_EQ(MakeText("unknown", "x")->ListGetElements(world.context, elements, "e"),
            KVLResult_Success);
  EXPECT_EQ(type->filledName, "elements");
}

TEST(KVLCodeValueListGetElements, FailsForAListOfAnotherTypeNameThatIsNotRegistered) {
  World world;
  world.RegisterType("int");
  const KVLSmartPtr<KVLCodeListValue> list = new KVLCodeListValue("l", "ints");
  list->MakeOwnElements().Append(MakeText("int", "1"));
  Values elements;
  EXPECT_EQ(list->ListGetElements(world.context, elements, ""), KVLResult_Failure);
  EXPECT_EQ(elements.GetCount(), 0);
}

TEST(KVLCodeValueListGetElements, IntoTheListsOwnVectorFindsItCleared) {
  const World world;
  const KVLSmartPtr<KVLCodeListValue> list = new KVLCodeListValue("l");
  Values& own = list->MakeOwnElements();
  own.Append(MakeText("int", "1"));
  EXPECT_EQ(list->ListGetElements(world.context, own, ""), KVLResult_Success);
  EXPECT_EQ(own.GetCount(), 0);
  EXPECT_EQ(list->GetValuePtr(), &own);
}

TEST(KVLCodeValueListGetElements, AListOnTheStackSurvives) {
  const World world;
  KVLCodeListValue list("l");
  list.MakeOwnElements().Append(MakeText("int", "1"));
  Values elements;
  EXPECT_EQ(list.ListGetElements(world.context, elements, ""), KVLResult_Success);
  list.Reset();
  ASSERT_EQ(elements.GetCount(), 1);
  EXPECT_EQ(ContentOf(elements[0]), "1");
}

TEST(KVLCodeValueListGetElements, UsesAConversionToTheGenericList) {
  World world;
  const kvltest::FunctionPtr conversion =
      kvltest::MakeFunction("KVLVector<KVLCodeValue_var>", "KVLVector<KVLCodeValue_var>",
                            {{"from", "pair"}}, [](Values&) {
                              const KVLSmartPtr<KVLCodeListValue> list = new KVLCodeListValue("");
                              list->MakeOwnElements().Append(MakeText("int", "converted"));
                              return list;
                            });
  world.conversions->Add(*conversion, "pair/");
  Values elements;
  EXPECT_EQ(MakeText("pair")->ListGetElements(world.context, elements, ""), KVLResult_Success);
  ASSERT_EQ(elements.GetCount(), 1);
  EXPECT_EQ(ContentOf(elements[0]), "converted");
}

}  // namespace
