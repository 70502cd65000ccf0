#include "KVLCodeObject.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "KVLCodeFunctionBinding.h"
#include "KVLCodeFunctionWithContext.h"
#include "KVLCodeObjectRegisterer.h"
#include "KVLTypeConversion.h"
#include "RegistryObjects.h"
#include "support/TestObjects.h"

namespace {

using namespace kvltest;

static_assert(std::is_base_of_v<KVLRefCounted, KVLCodeObject>);
static_assert(std::has_virtual_destructor_v<KVLCodeObject>);
static_assert(!std::is_convertible_v<MRBUnicodeString, KVLCodeObject>);
static_assert(!std::is_convertible_v<MRBUnicodeString, KVLCodeEnv>);
static_assert(!std::is_copy_constructible_v<KVLCodeEnv> && !std::is_copy_assignable_v<KVLCodeEnv>);
static_assert(!std::is_move_constructible_v<KVLCodeEnv> && !std::is_move_assignable_v<KVLCodeEnv>);

class KVLCodeObjects : public RegistryCase {};

TEST_F(KVLCodeObjects, StartWithTheirNameAndNothingElse) {
  const KVLSmartPtr<KVLCodeObject> object = new KVLCodeObject("x");
  EXPECT_EQ(object->GetName(), "x");
  EXPECT_EQ(object->Check().GetCount(), 0);
  EXPECT_EQ(object->GetRegistrationLocations().GetCount(), 0);
}

TEST_F(KVLCodeObjects, PrintTheirClassAndNameInQuotes) {
  const KVLCodeObject object("x");
  EXPECT_EQ(object.ToString(), "KVLCodeObject 'x'");
  EXPECT_EQ(object.ToStringCode(), "x");
  const KVLCodeObject nameless("");
  EXPECT_EQ(nameless.ToString(), "KVLCodeObject ''");
  EXPECT_EQ(nameless.ToStringCode(), "");
}

TEST_F(KVLCodeObjects, OfADerivedClassPrintTheSameUnlessItSaysOtherwise) {
  const TrackedPtr object = MakeObject("x");
  EXPECT_EQ(object->ToString(), "KVLCodeObject 'x'");
  EXPECT_EQ(object->ToStringCode(), "x");
}

TEST_F(KVLCodeObjects, PrintTheirNameWhateverTheirFormInSourceText) {
  struct InBrackets : KVLCodeObject {
    using KVLCodeObject::KVLCodeObject;
    MRBUnicodeString ToStringCode() const override { return "[" + GetName() + "]"; }
  };
  const InBrackets object("x");
  EXPECT_EQ(object.ToString(), "KVLCodeObject 'x'");
}

TEST_F(KVLCodeObjects, CheckReturnsACopyOfTheMessagesInOrder) {
  const TrackedPtr object = MakeObject("x");
  object->Note("first");
  object->Note("second");
  KVLVector<MRBUnicodeString> messages = object->Check();
  ASSERT_EQ(messages.GetCount(), 2);
  EXPECT_EQ(messages[0], "first");
  EXPECT_EQ(messages[1], "second");
  messages.Resize(0);
  EXPECT_EQ(object->Check().GetCount(), 2);
}

TEST_F(KVLCodeObjects, ACopyHasTheMessagesTheNameAndTheLocationsButNoReferences) {
  const EnvPtr env = new KVLCodeEnv();
  const TrackedPtr source = MakeObject("x");
  source->Note("noted");
  source->AddRef();
  { const KVLCodeObjectRegisterer registerer(*env, source, "x", KVLSourceLocation("a", 1, "")); }
  TrackedPtr copy = new TrackedObject(*source);
  source->Release();

  EXPECT_EQ(copy->GetName(), "x");
  ASSERT_EQ(copy->Check().GetCount(), 1);
  EXPECT_EQ(copy->Check()[0], "noted");
  ASSERT_EQ(copy->GetRegistrationLocations().GetCount(), 1);
  EXPECT_EQ(copy->GetRegistrationLocations()[0].ToString(), "a:1");

  source->Note("later");
  EXPECT_EQ(copy->Check().GetCount(), 1);
  EXPECT_EQ(TrackedObject::nbAlive, 2);
  copy = nullptr;
  EXPECT_EQ(TrackedObject::nbAlive, 1);
}

TEST_F(KVLCodeObjects, APlainObjectIsOfNoKind) {
  KVLCodeObject object("x");
  const KVLCodeObject& constant = object;
  EXPECT_EQ(object.AsFunction(), nullptr);
  EXPECT_EQ(constant.AsFunction(), nullptr);
  EXPECT_EQ(object.AsVariable(), nullptr);
  EXPECT_EQ(constant.AsVariable(), nullptr);
  EXPECT_EQ(object.AsType(), nullptr);
  EXPECT_EQ(constant.AsType(), nullptr);
  EXPECT_EQ(object.AsEnv(), nullptr);
  EXPECT_EQ(constant.AsEnv(), nullptr);
}

// What each of the eight questions answers, in their order; each asked through the base.
struct Kinds {
  explicit Kinds(KVLCodeObject& object)
      : function(object.AsFunction()),
        variable(object.AsVariable()),
        type(object.AsType()),
        env(object.AsEnv()) {
    const KVLCodeObject& constant = object;
    EXPECT_EQ(constant.AsFunction(), function);
    EXPECT_EQ(constant.AsVariable(), variable);
    EXPECT_EQ(constant.AsType(), type);
    EXPECT_EQ(constant.AsEnv(), env);
  }

