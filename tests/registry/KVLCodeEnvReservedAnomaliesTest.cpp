#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KVLCodeEnv.h"
#include "RegistryObjects.h"
#include "support/TestObjects.h"

// Reserved names below reserved names, and names that begin with "_" inside reserved environments.

namespace {

using namespace kvltest;

using Report = std::vector<std::string>;

class KVLCodeEnvReservedAnomalies : public RegistryCase {
 protected:
  Report GetReport() const {
    Report report;
    for (const KVLCodeEnv::Anomaly& anomaly : env->ComputeAnomalies())
      report.push_back((anomaly.path + ": " + anomaly.message).ConvertToChar());
    return report;
  }

  void AddNoted(const MRBUnicodeString& path) {
    const TrackedPtr object = MakeObject("own");
    object->Note("noted");
    EXPECT_EQ(env->Add(*object, path), KVLResult_Success);
  }

  const EnvPtr env = new KVLCodeEnv("checked");
};

TEST_F(KVLCodeEnvReservedAnomalies, OfReservedEnvironmentsBelowHoldWhatTheirContentKeeps) {
  AddNoted("a/_types/deeper/x");
  AddNoted("a/_members/x");
  AddNoted("a/_conversions/int/long");
  AddNoted("a/_operators/x");
  EXPECT_EQ(GetReport(), Report({"a/_types/deeper/x: noted", "a/_members/x: noted",
                                 "a/_conversions/int/long: noted", "a/_operators/x: noted"}));
}

TEST_F(KVLCodeEnvReservedAnomalies, OfMembersCountEveryTypeNameAlsoOneThatBeginsWithAnUnderscore) {
  env->Add(*MakeObject("x"), "_members/_x/f");
  env->Add(*MakeFunction("g", "", {{"p", "_x"}}), "_members/_x/g");
  EXPECT_EQ(GetReport(),
            Report({"_members/_x/f: Object registered under '_members' is not a function.",
                    "_members/_x: Used path '_x'. Only special predefined keywords can start with "
                    "'_'."}));
}

TEST_F(KVLCodeEnvReservedAnomalies, OfNamesAreFoundAtAnyDepthOfReservedEnvironments) {
  env->GetSubEnv("_types/_x");
  env->GetSubEnv("_members/Point/_x");
  env->GetSubEnv("_conversions/int/_x");
  const std::string message =
      ": Used path '_x'. Only special predefined keywords can start with '_'.";
  EXPECT_EQ(GetReport(), Report({"_types/_x" + message, "_members/Point/_x" + message,
                                 "_conversions/int/_x" + message}));
}

TEST_F(KVLCodeEnvReservedAnomalies, OfAReservedNameInAReservedEnvironmentFollowBothRules) {
  env->Add(*MakeObject("x"), "_members/_types/x");
  env->Add(*MakeObject("x"), "_conversions/_types/x");
  EXPECT_EQ(GetReport(),
            Report({"_members/_types/x: Object registered under '_members' is not a function.",
                    "_members/_types/x: Object registered under '_types' is not a type.",
                    "_conversions/_types/x: Object registered under '_types' is not a type."}));
}

}  // namespace
