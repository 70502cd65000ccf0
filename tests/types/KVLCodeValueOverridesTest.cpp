// Which of its own virtual operations a value calls, so that a class that overrides one of them
// changes all that is built on it.

#include <gtest/gtest.h>

#include "KVLCodeListValue.h"
#include "KVLCodeValue.h"
#include "support/TestObjects.h"

namespace {

using kvltest::ContentOf;
using kvltest::MakeText;
using kvltest::MakeTexts;
using kvltest::TestType;
using kvltest::TextPtr;
using kvltest::Texts;
using kvltest::TextValue;
using kvltest::TypePtr;
using kvltest::Values;
using kvltest::World;

// Brings its type along, which is registered nowhere.
class SelfTypedValue : public TextValue {
 public:
  explicit SelfTypedValue(const MRBUnicodeString& text = "")
      : TextValue("value", "private", text), type(new TestType("private")) {}
  KVLSmartPtr<const KVLCodeType> GetType(const KVLCodeContext&) const override { return type; }

  const TypePtr type;
};

using SelfTypedPtr = KVLSmartPtr<SelfTypedValue>;

TEST(KVLCodeValueOverrides, CopyAsksTheValueForItsType) {
  const World world;
  const SelfTypedPtr value = new SelfTypedValue("x");
  const KVLSmartPtr<KVLCodeValue> copy = value->Copy(world.context, "copy");
  ASSERT_TRUE(copy);
  EXPECT_EQ(ContentOf(copy), "x");
  EXPECT_EQ(value->type->nbCreated, 1);
}

TEST(KVLCodeValueOverrides, CopyLetsTheFreshValueAssign) {
  const World world;
  const SelfTypedPtr value = new SelfTypedValue("x");
  const TextPtr fresh = MakeText("private");
  value->type->make = [&fresh](const MRBUnicodeString&) { return fresh; };
  EXPECT_EQ(value->Copy(world.context, "copy"), fresh);
  EXPECT_EQ(fresh->nbAssigns, 1);
  EXPECT_EQ(value->nbAssigns, 0);
}

TEST(KVLCodeValueOverrides, DefaultAsksTheValueForItsType) {
  const World world;
  const SelfTypedPtr value = new SelfTypedValue("x");
  value->type->defaultContent = "default";
  EXPECT_EQ(value->SetDefault(world.context), KVLResult_Success);
  EXPECT_EQ(value->content, "default");
}

TEST(KVLCodeValueOverrides, IsListAsksTheValueForItsType) {
  const World world;
  const SelfTypedPtr value = new SelfTypedValue();
  EXPECT_EQ(value->IsList(world.context), KVLResult_False);
  value->type->list = true;
  EXPECT_EQ(value->IsList(world.context), KVLResult_Success);
}

TEST(KVLCodeValueOverrides, ListGetElementsAsksTheValueForItsType) {
  World world;
  world.RegisterType("int");
  const SelfTypedPtr value = new SelfTypedValue("[1]");
  value->type->list = true;
  value->type->elementTypeName = "int";
  // As text into the generic list it cannot go, for that is registered as something else.
  world.Register(new KVLCodeListType("KVLVector<KVLCodeValue_var>"));
  Values elements;
  EXPECT_EQ(value->ListGetElements(world.context, elements, ""), KVLResult_Success);
  ASSERT_EQ(elements.GetCount(), 1);
  EXPECT_EQ(elements[0]->GetTypeName(), "int");
}

// A list type that makes its own element type.
class SelfContainedType : public TestType {
 public:
  SelfContainedType() : TestType("ints"), element(new TestType("hidden")) { list = true; }
  KVLSmartPtr<const KVLCodeType> GetListElementType(const KVLCodeContext&) const override {
    return element;
  }

