#include "AlphaModule.h"

namespace {

int CountObjects(const KVLCodeEnv& env) {
  int count = 0;
  for (const auto& object : env.IterOnObjects()) {
    EXPECT_TRUE(object.value);
    ++count;
  }
  for (const auto& child : env.IterOnSubEnvs())
    count += CountObjects(*child.value);
  return count;
}

TEST_F(AlphaModule, TheRegistryIsInOrder) {
  for (const KVLCodeEnv::Anomaly& anomaly : KVLCodeEnv::GetDefault().ComputeAnomalies())
    ADD_FAILURE() << anomaly.path << ": " << anomaly.message;
}

TEST_F(AlphaModule, EveryObjectKnowsWhereItWasRegistered) {
  const KVLSmartPtr<KVLCodeObject> add = KVLCodeEnv::GetDefault().FindObject("math/add");
  ASSERT_TRUE(add);
  ASSERT_EQ(add->GetRegistrationLocations().GetCount(), 1);
  const KVLSourceLocation& location = add->GetRegistrationLocations()[0];
  EXPECT_EQ(location.path, "modules/alpha/AlphaMath.cpp");
  EXPECT_GT(location.line, 0);
}

TEST(AlphaModuleLoading, ComesAndGoesWithoutATrace) {
  KVLCodeEnv& root = KVLCodeEnv::GetDefault();
  ASSERT_EQ(CountObjects(root), 0);
  int loaded = 0;
  for (int i = 0; i < 1000; ++i) {
    const LibraryHandler handler = MRBGetEntryPoint("KVLCodeEnv_Alpha", nullptr, nullptr, 1, 1, 0);
    ASSERT_NE(handler.library, nullptr);
    if (i == 0) loaded = CountObjects(root);
    ASSERT_EQ(CountObjects(root), loaded);
    ASSERT_GT(loaded, 50);
    ASSERT_EQ(MRBCloseLibrary(handler), 0);
    ASSERT_EQ(CountObjects(root), 0);
  }
  EXPECT_TRUE(root.ComputeAnomalies().IsEmpty());
}

}  // namespace
