#include "KVLShellCheck.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "TestRegistry.h"

namespace {

using kvltest::Furnish;
using kvltest::In;
using kvltest::InOut;
using kvltest::MakeTexts;
using kvltest::Out;
using kvltest::PathsOf;
using kvltest::Registry;
using kvltest::Strings;
using kvltest::TestType;
using kvltest::TextValue;

// What the strict check finds, as "kind path: message".
Strings Strict(const Registry& registry) {
  Strings texts;
  for (const KVLShellFinding& finding : KVLShellFindStrictly(*registry.root))
    texts.push_back(finding.kind + " " + finding.path + ": " + finding.message);
  return texts;
}

// A value that reads nothing but "good".
class PickyValue : public TextValue {
 public:
  explicit PickyValue(const MRBUnicodeString& valueName) : TextValue(valueName, "picky", "good") {}
  long SetValueStr(const KVLCodeContext& context, const MRBUnicodeString& text) override {
    return text == "good" ? TextValue::SetValueStr(context, text) : KVLResult_InvalidArgument;
  }
};

TestType& PublishPicky(Registry& registry) {
  TestType& type = registry.PublishType("picky");
  type.make = [](const MRBUnicodeString& valueName) -> KVLSmartPtr<KVLCodeValue> {
    return new PickyValue(valueName);
  };
  return type;
}

// A value whose text grows each time that it is read.
class GrowingValue : public TextValue {
 public:
  explicit GrowingValue(const MRBUnicodeString& valueName) : TextValue(valueName, "growing") {}
  long SetValueStr(const KVLCodeContext& context, const MRBUnicodeString& text) override {
    return TextValue::SetValueStr(context, text + "+");
  }
};

// The kernel's anomalies.

TEST(KVLShellCheck, AnomaliesAreThoseOfTheKernelWithTheirPlaces) {
  Registry registry;
  registry.PublishText("_types/NoType", "string", "");
  registry.PublishText("_hidden/x", "string", "");
  const std::vector<KVLShellFinding> findings = KVLShellFindAnomalies(*registry.root);
  ASSERT_EQ(PathsOf(findings), (Strings{"_types/NoType", "_hidden"}));
  EXPECT_EQ(findings[0].kind, "anomaly");
  EXPECT_EQ(findings[0].message, "Object registered under '_types' is not a type.");
  ASSERT_EQ(findings[0].places.size(), 1u);
  EXPECT_EQ(findings[0].places[0].file, "test.cpp");
}

TEST(KVLShellCheck, ACleanRegistryHasNoFindings) {
  Registry registry;
  Furnish(registry);
  EXPECT_TRUE(KVLShellFindAnomalies(*registry.root).empty());
  EXPECT_EQ(Strict(registry), Strings());
}

TEST(KVLShellCheck, AnEmptyRegistryHasNoFindings) {
  EXPECT_EQ(Strict(Registry()), Strings());
}

TEST(KVLShellCheck, CheckingCreatesNothing) {
  Registry registry;
  registry.PublishFunction("a/f", "deep/er", {{"p", "no/such", In, "1"}});
  registry.PublishType("lost", "far/away");
  (void)KVLShellFindAnomalies(*registry.root);
  (void)Strict(registry);
  EXPECT_EQ(PathsOf(KVLShellTree(*registry.root).GetEnvs()), (Strings{"", "_types", "a"}));
}

TEST(KVLShellCheck, FindingsBelowAPathAreThoseAtItAndInside) {
  const std::vector<KVLShellFinding> findings = {
      {"anomaly", "a/", "", {}}, {"doc", "a/f", "", {}}, {"doc", "ab/f", "", {}}};
  EXPECT_EQ(PathsOf(KVLShellFindingsBelow(findings, "a")), (Strings{"a/", "a/f"}));
  EXPECT_EQ(PathsOf(KVLShellFindingsBelow(findings, "a/f")), (Strings{"a/f"}));
  EXPECT_EQ(KVLShellFindingsBelow(findings, "").size(), 3u);
}

// Types.

TEST(KVLShellStrictCheck, AParameterOfAnUnknownTypeIsFound) {
  Registry registry;
  registry.PublishType("int");
  registry.PublishFunction("f", "int", {{"a", "int"}, {"b", "flaot"}}, 12);
  registry.PublishDoc("f");
  const std::vector<KVLShellFinding> findings = KVLShellFindStrictly(*registry.root);
  ASSERT_EQ(findings.size(), 1u);
  EXPECT_EQ(findings[0].kind, "type");
  EXPECT_EQ(findings[0].path, "f");
  EXPECT_EQ(findings[0].message, "parameter 'b' is of type 'flaot', which is not registered");
  ASSERT_EQ(findings[0].places.size(), 1u);
  EXPECT_EQ(findings[0].places[0].line, 12);
}

TEST(KVLShellStrictCheck, AParameterWithoutATypeIsFound) {
  Registry registry;
  registry.PublishType("int");
  registry.PublishFunction("f", "int", {{"a", ""}});
  registry.PublishDoc("f");
  EXPECT_EQ(Strict(registry), (Strings{"type f: parameter 'a' has no type"}));
}

TEST(KVLShellStrictCheck, ResultsVariablesAndElementsOfUnknownTypesAreFound) {
  Registry registry;
  registry.PublishFunction("f", "gone", {});
  registry.PublishText("v", "away", "1");
  TestType& list = registry.PublishType("list");
  list.list = true;
  list.elementTypeName = "lost";
  registry.PublishDoc("f");
  EXPECT_EQ(Strict(registry),
            (Strings{"type f: the result is of type 'gone', which is not registered",
                     "type v: the variable is of type 'away', which is not registered",
                     "type _types/list: the element is of type 'lost', which is not registered"}));
}

TEST(KVLShellStrictCheck, WhatTheSystemFillsInNeedsNoType) {
  Registry registry;
  registry.PublishType("int");
  registry.PublishFunction("f", "int", {{"c", "KVLCodeContext"}, {"s", "KVLCodeSession"}});
  registry.PublishDoc("f");
  EXPECT_EQ(Strict(registry), Strings());
}

TEST(KVLShellStrictCheck, ATypeThatIsNoTypeDoesNotCount) {
  Registry registry;
  registry.PublishType("int");
  registry.PublishText("_types/fake", "int", "1");
  registry.PublishFunction("f", "int", {{"a", "fake"}});
  registry.PublishDoc("f");
  EXPECT_EQ(Strict(registry),
            (Strings{"type f: parameter 'a' is of type 'fake', which is not registered"}));
}

// Defaults.

TEST(KVLShellStrictCheck, ADefaultThatItsTypeDoesNotReadIsFound) {
  Registry registry;
  PublishPicky(registry);
  registry.PublishFunction("f", "picky", {{"a", "picky", In, "good"}, {"b", "picky", In, "bad"}});
  registry.PublishDoc("f");
  EXPECT_EQ(Strict(registry),
            (Strings{"default f: the default 'bad' of parameter 'b' is no picky: 0x80070057"}));
}

TEST(KVLShellStrictCheck, ATypeThatMakesNoValuesHasItsDefaultsLeftAlone) {
  Registry registry;
  registry.PublishType("abstract").makesValues = false;
  registry.PublishFunction("f", "abstract", {{"a", "abstract", In, "x"}});
  registry.PublishDoc("f");
  EXPECT_EQ(Strict(registry), Strings());
}

// Conversions.

struct ConversionCase {
  const char* returns;
  std::initializer_list<kvltest::TestParam> params;
  int form;
};

TEST(KVLShellStrictCheck, ConversionsHaveOneOfTwoForms) {
  const ConversionCase cases[] = {
      {"to", {{"x", "from"}}, 1},
      {"to", {{"x", "from", InOut}}, 1},
      {"long", {{"x", "from"}, {"y", "to", Out}}, 2},
      {"other", {{"x", "from"}, {"y", "to", InOut}}, 2},
      {"to", {}, 0},
      {"other", {{"x", "from"}}, 0},
      {"to", {{"x", "other"}}, 0},
      {"to", {{"x", "from", Out}}, 0},
      {"long", {{"x", "from", Out}, {"y", "to", Out}}, 0},
      {"long", {{"x", "from"}, {"y", "to"}}, 0},
      {"long", {{"x", "from"}, {"y", "other", Out}}, 0},
      {"long", {{"x", "other"}, {"y", "to", Out}}, 0},
      {"to", {{"x", "from"}, {"y", "to", Out}, {"z", "to", Out}}, 0},
  };
  for (const ConversionCase& tried : cases) {
    Registry registry;
    for (const char* const name : {"from", "to", "other", "long"})
      registry.PublishType(name);
    const KVLCodeFunction& function =
        registry.PublishFunction("_conversions/from/to", tried.returns, tried.params);
    const std::string code = KVLShellBytes(function.ToStringCode());
    EXPECT_EQ(KVLShellConversionForm(function, "from", "to"), tried.form) << code;
    EXPECT_EQ(Strict(registry),
              tried.form != 0
                  ? Strings()
                  : Strings{"conversion _conversions/from/to: must take one input 'from' and "
                            "return 'to', or take it and give 'to' back through a second "
                            "parameter; it is '" +
                            code + "'"});
  }
}

TEST(KVLShellStrictCheck, WhatConvertsNothingIsFound) {
  Registry registry;
  registry.PublishType("int");
  registry.PublishText("_conversions/int/value", "int", "1");
  registry.PublishFunction("_conversions/int/int", "int", {{"x", "int"}});
  registry.PublishFunction("_conversions/alone", "int", {{"x", "int"}});
  EXPECT_EQ(Strict(registry),
            (Strings{"conversion _conversions/alone: stands below no source type",
                     "conversion _conversions/int/int: is never used: values of one type are "
                     "assigned",
                     "conversion _conversions/int/value: is not a function"}));
}

// Parents.

TEST(KVLShellStrictCheck, ALoopOfParentsIsFoundOnce) {
  Registry registry;
  registry.PublishType("c", "a");
  registry.PublishType("a", "b");
  registry.PublishType("b", "c");
  registry.PublishType("below", "b");
  EXPECT_EQ(Strict(registry),
            (Strings{"parents _types/a: the parents form a loop: a -> b -> c -> a"}));
}

TEST(KVLShellStrictCheck, ATypeThatIsItsOwnParentIsALoop) {
  Registry registry;
  registry.PublishType("self", "self");
  EXPECT_EQ(Strict(registry),
            (Strings{"parents _types/self: the parents form a loop: self -> self"}));
}

TEST(KVLShellStrictCheck, SeveralLoopsAreAllFound) {
  Registry registry;
  registry.PublishType("a", "b");
  registry.PublishType("b", "a");
  registry.PublishType("y", "z");
  registry.PublishType("z", "y");
  registry.PublishType("fine", "none");
  EXPECT_EQ(Strict(registry), (Strings{"parents _types/a: the parents form a loop: a -> b -> a",
                                       "parents _types/y: the parents form a loop: y -> z -> y"}));
}

// A value that, like many, asks whether its type descends from another when it is read.
class AskingValue : public TextValue {
 public:
  using TextValue::TextValue;
  long SetValueStr(const KVLCodeContext& context, const MRBUnicodeString& text) override {
    const KVLSmartPtr<const KVLCodeType> type = GetType(context);
    if (type) (void)type->IsSubTypeOf(context, "no such type");
    return TextValue::SetValueStr(context, text);
  }
};

TEST(KVLShellStrictCheck, ValuesThatCouldAskForALoopAreNotTried) {
  Registry registry;
  registry.PublishType("a", "b");
  registry.PublishType("b", "a");
  const auto make = [](const char* typeName) {
    return [typeName](const MRBUnicodeString& valueName) -> KVLSmartPtr<KVLCodeValue> {
      return new AskingValue(valueName, typeName);
    };
  };
  TestType& below = registry.PublishType("below", "a");
  below.make = make("below");
  TestType& list = registry.PublishType("list");
  list.list = true;
  list.elementTypeName = "below";
  list.make = make("below");
  registry.PublishText("v", "below", "1");
  registry.PublishText("w", "list", "[1]");
  registry.PublishFunction("f", "below", {{"x", "below", In, "1"}, {"y", "list", In, "[1]"}});
  registry.PublishDoc("f");
  EXPECT_EQ(Strict(registry), (Strings{"parents _types/a: the parents form a loop: a -> b -> a"}));
}

TEST(KVLShellStrictCheck, AListOfItselfIsNoLoop) {
  Registry registry;
  TestType& list = registry.PublishType("list");
  list.list = true;
  list.elementTypeName = "list";
  registry.PublishText("v", "list", "[[]]");
  EXPECT_EQ(Strict(registry), Strings());
}

// Texts.

TEST(KVLShellStrictCheck, AValueWhoseTextDoesNotReadBackIsFound) {
  Registry registry;
  PublishPicky(registry);
  registry.PublishText("good", "picky", "good");
  registry.PublishText("bad", "picky", "worse");
  EXPECT_EQ(Strict(registry),
            (Strings{"text bad: the text 'worse' does not read back: 0x80070057"}));
}

TEST(KVLShellStrictCheck, AValueWhoseTextReadsBackAsAnotherIsFound) {
  Registry registry;
  registry.PublishType("growing").make =
      [](const MRBUnicodeString& valueName) -> KVLSmartPtr<KVLCodeValue> {
    return new GrowingValue(valueName);
  };
  registry.PublishText("v", "growing", "x");
  EXPECT_EQ(Strict(registry), (Strings{"text v: the text 'x' reads back as 'x+'"}));
}

TEST(KVLShellStrictCheck, AValueThatWritesNoTextIsFound) {
  Registry registry;
  registry.PublishType("int");
  registry.PublishText("v", "int", "").readResult = KVLResult_NotImplemented;
  EXPECT_EQ(Strict(registry), (Strings{"text v: the value writes no text: 0x80004001"}));
}

TEST(KVLShellStrictCheck, TheValuesOfAnEnumerationReadBack) {
  Registry registry;
  PublishPicky(registry).enumValues = MakeTexts({"good", "bad"});
  EXPECT_EQ(Strict(registry),
            (Strings{"text _types/picky: the text 'bad' does not read back: 0x80070057"}));
}

class ThrowingValue : public TextValue {
 public:
  ThrowingValue() : TextValue("v", "int") {}
  long GetValueStr(const KVLCodeContext&, MRBUnicodeString&) const override {
    throw std::runtime_error("the disk is full");
  }
};

TEST(KVLShellStrictCheck, WhatAnObjectThrowsIsAFinding) {
  Registry registry;
  registry.PublishType("int");
  registry.Publish("v", new ThrowingValue());
  EXPECT_EQ(Strict(registry), (Strings{"text v: threw: the disk is full"}));
}

// Documentation.

TEST(KVLShellStrictCheck, AFunctionWithoutDocumentationIsFound) {
  Registry registry;
  registry.PublishType("int");
  registry.PublishFunction("a/f", "int", {});
  registry.PublishFunction("_members/int/Half", "int", {{"this", "int"}});
  registry.PublishFunction("_conversions/x/int", "int", {{"x", "x"}});
  registry.PublishType("x");
  EXPECT_EQ(Strict(registry),
            (Strings{"doc _members/int/Half: has no documentation at 'doc/members/int/Half'",
                     "doc a/f: has no documentation at 'doc/a/f'"}));
}

TEST(KVLShellStrictCheck, AFunctionUnderSeveralPathsNeedsOneText) {
  Registry registry;
  registry.PublishType("int");
  registry.PublishFunction("math/f", "int", {});
  registry.PublishDoc("math/f");
  registry.root->AggregateEnv(registry.Env("math"));
  EXPECT_EQ(Strict(registry), Strings());
}

}  // namespace
