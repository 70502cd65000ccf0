#include "KVLCodePointerValue.h"

#include <gtest/gtest.h>

#include "support/TestObjects.h"

namespace {

using kvltest::FunctionPtr;
using kvltest::MakeFunction;
using kvltest::MakeText;
using kvltest::TextPtr;
using kvltest::Values;
using kvltest::World;

using PointerPtr = KVLSmartPtr<KVLCodePointerValue>;

// An object whose class begins with its virtual destructor.
class Owned {
 public:
  virtual ~Owned() { ++nbDeleted; }

  inline static int nbDeleted = 0;
};

class DerivedOwned : public Owned {
 public:
  ~DerivedOwned() override { ++nbDerivedDeleted; }

  inline static int nbDerivedDeleted = 0;

  int payload[8] = {};  // larger than the base class, as the deallocation has to know
};

// Counts the calls of the two hooks.
class HookedPointer : public KVLCodePointerValue {
 public:
  explicit HookedPointer(const MRBUnicodeString& nameOfType = "Thing")
      : KVLCodePointerValue("hooked", nameOfType) {}
  void OnChanged() override {
    ++nbChanges;
    pointerAtChange = KVLCodePointerValue::GetValuePtr();
  }
  void OnAccess() const override { ++nbAccesses; }

  int nbChanges = 0;
  mutable int nbAccesses = 0;
  const void* pointerAtChange = nullptr;
};

using HookedPtr = KVLSmartPtr<HookedPointer>;

// Writes the number that the pointer designates; reads "set" as the address of a number of its own.
class NumberType : public KVLCodePointerType {
 public:
  explicit NumberType(const MRBUnicodeString& typeName, const MRBUnicodeString& parentName = "")
      : KVLCodePointerType(typeName), parent(parentName) {}

  MRBUnicodeString GetParentTypeName() const override { return parent; }
  long Parse(const KVLCodeContext&, const MRBUnicodeString& text,
             KVLCodeValue& value) const override {
    if (parseResult != KVLResult_Success) return parseResult;
    if (text != "set") return KVLResult_InvalidArgument;
    static_cast<KVLCodePointerValue&>(value).SetPointer(&number, false);
    return KVLResult_Success;
  }
  long Render(const KVLCodeContext&, const void* data, MRBUnicodeString& text) const override {
    if (renderResult != KVLResult_Success) return renderResult;
    text = KVLStringOperations::FromNum(*static_cast<const int*>(data));
    return KVLResult_Success;
  }

