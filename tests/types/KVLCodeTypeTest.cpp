#include "KVLCodeType.h"

#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>

#include "support/TestObjects.h"

namespace {

using kvltest::MakeTexts;
using kvltest::TestType;
using kvltest::Texts;
using kvltest::TypePtr;
using kvltest::World;

// A type that overrides nothing but what it must.
class PlainType : public KVLCodeType {
 public:
  explicit PlainType(const MRBUnicodeString& typeName) : KVLCodeType(typeName) {}
  KVLSmartPtr<KVLCodeValue> CreateValue(const MRBUnicodeString&) const override { return nullptr; }

  void Complain(const char* message) { messages.Append(MRBUnicodeString(message)); }
};

TEST(KVLCodeType, TheUnknownTypeIsCalledThreeQuestionMarks) {
  EXPECT_STREQ(KVLTypeName_Unknown, "???");
}

TEST(KVLCodeType, OneArgumentConstructionIsExplicit) {
  static_assert(!std::is_convertible_v<MRBUnicodeString, KVLCodeListType>);
  static_assert(!std::is_convertible_v<MRBUnicodeString, KVLCodePointerType>);
  static_assert(std::is_abstract_v<KVLCodeType>);
  static_assert(std::is_constructible_v<KVLCodeListType, MRBUnicodeString>);
}

TEST(KVLCodeType, PrintsItsNameBetweenBraces) {
  const KVLSmartPtr<PlainType> type = new PlainType("int");
  EXPECT_EQ(type->ToString(), "Type { name=int }");
}

TEST(KVLCodeType, PrintsItsNameAloneAsCode) {
  const KVLSmartPtr<PlainType> type = new PlainType("int");
  EXPECT_EQ(type->ToStringCode(), "int");
}

TEST(KVLCodeType, AnEmptyNamePrintsAsNothing) {
  const KVLSmartPtr<PlainType> type = new PlainType("");
  EXPECT_EQ(type->ToString(), "Type { name= }");
  EXPECT_EQ(type->ToStringCode(), "");
}

TEST(KVLCodeType, IsATypeAndNothingElse) {
  const KVLSmartPtr<PlainType> type = new PlainType("int");
  KVLCodeObject& object = *type;
  const KVLCodeObject& constObject = object;
  EXPECT_EQ(object.AsType(), type.Get());
  EXPECT_EQ(constObject.AsType(), type.Get());
  EXPECT_EQ(object.AsFunction(), nullptr);
  EXPECT_EQ(object.AsVariable(), nullptr);
  EXPECT_EQ(object.AsEnv(), nullptr);
  EXPECT_EQ(constObject.AsFunction(), nullptr);
  EXPECT_EQ(constObject.AsVariable(), nullptr);
  EXPECT_EQ(constObject.AsEnv(), nullptr);
}

TEST(KVLCodeType, BaseAnswersAreThoseOfAPlainRootType) {
  const World world;
  const KVLSmartPtr<PlainType> type = new PlainType("int");
  EXPECT_FALSE(type->IsDummy());
  EXPECT_EQ(type->GetSerializationInfo(world.context), "");
  EXPECT_EQ(type->GetParentTypeName(), "");
  EXPECT_FALSE(type->IsList(nullptr));
  EXPECT_TRUE(type->GetListElementType(world.context).IsNull());
  EXPECT_TRUE(type->GetParentType(world.context).IsNull());
}

TEST(KVLCodeType, WhatIsNoEnumerationLeavesTheValuesUntouched) {
  const KVLSmartPtr<PlainType> type = new PlainType("int");
  Texts values = MakeTexts({"kept"});
  EXPECT_FALSE(type->GetEnumValues(values));
  ASSERT_EQ(values.GetCount(), 1);
  EXPECT_EQ(values[0], "kept");
}

TEST(KVLCodeType, WhatIsNoListLeavesTheElementTypeNameUntouched) {
  const KVLSmartPtr<PlainType> type = new PlainType("int");
  MRBUnicodeString elementTypeName = "kept";
  EXPECT_FALSE(type->IsList(&elementTypeName));
  EXPECT_EQ(elementTypeName, "kept");
}

TEST(KVLCodeType, ACopyHasNameAndMessages) {
  const KVLSmartPtr<PlainType> type = new PlainType("int");
  type->Complain("problem");
  const KVLSmartPtr<PlainType> copy = new PlainType(*type);
  EXPECT_EQ(copy->GetName(), "int");
  ASSERT_EQ(copy->Check().GetCount(), 1);
  EXPECT_EQ(copy->Check()[0], "problem");
}

TEST(KVLCodeType, ParentIsNullWithoutAParentName) {
  World world;
  // A nameless type is registered, yet it is not the parent of types that have none.
  world.types->Add(*TypePtr(new TestType("root")), "");
  const TypePtr type = world.RegisterType("A");
  EXPECT_TRUE(type->GetParentType(world.context).IsNull());
}

TEST(KVLCodeType, ParentIsNullWhenItIsNotRegistered) {
  World world;
  const TypePtr type = world.RegisterType("B", "A");
  EXPECT_TRUE(type->GetParentType(world.context).IsNull());
}

TEST(KVLCodeType, ParentIsTheTypeRegisteredUnderItsName) {
  World world;
  const TypePtr parent = world.RegisterType("A");
  const TypePtr type = world.RegisterType("B", "A");
  EXPECT_EQ(type->GetParentType(world.context), parent);
}

TEST(KVLCodeType, ParentIsResolvedThroughTheContextGiven) {
  World world;
  World other;
  const TypePtr type = world.RegisterType("B", "A");
  const TypePtr parent = other.RegisterType("A");
  EXPECT_TRUE(type->GetParentType(world.context).IsNull());
  EXPECT_EQ(type->GetParentType(other.context), parent);
}

TEST(KVLCodeType, AParentNameMayBeAPath) {
  World world;
  const TypePtr parent = new TestType("A");
  world.types->Add(*parent, "lib/");
  const TypePtr type = world.RegisterType("B", "lib/A");
  EXPECT_EQ(type->GetParentType(world.context), parent);
  EXPECT_TRUE(type->IsSubTypeOf(world.context, *parent));
}

TEST(KVLCodeType, ElementTypeIsTheTypeRegisteredUnderItsName) {
  World world;
  const TypePtr element = world.RegisterType("int");
  const TypePtr list = world.RegisterType("ints");
  list->list = true;
  list->elementTypeName = "int";
  EXPECT_EQ(list->GetListElementType(world.context), element);
}

TEST(KVLCodeType, ElementTypeIsNullWhenItIsNotRegistered) {
  World world;
  const TypePtr list = world.RegisterType("ints");
  list->list = true;
  list->elementTypeName = "int";
  EXPECT_TRUE(list->GetListElementType(world.context).IsNull());
}

TEST(KVLCodeType, ElementTypeIsNullForWhatIsNoList) {
  World world;
  world.RegisterType("int");
  const TypePtr type = world.RegisterType("ints");
  type->elementTypeName = "int";
  EXPECT_TRUE(type->GetListElementType(world.context).IsNull());
}

// A list type that does not say of what.
class SecretiveType : public PlainType {
 public:
  SecretiveType() : PlainType("secrets") {}
  bool IsList(MRBUnicodeString* elementTypeName) const override {
    if (elementTypeName) given = *elementTypeName;
    return true;
  }

