#include "KVLCodeListValue.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "support/TestObjects.h"

namespace {

using kvltest::ContentOf;
using kvltest::FunctionPtr;
using kvltest::MakeFunction;
using kvltest::MakeText;
using kvltest::TextListType;
using kvltest::TextPtr;
using kvltest::TextValue;
using kvltest::Values;
using kvltest::World;

using ListPtr = KVLSmartPtr<KVLCodeListValue>;

// Counts the calls of the two hooks.
class HookedList : public KVLCodeListValue {
 public:
  explicit HookedList(const MRBUnicodeString& nameOfType = "")
      : KVLCodeListValue("hooked", nameOfType) {}
  void OnChanged() override {
    ++nbChanges;
    dataAtChange = KVLCodeListValue::GetValuePtr();
  }
  void OnAccess() const override { ++nbAccesses; }

  int nbChanges = 0;
  mutable int nbAccesses = 0;
  const void* dataAtChange = nullptr;
};

using HookedPtr = KVLSmartPtr<HookedList>;

ListPtr MakeList(const MRBUnicodeString& typeName, int nbElements) {
  const ListPtr list = new KVLCodeListValue("list", typeName);
  Values& elements = list->MakeOwnElements();
  for (int i = 0; i < nbElements; ++i)
    elements.Append(MakeText("int", KVLStringOperations::FromNum(i)));
  return list;
}

class WorldWithInts : public World {
 public:
  WorldWithInts() : type(Register(new TextListType("ints", "int"))) {}