  const TypePtr element;
};

TEST(KVLCodeValueOverrides, ListGetElementsAsksTheTypeForTheElementType) {
  World world;
  world.Register(new SelfContainedType());
  Values elements;
  EXPECT_EQ(MakeText("ints", "[1]")->ListGetElements(world.context, elements, ""),
            KVLResult_Success);
  ASSERT_EQ(elements.GetCount(), 1);
  EXPECT_EQ(elements[0]->GetTypeName(), "hidden");
}

// Assignment alone goes by what the context says of the two type names.

TEST(KVLCodeValueOverrides, AssignmentResolvesTheSourcesTypeByName) {
  World world;
  world.RegisterType("T");
  // Its own type, were it asked for, would be foreign to "T".
  const SelfTypedPtr source = new SelfTypedValue("new");
  const TextPtr target = MakeText("T", "old");
  EXPECT_EQ(target->AssignFrom(world.context, *source), KVLResult_Success);
  EXPECT_EQ(target->content, "new");
}

TEST(KVLCodeValueOverrides, AssignmentResolvesTheTargetsTypeByName) {
  World world;
  world.RegisterType("S");
  const SelfTypedPtr target = new SelfTypedValue("old");
  EXPECT_EQ(target->AssignFrom(world.context, *MakeText("S", "new")), KVLResult_Success);
  EXPECT_EQ(target->content, "new");
}

// A list whatever its type, with texts of its own.
class SelfMadeList : public TextValue {
 public:
  SelfMadeList() : TextValue("value", "ints", "[0]") {}
  long IsList(const KVLCodeContext&) const override { return listResult; }
  long ListGetElementsStr(const KVLCodeContext& context, Texts& elements) const override {
    if (!own) return TextValue::ListGetElementsStr(context, elements);
    elements.Append(MRBUnicodeString("own"));
    return KVLResult_Success;
  }
  long ListSetElementsStr(const KVLCodeContext&, const Texts& elements) override {
    given = elements;
    return 6;
  }

  bool own = false;  // whether it gives texts of its own
  long listResult = KVLResult_Success;
  Texts given;
};

using SelfMadePtr = KVLSmartPtr<SelfMadeList>;

TEST(KVLCodeValueOverrides, ListGetElementsStrAsksTheValueWhetherItIsAList) {
  const World world;
  const SelfMadePtr value = new SelfMadeList();
  Texts texts;
  EXPECT_EQ(value->ListGetElementsStr(world.context, texts), KVLResult_Success);
  EXPECT_EQ(texts.GetCount(), 1);
  for (const long code : {1L, 2L, -7L}) {
    value->listResult = code;
    EXPECT_EQ(value->ListGetElementsStr(world.context, texts), KVLResult_Failure);
    EXPECT_EQ(texts.GetCount(), 1);
  }
}

TEST(KVLCodeValueOverrides, ListGetElementsTakesTheTextsThatTheValueGives) {
  World world;
  world.RegisterType("int");
  const TypePtr type = world.RegisterType("ints");
  type->list = true;
  type->elementTypeName = "int";
  const SelfMadePtr value = new SelfMadeList();
  value->own = true;
  Values elements;
  EXPECT_EQ(value->ListGetElements(world.context, elements, ""), KVLResult_Success);
  ASSERT_EQ(elements.GetCount(), 1);
  EXPECT_EQ(ContentOf(elements[0]), "own");
}

TEST(KVLCodeValueOverrides, ListSetElementsHandsTheTextsToTheValue) {
  const World world;
  const SelfMadePtr value = new SelfMadeList();
  Values elements;
  elements.Append(MakeText("int", "1"));
  elements.Append(MakeText("int", "2"));
  EXPECT_EQ(value->ListSetElements(world.context, elements), 6);
  ASSERT_EQ(value->given.GetCount(), 2);
  EXPECT_EQ(value->given[1], "2");
  EXPECT_EQ(value->nbWrites, 0);
}

// A value that is read-only, which it alone may enforce.
class ReadOnlyValue : public TextValue {
 public:
  ReadOnlyValue() : TextValue("value", "T", "old") {}
  bool IsReadOnly() const override { return true; }
};

TEST(KVLCodeValueOverrides, AReadOnlyValueIsWrittenUnlessItRefuses) {
  World world;
  world.RegisterType("T");
  const KVLSmartPtr<ReadOnlyValue> value = new ReadOnlyValue();
  EXPECT_EQ(value->AssignFrom(world.context, *MakeText("T", "new")), KVLResult_Success);
  EXPECT_EQ(value->content, "new");
  EXPECT_EQ(value->ListSetElementsStr(world.context, MakeTexts({"1"})), KVLResult_Success);
  EXPECT_EQ(value->content, "[1]");
  EXPECT_EQ(value->SetDefault(world.context), KVLResult_Success);
  EXPECT_EQ(value->content, "");
}

}  // namespace
