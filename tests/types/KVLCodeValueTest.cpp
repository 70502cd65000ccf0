#include "KVLCodeValue.h"

#include <gtest/gtest.h>

#include "support/TestObjects.h"

namespace {

using kvltest::ContentOf;
using kvltest::FunctionPtr;
using kvltest::In;
using kvltest::MakeFunction;
using kvltest::MakeText;
using kvltest::TextPtr;
using kvltest::TextValue;
using kvltest::TypePtr;
using kvltest::Values;
using kvltest::World;

// A value that overrides nothing but what it must.
class PlainValue : public KVLCodeValue {
 public:
  PlainValue(const MRBUnicodeString& valueName, const MRBUnicodeString& nameOfType)
      : KVLCodeValue(valueName, nameOfType) {}
  long GetValueStr(const KVLCodeContext&, MRBUnicodeString& text) const override {
    text = "plain";
    return KVLResult_Success;
  }
  long SetValueStr(const KVLCodeContext&, const MRBUnicodeString&) override {
    return KVLResult_Success;
  }

  void Complain(const char* message) { messages.Append(MRBUnicodeString(message)); }
};

TEST(KVLCodeValue, PrintsTypeAndNameBetweenBraces) {
  const KVLSmartPtr<PlainValue> value = new PlainValue("x", "int");
  EXPECT_EQ(value->ToString(), "Variable { type=int, name=x }");
}

TEST(KVLCodeValue, PrintsAsADeclarationAsCode) {
  const KVLSmartPtr<PlainValue> value = new PlainValue("x", "int");
  EXPECT_EQ(value->ToStringCode(), "int x");
}

TEST(KVLCodeValue, TakesItsNameFirstAndItsTypeNameSecond) {
  const KVLSmartPtr<PlainValue> value = new PlainValue("x", "int");
  EXPECT_EQ(value->GetName(), "x");
  EXPECT_EQ(value->GetTypeName(), "int");
}

TEST(KVLCodeValue, IsAVariableAndNothingElse) {
  const KVLSmartPtr<PlainValue> value = new PlainValue("x", "int");
  KVLCodeObject& object = *value;
  const KVLCodeObject& constObject = object;
  EXPECT_EQ(object.AsVariable(), value.Get());
  EXPECT_EQ(constObject.AsVariable(), value.Get());
  EXPECT_EQ(object.AsFunction(), nullptr);
  EXPECT_EQ(object.AsType(), nullptr);
  EXPECT_EQ(object.AsEnv(), nullptr);
  EXPECT_EQ(constObject.AsFunction(), nullptr);
  EXPECT_EQ(constObject.AsType(), nullptr);
  EXPECT_EQ(constObject.AsEnv(), nullptr);
}

TEST(KVLCodeValue, BaseHasNoDataAndRefusesNoWrite) {
  const World world;
  const KVLSmartPtr<PlainValue> value = new PlainValue("x", "int");
  EXPECT_EQ(value->GetValuePtr(), nullptr);
  EXPECT_FALSE(value->IsValued());
  EXPECT_FALSE(value->IsReadOnly());
  value->Reset();
  MRBUnicodeString text;
  EXPECT_EQ(value->GetValueStr(world.context, text), KVLResult_Success);
  EXPECT_EQ(text, "plain");
}

TEST(KVLCodeValue, IsValuedWhenItDesignatesData) {
  const TextPtr value = MakeText("text");
  EXPECT_TRUE(value->IsValued());
  value->valued = false;
  EXPECT_FALSE(value->IsValued());
}

TEST(KVLCodeValue, ACopyConstructedValueHasNameTypeNameAndMessages) {
  const KVLSmartPtr<PlainValue> value = new PlainValue("x", "int");
  value->Complain("problem");
  const KVLSmartPtr<PlainValue> copy = new PlainValue(*value);
  EXPECT_EQ(copy->GetName(), "x");
  EXPECT_EQ(copy->GetTypeName(), "int");
  ASSERT_EQ(copy->Check().GetCount(), 1);
  EXPECT_EQ(copy->Check()[0], "problem");
}

TEST(KVLCodeValue, TypeIsTheOneRegisteredUnderTheTypeName) {
  World world;
  const TextPtr value = MakeText("int");
  EXPECT_TRUE(value->GetType(world.context).IsNull());
  const TypePtr type = world.RegisterType("int");
  EXPECT_EQ(value->GetType(world.context), type);
}

// Assignment.

TEST(KVLCodeValueAssign, EqualTypeNamesNeverCallAConversion) {
  World world;
  const FunctionPtr conversion = MakeFunction("T", "T", {{"from", "T"}});
  world.conversions->Add(*conversion, "T/T");
  const TextPtr target = MakeText("T", "old");
  EXPECT_EQ(target->AssignFrom(world.context, *MakeText("T", "new")), KVLResult_Success);
  EXPECT_EQ(target->content, "new");
  EXPECT_EQ(conversion->nbCallersMade, 0);
}

TEST(KVLCodeValueAssign, EqualTypeNamesCreateNothingInTheConversions) {
  World world;
  const TextPtr target = MakeText("T");
  EXPECT_EQ(target->AssignFrom(world.context, *MakeText("T", "new")), KVLResult_Success);
  EXPECT_TRUE(world.conversions->FindSubEnv("T").IsNull());
}

TEST(KVLCodeValueAssign, UnregisteredTypesGoThroughTheirText) {
  const World world;
  const TextPtr target = MakeText("T", "old");
  const TextPtr source = MakeText("S", "new");
  EXPECT_EQ(target->AssignFrom(world.context, *source), KVLResult_Success);
  EXPECT_EQ(target->content, "new");
  EXPECT_EQ(source->nbReads, 1);
  EXPECT_EQ(target->nbWrites, 1);
}

TEST(KVLCodeValueAssign, OneUnregisteredTypeIsEnoughToGoThroughText) {
  World world;
  world.RegisterType("T");
  const TextPtr registered = MakeText("T", "r");
  const TextPtr unknown = MakeText("U", "u");
  EXPECT_EQ(registered->AssignFrom(world.context, *unknown), KVLResult_Success);
  EXPECT_EQ(registered->content, "u");
  registered->content = "r";
  EXPECT_EQ(unknown->AssignFrom(world.context, *registered), KVLResult_Success);
  EXPECT_EQ(unknown->content, "r");
}

TEST(KVLCodeValueAssign, ADescendantGoesThroughItsText) {
  World world;
  world.RegisterType("A");
  world.RegisterType("B", "A");
  world.RegisterType("C", "B");
  const TextPtr target = MakeText("A");
  EXPECT_EQ(target->AssignFrom(world.context, *MakeText("C", "c")), KVLResult_Success);
  EXPECT_EQ(target->content, "c");
}

TEST(KVLCodeValueAssign, AnAncestorIsRefusedWithoutAConversion) {
  World world;
  world.RegisterType("A");
  world.RegisterType("B", "A");
  const TextPtr target = MakeText("B", "old");
  const TextPtr source = MakeText("A", "new");
  EXPECT_EQ(target->AssignFrom(world.context, *source), KVLResult_Failure);
  EXPECT_EQ(target->content, "old");
  EXPECT_EQ(target->nbWrites, 0);
  EXPECT_EQ(source->nbReads, 0);
}

TEST(KVLCodeValueAssign, ADummyTypeOnEitherSideSkipsTheSubtypeQuestion) {
  for (const bool dummySource : {true, false}) {
    World world;
    const TypePtr sourceType = world.RegisterType("S");
    const TypePtr targetType = world.RegisterType("T");
    (dummySource ? sourceType : targetType)->dummy = true;
    const TextPtr target = MakeText("T", "old");
    EXPECT_EQ(target->AssignFrom(world.context, *MakeText("S", "new")), KVLResult_Success);
    EXPECT_EQ(target->content, "new");
  }
}

TEST(KVLCodeValueAssign, TheCodeOfTheFailedConversionIsReturnedForForeignTypes) {
  World world;
  world.RegisterType("S");
  world.RegisterType("T");
  const FunctionPtr conversion = MakeFunction("T", "T", {{"from", "S"}});
  conversion->makeArg = [](const KVLCodeFunction::Param& param) {
    const TextPtr arg = new TextValue(param.name, param.typeName);
    arg->assignResult = -77;
    return arg;
  };
  world.conversions->Add(*conversion, "S/T");
  const TextPtr target = MakeText("T", "old");
  EXPECT_EQ(target->AssignFrom(world.context, *MakeText("S", "new")), -77);
  EXPECT_EQ(target->content, "old");
  EXPECT_EQ(target->nbWrites, 0);
}

TEST(KVLCodeValueAssign, AFailedConversionFallsBackOnTextForADescendant) {
  World world;
  world.RegisterType("T");
  world.RegisterType("S", "T");
  const FunctionPtr conversion =
      MakeFunction("T", "T", {{"from", "S"}}, [](Values&) { return nullptr; });
  world.conversions->Add(*conversion, "S/T");
  const TextPtr target = MakeText("T", "old");
  EXPECT_EQ(target->AssignFrom(world.context, *MakeText("S", "new")), KVLResult_Success);
  EXPECT_EQ(conversion->nbCalls, 1);
  EXPECT_EQ(target->content, "new");
}

TEST(KVLCodeValueAssign, AConversionThatSucceedsEndsTheAssignment) {
  World world;
  const FunctionPtr conversion = MakeFunction("T", "T", {{"from", "S"}}, [](Values& args) {
    return MakeText("T", "converted " + ContentOf(args[0]));
  });
  world.conversions->Add(*conversion, "S/T");
  const TextPtr target = MakeText("T");
  EXPECT_EQ(target->AssignFrom(world.context, *MakeText("S", "x")), KVLResult_Success);
  EXPECT_EQ(target->content, "converted x");
  EXPECT_EQ(conversion->nbCalls, 1);
  EXPECT_EQ(target->nbWrites, 1);
}

TEST(KVLCodeValueAssign, ANamesakeOfTheTargetsTypeIsRefused) {
  World world;
  world.RegisterType("T");
  // Registered under another name than its own, by which alone it would be a "T".
  world.types->Add(*TypePtr(new kvltest::TestType("T")), "S");
  const TextPtr target = MakeText("T", "old");
  EXPECT_EQ(target->AssignFrom(world.context, *MakeText("S", "new")), KVLResult_Failure);
  EXPECT_EQ(target->content, "old");
}

TEST(KVLCodeValueAssign, OneTypeUnderTwoNamesGoesThroughText) {
  World world;
  const TypePtr type = world.RegisterType("T");
  world.types->Add(*type, "S");
  const TextPtr target = MakeText("T", "old");
  EXPECT_EQ(target->AssignFrom(world.context, *MakeText("S", "new")), KVLResult_Success);
  EXPECT_EQ(target->content, "new");
}

TEST(KVLCodeValueAssign, ANegativeCodeOfTheSourceIsReturnedBeforeTheTargetIsTouched) {
  const World world;
  const TextPtr target = MakeText("T", "old");
  const TextPtr source = MakeText("T", "new");
  source->readResult = -5;
  EXPECT_EQ(target->AssignFrom(world.context, *source), -5);
  EXPECT_EQ(target->nbWrites, 0);
  EXPECT_EQ(target->content, "old");
}

TEST(KVLCodeValueAssign, APositiveCodeOfTheSourceDoesNotStop) {
  const World world;
  const TextPtr target = MakeText("T");
  const TextPtr source = MakeText("T", "new");
  source->readResult = 3;
  EXPECT_EQ(target->AssignFrom(world.context, *source), KVLResult_Success);
  EXPECT_EQ(target->content, "new");
}

TEST(KVLCodeValueAssign, TheCodeOfTheWriteIsReturnedAsItIs) {
  const World world;
  for (const long code : {0L, 7L, -7L}) {
    const TextPtr target = MakeText("T");
    target->writeResult = code;
    EXPECT_EQ(target->AssignFrom(world.context, *MakeText("T", "x")), code);
  }
}

TEST(KVLCodeValueAssign, AValueAssignedToItselfStays) {
  const World world;
  const TextPtr value = MakeText("T", "kept");
  EXPECT_EQ(value->AssignFrom(world.context, *value), KVLResult_Success);
  EXPECT_EQ(value->content, "kept");
}

TEST(KVLCodeValueAssign, EmptyTypeNamesGoThroughText) {
  const World world;
  const TextPtr target = MakeText("T");
  EXPECT_EQ(target->AssignFrom(world.context, *MakeText("", "x")), KVLResult_Success);
  EXPECT_EQ(target->content, "x");
  const TextPtr nameless = MakeText("");
  EXPECT_EQ(nameless->AssignFrom(world.context, *MakeText("", "y")), KVLResult_Success);
  EXPECT_EQ(nameless->content, "y");
}

TEST(KVLCodeValueAssign, ValuesOnTheStackSurviveAnAssignmentWithConversion) {
  World world;
  world.conversions->Add(*MakeFunction("T", "T", {{"from", "S"}}), "S/T");
  const int before = TextValue::nbAlive;
  {
    const TextValue source("s", "S", "x");
    TextValue target("t", "T");
    EXPECT_EQ(target.AssignFrom(world.context, source), KVLResult_Success);
    EXPECT_EQ(target.content, "returned");
    EXPECT_EQ(source.content, "x");
    EXPECT_EQ(TextValue::nbAlive, before + 2);
  }
  EXPECT_EQ(TextValue::nbAlive, before);
}

// Comparison.

TEST(KVLCodeValueCompare, TheSameDataIsEqualWithoutBeingRead) {
  const World world;
  int data = 0;
  const TextPtr left = MakeText("T", "a");
  const TextPtr right = MakeText("T", "b");
  left->data = &data;
  right->data = &data;
  EXPECT_EQ(left->CompareValueWith(world.context, *right), KVLResult_Success);
  EXPECT_EQ(left->nbReads, 0);
  EXPECT_EQ(right->nbReads, 0);
}

TEST(KVLCodeValueCompare, ValuesWithoutDataAreComparedByTheirText) {
  const World world;
  const TextPtr left = MakeText("T", "a");
  const TextPtr right = MakeText("T", "b");
  left->valued = false;
  right->valued = false;
  EXPECT_EQ(left->CompareValueWith(world.context, *right), KVLResult_False);
}

TEST(KVLCodeValueCompare, TypeNamesAreNotCompared) {
  World world;
  world.RegisterType("S");
  world.RegisterType("T");
  const TextPtr left = MakeText("S", "a");
  EXPECT_EQ(left->CompareValueWith(world.context, *MakeText("T", "a")), KVLResult_Success);
}

TEST(KVLCodeValueCompare, TextsAreComparedExactly) {
  const World world;
  const TextPtr left = MakeText("T", "a");
  EXPECT_EQ(left->CompareValueWith(world.context, *MakeText("T", "A")), KVLResult_False);
  EXPECT_EQ(left->CompareValueWith(world.context, *MakeText("T", "a ")), KVLResult_False);
}

TEST(KVLCodeValueCompare, TheCodeOfThisValueComesFirst) {
  const World world;
  const TextPtr left = MakeText("T");
  const TextPtr right = MakeText("T");
  left->readResult = -3;
  right->readResult = -4;
  EXPECT_EQ(left->CompareValueWith(world.context, *right), -3);
  EXPECT_EQ(right->nbReads, 0);
  left->readResult = 2;
  EXPECT_EQ(left->CompareValueWith(world.context, *right), -4);
}

// Copies and defaults.

TEST(KVLCodeValueCopy, HasTheGivenNameAndTheContent) {
  World world;
  world.RegisterType("T");
  const TextPtr value = MakeText("T", "x");
  const KVLSmartPtr<KVLCodeValue> copy = value->Copy(world.context, "copy");
  ASSERT_TRUE(copy);
  EXPECT_NE(copy, value);
  EXPECT_EQ(copy->GetName(), "copy");
  EXPECT_EQ(copy->GetTypeName(), "T");
  EXPECT_EQ(ContentOf(copy), "x");
}

TEST(KVLCodeValueCopy, HasTheNameOfTheSourceWhenNoneIsGiven) {
  World world;
  world.RegisterType("T");
  const TextPtr value = new TextValue("original", "T", "x");
  const KVLSmartPtr<KVLCodeValue> copy = value->Copy(world.context, "");
  ASSERT_TRUE(copy);
  EXPECT_EQ(copy->GetName(), "original");
}

TEST(KVLCodeValueCopy, IsNullWhenTheTypeIsNotRegistered) {
  const World world;
  EXPECT_TRUE(MakeText("T")->Copy(world.context, "copy").IsNull());
}

TEST(KVLCodeValueCopy, IsNullWhenTheTypeMakesNoValue) {
  World world;
  world.RegisterType("T")->makesValues = false;
  const TextPtr value = MakeText("T");
  EXPECT_TRUE(value->Copy(world.context, "copy").IsNull());
  EXPECT_EQ(value->nbReads, 0);
}

TEST(KVLCodeValueCopy, IsNullAndDroppedWhenTheContentCannotBeAssigned) {
  World world;
  world.RegisterType("T");
  const TextPtr value = MakeText("T");
  value->readResult = -1;
  const int before = TextValue::nbAlive;
  EXPECT_TRUE(value->Copy(world.context, "copy").IsNull());
  EXPECT_EQ(TextValue::nbAlive, before);
}

TEST(KVLCodeValueCopy, APositiveCodeOfTheAssignmentIsNoFailure) {
  World world;
  const TypePtr type = world.RegisterType("T");
  type->make = [](const MRBUnicodeString& valueName) {
    const TextPtr fresh = new TextValue(valueName, "T");
    fresh->writeResult = 1;
    return fresh;
  };
  const KVLSmartPtr<KVLCodeValue> copy = MakeText("T", "x")->Copy(world.context, "copy");
  ASSERT_TRUE(copy);
  EXPECT_EQ(ContentOf(copy), "x");
}

TEST(KVLCodeValueDefault, IsTheContentOfAFreshValue) {
  World world;
  const TypePtr type = world.RegisterType("T");
  MRBUnicodeString givenName = "unset";
  type->make = [&givenName](const MRBUnicodeString& valueName) {
    givenName = valueName;
    return MakeText("T", "default");
  };
  const TextPtr value = MakeText("T", "x");
  EXPECT_EQ(value->SetDefault(world.context), KVLResult_Success);
  EXPECT_EQ(value->content, "default");
  EXPECT_EQ(givenName, "");
}

TEST(KVLCodeValueDefault, FailsWhenTheTypeIsNotRegistered) {
  const World world;
  const TextPtr value = MakeText("T", "kept");
  EXPECT_EQ(value->SetDefault(world.context), KVLResult_Failure);
  EXPECT_EQ(value->content, "kept");
}

TEST(KVLCodeValueDefault, FailsWhenTheTypeMakesNoValue) {
  World world;
  world.RegisterType("T")->makesValues = false;
  const TextPtr value = MakeText("T", "kept");
  EXPECT_EQ(value->SetDefault(world.context), KVLResult_Failure);
  EXPECT_EQ(value->content, "kept");
}

TEST(KVLCodeValueDefault, TheCodeOfTheAssignmentIsReturnedAsItIs) {
  World world;
  world.RegisterType("T");
  for (const long code : {7L, -7L}) {
    const TextPtr value = MakeText("T");
    value->writeResult = code;
    EXPECT_EQ(value->SetDefault(world.context), code);
    EXPECT_EQ(value->nbAssigns, 1);
  }
}

TEST(KVLCodeValueDefault, AValueOnTheStackSurvives) {
  World world;
  world.RegisterType("T")->defaultContent = "default";
  TextValue value("v", "T", "x");
  EXPECT_EQ(value.SetDefault(world.context), KVLResult_Success);
  EXPECT_EQ(value.content, "default");
  EXPECT_FALSE(value.Copy(world.context, "copy").IsNull());
}

}  // namespace
