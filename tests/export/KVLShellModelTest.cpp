#include "KVLShellModel.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "TestRegistry.h"

namespace {

using kvltest::At;
using kvltest::Furnish;
using kvltest::PathsOf;
using kvltest::Registry;
using kvltest::Strings;

// Reading.

TEST(KVLShellTree, PlacesComeInTheOrderOfTheirNames) {
  Registry registry;
  registry.PublishText("b/y", "string", "");
  registry.PublishText("b/x", "string", "");
  registry.PublishText("a/c/z", "string", "");
  registry.PublishText("a-b/z", "string", "");
  registry.PublishText("top", "string", "");
  const KVLShellTree tree(*registry.root);
  EXPECT_EQ(PathsOf(tree.GetEnvs()), (Strings{"", "a", "a/c", "a-b", "b"}));
  EXPECT_EQ(PathsOf(tree.GetObjects()), (Strings{"top", "a/c/z", "a-b/z", "b/x", "b/y"}));
}

TEST(KVLShellTree, ReadingCreatesNothing) {
  Registry registry;
  registry.PublishText("a/x", "no/such/type", "");
  registry.PublishFunction("a/f", "??", {{"p", "deep/er"}});
  (void)registry.Read();
  EXPECT_EQ(PathsOf(KVLShellTree(*registry.root).GetEnvs()), (Strings{"", "a"}));
}

TEST(KVLShellTree, AnObjectAndAnEnvironmentOfOneNameAreApart) {
  Registry registry;
  registry.PublishText("twin", "string", "object");
  registry.PublishText("twin/inner", "string", "below");
  const KVLShellTree tree(*registry.root);
  ASSERT_TRUE(tree.FindObject("twin"));
  ASSERT_TRUE(tree.FindEnv("twin"));
  EXPECT_EQ(tree.FindEnv("twin")->nbObjects, 1u);
  EXPECT_EQ(tree.FindObject("twin/none"), nullptr);
  EXPECT_EQ(tree.FindEnv("twin/inner"), nullptr);
}

TEST(KVLShellTree, AnAggregatedEnvironmentLendsItsContents) {
  Registry registry;
  registry.PublishText("math/pi", "double", "3.14");
  registry.PublishText("own/e", "double", "2.71");
  registry.Env("own").AggregateEnv(registry.Env("math"));
  const KVLShellTree tree(*registry.root);
  EXPECT_EQ(PathsOf(tree.GetObjects()), (Strings{"math/pi", "own/e", "own/pi"}));
}

TEST(KVLShellTree, OfSeveralObjectsOfOneNameTheKernelsOwnFindCounts) {
  Registry registry;
  const kvltest::TextValue& own = registry.PublishText("own/x", "string", "own");
  registry.PublishText("lent/x", "string", "lent");
  registry.Env("own").AggregateEnv(registry.Env("lent"));
  const KVLShellTree tree(*registry.root);
  EXPECT_EQ(tree.FindObject("own/x")->object.Get(), &own);
  EXPECT_EQ(registry.root->FindObject("own/x").Get(), &own);
}

TEST(KVLShellTree, ChildrenOfOneNameAreReadTogether) {
  Registry registry;
  registry.PublishText("own/sub/x", "string", "");
  registry.PublishText("lent/sub/y", "string", "");
  registry.Env("own").AggregateEnv(registry.Env("lent"));
  const KVLShellTree tree(*registry.root);
  // "lent/sub" is met first under its own path.
  EXPECT_TRUE(tree.FindObject("lent/sub/y"));
  EXPECT_TRUE(tree.FindObject("own/sub/x"));
  ASSERT_TRUE(tree.FindEnv("own/sub"));
  EXPECT_EQ(tree.GetEnvs()[tree.FindEnv("own/sub")->sameAs].path, "lent/sub");
}

TEST(KVLShellTree, AggregationsInACircleEnd) {
  Registry registry;
  registry.PublishText("a/x", "string", "");
  registry.PublishText("a/b/y", "string", "");
  registry.Env("a/b").AggregateEnv(registry.Env("a"));
  registry.Env("a").AggregateEnv(*registry.root);
  registry.root->AggregateEnv(registry.Env("a"));
  const KVLShellModel model = registry.Read();
  for (const char* const path : {"a/x", "a/b/y", "x"})
    EXPECT_EQ(At(model.objects, path).path, path);
  EXPECT_LT(model.envs.size(), 10u);
  // Environments that hold one another would never die.
  registry.Env("a/b").UnAggregateEnv(registry.Env("a"));
  registry.Env("a").UnAggregateEnv(*registry.root);
  registry.root->UnAggregateEnv(registry.Env("a"));
}

TEST(KVLShellTree, ManyWaysToOneEnvironmentAreGoneOnce) {
  // Each level leads to the next in two ways, so that 2^60 paths lead to the last.
  Registry registry;
  std::vector<KVLSmartPtr<KVLCodeEnv>> levels;
  levels.push_back(registry.root);
  for (int i = 0; i < 60; ++i) {
    const KVLSmartPtr<KVLCodeEnv> next(new KVLCodeEnv("level"));
    levels.back()->GetSubEnv("l").AggregateEnv(*next);
    levels.back()->GetSubEnv("r").AggregateEnv(*next);
    levels.push_back(next);
  }
  levels.back()->Add(*new kvltest::TextValue("x", "string"), "");
  const KVLShellTree tree(*registry.root);
  EXPECT_LT(tree.GetEnvs().size(), 300u);
  EXPECT_FALSE(tree.GetObjects().empty());
}

TEST(KVLShellTree, DeepTreesAreNoTrouble) {
  Registry registry;
  const KVLSmartPtr<KVLCodeEnv> top(new KVLCodeEnv("top"));
  KVLCodeEnv* env = top.Get();
  for (int i = 0; i < 3000; ++i)
    env = &env->GetSubEnv("d");
  const KVLShellTree tree(*top);
  EXPECT_EQ(tree.GetEnvs().size(), 3001u);
  EXPECT_EQ(tree.GetEnvs().back().depth, 3000);
}

// The model.

TEST(KVLShellModel, AnEmptyRegistryIsTheRootAlone) {
  const Registry registry;
  const KVLShellModel model = registry.Read();
  EXPECT_EQ(PathsOf(model.envs), (Strings{""}));
  EXPECT_TRUE(model.objects.empty());
  EXPECT_TRUE(model.conversions.empty());
  EXPECT_TRUE(model.docs.empty());
  EXPECT_TRUE(model.anomalies.empty());
}

TEST(KVLShellModel, AFunctionTellsParametersResultDocAndPlace) {
  Registry registry;
  Furnish(registry);
  const KVLShellModelObject hypot = At(registry.Read().objects, "math/hypot");
  EXPECT_EQ(hypot.kind, KVLShellModelKind::Function);
  EXPECT_EQ(hypot.name, "hypot");
  EXPECT_EQ(hypot.signature, "double hypot(double a, double b=0)");
  EXPECT_EQ(hypot.returnTypeName, "double");
  EXPECT_EQ(hypot.doc, "Length of (a, b). Never negative.");
  EXPECT_FALSE(hypot.isMethod);
  ASSERT_EQ(hypot.places.size(), 1u);
  EXPECT_EQ(hypot.places[0].file, "test.cpp");
  EXPECT_EQ(hypot.places[0].line, 7);
  ASSERT_EQ(hypot.params.size(), 2u);
  EXPECT_EQ(hypot.params[0].name, "a");
  EXPECT_EQ(hypot.params[0].typeName, "double");
  EXPECT_EQ(hypot.params[0].defaultText, "");
  EXPECT_TRUE(hypot.params[0].isInput);
  EXPECT_FALSE(hypot.params[0].isOutput);
  EXPECT_EQ(hypot.params[1].defaultText, "0");
}

TEST(KVLShellModel, DirectionsAreTold) {
  Registry registry;
  Furnish(registry);
  const KVLShellModelObject divmod = At(registry.Read().objects, "math/divmod");
  ASSERT_EQ(divmod.params.size(), 4u);
  EXPECT_FALSE(divmod.params[2].isInput);
  EXPECT_TRUE(divmod.params[2].isOutput);
  EXPECT_TRUE(divmod.params[3].isInput);
  EXPECT_TRUE(divmod.params[3].isOutput);
}

TEST(KVLShellModel, AQuotedDocIsToldByItsContent) {
  Registry registry;
  Furnish(registry);
  EXPECT_EQ(At(registry.Read().objects, "math/divmod").doc, "\"a\" by\n\"b\".");
}

TEST(KVLShellModel, ATypeTellsParentValuesElementMembersAndConversions) {
  Registry registry;
  Furnish(registry);
  const KVLShellModel model = registry.Read();
  const KVLShellModelObject point = At(model.objects, "_types/Point");
  EXPECT_EQ(point.kind, KVLShellModelKind::Type);
  EXPECT_EQ(point.parent, "Vector");
  EXPECT_EQ(point.doc, "A place.");
  EXPECT_EQ(point.members, (Strings{"_members/Point/Distance"}));
  ASSERT_EQ(point.conversionsFrom.size(), 1u);
  EXPECT_EQ(point.conversionsFrom[0].from, "string");
  EXPECT_TRUE(point.conversionsTo.empty());
  EXPECT_FALSE(point.isEnum);
  EXPECT_FALSE(point.isList);

  const KVLShellModelObject axis = At(model.objects, "_types/Axis");
  EXPECT_TRUE(axis.isEnum);
  EXPECT_EQ(axis.enumValues, (Strings{"X", "Y", "Z"}));
  const KVLShellModelObject list = At(model.objects, "_types/list");
  EXPECT_TRUE(list.isList);
  EXPECT_EQ(list.elementTypeName, "double");
}

TEST(KVLShellModel, AVariableTellsTypeAndText) {
  Registry registry;
  Furnish(registry);
  const KVLShellModelObject pi = At(registry.Read().objects, "math/pi");
  EXPECT_EQ(pi.kind, KVLShellModelKind::Variable);
  EXPECT_EQ(pi.typeName, "double");
  EXPECT_EQ(pi.text, "3.14");
  EXPECT_TRUE(pi.isReadable);
}

TEST(KVLShellModel, AVariableThatWritesNoTextIsToldToBeSo) {
  Registry registry;
  registry.PublishText("x", "string", "hidden").readResult = KVLResult_NotImplemented;
  const KVLShellModelObject x = At(registry.Read().objects, "x");
  EXPECT_FALSE(x.isReadable);
  EXPECT_EQ(x.text, "");
}

TEST(KVLShellModel, ConversionsAreListedWithTheirForms) {
  Registry registry;
  Furnish(registry);
  registry.PublishFunction("_conversions/double/int", "double", {{"from", "double"}});
  const KVLShellModel model = registry.Read();
  ASSERT_EQ(model.conversions.size(), 3u);
  EXPECT_EQ(
      PathsOf(model.conversions),
      (Strings{"_conversions/double/int", "_conversions/int/double", "_conversions/string/Point"}));
  EXPECT_EQ(model.conversions[0].form, 0);
  EXPECT_EQ(model.conversions[1].form, 1);
  EXPECT_EQ(model.conversions[2].form, 2);
  EXPECT_EQ(model.conversions[2].from, "string");
  EXPECT_EQ(model.conversions[2].to, "Point");
}

TEST(KVLShellModel, AConversionOfATypeWithASlashIsCutWhereItFits) {
  Registry registry;
  registry.PublishFunction("_conversions/a/b/c", "b/c", {{"from", "a"}});
  registry.PublishFunction("_conversions/p/q/r", "r", {{"from", "p/q"}});
  const KVLShellModel model = registry.Read();
  ASSERT_EQ(model.conversions.size(), 2u);
  EXPECT_EQ(model.conversions[0].from, "a");
  EXPECT_EQ(model.conversions[0].to, "b/c");
  EXPECT_EQ(model.conversions[1].from, "p/q");
  EXPECT_EQ(model.conversions[1].to, "r");
}

TEST(KVLShellModel, DocsAreNoVariablesAndTellTheirSubjects) {
  Registry registry;
  Furnish(registry);
  registry.PublishText("doc/no/such", "string", "About nothing.");
  registry.PublishText("doc/number", "double", "1");
  const KVLShellModel model = registry.Read();
  EXPECT_EQ(At(model.docs, "doc/math/hypot").subject, "math/hypot");
  EXPECT_EQ(At(model.docs, "doc/math").subject, "math");
  EXPECT_EQ(At(model.docs, "doc/members/Point/Distance").subject, "_members/Point/Distance");
  EXPECT_EQ(At(model.docs, "doc/no/such").subject, "");
  EXPECT_EQ(At(model.envs, "math").doc, "Scalar mathematics.");
  for (const KVLShellModelObject& object : model.objects)
    EXPECT_TRUE(object.path == "doc/number" || object.path.rfind("doc/", 0) != 0) << object.path;
}

TEST(KVLShellModel, AnomaliesComeWithTheirPlaces) {
  Registry registry;
  registry.PublishText("_types/NoType", "string", "");
  registry.PublishText("_hidden/x", "string", "");
  registry.PublishText("a/x", "string", "first");
  registry.Publish("a/x", new kvltest::TextValue("x", "string"), 9);
  const KVLShellModel model = registry.Read();
  EXPECT_EQ(PathsOf(model.anomalies), (Strings{"_types/NoType", "_hidden", "a/"}));
  EXPECT_EQ(model.anomalies[0].message, "Object registered under '_types' is not a type.");
  ASSERT_EQ(model.anomalies[0].places.size(), 1u);
  EXPECT_EQ(model.anomalies[0].places[0].file, "test.cpp");
  ASSERT_EQ(At(model.envs, "a").problems.size(), 1u);
  EXPECT_NE(At(model.envs, "a").problems[0].find("'test.cpp:9'"), std::string::npos);
}

// An object that throws whatever it is asked.
class Thrower : public KVLCodeType {
 public:
  Thrower() : KVLCodeType("thrower") {}
  MRBUnicodeString ToStringCode() const override { throw std::runtime_error("no code"); }
  MRBUnicodeString GetParentTypeName() const override { throw std::runtime_error("no parent"); }
  KVLVector<MRBUnicodeString> Check() const override { throw 5; }
  KVLSmartPtr<KVLCodeValue> CreateValue(const MRBUnicodeString&) const override { throw 5; }
};

TEST(KVLShellModel, WhatAnObjectThrowsIsItsProblem) {
  Registry registry;
  registry.Publish("_types/thrower", new Thrower());
  registry.PublishText("x", "string", "still here");
  const KVLShellModel model = registry.Read();
  EXPECT_EQ(At(model.objects, "_types/thrower").problems,
            (Strings{"cannot be read: no code", "cannot be read: no parent",
                     "cannot be read: threw something that is no std::exception"}));
  EXPECT_EQ(At(model.objects, "x").text, "still here");
  ASSERT_EQ(model.anomalies.size(), 1u);
}

TEST(KVLShellModel, OtherObjectsAreToldByKind) {
  Registry registry;
  registry.Publish("plain", new KVLCodeObject("plain"));
  registry.Publish("env", new KVLCodeEnv("env"));
  const KVLShellModel model = registry.Read();
  EXPECT_EQ(At(model.objects, "plain").kind, KVLShellModelKind::Object);
  EXPECT_EQ(At(model.objects, "env").kind, KVLShellModelKind::Env);
  // Both come from libraries, one of them from the kernel's, which is nobody's module.
  EXPECT_EQ(At(model.objects, "plain").module, "");
}

// Parts.

TEST(KVLShellModel, APartHoldsWhatIsAtAndBelowItsPath) {
  Registry registry;
  Furnish(registry);
  registry.PublishText("mathematics", "string", "another");
  const KVLShellModel part = KVLShellPartOfModel(registry.Read(), "math");
  EXPECT_EQ(part.path, "math");
  EXPECT_EQ(PathsOf(part.envs), (Strings{"math", "math/trig"}));
  EXPECT_EQ(PathsOf(part.objects),
            (Strings{"math/divmod", "math/hypot", "math/pi", "math/trig/sin"}));
  EXPECT_EQ(part.envs[1].firstObject, 3u);
  EXPECT_EQ(PathsOf(part.docs),
            (Strings{"doc/math", "doc/math/divmod", "doc/math/hypot", "doc/math/trig/sin"}));
  EXPECT_TRUE(part.conversions.empty());
}

TEST(KVLShellModel, APartWithATypeHoldsItsConversions) {
  Registry registry;
  Furnish(registry);
  const KVLShellModel part = KVLShellPartOfModel(registry.Read(), "_types/Point");
  EXPECT_EQ(PathsOf(part.objects), (Strings{"_types/Point"}));
  EXPECT_EQ(PathsOf(part.conversions), (Strings{"_conversions/string/Point"}));
}

TEST(KVLShellModel, APartHoldsItsAnomalies) {
  Registry registry;
  registry.PublishText("a/x", "string", "");
  registry.PublishText("a/x", "string", "");
  registry.PublishText("b/x", "string", "");
  registry.PublishText("b/x", "string", "");
  EXPECT_EQ(PathsOf(KVLShellPartOfModel(registry.Read(), "a").anomalies), (Strings{"a/"}));
}

}  // namespace