  const KVLCodeFunction* function;
  const KVLCodeValue* variable;
  const KVLCodeType* type;
  const KVLCodeEnv* env;
};

TEST_F(KVLCodeObjects, AFunctionAnswersForItsOwnKindAlone) {
  const FunctionPtr function = MakeFunction("f", "int", {});
  const Kinds kinds(*function);
  EXPECT_EQ(kinds.function, function.Get());
  EXPECT_EQ(kinds.variable, nullptr);
  EXPECT_EQ(kinds.type, nullptr);
  EXPECT_EQ(kinds.env, nullptr);
}

TEST_F(KVLCodeObjects, ABindingAndAFunctionWithContextAnswerAsFunctionsThemselves) {
  const FunctionPtr function = MakeFunction("f", "int", {{"a", "int"}});
  const KVLSmartPtr<KVLCodeFunctionBinding> binding =
      new KVLCodeFunctionBinding(*function, KVLSmartPtr<const KVLCodeValue>());
  const KVLSmartPtr<KVLCodeFunctionWithContext> withContext =
      new KVLCodeFunctionWithContext(*function);
  for (KVLCodeFunction* const each : {static_cast<KVLCodeFunction*>(binding.Get()),
                                      static_cast<KVLCodeFunction*>(withContext.Get())}) {
    const Kinds kinds(*each);
    EXPECT_EQ(kinds.function, each);
    EXPECT_EQ(kinds.variable, nullptr);
    EXPECT_EQ(kinds.type, nullptr);
    EXPECT_EQ(kinds.env, nullptr);
  }
}

TEST_F(KVLCodeObjects, AValueAnswersForItsOwnKindAlone) {
  const TextPtr value = MakeText("int");
  const Kinds kinds(*value);
  EXPECT_EQ(kinds.function, nullptr);
  EXPECT_EQ(kinds.variable, value.Get());
  EXPECT_EQ(kinds.type, nullptr);
  EXPECT_EQ(kinds.env, nullptr);
}

TEST_F(KVLCodeObjects, ATypeAnswersForItsOwnKindAlone) {
  const TypePtr type = new TestType("int");
  const Kinds kinds(*type);
  EXPECT_EQ(kinds.function, nullptr);
  EXPECT_EQ(kinds.variable, nullptr);
  EXPECT_EQ(kinds.type, type.Get());
  EXPECT_EQ(kinds.env, nullptr);
}

TEST_F(KVLCodeObjects, AnEnvironmentAnswersForItsOwnKindAloneAndPrintsAsAPlainObject) {
  const EnvPtr env = new KVLCodeEnv("e");
  const Kinds kinds(*env);
  EXPECT_EQ(kinds.function, nullptr);
  EXPECT_EQ(kinds.variable, nullptr);
  EXPECT_EQ(kinds.type, nullptr);
  EXPECT_EQ(kinds.env, env.Get());
  EXPECT_EQ(env->ToString(), "KVLCodeObject 'e'");
  EXPECT_EQ(env->ToStringCode(), "e");
  EXPECT_EQ(EnvPtr(new KVLCodeEnv())->GetName(), "");
}

template <class To>
class KVLTypeConversions : public testing::Test {};
using Targets = testing::Types<KVLCodeFunction, KVLCodeValue, KVLCodeType, KVLCodeEnv>;
TYPED_TEST_SUITE(KVLTypeConversions, Targets, );

TYPED_TEST(KVLTypeConversions, OfNullIsNull) {
  using Plain = KVLTypeConversion<KVLCodeObject*, TypeParam*>;
  using Const = KVLTypeConversion<const KVLCodeObject*, const TypeParam*>;
  EXPECT_EQ(Plain::convert(nullptr), nullptr);
  EXPECT_EQ(Const::convert(nullptr), nullptr);
  static_assert(std::is_empty_v<Plain> && std::is_empty_v<Const>);
}

TYPED_TEST(KVLTypeConversions, AreVariablesThatAHostMayReplace) {
  using Plain = KVLTypeConversion<KVLCodeObject*, TypeParam*>;
  using Const = KVLTypeConversion<const KVLCodeObject*, const TypeParam*>;
  static_assert(std::is_same_v<decltype(Plain::convert), TypeParam* (*)(KVLCodeObject*)>);
  static_assert(
      std::is_same_v<decltype(Const::convert), const TypeParam* (*)(const KVLCodeObject*)>);

  static int answer;
  const auto formerPlain = Plain::convert;
  const auto formerConst = Const::convert;
  Plain::convert = [](KVLCodeObject*) { return reinterpret_cast<TypeParam*>(&answer); };
  Const::convert = [](const KVLCodeObject*) { return reinterpret_cast<const TypeParam*>(&answer); };
  EXPECT_EQ(static_cast<void*>(Plain::convert(nullptr)), &answer);
  EXPECT_EQ(static_cast<const void*>(Const::convert(nullptr)), &answer);
  Plain::convert = formerPlain;
  Const::convert = formerConst;
  EXPECT_EQ(Plain::convert(nullptr), nullptr);
  EXPECT_EQ(Const::convert(nullptr), nullptr);
}

template <class To>
void ExpectConversionsToGive(KVLCodeObject& object, const To* expected) {
  const KVLCodeObject& constant = object;
  EXPECT_EQ((KVLTypeConversion<KVLCodeObject*, To*>::convert(&object)), expected);
  EXPECT_EQ((KVLTypeConversion<const KVLCodeObject*, const To*>::convert(&constant)), expected);
}

TEST(KVLTypeConversionOf, EachKindGivesWhatTheObjectAnswersItself) {
  const FunctionPtr function = MakeFunction("f", "int", {});
  const TextPtr value = MakeText("int");
  const TypePtr type = new TestType("int");
  const EnvPtr env = new KVLCodeEnv("e");
  const ObjectPtr objects[] = {ObjectPtr(function), ObjectPtr(value), ObjectPtr(type),
                               ObjectPtr(env), ObjectPtr(new KVLCodeObject("plain"))};
  for (const ObjectPtr& object : objects) {
    ExpectConversionsToGive<KVLCodeFunction>(*object,
                                             object == function ? function.Get() : nullptr);
    ExpectConversionsToGive<KVLCodeValue>(*object, object == value ? value.Get() : nullptr);
    ExpectConversionsToGive<KVLCodeType>(*object, object == type ? type.Get() : nullptr);
    ExpectConversionsToGive<KVLCodeEnv>(*object, object == env ? env.Get() : nullptr);
  }
}

// Of every kind when asked the plain questions, and of none when asked the const ones.
class Chameleon : public KVLCodeObject {
 public:
  Chameleon() : KVLCodeObject("c") {}
  KVLCodeFunction* AsFunction() override { return function.Get(); }
  const KVLCodeFunction* AsFunction() const override { return nullptr; }
  KVLCodeValue* AsVariable() override { return value.Get(); }
  const KVLCodeValue* AsVariable() const override { return nullptr; }
  KVLCodeType* AsType() override { return type.Get(); }
  const KVLCodeType* AsType() const override { return nullptr; }
  KVLCodeEnv* AsEnv() override { return env.Get(); }
  const KVLCodeEnv* AsEnv() const override { return nullptr; }

  const FunctionPtr function = MakeFunction("f", "int", {});
  const TextPtr value = MakeText("int");
  const TypePtr type = new TestType("int");
  const EnvPtr env = new KVLCodeEnv("e");
};

template <class To>
void ExpectThePlainQuestionAlone(Chameleon& chameleon, const To* answer) {
  EXPECT_EQ((KVLTypeConversion<KVLCodeObject*, To*>::convert(&chameleon)), answer);
  EXPECT_EQ((KVLTypeConversion<const KVLCodeObject*, const To*>::convert(&chameleon)), nullptr);
}

TEST(KVLTypeConversionOf, AnObjectAsksTheConstQuestionForConstAndThePlainOneOtherwise) {
  Chameleon chameleon;
  ExpectThePlainQuestionAlone<KVLCodeFunction>(chameleon, chameleon.function.Get());
  ExpectThePlainQuestionAlone<KVLCodeValue>(chameleon, chameleon.value.Get());
  ExpectThePlainQuestionAlone<KVLCodeType>(chameleon, chameleon.type.Get());
  ExpectThePlainQuestionAlone<KVLCodeEnv>(chameleon, chameleon.env.Get());
}

}  // namespace
