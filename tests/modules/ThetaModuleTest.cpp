#include "KVLKit.h"
#include "LoadedModules.h"

namespace {

class Theta : public LoadedModules {
 protected:
  Theta() : LoadedModules({"Alpha", "Gamma", "Theta", "Zeta"}) {}
};

class LoopType : public KVLCodeType {
 public:
  LoopType(const MRBUnicodeString& typeName, const MRBUnicodeString& parentName)
      : KVLCodeType(typeName), parent(parentName) {}
  ~LoopType() override = default;
  MRBUnicodeString GetParentTypeName() const override { return parent; }
  KVLSmartPtr<KVLCodeValue> CreateValue(const MRBUnicodeString&) const override { return nullptr; }

 private:
  const MRBUnicodeString parent;
};

KVLCodeObjectRegisterer Registered(KVLCodeObject* object, const MRBUnicodeString& path) {
  return KVLCodeObjectRegisterer(KVLCodeEnv::GetDefault(), KVLSmartPtr<KVLCodeObject>(object), path,
                                 KVLSourceLocation("here.cpp", 7, ""));
}

TEST_F(Theta, ListNamesTheChildrenSorted) {
  EXPECT_EQ(Result("reg/list", {"geom/axis"}), "[\"direction\"]");
  EXPECT_EQ(Result("reg/list", {"/geom//transform/"}),
            "[\"apply\",\"apply_to_all\",\"apply_to_vector\",\"compose\",\"identity\",\"invert\","
            "\"rotation\",\"scaling\",\"translation\"]");
  EXPECT_EQ(Result("reg/list", {"_members"}).substr(0, 16), "[\"Box/\",\"Directi");
  const std::string root = Result("reg/list", {});
  EXPECT_EQ(root, Result("reg/list", {"/"}));
  EXPECT_NE(root.find("\"geom/\""), std::string::npos) << root;
}

TEST_F(Theta, ListGoesBelowWhenAsked) {
  EXPECT_EQ(Result("reg/list", {"_members/Direction", "true"}), "[\"Reversed\"]");
  const std::string all = Result("reg/list", {"geom", "true"});
  EXPECT_NE(all.find("\"axis/\",\"axis/direction\",\"between\""), std::string::npos) << all;
}

TEST_F(Theta, WhatIsNotThereIsRefused) {
  for (const char* const path :
       {"reg/list", "reg/signature", "reg/kind", "reg/doc", "reg/where", "reg/anomalies"}) {
    EXPECT_EQ(Thrown(path, {"goem/distance"}), "there is nothing at 'goem/distance'") << path;
  }
  EXPECT_EQ(Thrown("reg/list", {"geom/distance"}), "'geom/distance' is no environment");
  EXPECT_EQ(Thrown("reg/doc", {"geom/distance/"}), "there is nothing at 'geom/distance/'");
  EXPECT_EQ(Thrown("reg/members", {"Pont"}), "there is no type 'Pont'");
  EXPECT_EQ(Thrown("reg/parents", {""}), "there is no type ''");
  EXPECT_EQ(Thrown("reg/values", {"a/b"}), "there is no type 'a/b'");
  EXPECT_EQ(Thrown("reg/values", {"Point"}), "'Point' is no enumeration");
}

TEST_F(Theta, LookingCreatesNothing) {
  const std::string before = Result("reg/list", {"/", "true"});
  (void)Thrown("reg/doc", {"goem/deep/er"});
  (void)Thrown("reg/where", {"goem/deep/er"});
  (void)Thrown("reg/members", {"no/such"});
  (void)Thrown("reg/parents", {"no/such/"});
  (void)Result("reg/exists", {"no/such/path/"});
  (void)Result("reg/find", {"no/such"});
  (void)Result("context/describe_type", {"no/such"});
  (void)Result("reg/doc", {"_types/Point"});
  EXPECT_EQ(Result("reg/list", {"/", "true"}), before);
}

TEST_F(Theta, FindLooksForAPartOfTheNameOrAForm) {
  EXPECT_EQ(Result("reg/find", {"ENTROI"}), "[\"geom/centroid\"]");
  EXPECT_EQ(Result("reg/find", {"centroi?"}), "[\"geom/centroid\"]");
  EXPECT_EQ(Result("reg/find", {"entroi?"}), "[]");
  EXPECT_EQ(Result("reg/find", {"geom/b*s"}), "[\"geom/box/contains\"]");
  EXPECT_EQ(Result("reg/find", {"axis/dir"}),
            "[\"_conversions/Axis/Direction\",\"geom/axis/direction\"]");
  EXPECT_EQ(Result("reg/find", {"a*i*s", "type"}), "[\"_types/Axis\"]");
  EXPECT_EQ(Result("reg/find", {"", "env"}).substr(0, 15), "[\"_conversions/");
  EXPECT_EQ(Result("reg/find", {"axis", "type"}), "[\"_types/Axis\"]");
  EXPECT_EQ(Result("reg/find", {"axis", "env"}), "[\"_conversions/Axis/\",\"geom/axis/\"]");
  EXPECT_EQ(Thrown("reg/find", {"axis", "Type"}),
            "the kind must be function, type, variable, env or object");
}

TEST_F(Theta, ExistsAndKind) {
  EXPECT_EQ(Result("reg/exists", {"geom"}), "true");
  EXPECT_EQ(Result("reg/exists", {"geom/"}), "true");
  EXPECT_EQ(Result("reg/exists", {"geom/cross"}), "true");
  EXPECT_EQ(Result("reg/exists", {"geom/cross/"}), "false");
  EXPECT_EQ(Result("reg/exists", {"geom/cross/x"}), "false");
  EXPECT_EQ(Result("reg/exists", {""}), "true");
  EXPECT_EQ(Result("reg/kind", {"geom"}), "env");
  EXPECT_EQ(Result("reg/kind", {"geom/cross"}), "function");
  EXPECT_EQ(Result("reg/kind", {"_types/Axis"}), "type");
  EXPECT_EQ(Result("reg/kind", {"doc/geom"}), "variable");
}

TEST_F(Theta, Signatures) {
  EXPECT_EQ(Result("reg/signature", {"geom/cross"}), "Vector cross(Vector a, Vector b)");
  EXPECT_EQ(Result("reg/signature", {"_types/Axis"}), "Axis");
  EXPECT_EQ(Result("reg/signature", {"geom/box"}), "geom/box/");
  EXPECT_EQ(Result("reg/signature", {"reg/members"}),
            "KVLVector<string> members(string type, bool inherited=true)");
}

TEST_F(Theta, DocsAreReadUnderTheirObjectsPath) {
  EXPECT_EQ(Result("reg/doc", {"geom/cross"}), "The vector product of two vectors.");
  EXPECT_EQ(Result("reg/doc", {"/geom"}), "Points, vectors, boxes and transformations of space.");
  EXPECT_EQ(Result("reg/doc", {"_types/Axis"}), "One of the three axes of space: X, Y or Z.");
  EXPECT_EQ(Result("reg/doc", {"_members/Point/Distance"}), "How far the other point is.");
  EXPECT_EQ(Result("reg/doc", {"_conversions/Point/Vector"}), "Converts Point to Vector.");
  EXPECT_EQ(Result("reg/doc", {"doc/geom"}), "");
}

TEST_F(Theta, ADocMayBeginWithAQuote) {
  const KVLCodeObjectRegisterer object = Registered(new LoopType("Said", ""), "_types/Said");
  const KVLCodeObjectRegisterer doc = Registered(
      kvl::MakeValueOf(MRBUnicodeString("\"Hm,\" it says."), "Said").Get(), "doc/types/Said");
  const Answer answer = Call("reg/doc", {"_types/Said"});
  EXPECT_EQ(answer.result, "\"\\\"Hm,\\\" it says.\"");
}

TEST_F(Theta, WhereTellsThePlacesOfRegistration) {
  const KVLCodeObjectRegisterer once = Registered(new LoopType("Twice", ""), "_types/Twice");
  EXPECT_EQ(Result("reg/where", {"_types/Twice"}), "[\"here.cpp:7\"]");
  const std::string cross = Result("reg/where", {"geom/cross"});
  EXPECT_EQ(cross.substr(0, cross.find(':')), "[\"modules/zeta/ZetaVector.cpp");
  EXPECT_EQ(Result("reg/where", {"geom"}), "[]");
}

TEST_F(Theta, MembersAreInherited) {
  EXPECT_EQ(Result("reg/members", {"Direction", "false"}), "[\"_members/Direction/Reversed\"]");
  EXPECT_EQ(Result("reg/members", {"Direction"}),
            "[\"_members/Direction/Reversed\",\"_members/Vector/Length\","
            "\"_members/Vector/Plus\",\"_members/Vector/Scaled\"]");
  EXPECT_EQ(Result("reg/members", {"Axis"}), "[]");
  EXPECT_EQ(Result("reg/parents", {"Direction"}), "[\"Vector\"]");
  EXPECT_EQ(Result("reg/parents", {"Point"}), "[]");
  EXPECT_EQ(Result("reg/parents", {"KVLVector<Point>"}), "[\"KVLVector<KVLCodeValue_var>\"]");
  EXPECT_EQ(Result("reg/values", {"Axis"}), "[\"X\",\"Y\",\"Z\"]");
}

TEST_F(Theta, ParentsThatLeadRoundAreToldOnce) {
  const KVLCodeObjectRegisterer self = Registered(new LoopType("Self", "Self"), "_types/Self");
  const KVLCodeObjectRegisterer a = Registered(new LoopType("A", "B"), "_types/A");
  const KVLCodeObjectRegisterer b = Registered(new LoopType("B", "C"), "_types/B");
  const KVLCodeObjectRegisterer c = Registered(new LoopType("C", "B"), "_types/C");
  const KVLCodeObjectRegisterer orphan = Registered(new LoopType("O", "Gone"), "_types/O");
  EXPECT_EQ(Result("reg/parents", {"Self"}), "[]");
  EXPECT_EQ(Result("reg/parents", {"A"}), "[\"B\",\"C\"]");
  EXPECT_EQ(Result("reg/parents", {"C"}), "[\"B\"]");
  EXPECT_EQ(Result("reg/parents", {"O"}), "[\"Gone\"]");
  EXPECT_EQ(Result("reg/members", {"A"}), "[]");
}

TEST_F(Theta, EnvironmentsThatHoldOneAnotherAreEnteredOnce) {
  KVLCodeEnv& env = KVLCodeEnv::GetDefault().GetSubEnv("ring/inner");
  KVLCodeEnv& outer = KVLCodeEnv::GetDefault().GetSubEnv("ring");
  env.AggregateEnv(outer);
  const std::string all = Result("reg/list", {"ring", "true"});
  const std::string found = Result("reg/find", {"inner"});
  env.UnAggregateEnv(outer);
  EXPECT_EQ(all, "[\"inner/\",\"inner/inner/\"]");
  EXPECT_EQ(found, "[\"ring/inner/\",\"ring/inner/inner/\"]");
}

TEST_F(Theta, AggregatedEnvironmentsAreSearchedToo) {
  const KVLSmartPtr<KVLCodeEnv> lender = new KVLCodeEnv("lender");
  lender->Add(KVLSmartPtr<KVLCodeObject>(new LoopType("lent", "")), "geom/lent");
  KVLCodeEnv::GetDefault().AggregateEnv(*lender);
  const std::string exists = Result("reg/exists", {"geom/lent"});
  const std::string found = Result("reg/find", {"lent"});
  KVLCodeEnv::GetDefault().UnAggregateEnv(*lender);
  EXPECT_EQ(exists, "true");
  EXPECT_EQ(found, "[\"geom/lent\"]");
}

TEST_F(Theta, AnomaliesAreTold) {
  EXPECT_EQ(Result("reg/anomalies", {}), "[]");
  const KVLCodeObjectRegisterer wrong =
      Registered(kvl::MakeValueOf(1, "x").Get(), "_members/Point/x");
  const std::string all = Result("reg/anomalies", {});
  EXPECT_NE(all.find("_members/Point/x: "), std::string::npos) << all;
}

TEST_F(Theta, ContextAndSessionComeWithoutTheCallersHelp) {
  const KVLSmartPtr<KVLCodeObject> object =
      KVLCodeEnv::GetDefault().FindObject("context/describe_type");
  ASSERT_TRUE(object && object->AsFunction());
  EXPECT_EQ(object->ToStringCode(), "string describe_type(string type)");
  EXPECT_EQ(Result("context/describe_type", {"int"}), "type 'int' is known, without a session");

  const KVLSmartPtr<KVLCodeEnv> noTypes = new KVLCodeEnv("types");
  KVLCodeContext other(*noTypes);
  int session = 0;
  other.SetSession(reinterpret_cast<KVLCodeSession*>(&session));
  KVLVector<MRBUnicodeString> texts;
  texts.Append("int");
  MRBUnicodeString result;
  EXPECT_EQ(object->AsFunction()->ParseAndCall(other, texts, result), KVLResult_Success);
  EXPECT_EQ(result, "type 'int' is not known, with a session");
}

}  // namespace