  MRBUnicodeString parent;
  long parseResult = KVLResult_Success;  // any other is returned before anything is done
  long renderResult = KVLResult_Success;
  mutable int number = 5;
};

PointerPtr MakePointer(void* pointer = nullptr, const MRBUnicodeString& typeName = "Thing") {
  const PointerPtr value = new KVLCodePointerValue("p", typeName);
  if (pointer) value->SetPointer(pointer, false);
  return value;
}

TEST(KVLCodePointerValue, PointsToNothingAtFirst) {
  const PointerPtr value = new KVLCodePointerValue("p", "Thing");
  EXPECT_EQ(value->GetName(), "p");
  EXPECT_EQ(value->GetTypeName(), "Thing");
  EXPECT_EQ(value->GetValuePtr(), nullptr);
  EXPECT_FALSE(value->IsValued());
}

TEST(KVLCodePointerValue, ValuePtrIsThePointer) {
  int thing = 0;
  EXPECT_EQ(MakePointer(&thing)->GetValuePtr(), &thing);
}

TEST(KVLCodePointerValue, ResetGoesBackToNothingForThisValueAlone) {
  int thing = 0;
  const PointerPtr value = MakePointer(&thing);
  const PointerPtr sharer = new KVLCodePointerValue(*value);
  value->Reset();
  EXPECT_EQ(value->GetValuePtr(), nullptr);
  EXPECT_EQ(sharer->GetValuePtr(), &thing);
}

TEST(KVLCodePointerValue, SetPointerLeavesTheFormerSharersAlone) {
  int thing = 0;
  int other = 0;
  const PointerPtr value = MakePointer(&thing);
  const PointerPtr sharer = new KVLCodePointerValue(*value);
  value->SetPointer(&other, false);
  EXPECT_EQ(value->GetValuePtr(), &other);
  EXPECT_EQ(sharer->GetValuePtr(), &thing);
}

// Ownership.

TEST(KVLCodePointerValueOwnership, AnOwnedObjectDiesThroughItsVirtualDestructor) {
  Owned::nbDeleted = 0;
  DerivedOwned::nbDerivedDeleted = 0;
  {
    const PointerPtr value = MakePointer();
    value->SetPointer(static_cast<Owned*>(new DerivedOwned()), true);
    EXPECT_EQ(DerivedOwned::nbDerivedDeleted, 0);
  }
  EXPECT_EQ(DerivedOwned::nbDerivedDeleted, 1);
  EXPECT_EQ(Owned::nbDeleted, 1);
}

TEST(KVLCodePointerValueOwnership, AnObjectThatIsNotOwnedSurvives) {
  Owned::nbDeleted = 0;
  Owned thing;
  MakePointer(&thing);
  EXPECT_EQ(Owned::nbDeleted, 0);
}

TEST(KVLCodePointerValueOwnership, AnOwnedNullIsNothingToDelete) {
  const HookedPtr value = new HookedPointer();
  value->SetPointer(nullptr, true);
  EXPECT_EQ(value->nbChanges, 1);
  EXPECT_FALSE(value->IsValued());
}

TEST(KVLCodePointerValueOwnership, AnOwnedObjectDiesWithTheLastSharer) {
  const World world;
  Owned::nbDeleted = 0;
  PointerPtr first = MakePointer();
  first->SetPointer(new Owned(), true);
  PointerPtr second = MakePointer();
  EXPECT_EQ(second->AssignFrom(world.context, *first), KVLResult_Success);
  PointerPtr third = new KVLCodePointerValue(*second);
  first = nullptr;
  second->Reset();
  EXPECT_EQ(Owned::nbDeleted, 0);
  third->SetPointer(nullptr, false);
  EXPECT_EQ(Owned::nbDeleted, 1);
}

TEST(KVLCodePointerValueOwnership, ResetDeletesWhatThisValueAloneOwned) {
  Owned::nbDeleted = 0;
  const PointerPtr value = MakePointer();
  value->SetPointer(new Owned(), true);
  value->Reset();
  EXPECT_EQ(Owned::nbDeleted, 1);
  EXPECT_EQ(value->GetValuePtr(), nullptr);
}

TEST(KVLCodePointerValueOwnership, TheFormerObjectDiesWhenAnotherIsPointedTo) {
  Owned::nbDeleted = 0;
  const PointerPtr value = MakePointer();
  for (int i = 0; i < 3; ++i) {
    value->SetPointer(new Owned(), true);
    EXPECT_EQ(Owned::nbDeleted, i);
  }
  value->Reset();
  EXPECT_EQ(Owned::nbDeleted, 3);
}

// Types.

TEST(KVLCodePointerValue, TypeIsTheRegisteredOne) {
  World world;
  const KVLSmartPtr<NumberType> type = world.Register(new NumberType("Thing"));
  EXPECT_EQ(MakePointer()->GetType(world.context), type);
}

TEST(KVLCodePointerValue, TypeIsAFreshDummyOfItsNameWhenNoneIsRegistered) {
  const World world;
  const PointerPtr value = MakePointer();
  const KVLSmartPtr<const KVLCodeType> type = value->GetType(world.context);
  ASSERT_TRUE(type);
  EXPECT_EQ(type->GetName(), "Thing");
  EXPECT_TRUE(type->IsDummy());
  EXPECT_NE(value->GetType(world.context), type);
}

TEST(KVLCodePointerValue, TheDummyMakesPointerValuesOfItsName) {
  const World world;
  const KVLSmartPtr<KVLCodeValue> fresh = MakePointer()->GetType(world.context)->CreateValue("q");
  ASSERT_TRUE(fresh);
  EXPECT_EQ(fresh->GetName(), "q");
  EXPECT_EQ(fresh->GetTypeName(), "Thing");
  EXPECT_EQ(fresh->GetValuePtr(), nullptr);
  int thing = 0;
  EXPECT_EQ(fresh->AssignFrom(world.context, *MakePointer(&thing)), KVLResult_Success);
  EXPECT_EQ(fresh->GetValuePtr(), &thing);
}

TEST(KVLCodePointerValue, TheDummyNeitherReadsNorWritesText) {
  const World world;
  int thing = 0;
  const PointerPtr value = MakePointer(&thing);
  MRBUnicodeString text;
  EXPECT_EQ(value->GetValueStr(world.context, text), KVLResult_NotImplemented);
  EXPECT_EQ(value->SetValueStr(world.context, "NULL"), KVLResult_NotImplemented);
  EXPECT_EQ(value->GetValuePtr(), &thing);
}

TEST(KVLCodePointerType, OfAModuleIsNoDummyUnlessItSaysSo) {
  const KVLSmartPtr<NumberType> type = new NumberType("Thing");
  EXPECT_FALSE(type->IsDummy());
}

TEST(KVLCodePointerType, BaseNeitherReadsNorWritesText) {
  const World world;
  const KVLSmartPtr<KVLCodePointerType> type = new KVLCodePointerType("Thing");
  const PointerPtr value = MakePointer();
  int thing = 0;
  MRBUnicodeString text = "kept";
  EXPECT_EQ(type->Parse(world.context, "x", *value), KVLResult_NotImplemented);
  EXPECT_EQ(type->Render(world.context, &thing, text), KVLResult_NotImplemented);
  EXPECT_EQ(text, "kept");
}

TEST(KVLCodePointerType, MakesAValueThatPointsToNothing) {
  const KVLSmartPtr<KVLCodePointerType> type = new KVLCodePointerType("Thing");
  const KVLSmartPtr<KVLCodeValue> value = type->CreateValue("p");
  ASSERT_TRUE(value);
  EXPECT_EQ(value->GetName(), "p");
  EXPECT_EQ(value->GetTypeName(), "Thing");
  EXPECT_FALSE(value->IsValued());
}

// Text.

TEST(KVLCodePointerValue, TextOfNothingIsNull) {
  const World world;
  MRBUnicodeString text;
  EXPECT_EQ(MakePointer()->GetValueStr(world.context, text), KVLResult_Success);
  EXPECT_EQ(text, "NULL");
}

TEST(KVLCodePointerValue, ItsTypeRendersTheObject) {
  World world;
  world.Register(new NumberType("Thing"));
  int thing = 17;
  MRBUnicodeString text;
  EXPECT_EQ(MakePointer(&thing)->GetValueStr(world.context, text), KVLResult_Success);
  EXPECT_EQ(text, "17");
}

TEST(KVLCodePointerValue, TheCodeOfTheRenderingIsReturnedAsItIs) {
  World world;
  const KVLSmartPtr<NumberType> type = world.Register(new NumberType("Thing"));
  int thing = 0;
  for (const long code : {6L, -6L}) {
    type->renderResult = code;
    MRBUnicodeString text;
    EXPECT_EQ(MakePointer(&thing)->GetValueStr(world.context, text), code);
  }
}

TEST(KVLCodePointerValue, ItsTypeParsesTheText) {
  World world;
  const KVLSmartPtr<NumberType> type = world.Register(new NumberType("Thing"));
  const PointerPtr value = MakePointer();
  EXPECT_EQ(value->SetValueStr(world.context, "set"), KVLResult_Success);
  EXPECT_EQ(value->GetValuePtr(), &type->number);
}

TEST(KVLCodePointerValue, ANegativeCodeOfTheParsingIsReturnedWithoutAChangeHook) {
  World world;
  world.Register(new NumberType("Thing"));
  const HookedPtr value = new HookedPointer();
  EXPECT_EQ(value->SetValueStr(world.context, "x"), KVLResult_InvalidArgument);
  EXPECT_EQ(value->nbChanges, 0);
}

TEST(KVLCodePointerValue, APositiveCodeOfTheParsingBecomesSuccess) {
  World world;
  world.Register(new NumberType("Thing"))->parseResult = 3;
  const HookedPtr value = new HookedPointer();
  EXPECT_EQ(value->SetValueStr(world.context, "x"), KVLResult_Success);
  EXPECT_EQ(value->nbChanges, 1);
}

// Has no type at all.
class TypelessPointer : public HookedPointer {
 public:
  KVLSmartPtr<const KVLCodeType> GetType(const KVLCodeContext&) const override { return nullptr; }
};

TEST(KVLCodePointerValue, WithoutATypeTextCanNeitherBeReadNorWritten) {
  const World world;
  int thing = 0;
  const HookedPtr value = new TypelessPointer();
  MRBUnicodeString text;
  EXPECT_EQ(value->GetValueStr(world.context, text), KVLResult_Success);
  EXPECT_EQ(text, "NULL");
  value->SetPointer(&thing, false);
  value->nbChanges = 0;
  EXPECT_EQ(value->GetValueStr(world.context, text), KVLResult_Failure);
  EXPECT_EQ(value->SetValueStr(world.context, "x"), KVLResult_Failure);
  EXPECT_EQ(value->nbChanges, 0);
}

// Assignment.

TEST(KVLCodePointerValueAssign, EqualTypeNamesShareTheHolder) {
  const World world;
  int thing = 0;
  const PointerPtr target = MakePointer();
  EXPECT_EQ(target->AssignFrom(world.context, *MakePointer(&thing)), KVLResult_Success);
  EXPECT_EQ(target->GetValuePtr(), &thing);
}

TEST(KVLCodePointerValueAssign, ASourceThatPointsToNothingEmptiesTheTarget) {
  const World world;
  int thing = 0;
  const PointerPtr target = MakePointer(&thing);
  EXPECT_EQ(target->AssignFrom(world.context, *MakePointer()), KVLResult_Success);
  EXPECT_EQ(target->GetValuePtr(), nullptr);
}

TEST(KVLCodePointerValueAssign, ADescendantSharesItsHolder) {
  World world;
  world.Register(new NumberType("Special", "Thing"));
  int thing = 0;
  const PointerPtr target = MakePointer();
  EXPECT_EQ(target->AssignFrom(world.context, *MakePointer(&thing, "Special")), KVLResult_Success);
  EXPECT_EQ(target->GetValuePtr(), &thing);
  EXPECT_EQ(target->GetTypeName(), "Thing");
}

TEST(KVLCodePointerValueAssign, AnAncestorDoesNotShareItsHolder) {
  World world;
  world.Register(new NumberType("Thing"));
  world.Register(new NumberType("Special", "Thing"));
  int thing = 0;
  const HookedPtr target = new HookedPointer("Special");
  EXPECT_EQ(target->AssignFrom(world.context, *MakePointer(&thing)), KVLResult_Failure);
  EXPECT_EQ(target->GetValuePtr(), nullptr);
  EXPECT_EQ(target->nbChanges, 0);
}

TEST(KVLCodePointerValueAssign, AnotherTypeIsAssignedAsAnyValue) {
  World world;
  const KVLSmartPtr<NumberType> type = world.Register(new NumberType("Thing"));
  const HookedPtr target = new HookedPointer();
  EXPECT_EQ(target->AssignFrom(world.context, *MakeText("text", "set")), KVLResult_Success);
  EXPECT_EQ(target->GetValuePtr(), &type->number);
}

TEST(KVLCodePointerValueAssign, ANegativeCodeOfThePlainAssignmentIsReturnedAsItIs) {
  World world;
  world.Register(new NumberType("Thing"))->parseResult = -31;
  const HookedPtr target = new HookedPointer();
  EXPECT_EQ(target->AssignFrom(world.context, *MakeText("text")), -31);
  EXPECT_EQ(target->nbChanges, 0);
}

// Passes a positive code of its type on.
class CandidPointer : public HookedPointer {
 public:
  long SetValueStr(const KVLCodeContext& context, const MRBUnicodeString& text) override {
    const long result = HookedPointer::SetValueStr(context, text);
    return KVLFailed(result) ? result : 4;
  }
};

TEST(KVLCodePointerValueAssign, APositiveCodeOfThePlainAssignmentBecomesSuccess) {
  World world;
  const KVLSmartPtr<NumberType> type = world.Register(new NumberType("Thing"));
  const PointerPtr target = new CandidPointer();
  EXPECT_EQ(target->SetValueStr(world.context, "set"), 4);
  EXPECT_EQ(target->AssignFrom(world.context, *MakeText("text", "set")), KVLResult_Success);
  EXPECT_EQ(target->GetValuePtr(), &type->number);
}

TEST(KVLCodePointerValueAssign, AConversionGivesItsPointer) {
  World world;
  int thing = 0;
  const FunctionPtr conversion = MakeFunction("Thing", "Thing", {{"from", "text"}},
                                              [&thing](Values&) { return MakePointer(&thing); });
  world.conversions->Add(*conversion, "text/");
  const PointerPtr target = MakePointer();
  EXPECT_EQ(target->AssignFrom(world.context, *MakeText("text")), KVLResult_Success);
  EXPECT_EQ(target->GetValuePtr(), &thing);
}

TEST(KVLCodePointerValueAssign, AValueAssignedToItselfKeepsWhatItOwns) {
  const World world;
  Owned::nbDeleted = 0;
  const HookedPtr value = new HookedPointer();
  value->SetPointer(new Owned(), true);
  value->nbChanges = 0;
  EXPECT_EQ(value->AssignFrom(world.context, *value), KVLResult_Success);
  EXPECT_EQ(Owned::nbDeleted, 0);
  EXPECT_TRUE(value->IsValued());
  EXPECT_EQ(value->nbChanges, 1);
}

TEST(KVLCodePointerValueAssign, ValuesOnTheStackSurvive) {
  const World world;
  int thing = 0;
  KVLCodePointerValue source("s", "Thing");
  KVLCodePointerValue target("t", "Thing");
  source.SetPointer(&thing, false);
  EXPECT_EQ(target.AssignFrom(world.context, source), KVLResult_Success);
  EXPECT_EQ(target.GetValuePtr(), &thing);
  EXPECT_EQ(source.GetValuePtr(), &thing);
}

// Comparison is that of any value.

TEST(KVLCodePointerValueCompare, TheSamePointerIsEqualWhateverTheType) {
  const World world;
  int thing = 0;
  EXPECT_EQ(MakePointer(&thing)->CompareValueWith(world.context, *MakePointer(&thing, "Other")),
            KVLResult_Success);
}

TEST(KVLCodePointerValueCompare, DifferentPointersAreComparedByText) {
  World world;
  world.Register(new NumberType("Thing"));
  int one = 1;
  int alsoOne = 1;
  int two = 2;
  const PointerPtr value = MakePointer(&one);
  EXPECT_EQ(value->CompareValueWith(world.context, *MakePointer(&alsoOne)), KVLResult_Success);
  EXPECT_EQ(value->CompareValueWith(world.context, *MakePointer(&two)), KVLResult_False);
  EXPECT_EQ(value->CompareValueWith(world.context, *MakePointer()), KVLResult_False);
}

TEST(KVLCodePointerValueCompare, TwoNothingsAreEqualByTheirText) {
  const World world;
  EXPECT_EQ(MakePointer()->CompareValueWith(world.context, *MakePointer(nullptr, "Other")),
            KVLResult_Success);
}

// Hooks.

// Finds its object when it is first asked for it.
class LazyPointer : public KVLCodePointerValue {
 public:
  explicit LazyPointer(void* lazyObject)
      : KVLCodePointerValue("lazy", "Thing"), object(lazyObject) {}
  void OnAccess() const override {
    if (isFound) return;
    isFound = true;
    const_cast<LazyPointer*>(this)->SetPointer(object, false);
  }