  const KVLSmartPtr<TextListType> type;
};

TEST(KVLCodeListValue, AnEmptyTypeNameMeansTheGenericList) {
  EXPECT_EQ(ListPtr(new KVLCodeListValue("l"))->GetTypeName(), "KVLVector<KVLCodeValue_var>");
  EXPECT_EQ(ListPtr(new KVLCodeListValue("l", ""))->GetTypeName(), "KVLVector<KVLCodeValue_var>");
  EXPECT_EQ(ListPtr(new KVLCodeListValue("l", "ints"))->GetTypeName(), "ints");
}

TEST(KVLCodeListValue, ConstructionAloneGivesNoVector) {
  const ListPtr list = new KVLCodeListValue("l");
  EXPECT_EQ(list->GetName(), "l");
  EXPECT_EQ(list->GetValuePtr(), nullptr);
  EXPECT_FALSE(list->IsValued());
}

TEST(KVLCodeListValue, ItsTypeMakesItWithAnEmptyVector) {
  const KVLSmartPtr<KVLCodeListType> type = new KVLCodeListType("ints");
  const KVLSmartPtr<KVLCodeValue> value = type->CreateValue("l");
  ASSERT_TRUE(value);
  EXPECT_EQ(value->GetName(), "l");
  EXPECT_EQ(value->GetTypeName(), "ints");
  ASSERT_TRUE(value->IsValued());
  EXPECT_EQ(static_cast<const Values*>(value->GetValuePtr())->GetCount(), 0);
}

TEST(KVLCodeListValue, ValuePtrDesignatesTheVector) {
  const ListPtr list = new KVLCodeListValue("l");
  Values& elements = list->MakeOwnElements();
  EXPECT_EQ(list->GetValuePtr(), &elements);
}

TEST(KVLCodeListValue, OwnElementsStartAFreshVector) {
  const ListPtr list = MakeList("", 2);
  EXPECT_EQ(list->MakeOwnElements().GetCount(), 0);
}

TEST(KVLCodeListValue, OwnElementsLeaveTheFormerSharersAlone) {
  const World world;
  const ListPtr first = MakeList("", 2);
  const ListPtr second = new KVLCodeListValue("l");
  EXPECT_EQ(second->AssignFrom(world.context, *first), KVLResult_Success);
  second->MakeOwnElements();
  EXPECT_EQ(static_cast<const Values*>(first->GetValuePtr())->GetCount(), 2);
}

TEST(KVLCodeListValue, ResetDropsTheVectorOfThisValueAlone) {
  const World world;
  const ListPtr first = MakeList("", 2);
  const ListPtr second = new KVLCodeListValue("l");
  EXPECT_EQ(second->AssignFrom(world.context, *first), KVLResult_Success);
  first->Reset();
  EXPECT_FALSE(first->IsValued());
  ASSERT_TRUE(second->IsValued());
  EXPECT_EQ(static_cast<const Values*>(second->GetValuePtr())->GetCount(), 2);
}

TEST(KVLCodeListValue, ElementsDieWithTheLastSharer) {
  const World world;
  const int before = TextValue::nbAlive;
  {
    ListPtr first = MakeList("", 3);
    const ListPtr second = new KVLCodeListValue(*first);
    first = nullptr;
    EXPECT_EQ(TextValue::nbAlive, before + 3);
  }
  EXPECT_EQ(TextValue::nbAlive, before);
}

TEST(KVLCodeListValue, ACopyConstructedListSharesTheVector) {
  const ListPtr list = MakeList("ints", 1);
  const ListPtr copy = new KVLCodeListValue(*list);
  EXPECT_EQ(copy->GetTypeName(), "ints");
  EXPECT_EQ(copy->GetValuePtr(), list->GetValuePtr());
}

// Types.

TEST(KVLCodeListValue, TypeIsTheRegisteredOne) {
  const WorldWithInts world;
  EXPECT_EQ(MakeList("ints", 0)->GetType(world.context), world.type);
}

TEST(KVLCodeListValue, TypeIsAFreshGenericOneWhenNoneIsRegistered) {
  const World world;
  const ListPtr list = MakeList("ints", 0);
  const KVLSmartPtr<const KVLCodeType> type = list->GetType(world.context);
  ASSERT_TRUE(type);
  EXPECT_EQ(type->GetName(), "ints");
  EXPECT_NE(list->GetType(world.context), type);
  EXPECT_TRUE(world.context.GetTypeFromName("ints").IsNull());
}

TEST(KVLCodeListType, GenericTypeIsNoListTypeAndNoDummy) {
  const World world;
  const ListPtr list = MakeList("ints", 0);
  const KVLSmartPtr<const KVLCodeType> type = list->GetType(world.context);
  EXPECT_FALSE(type->IsList(nullptr));
  EXPECT_FALSE(type->IsDummy());
  EXPECT_EQ(type->GetParentTypeName(), "");
  EXPECT_EQ(list->IsList(world.context), KVLResult_False);
}

TEST(KVLCodeListType, GenericTypeNeitherReadsNorWritesText) {
  const World world;
  const KVLSmartPtr<KVLCodeListType> type = new KVLCodeListType("ints");
  const ListPtr list = MakeList("ints", 1);
  MRBUnicodeString text = "kept";
  EXPECT_EQ(type->Parse(world.context, "[]", *list), KVLResult_NotImplemented);
  EXPECT_EQ(type->Render(world.context, list->GetValuePtr(), text), KVLResult_NotImplemented);
  EXPECT_EQ(text, "kept");
  EXPECT_EQ(static_cast<const Values*>(list->GetValuePtr())->GetCount(), 1);
}

// Text.

TEST(KVLCodeListValue, WithoutAVectorItsTextIsNull) {
  const World world;
  MRBUnicodeString text;
  EXPECT_EQ(ListPtr(new KVLCodeListValue("l", "ints"))->GetValueStr(world.context, text),
            KVLResult_Success);
  EXPECT_EQ(text, "NULL");
}

TEST(KVLCodeListValue, ItsTypeRendersTheVector) {
  const WorldWithInts world;
  MRBUnicodeString text;
  EXPECT_EQ(MakeList("ints", 3)->GetValueStr(world.context, text), KVLResult_Success);
  EXPECT_EQ(text, "[0,1,2]");
}

TEST(KVLCodeListValue, TheCodeOfTheRenderingIsReturnedAsItIs) {
  const WorldWithInts world;
  for (const long code : {6L, -6L}) {
    world.type->renderResult = code;
    MRBUnicodeString text;
    EXPECT_EQ(MakeList("ints", 1)->GetValueStr(world.context, text), code);
  }
}

TEST(KVLCodeListValue, ItsTypeParsesTheText) {
  const WorldWithInts world;
  const ListPtr list = new KVLCodeListValue("l", "ints");
  EXPECT_EQ(list->SetValueStr(world.context, "[a,b]"), KVLResult_Success);
  const Values& elements = *static_cast<const Values*>(list->GetValuePtr());
  ASSERT_EQ(elements.GetCount(), 2);
  EXPECT_EQ(ContentOf(elements[1]), "b");
}

TEST(KVLCodeListValue, ANegativeCodeOfTheParsingIsReturnedWithoutAChangeHook) {
  const WorldWithInts world;
  const HookedPtr list = new HookedList("ints");
  EXPECT_EQ(list->SetValueStr(world.context, "no list"), KVLResult_InvalidArgument);
  EXPECT_EQ(list->nbChanges, 0);
}

TEST(KVLCodeListValue, APositiveCodeOfTheParsingBecomesSuccess) {
  const WorldWithInts world;
  world.type->parseResult = 4;
  const HookedPtr list = new HookedList("ints");
  EXPECT_EQ(list->SetValueStr(world.context, "[]"), KVLResult_Success);
  EXPECT_EQ(list->nbChanges, 1);
}

TEST(KVLCodeListValue, OfAnUnregisteredTypeCannotBeWrittenOrRead) {
  const World world;
  const ListPtr list = MakeList("ints", 1);
  MRBUnicodeString text;
  EXPECT_EQ(list->GetValueStr(world.context, text), KVLResult_NotImplemented);
  EXPECT_EQ(list->SetValueStr(world.context, "[]"), KVLResult_NotImplemented);
}

// Has no type at all.
class TypelessList : public KVLCodeListValue {
 public:
  TypelessList() : KVLCodeListValue("typeless", "ints") {}
  KVLSmartPtr<const KVLCodeType> GetType(const KVLCodeContext&) const override { return nullptr; }
};

TEST(KVLCodeListValue, WithoutATypeItCannotBeWrittenOrRead) {
  const WorldWithInts world;
  const ListPtr list = new TypelessList();
  MRBUnicodeString text;
  EXPECT_EQ(list->GetValueStr(world.context, text), KVLResult_Success);
  EXPECT_EQ(text, "NULL");
  list->MakeOwnElements();
  EXPECT_EQ(list->GetValueStr(world.context, text), KVLResult_Failure);
  EXPECT_EQ(list->SetValueStr(world.context, "[]"), KVLResult_Failure);
}

// Assignment.

TEST(KVLCodeListValueAssign, EqualTypeNamesShareTheVector) {
  const World world;
  const ListPtr source = MakeList("ints", 1);
  const ListPtr target = MakeList("ints", 0);
  EXPECT_EQ(target->AssignFrom(world.context, *source), KVLResult_Success);
  EXPECT_EQ(target->GetValuePtr(), source->GetValuePtr());
  static_cast<Values*>(source->GetValuePtr())->Append(MakeText("int"));
  EXPECT_EQ(static_cast<const Values*>(target->GetValuePtr())->GetCount(), 2);
}

TEST(KVLCodeListValueAssign, ASourceWithoutAVectorTakesTheTargetsAway) {
  const World world;
  const ListPtr target = MakeList("ints", 1);
  EXPECT_EQ(target->AssignFrom(world.context, *ListPtr(new KVLCodeListValue("l", "ints"))),
            KVLResult_Success);
  EXPECT_FALSE(target->IsValued());
}

TEST(KVLCodeListValueAssign, ADescendantByNameSharesItsVector) {
  World world;
  // "ints" itself is not registered: the name of the parent is enough.
  world.Register(new TextListType("sortedInts", "int", "ints"));
  const ListPtr source = MakeList("sortedInts", 1);
  const ListPtr target = MakeList("ints", 0);
  EXPECT_EQ(target->AssignFrom(world.context, *source), KVLResult_Success);
  EXPECT_EQ(target->GetValuePtr(), source->GetValuePtr());
  EXPECT_EQ(target->GetTypeName(), "ints");
}

// Says that its type descends from "ints", which no registration bears out.
class PretendingList : public KVLCodeListValue {
 public:
  PretendingList() : KVLCodeListValue("pretending", "sortedInts") {}
  KVLSmartPtr<const KVLCodeType> GetType(const KVLCodeContext&) const override {
    return KVLSmartPtr<const KVLCodeType>(new TextListType("sortedInts", "int", "ints"));
  }
};

TEST(KVLCodeListValueAssign, TheSourcesTypeIsLookedUpThroughTheContext) {
  const World world;
  const ListPtr source = new PretendingList();
  source->MakeOwnElements();
  const ListPtr target = MakeList("ints", 1);
  EXPECT_EQ(target->AssignFrom(world.context, *source), KVLResult_NotImplemented);
  EXPECT_NE(target->GetValuePtr(), source->GetValuePtr());
}

// Reports more than success when text is set.
class TalkativeList : public HookedList {
 public:
  TalkativeList() : HookedList("ints") {}
  long SetValueStr(const KVLCodeContext&, const MRBUnicodeString&) override { return 5; }
};

TEST(KVLCodeListValueAssign, APositiveCodeOfThePlainAssignmentBecomesSuccess) {
  const World world;
  const KVLSmartPtr<TalkativeList> target = new TalkativeList();
  EXPECT_EQ(target->AssignFrom(world.context, *MakeText("text")), KVLResult_Success);
  EXPECT_EQ(target->nbChanges, 1);
}

TEST(KVLCodeListValueAssign, AForeignListGoesThroughItsText) {
  World world;
  world.Register(new TextListType("ints", "int"));
  const FunctionPtr conversion =
      MakeFunction("longs", "longs", {{"from", "ints"}}, [](Values&) { return nullptr; });
  world.conversions->Add(*conversion, "ints/");
  const ListPtr source = MakeList("ints", 2);
  const HookedPtr target = new HookedList("longs");
  // "longs" is unknown, hence text is tried; the generic type that stands in cannot read it.
  EXPECT_EQ(target->AssignFrom(world.context, *source), KVLResult_NotImplemented);
  EXPECT_EQ(conversion->nbCalls, 1);
  EXPECT_EQ(target->nbChanges, 0);
}

TEST(KVLCodeListValueAssign, ANegativeCodeOfThePlainAssignmentIsReturnedAsItIs) {
  World world;
  world.Register(new TextListType("ints", "int"));
  const TextPtr source = MakeText("text");
  source->readResult = -42;
  const HookedPtr target = new HookedList("ints");
  EXPECT_EQ(target->AssignFrom(world.context, *source), -42);
  EXPECT_EQ(target->nbChanges, 0);
}

TEST(KVLCodeListValueAssign, AListAssignedToItselfKeepsItsVector) {
  const World world;
  const ListPtr list = MakeList("ints", 2);
  const void* const data = list->GetValuePtr();
  EXPECT_EQ(list->AssignFrom(world.context, *list), KVLResult_Success);
  EXPECT_EQ(list->GetValuePtr(), data);
  EXPECT_EQ(static_cast<const Values*>(list->GetValuePtr())->GetCount(), 2);
}

TEST(KVLCodeListValueAssign, ACopyByTheTypeSharesTheElements) {
  const WorldWithInts world;
  const ListPtr list = MakeList("ints", 2);
  const KVLSmartPtr<KVLCodeValue> copy = list->Copy(world.context, "copy");
  ASSERT_TRUE(copy);
  EXPECT_EQ(copy->GetValuePtr(), list->GetValuePtr());
}

TEST(KVLCodeListValueAssign, ACopySharesTheElementsAlsoWithoutARegisteredType) {
  const World world;
  const ListPtr list = MakeList("ints", 2);
  const KVLSmartPtr<KVLCodeValue> copy = list->Copy(world.context, "copy");
  ASSERT_TRUE(copy);
  EXPECT_EQ(copy->GetName(), "copy");
  EXPECT_EQ(copy->GetTypeName(), "ints");
  EXPECT_EQ(copy->GetValuePtr(), list->GetValuePtr());
}

TEST(KVLCodeListValueAssign, DefaultIsAnEmptyVectorAlsoWithoutARegisteredType) {
  const World world;
  const ListPtr list = MakeList("ints", 2);
  EXPECT_EQ(list->SetDefault(world.context), KVLResult_Success);
  ASSERT_TRUE(list->IsValued());
  EXPECT_EQ(static_cast<const Values*>(list->GetValuePtr())->GetCount(), 0);
}

// Hooks.

TEST(KVLCodeListValueHooks, DoNothingHereWhateverTheContent) {
  static_assert(
      std::is_same_v<decltype(&KVLCodeListValue::OnChanged), void (KVLCodeListValue::*)()>);
  static_assert(
      std::is_same_v<decltype(&KVLCodeListValue::OnAccess), void (KVLCodeListValue::*)() const>);
  const ListPtr list = MakeList("ints", 1);
  const void* const data = list->GetValuePtr();
  list->OnChanged();
  list->OnAccess();
  EXPECT_EQ(list->GetValuePtr(), data);
}

TEST(KVLCodeListValueHooks, AccessComesBeforeTheVectorIsDesignated) {
  const HookedPtr list = new HookedList();
  EXPECT_EQ(list->GetValuePtr(), nullptr);
  EXPECT_EQ(list->nbAccesses, 1);
}

TEST(KVLCodeListValueHooks, AccessComesBeforeTheTextIsWritten) {
  const WorldWithInts world;
  const HookedPtr list = new HookedList("ints");
  MRBUnicodeString text;
  EXPECT_EQ(list->GetValueStr(world.context, text), KVLResult_Success);
  EXPECT_EQ(list->nbAccesses, 1);
}

// Fills itself when it is read for the first time.
class LazyList : public KVLCodeListValue {
 public:
  LazyList() : KVLCodeListValue("lazy", "ints") {}
  void OnAccess() const override {
    if (filled) return;
    filled = true;
    const_cast<LazyList*>(this)->MakeOwnElements().Append(MakeText("int", "lazy"));
  }