  mutable MRBUnicodeString given = "nothing";
};

TEST(KVLCodeType, ElementTypeNameIsAskedForWithAnEmptyText) {
  World world;
  const KVLSmartPtr<SecretiveType> type = world.Register(new SecretiveType());
  EXPECT_TRUE(type->GetListElementType(world.context).IsNull());
  EXPECT_EQ(type->given, "");
}

TEST(KVLCodeType, IsASubTypeOfItselfInBothForms) {
  const World world;
  const TypePtr type = new TestType("A");
  EXPECT_TRUE(type->IsSubTypeOf(world.context, *type));
  EXPECT_TRUE(type->IsSubTypeOf(world.context, "A"));
}

TEST(KVLCodeType, WithoutAParentIsASubTypeOfNoOtherName) {
  const World world;
  const TypePtr type = new TestType("A");
  EXPECT_FALSE(type->IsSubTypeOf(world.context, "B"));
  EXPECT_FALSE(type->IsSubTypeOf(world.context, "a"));
  EXPECT_FALSE(type->IsSubTypeOf(world.context, ""));
}

TEST(KVLCodeType, IsASubTypeOfEveryAncestorInBothForms) {
  World world;
  const TypePtr a = world.RegisterType("A");
  const TypePtr b = world.RegisterType("B", "A");
  const TypePtr c = world.RegisterType("C", "B");
  EXPECT_TRUE(c->IsSubTypeOf(world.context, *b));
  EXPECT_TRUE(c->IsSubTypeOf(world.context, *a));
  EXPECT_TRUE(c->IsSubTypeOf(world.context, "B"));
  EXPECT_TRUE(c->IsSubTypeOf(world.context, "A"));
}

TEST(KVLCodeType, IsNoSubTypeOfItsDescendants) {
  World world;
  const TypePtr a = world.RegisterType("A");
  const TypePtr b = world.RegisterType("B", "A");
  EXPECT_FALSE(a->IsSubTypeOf(world.context, *b));
  EXPECT_FALSE(a->IsSubTypeOf(world.context, "B"));
}

TEST(KVLCodeType, AParentThatIsNamedButNotRegisteredCountsByName) {
  const World world;
  const TypePtr b = new TestType("B", "A");
  EXPECT_TRUE(b->IsSubTypeOf(world.context, "A"));
}

TEST(KVLCodeType, AParentIsComparedByNameWithoutALookup) {
  const World world;
  const TypePtr b = new TestType("B", "lib/A");
  EXPECT_TRUE(b->IsSubTypeOf(world.context, "lib/A"));
  // A lookup would have left the environment of its path behind.
  EXPECT_TRUE(world.types->FindSubEnv("lib").IsNull());
}

TEST(KVLCodeType, AnAncestorCountsUnderItsOwnNameAndUnderTheNameItIsLookedUpBy) {
  World world;
  const TypePtr a = new TestType("A");
  world.types->Add(*a, "lib/Base");
  const TypePtr b = world.RegisterType("B", "lib/Base");
  EXPECT_TRUE(b->IsSubTypeOf(world.context, "lib/Base"));
  EXPECT_TRUE(b->IsSubTypeOf(world.context, "A"));
  EXPECT_FALSE(b->IsSubTypeOf(world.context, "Base"));
  EXPECT_TRUE(b->IsSubTypeOf(world.context, *a));
}

TEST(KVLCodeType, AParentThatIsNamedButNotRegisteredDoesNotCountByIdentity) {
  World world;
  World other;
  const TypePtr a = other.RegisterType("A");
  const TypePtr b = world.RegisterType("B", "A");
  EXPECT_FALSE(b->IsSubTypeOf(world.context, *a));
}

TEST(KVLCodeType, TheClimbEndsAtAParentThatIsNotRegistered) {
  World world;
  const TypePtr root = world.RegisterType("Root");
  const TypePtr c = world.RegisterType("C", "Gone");
  EXPECT_FALSE(c->IsSubTypeOf(world.context, *root));
  EXPECT_FALSE(c->IsSubTypeOf(world.context, "Root"));
}

TEST(KVLCodeType, NamesakesAreEqualButNoSubTypesOfOneAnother) {
  World world;
  const TypePtr first = new TestType("A");
  const TypePtr second = new TestType("A");
  EXPECT_TRUE(*first == *second);
  EXPECT_FALSE(*first != *second);
  EXPECT_FALSE(first->IsSubTypeOf(world.context, *second));
  EXPECT_TRUE(first->IsSubTypeOf(world.context, second->GetName()));
}

TEST(KVLCodeType, ANamesakeThatIsTheRegisteredParentCountsByIdentity) {
  World world;
  const TypePtr registered = world.RegisterType("A");
  const TypePtr type = new TestType("A", "A");
  EXPECT_TRUE(type->IsSubTypeOf(world.context, *registered));
}

TEST(KVLCodeType, EqualityComparesNamesExactly) {
  const TypePtr lower = new TestType("int");
  const TypePtr upper = new TestType("Int", "int");
  EXPECT_FALSE(*lower == *upper);
  EXPECT_TRUE(*lower != *upper);
}

TEST(KVLCodeType, ALongParentChainIsClimbedToItsEnd) {
  World world;
  const TypePtr root = world.RegisterType("T0");
  TypePtr type;
  constexpr int Length = 500;
  for (int i = 1; i <= Length; ++i) {
    type = world.RegisterType("T" + KVLStringOperations::FromNum(i),
                              "T" + KVLStringOperations::FromNum(i - 1));
  }
  EXPECT_TRUE(type->IsSubTypeOf(world.context, *root));
  EXPECT_TRUE(type->IsSubTypeOf(world.context, "T0"));
}

TEST(KVLCodeType, AnotherTypeFoundOnTheWayEndsALoopOfParents) {
  World world;
  const TypePtr a = world.RegisterType("A", "B");
  const TypePtr b = world.RegisterType("B", "A");
  EXPECT_TRUE(a->IsSubTypeOf(world.context, *b));
  EXPECT_TRUE(b->IsSubTypeOf(world.context, "A"));
}

}  // namespace
