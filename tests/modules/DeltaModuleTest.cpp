#include "KVLCodeFunctionCaller.h"
#include "LoadedModules.h"

namespace {

class Delta : public LoadedModules {
 protected:
  Delta() : LoadedModules({"Delta"}) {}
};

TEST_F(Delta, TheFourOperations) {
  EXPECT_EQ(Result("math/add", {"3.5", "4.25"}), "7.75");
  EXPECT_EQ(Result("math/sub", {"1", "2.5"}), "-1.5");
  EXPECT_EQ(Result("math/mul", {"3", "-4"}), "-12");
  EXPECT_EQ(Result("math/div", {"1", "8"}), "0.125");
  EXPECT_EQ(Thrown("math/div", {"1", "0"}), "division by zero");
}

TEST_F(Delta, LeftOutArgumentsHaveTheirDefaults) {
  EXPECT_EQ(Result("math/lerp", {"10", "20"}), "15");
  EXPECT_EQ(Result("math/lerp", {"10", "20", "0.1"}), "11");
  EXPECT_EQ(Result("math/hypot", {"-3"}), "3");
  EXPECT_EQ(Result("math/clamp", {"5"}), "1");
  EXPECT_EQ(Result("math/clamp", {"5", "0", "9"}), "5");
  EXPECT_EQ(Thrown("math/clamp", {"5", "9", "0"}), "low must not lie above high");
  EXPECT_EQ(Thrown("math/clamp", {"5", "nan", "0"}), "low must not lie above high");
}

TEST_F(Delta, ACallerHoldsTheDefaultsBeforeAnyArgumentIsSet) {
  const KVLSmartPtr<KVLCodeObject> lerp = KVLCodeEnv::GetDefault().FindObject("math/lerp");
  const KVLSmartPtr<KVLCodeFunctionCaller> caller = lerp->AsFunction()->CreateCaller(context);
  MRBUnicodeString text;
  EXPECT_EQ(caller->GetArgStr(2, text), KVLResult_Success);
  EXPECT_EQ(text, "0.5");
}

TEST_F(Delta, OutputParametersComeBack) {
  EXPECT_EQ(OutputOf("math/divmod", {"17", "5", "", ""}, 2), "3");
  EXPECT_EQ(OutputOf("math/divmod", {"17", "5", "", ""}, 3), "2");
  EXPECT_EQ(OutputOf("math/divmod", {"-17", "5", "", ""}, 3), "-2");
  EXPECT_EQ(Result("math/divmod", {"17", "5"}), "");
  EXPECT_EQ(Thrown("math/divmod", {"1", "0"}), "division by zero");
  EXPECT_EQ(Thrown("math/divmod", {"-2147483648", "-1"}), "the quotient does not fit");
}

TEST_F(Delta, RootsAreFoundInAscendingOrder) {
  EXPECT_EQ(Result("math/roots", {"1", "-3", "2"}), "2");
  EXPECT_EQ(OutputOf("math/roots", {"1", "-3", "2", "", ""}, 3), "1");
  EXPECT_EQ(OutputOf("math/roots", {"1", "-3", "2", "", ""}, 4), "2");
  EXPECT_EQ(OutputOf("math/roots", {"-1", "3", "-2", "", ""}, 3), "1");
  EXPECT_EQ(Result("math/roots", {"1", "2", "1"}), "1");
  EXPECT_EQ(Result("math/roots", {"1", "0", "1"}), "0");
  EXPECT_EQ(OutputOf("math/roots", {"1", "0", "1", "", ""}, 3), "nan");
  EXPECT_EQ(Result("math/roots", {"1", "0", "0"}), "1");
  // The small root of a pair far apart keeps its digits.
  EXPECT_EQ(OutputOf("math/roots", {"1", "-1e9", "1", "", ""}, 3), "1e-09");
  EXPECT_EQ(Thrown("math/roots", {"0", "1", "1"}), "a must not be 0");
}

TEST_F(Delta, AnInputOutputParameterIsChanged) {
  EXPECT_EQ(OutputOf("math/increment", {"41"}, 0), "42");
  EXPECT_EQ(OutputOf("math/increment", {"41", "-1"}, 0), "40");
  EXPECT_EQ(Thrown("math/increment", {"2147483647"}), "the sum does not fit");
}

TEST_F(Delta, AnArgumentThatIsNotReadIsRefused) {
  EXPECT_EQ(Call("math/add", {"x", "1"}).code, KVLResult_InvalidArgument);
  EXPECT_EQ(Call("math/add", {"1", "2", "3"}).code, KVLResult_InvalidArgument);
}

TEST_F(Delta, SquareRootsOfNegativeNumbersAreRefused) {
  EXPECT_EQ(Result("math/sqrt", {"2.25"}), "1.5");
  EXPECT_EQ(Thrown("math/sqrt", {"-1"}), "square root of a negative number");
}

}  // namespace