  mutable bool filled = false;
};

TEST(KVLCodeListValueHooks, WhatTheAccessHookFillsIsWhatIsRead) {
  const WorldWithInts world;
  MRBUnicodeString text;
  EXPECT_EQ(ListPtr(new LazyList())->GetValueStr(world.context, text), KVLResult_Success);
  EXPECT_EQ(text, "[lazy]");
  EXPECT_TRUE(ListPtr(new LazyList())->IsValued());
  const ListPtr target = new KVLCodeListValue("l", "ints");
  EXPECT_EQ(target->AssignFrom(world.context, *ListPtr(new LazyList())), KVLResult_Success);
  EXPECT_TRUE(target->IsValued());
}

TEST(KVLCodeListValueHooks, WhatTheAccessHookFillsIsWhatIsCompared) {
  // Without their vectors the two would be compared as text, "NULL" both, and be equal.
  const World world;
  const ListPtr left = new LazyList();
  const ListPtr right = new LazyList();
  EXPECT_EQ(left->CompareValueWith(world.context, *right), KVLResult_False);
}

TEST(KVLCodeListValueHooks, ChangeComesOnceWhenTextWasSet) {
  const WorldWithInts world;
  const HookedPtr list = new HookedList("ints");
  EXPECT_EQ(list->SetValueStr(world.context, "[1]"), KVLResult_Success);
  EXPECT_EQ(list->nbChanges, 1);
  EXPECT_NE(list->dataAtChange, nullptr);
}

TEST(KVLCodeListValueHooks, SharingCallsAccessOfTheSourceAndChangeOfTheTargetOnce) {
  const World world;
  const HookedPtr source = new HookedList("ints");
  source->MakeOwnElements();
  const HookedPtr target = new HookedList("ints");
  EXPECT_EQ(target->AssignFrom(world.context, *source), KVLResult_Success);
  EXPECT_EQ(source->nbAccesses, 1);
  EXPECT_EQ(source->nbChanges, 0);
  EXPECT_EQ(target->nbChanges, 1);
  EXPECT_EQ(target->dataAtChange, source->GetValuePtr());
}

TEST(KVLCodeListValueHooks, ChangeComesTwiceWhenAnAssignmentWentThroughText) {
  const WorldWithInts world;
  const HookedPtr list = new HookedList("ints");
  EXPECT_EQ(list->AssignFrom(world.context, *MakeText("text", "[1]")), KVLResult_Success);
  EXPECT_EQ(list->nbChanges, 2);
}

TEST(KVLCodeListValueHooks, ChangeComesTwiceWhenAnAssignmentWentThroughAConversion) {
  World world;
  world.conversions->Add(*MakeFunction("ints", "ints", {{"from", "text"}},
                                       [](Values&) { return MakeList("ints", 1); }),
                         "text/");
  const HookedPtr list = new HookedList("ints");
  EXPECT_EQ(list->AssignFrom(world.context, *MakeText("text")), KVLResult_Success);
  EXPECT_EQ(list->nbChanges, 2);
  EXPECT_TRUE(list->IsValued());
}

TEST(KVLCodeListValueHooks, ResetAndOwnElementsCallNone) {
  const HookedPtr list = new HookedList("ints");
  list->MakeOwnElements();
  list->Reset();
  EXPECT_EQ(list->nbChanges, 0);
  EXPECT_EQ(list->nbAccesses, 0);
}

// Drops the list that is being rendered.
class DroppingType : public KVLCodeListType {
 public:
  DroppingType() : KVLCodeListType("ints") {}
  long Render(const KVLCodeContext&, const void* data, MRBUnicodeString& text) const override {
    victim->Reset();
    text = KVLStringOperations::FromNum(static_cast<const Values*>(data)->GetCount());
    return KVLResult_Success;
  }

