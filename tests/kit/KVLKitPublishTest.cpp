#include <gtest/gtest.h>

#include <optional>

#include "KitModule.h"
#include "KitShapes.h"

namespace {

int port = 80;

}  // namespace

KVL_FUNCTION("kit/publish/here", "a = 1", "What it does.", [](int a) { return a; });
KVL_FUNCTION("kit/publish/undocumented", "", "", [] {});
KVL_VARIABLE("kit/publish/pi", 3.25, "A constant.");
KVL_VARIABLE("kit/publish/host", "localhost", "Where it listens.");
KVL_VARIABLE("kit/publish/hue", Hue::Green, "");
KVL_VARIABLE("kit/publish/name", std::string("a standard string"), "");
KVL_VARIABLE("kit/publish/port", &port, "Where it listens.");
KVL_DOC("kit/publish", "Things to publish.");
KVL_DOC("_types/Spot", "A place.");

namespace {

KVLSmartPtr<KVLCodeObject> Find(const char* path) {
  return KVLCodeEnv::GetDefault().FindObject(path);
}

TEST(KVLKitPublish, EachObjectKnowsTheLineThatPublishedIt) {
  const KVLSmartPtr<KVLCodeObject> function = Find("kit/publish/here");
  ASSERT_TRUE(function);
  ASSERT_EQ(function->GetRegistrationLocations().GetCount(), 1);
  const KVLSourceLocation& location = function->GetRegistrationLocations()[0];
  EXPECT_EQ(location.path, __FILE__);
  const KVLSmartPtr<KVLCodeObject> next = Find("kit/publish/undocumented");
  ASSERT_TRUE(next);
  EXPECT_EQ(next->GetRegistrationLocations()[0].line, location.line + 1);
}

TEST(KVLKitPublish, AnObjectBearsTheLastNameOfItsPath) {
  EXPECT_EQ(Find("kit/publish/here")->GetName(), "here");
  EXPECT_EQ(Find("kit/publish/pi")->GetName(), "pi");
}

TEST(KVLKitPublish, DocsAreStringsUnderDoc) {
  EXPECT_EQ(KitVariable("doc/kit/publish/here"), "What it does.");
  EXPECT_EQ(KitVariable("doc/kit/publish/pi"), "A constant.");
  EXPECT_EQ(KitVariable("doc/kit/publish"), "Things to publish.");
  EXPECT_EQ(KitVariable("doc/kit/publish/undocumented"), "none");
  EXPECT_EQ(Find("doc/kit/publish/here")->AsVariable()->GetTypeName(), "string");
}

TEST(KVLKitPublish, DocsOfReservedPathsLoseTheUnderscore) {
  EXPECT_EQ(KitVariable("doc/types/Spot"), "A place.");
}

TEST(KVLKitPublish, AConstantIsReadOnly) {
  KVLCodeValue& pi = *Find("kit/publish/pi")->AsVariable();
  EXPECT_TRUE(pi.IsReadOnly());
  EXPECT_EQ(pi.SetValueStr(KVLCodeContext(), "3"), KVLResult_Failure);
  EXPECT_EQ(pi.AssignFrom(KVLCodeContext(), *kvl::MakeValueOf(3.0)), KVLResult_Failure);
  pi.Reset();
  EXPECT_EQ(KitVariable("kit/publish/pi"), "3.25");
  EXPECT_EQ(KitVariable("kit/publish/host"), "localhost");
  EXPECT_EQ(KitVariable("kit/publish/hue"), "Green");
  EXPECT_EQ(KitVariable("kit/publish/name"), "a standard string");
}

TEST(KVLKitPublish, AVariableOfTheModuleIsReadAndWritten) {
  KVLCodeValue& value = *Find("kit/publish/port")->AsVariable();
  EXPECT_FALSE(value.IsReadOnly());
  port = 81;
  EXPECT_EQ(KitVariable("kit/publish/port"), "81");
  EXPECT_EQ(value.SetValueStr(KVLCodeContext(), "443"), 0);
  EXPECT_EQ(port, 443);
  EXPECT_EQ(value.SetValueStr(KVLCodeContext(), "x"), KVLResult_InvalidArgument);
  EXPECT_EQ(port, 443);
  port = 80;
}

TEST(KVLKitPublish, ARegistrationWithdrawsWhatItPublished) {
  {
    const kvl::Registration registration(kvl::Here{__FILE__, __LINE__}, "kit/publish/passing",
                                         "number", "Stays for a moment.",
                                         kvl::detail::Describe([](int number) { return number; }));
    EXPECT_EQ(KitResult("kit/publish/passing", {"3"}), "3");
    EXPECT_EQ(KitVariable("doc/kit/publish/passing"), "Stays for a moment.");
  }
  EXPECT_FALSE(Find("kit/publish/passing"));
  EXPECT_FALSE(Find("doc/kit/publish/passing"));
}

TEST(KVLKitPublish, TheFirstOfTwoOfOneNameStaysAndBothPlacesAreTold) {
  const kvl::Here here{"second.cpp", 7};
  {
    const kvl::Registration second(here, "kit/publish/here", "", "",
                                   kvl::detail::Describe([] { return 0; }));
    EXPECT_EQ(KitResult("kit/publish/here", {}), "1");
  }
  EXPECT_EQ(KitResult("kit/publish/here", {}), "1");
  bool isTold = false;
  for (const KVLCodeEnv::Anomaly& anomaly : KVLCodeEnv::GetDefault().ComputeAnomalies()) {
    isTold = isTold || (anomaly.message.SearchSubString("second.cpp", 0,
                                                        MRBUnicodeString::MRBSearchForward) >= 0 &&
                        anomaly.message.SearchSubString("KVLKitPublishTest.cpp", 0,
                                                        MRBUnicodeString::MRBSearchForward) >= 0);
  }
  EXPECT_TRUE(isTold);
}

TEST(KVLKitPublish, APathWithoutANameIsNoCrash) {
  const kvl::Registration registration(kvl::Here{__FILE__, __LINE__}, "", "", "A doc.",
                                       kvl::detail::Describe([] {}));
  EXPECT_FALSE(Find("kit/publish/"));
}

TEST(KVLKitPublish, MembersAndTypesAreInOrder) {
  for (const KVLCodeEnv::Anomaly& anomaly : KVLCodeEnv::GetDefault().ComputeAnomalies()) {
    const std::string path = anomaly.path.ConvertToChar();
    EXPECT_EQ(path.find("_members"), std::string::npos) << path << ": " << anomaly.message;
    EXPECT_EQ(path.find("_types"), std::string::npos) << path << ": " << anomaly.message;
  }
}

}  // namespace