 private:
  void* const object;
  mutable bool isFound = false;
};

TEST(KVLCodePointerValueHooks, AccessComesBeforeThePointerIsRead) {
  World world;
  world.Register(new NumberType("Thing"));
  int thing = 17;
  EXPECT_EQ(PointerPtr(new LazyPointer(&thing))->GetValuePtr(), &thing);
  MRBUnicodeString text;
  EXPECT_EQ(PointerPtr(new LazyPointer(&thing))->GetValueStr(world.context, text),
            KVLResult_Success);
  EXPECT_EQ(text, "17");
  const PointerPtr target = MakePointer();
  EXPECT_EQ(target->AssignFrom(world.context, *PointerPtr(new LazyPointer(&thing))),
            KVLResult_Success);
  EXPECT_EQ(target->GetValuePtr(), &thing);
}

TEST(KVLCodePointerValueHooks, AccessComesOnceForEachReading) {
  const World world;
  const HookedPtr value = new HookedPointer();
  EXPECT_EQ(value->GetValuePtr(), nullptr);
  EXPECT_EQ(value->nbAccesses, 1);
  MRBUnicodeString text;
  EXPECT_EQ(value->GetValueStr(world.context, text), KVLResult_Success);
  EXPECT_EQ(value->nbAccesses, 2);
  EXPECT_EQ(value->nbChanges, 0);
}

TEST(KVLCodePointerValueHooks, ChangeComesAfterThePointerWasSet) {
  int thing = 0;
  const HookedPtr value = new HookedPointer();
  value->SetPointer(&thing, false);
  EXPECT_EQ(value->nbChanges, 1);
  EXPECT_EQ(value->pointerAtChange, &thing);
}

TEST(KVLCodePointerValueHooks, SharingCallsAccessOfTheSourceAndChangeOfTheTargetOnce) {
  const World world;
  int thing = 0;
  const HookedPtr source = new HookedPointer();
  source->SetPointer(&thing, false);
  source->nbChanges = 0;
  source->nbAccesses = 0;
  const HookedPtr target = new HookedPointer();
  EXPECT_EQ(target->AssignFrom(world.context, *source), KVLResult_Success);
  EXPECT_EQ(source->nbAccesses, 1);
  EXPECT_EQ(source->nbChanges, 0);
  EXPECT_EQ(target->nbChanges, 1);
  EXPECT_EQ(target->pointerAtChange, &thing);
  // By its change hook, which reads the pointer.
  EXPECT_EQ(target->nbAccesses, 1);
}

TEST(KVLCodePointerValueHooks, ChangeComesAfterThePlainAssignmentToo) {
  World world;
  world.Register(new NumberType("Thing"));
  const HookedPtr target = new HookedPointer();
  EXPECT_EQ(target->AssignFrom(world.context, *MakeText("text", "set")), KVLResult_Success);
  // Once for the pointer set by the type, once for the text, once for the assignment.
  EXPECT_EQ(target->nbChanges, 3);
}

TEST(KVLCodePointerValueHooks, ResetCallsNone) {
  const HookedPtr value = new HookedPointer();
  value->Reset();
  EXPECT_EQ(value->nbChanges, 0);
  EXPECT_EQ(value->nbAccesses, 0);
}

// Resets the value that is being rendered, and with it what the value owns.
class DroppingType : public KVLCodePointerType {
 public:
  DroppingType() : KVLCodePointerType("Thing") {}
  long Render(const KVLCodeContext&, const void*, MRBUnicodeString& text) const override {
    victim->Reset();
    text = KVLStringOperations::FromNum(Owned::nbDeleted);
    return KVLResult_Success;
  }

  KVLCodePointerValue* victim = nullptr;
};

TEST(KVLCodePointerValue, WhatIsBeingRenderedOutlivesAResetByItsType) {
  World world;
  const KVLSmartPtr<DroppingType> type = world.Register(new DroppingType());
  Owned::nbDeleted = 0;
  const PointerPtr value = MakePointer();
  value->SetPointer(new Owned(), true);
  type->victim = value.Get();
  MRBUnicodeString text;
  EXPECT_EQ(value->GetValueStr(world.context, text), KVLResult_Success);
  EXPECT_EQ(text, "0");
  EXPECT_EQ(Owned::nbDeleted, 1);
}

}  // namespace
