#include "KVLCodeFunctionBinding.h"

#include <gtest/gtest.h>

#include "KVLCodeFunctionCallerBinding.h"
#include "support/TestObjects.h"

namespace {

using kvltest::FixedValues;
using kvltest::FunctionPtr;
using kvltest::In;
using kvltest::MakeFunction;
using kvltest::MakeText;
using kvltest::MakeTexts;
using kvltest::Out;
using kvltest::TestFunction;
using kvltest::TextPtr;
using kvltest::Texts;
using kvltest::World;

using BindingPtr = KVLSmartPtr<KVLCodeFunctionBinding>;
using ConstValuePtr = KVLSmartPtr<const KVLCodeValue>;

FunctionPtr Three() {
  return MakeFunction("f", "int", {{"a", "A"}, {"b", "B", Out, "2"}, {"c", "C"}});
}

FixedValues Fix(std::initializer_list<ConstValuePtr> list) {
  FixedValues values;
  for (const ConstValuePtr& value : list)
    values.Append(value);
  return values;
}

ConstValuePtr Value(const char* typeName) {
  return MakeText(typeName);
}

TEST(KVLCodeFunctionBinding, LeavesTheParametersOpenThatHaveNoValue) {
  const FunctionPtr function = Three();
  const BindingPtr binding =
      new KVLCodeFunctionBinding(*function, Fix({Value("A"), nullptr, Value("C")}));
  ASSERT_EQ(binding->GetNbParameters(), 1);
  EXPECT_EQ(binding->GetParam(0).name, "b");
  EXPECT_EQ(binding->GetParam(0).typeName, "B");
  EXPECT_EQ(binding->GetParam(0).defaultValue, "2");
  EXPECT_EQ(binding->GetParam(0).direction, Out);
  EXPECT_EQ(binding->GetReturnTypeName(), "int");
}

TEST(KVLCodeFunctionBinding, PrintsItsReducedSignatureUnderTheFunctionsName) {
  const BindingPtr binding =
      new KVLCodeFunctionBinding(*Three(), Fix({Value("A"), nullptr, nullptr}));
  EXPECT_EQ(binding->GetName(), "f");
  EXPECT_EQ(binding->ToStringCode(), "int f(B& b=2, C c)");
  EXPECT_EQ(binding->ToString(),
            "Function { name=f, returnType=int, params=[[out] B b=2, [in] C c])");
  EXPECT_EQ(binding->AsFunction(), binding.Get());
}

TEST(KVLCodeFunctionBinding, NullsAndMissingValuesLeaveTheSignatureWhole) {
  const FunctionPtr function = Three();
  for (const FixedValues& values :
       {FixedValues(), Fix({nullptr}), Fix({nullptr, nullptr, nullptr})}) {
    const BindingPtr binding = new KVLCodeFunctionBinding(*function, values);
    EXPECT_EQ(binding->ToStringCode(), function->ToStringCode());
  }
}

TEST(KVLCodeFunctionBinding, SurplusValuesFixNothing) {
  const FunctionPtr function = MakeFunction("f", "int", {{"a", "A"}, {"b", "B"}});
  const BindingPtr binding =
      new KVLCodeFunctionBinding(*function, Fix({Value("A"), nullptr, Value("C"), Value("D")}));
  EXPECT_EQ(binding->ToStringCode(), "int f(B b)");
  const World world;
  EXPECT_EQ(binding->CreateCaller(world.context)->GetNbArgs(), 1);
  const BindingPtr none = new KVLCodeFunctionBinding(*MakeFunction("g", "", {}), Fix({Value("A")}));
  EXPECT_EQ(none->GetNbParameters(), 0);
}

TEST(KVLCodeFunctionBinding, OneValueFixesTheFirstParameter) {
  const ConstValuePtr value = Value("A");
  const BindingPtr binding = new KVLCodeFunctionBinding(*Three(), value);
  EXPECT_EQ(binding->ToStringCode(), "int f(B& b=2, C c)");
  ASSERT_EQ(binding->GetBindedValues().GetCount(), 1);
  EXPECT_EQ(binding->GetBindedValues()[0], value);
}

TEST(KVLCodeFunctionBinding, OneNullValueBindsNothing) {
  const World world;
  const FunctionPtr function = Three();
  const BindingPtr binding = new KVLCodeFunctionBinding(*function, ConstValuePtr());
  EXPECT_EQ(binding->ToStringCode(), function->ToStringCode());
  EXPECT_EQ(binding->CreateCaller(world.context)->GetNbArgs(), 3);
}

TEST(KVLCodeFunctionBinding, KeepsFunctionAndValuesAlive) {
  const int functionsBefore = TestFunction::nbAlive;
  const int valuesBefore = kvltest::TextValue::nbAlive;
  {
    const BindingPtr binding = new KVLCodeFunctionBinding(*Three(), Value("A"));
    EXPECT_EQ(binding->GetBindedFunc().GetName(), "f");
    EXPECT_EQ(binding->GetBindedFunc().GetNbParameters(), 3);
    EXPECT_EQ(TestFunction::nbAlive, functionsBefore + 1);
    EXPECT_EQ(kvltest::TextValue::nbAlive, valuesBefore + 1);
  }
  EXPECT_EQ(TestFunction::nbAlive, functionsBefore);
  EXPECT_EQ(kvltest::TextValue::nbAlive, valuesBefore);
}

TEST(KVLCodeFunctionBinding, KeepsACopyOfTheValues) {
  FixedValues values = Fix({Value("A")});
  const BindingPtr binding = new KVLCodeFunctionBinding(*Three(), values);
  values.Resize(0);
  EXPECT_EQ(binding->GetBindedValues().GetCount(), 1);
}

TEST(KVLCodeFunctionBinding, ACopySharesFunctionAndValues) {
  const BindingPtr binding = new KVLCodeFunctionBinding(*Three(), Value("A"));
  const BindingPtr copy = new KVLCodeFunctionBinding(*binding);
  EXPECT_EQ(&copy->GetBindedFunc(), &binding->GetBindedFunc());
  EXPECT_EQ(copy->GetBindedValues()[0], binding->GetBindedValues()[0]);
  EXPECT_EQ(copy->ToString(), binding->ToString());
}

TEST(KVLCodeFunctionBinding, RefusesAParameterText) {
  const FunctionPtr function = Three();
  const BindingPtr binding = new KVLCodeFunctionBinding(*function, Value("A"));
  const MRBUnicodeString before = binding->ToString();
  EXPECT_EQ(binding->Init("x=1,y,z,="), KVLResult_NotImplemented);
  EXPECT_EQ(binding->Init(""), KVLResult_NotImplemented);
  EXPECT_EQ(binding->ToString(), before);
  EXPECT_EQ(binding->Check().GetCount(), 0);
  EXPECT_EQ(function->nbInits, 0);
}

TEST(KVLCodeFunctionBinding, ARefusedParameterTextDoesNotReachTheHook) {
  class Hooked : public KVLCodeFunctionBinding {
   public:
    using KVLCodeFunctionBinding::KVLCodeFunctionBinding;
    int nbInits = 0;

   protected:
    long InitImpl() override {
      ++nbInits;
      return KVLResult_Success;
    }
  };
  const KVLSmartPtr<Hooked> binding = new Hooked(*Three(), Value("A"));
  EXPECT_EQ(binding->Init("x"), KVLResult_NotImplemented);
  EXPECT_EQ(binding->nbInits, 0);
}

TEST(KVLCodeFunctionBinding, IsAMethodAsLongAsTheObjectIsOpen) {
  const FunctionPtr function = Three();
  function->method = true;
  EXPECT_TRUE(BindingPtr(new KVLCodeFunctionBinding(*function, FixedValues()))->IsMethod());
  EXPECT_TRUE(
      BindingPtr(new KVLCodeFunctionBinding(*function, Fix({nullptr, Value("B")})))->IsMethod());
  EXPECT_FALSE(BindingPtr(new KVLCodeFunctionBinding(*function, Fix({Value("A")})))->IsMethod());
  EXPECT_FALSE(BindingPtr(new KVLCodeFunctionBinding(*function, Value("A")))->IsMethod());
  EXPECT_TRUE(BindingPtr(new KVLCodeFunctionBinding(*function, ConstValuePtr()))->IsMethod());
}

TEST(KVLCodeFunctionBinding, OfAPlainFunctionIsNoMethod) {
  const FunctionPtr function = Three();
  EXPECT_FALSE(BindingPtr(new KVLCodeFunctionBinding(*function, FixedValues()))->IsMethod());
  EXPECT_FALSE(BindingPtr(new KVLCodeFunctionBinding(*function, Fix({nullptr})))->IsMethod());
}

// Reaches the operation that rebuilds the signature.
class Rebuilding : public KVLCodeFunctionBinding {
 public:
  using KVLCodeFunctionBinding::InitBindings;
  using KVLCodeFunctionBinding::KVLCodeFunctionBinding;
};

TEST(KVLCodeFunctionBinding, InitBindingsFollowsTheFunction) {
  const FunctionPtr function = Three();
  const KVLSmartPtr<Rebuilding> binding = new Rebuilding(*function, Value("A"));
  EXPECT_EQ(function->Init("x,y=7,z=8"), KVLResult_Success);
  EXPECT_EQ(binding->ToStringCode(), "int f(B& b=2, C c)");
  binding->InitBindings();
  EXPECT_EQ(binding->ToStringCode(), "int f(B& y=7, C z=8)");
}

// Can be given another return type.
class Retypable : public TestFunction {
 public:
  using KVLCodeFunction::returnTypeName;
  using TestFunction::TestFunction;
};

TEST(KVLCodeFunctionBinding, InitBindingsTakesTheReturnTypeToo) {
  const KVLSmartPtr<Retypable> function =
      new Retypable("f", "int", std::initializer_list<kvltest::TestParam>{{"a", "A"}});
  const KVLSmartPtr<Rebuilding> binding = new Rebuilding(*function, FixedValues());
  function->returnTypeName = "long";
  EXPECT_EQ(binding->GetReturnTypeName(), "int");
  binding->InitBindings();
  EXPECT_EQ(binding->GetReturnTypeName(), "long");
}

TEST(KVLCodeFunctionBinding, OfABindingFixesWhatThatOneLeftOpen) {
  const BindingPtr inner = new KVLCodeFunctionBinding(*Three(), Value("A"));
  const BindingPtr outer = new KVLCodeFunctionBinding(*inner, Fix({nullptr, Value("C")}));
  EXPECT_EQ(outer->ToStringCode(), "int f(B& b=2)");
  const World world;
  EXPECT_EQ(outer->CreateCaller(world.context)->GetNbArgs(), 1);
}

TEST(KVLCodeFunctionBinding, IsCalledByTextWithItsOpenParametersAlone) {
  const World world;
  const FunctionPtr function =
      MakeFunction("f", "T", {{"a", "T"}, {"b", "T"}, {"c", "T", Out}}, [](kvltest::Values& args) {
        static_cast<kvltest::TextValue&>(*args[2]).content = "out";
        return MakeText("T", kvltest::ContentOf(args[0]) + kvltest::ContentOf(args[1]));
      });
  const BindingPtr binding =
      new KVLCodeFunctionBinding(*function, ConstValuePtr(MakeText("T", "fixed ")));
  Texts texts = MakeTexts({"open", "old"});
  MRBUnicodeString result;
  EXPECT_EQ(binding->ParseAndCall(world.context, texts, result), KVLResult_Success);
  EXPECT_EQ(result, "fixed open");
  EXPECT_EQ(texts[1], "out");
}

}  // namespace