  KVLCodeListValue* victim = nullptr;
};

TEST(KVLCodeListValue, MayBeResetByWhatRendersIt) {
  World world;
  const KVLSmartPtr<DroppingType> type = world.Register(new DroppingType());
  const ListPtr list = MakeList("ints", 2);
  type->victim = list.Get();
  MRBUnicodeString text;
  EXPECT_EQ(list->GetValueStr(world.context, text), KVLResult_Success);
  EXPECT_EQ(text, "2");
  EXPECT_FALSE(list->IsValued());
}

// Comparison.

TEST(KVLCodeListValueCompare, TheSameVectorIsEqual) {
  const World world;
  const ListPtr list = MakeList("ints", 2);
  EXPECT_EQ(list->CompareValueWith(world.context, *ListPtr(new KVLCodeListValue(*list))),
            KVLResult_Success);
}

TEST(KVLCodeListValueCompare, TheSameElementsInTheSameOrderAreEqual) {
  const World world;
  const ListPtr left = MakeList("ints", 2);
  const ListPtr right = MakeList("ints", 0);
  for (const KVLSmartPtr<KVLCodeValue>& element : *static_cast<Values*>(left->GetValuePtr())) {
    static_cast<Values*>(right->GetValuePtr())->Append(element);
  }
  EXPECT_NE(left->GetValuePtr(), right->GetValuePtr());
  EXPECT_EQ(left->CompareValueWith(world.context, *right), KVLResult_Success);
}

TEST(KVLCodeListValueCompare, AnotherOrderOrAnotherLengthDiffers) {
  const World world;
  const TextPtr a = MakeText("int", "same");
  const TextPtr b = MakeText("int", "same");
  const ListPtr left = MakeList("ints", 0);
  static_cast<Values*>(left->GetValuePtr())->Append(a);
  static_cast<Values*>(left->GetValuePtr())->Append(b);
  const ListPtr right = MakeList("ints", 0);
  Values& elements = *static_cast<Values*>(right->GetValuePtr());
  elements.Append(b);
  EXPECT_EQ(left->CompareValueWith(world.context, *right), KVLResult_False);
  elements.Append(a);
  EXPECT_EQ(left->CompareValueWith(world.context, *right), KVLResult_False);
}

TEST(KVLCodeListValueCompare, EqualTextsOfOtherObjectsDiffer) {
  const WorldWithInts world;
  EXPECT_EQ(MakeList("ints", 2)->CompareValueWith(world.context, *MakeList("ints", 2)),
            KVLResult_False);
}

TEST(KVLCodeListValueCompare, TwoEmptyVectorsAreEqualWithoutARegisteredType) {
  const World world;
  EXPECT_EQ(MakeList("ints", 0)->CompareValueWith(world.context, *MakeList("ints", 0)),
            KVLResult_Success);
}

TEST(KVLCodeListValueCompare, OtherTypeNamesAreComparedByText) {
  World world;
  world.Register(new TextListType("ints", "int"));
  world.Register(new TextListType("longs", "int"));
  EXPECT_EQ(MakeList("ints", 2)->CompareValueWith(world.context, *MakeList("longs", 2)),
            KVLResult_Success);
  EXPECT_EQ(MakeList("ints", 2)->CompareValueWith(world.context, *MakeList("longs", 3)),
            KVLResult_False);
}

TEST(KVLCodeListValueCompare, WithoutDataOnOneSideTheTextsAreCompared) {
  const WorldWithInts world;
  const ListPtr empty = new KVLCodeListValue("l", "ints");
  EXPECT_EQ(empty->CompareValueWith(world.context, *MakeList("ints", 0)), KVLResult_False);
  EXPECT_EQ(MakeList("ints", 0)->CompareValueWith(world.context, *empty), KVLResult_False);
  EXPECT_EQ(empty->CompareValueWith(world.context, *ListPtr(new KVLCodeListValue("m", "ints"))),
            KVLResult_Success);
}

TEST(KVLCodeListValueCompare, TheCodeOfATextThatCannotBeWrittenIsReturned) {
  const World world;
  const ListPtr empty = new KVLCodeListValue("l", "ints");
  EXPECT_EQ(empty->CompareValueWith(world.context, *MakeList("ints", 0)), KVLResult_NotImplemented);
}

TEST(KVLCodeListValue, NestedListsAreWrittenAndReadAsOneText) {
  World world;
  world.Register(new TextListType("ints", "int"));
  world.Register(new TextListType("intss", "ints"));
  const ListPtr outer = new KVLCodeListValue("l", "intss");
  EXPECT_EQ(outer->SetValueStr(world.context, "[[1,2],[3]]"), KVLResult_Success);
  EXPECT_EQ(static_cast<const Values*>(outer->GetValuePtr())->GetCount(), 2);
  MRBUnicodeString text;
  EXPECT_EQ(outer->GetValueStr(world.context, text), KVLResult_Success);
  EXPECT_EQ(text, "[[1,2],[3]]");
}

}  // namespace
