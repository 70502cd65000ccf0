#include <cstdlib>

#include "KVLCodeFunctionCaller.h"
#include "LoadedModules.h"

namespace {

class Delta : public LoadedModules {
 protected:
  Delta() : LoadedModules({"Alpha", "Gamma", "Delta"}) {}
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

TEST_F(Delta, RoundingIsThatOfTheDecimalNumber) {
  const struct {
    const char* x;
    const char* digits;
    const char* rounded;
  } cases[] = {{"2.5", "0", "3"},
               {"-2.5", "0", "-3"},
               {"0.4", "0", "0"},
               {"-0.4", "0", "-0"},
               {"2.675", "2", "2.67"},
               {"0.125", "2", "0.13"},
               {"-0.125", "2", "-0.13"},
               {"1234.5", "-2", "1200"},
               {"1250", "-2", "1300"},
               {"-50", "-2", "-100"},
               {"49", "-2", "0"},
               {"5", "-1", "10"},
               {"5", "-3", "0"},
               {"0.1", "1", "0.1"},
               {"0.1", "20", "0.1"},
               {"9.99", "1", "10"},
               {"5e-324", "323", "0"},
               {"5e-324", "324", "5e-324"},
               {"1e308", "-308", "1e+308"},
               {"9e307", "-308", "1e+308"},
               {"1e308", "-309", "0"},
               {"1.7976931348623157e308", "-308", "inf"},
               {"3", "2147483647", "3"},
               {"3", "-2147483648", "0"},
               {"nan", "2", "nan"},
               {"-inf", "-2", "-inf"}};
  for (const auto& number : cases) {
    EXPECT_EQ(Result("math/round", {number.x, number.digits}), number.rounded)
        << number.x << " " << number.digits;
  }
  EXPECT_EQ(Result("math/round", {"7.5"}), "8");
}

TEST_F(Delta, PowersAreRealOrRefused) {
  EXPECT_EQ(Result("math/pow", {"2", "10"}), "1024");
  EXPECT_EQ(Result("math/pow", {"-2", "3"}), "-8");
  EXPECT_EQ(Result("math/pow", {"2", "-1"}), "0.5");
  EXPECT_EQ(Result("math/pow", {"0", "0"}), "1");
  EXPECT_EQ(Result("math/pow", {"2.25", "0.5"}), "1.5");
  EXPECT_EQ(Result("math/pow", {"10", "400"}), "inf");
  EXPECT_EQ(Thrown("math/pow", {"0", "-1"}), "0 to the power of a negative number");
  EXPECT_EQ(Thrown("math/pow", {"-2", "0.5"}), "a negative number to a power that is not whole");
}

TEST_F(Delta, OneNumberFunctions) {
  EXPECT_EQ(Result("math/exp", {"0"}), "1");
  EXPECT_EQ(Result("math/log", {"1"}), "0");
  EXPECT_EQ(Thrown("math/log", {"0"}), "logarithm of a number that is not positive");
  EXPECT_EQ(Thrown("math/log", {"-1"}), "logarithm of a number that is not positive");
  EXPECT_EQ(Result("math/abs", {"-2.5"}), "2.5");
  EXPECT_EQ(Result("math/floor", {"-2.5"}), "-3");
  EXPECT_EQ(Result("math/ceil", {"-2.5"}), "-2");
  EXPECT_EQ(Result("math/min", {"2", "-1"}), "-1");
  EXPECT_EQ(Result("math/max", {"2", "nan"}), "2");
}

TEST_F(Delta, TheMeanOfHugeNumbersIsNotInfinite) {
  EXPECT_EQ(Result("math/mean", {"[1, 2, 6]"}), "3");
  EXPECT_EQ(Result("math/mean", {"[1e308, 1e308]"}), "1e+308");
  EXPECT_EQ(Result("math/mean", {"[nan, 1]"}), "nan");
  EXPECT_EQ(Thrown("math/mean", {"[]"}), "mean of no numbers");
  EXPECT_EQ(Thrown("math/mean", {"NULL"}), "mean of no numbers");
}

TEST_F(Delta, Roots2TakesEquationsOfLowerDegree) {
  EXPECT_EQ(Result("math/roots2", {"0", "2", "-4"}), "1");
  EXPECT_EQ(OutputOf("math/roots2", {"0", "2", "-4", "", ""}, 3), "2");
  EXPECT_EQ(OutputOf("math/roots2", {"0", "2", "-4", "", ""}, 4), "2");
  EXPECT_EQ(OutputOf("math/roots2", {"0", "2", "0", "", ""}, 3), "0");
  EXPECT_EQ(Result("math/roots2", {"0", "0", "1"}), "0");
  EXPECT_EQ(OutputOf("math/roots2", {"0", "0", "1", "", ""}, 3), "nan");
  EXPECT_EQ(Thrown("math/roots2", {"0", "0", "0"}), "every x is a solution");
  EXPECT_EQ(OutputOf("math/roots2", {"1", "-3", "2", "", ""}, 4), "2");
}

TEST_F(Delta, RootsKeepTheirDigitsAtEveryScale) {
  // Nearly a double root: the naive discriminant is 0 here.
  EXPECT_EQ(Result("math/roots", {"94906265.625", "-189812534", "94906268.375"}), "2");
  EXPECT_EQ(OutputOf("math/roots", {"94906265.625", "-189812534", "94906268.375", "", ""}, 3), "1");
  EXPECT_EQ(OutputOf("math/roots", {"1e200", "-3e200", "2e200", "", ""}, 4), "2");
  EXPECT_EQ(OutputOf("math/roots", {"1e-200", "-3e-200", "2e-200", "", ""}, 3), "1");
  EXPECT_EQ(OutputOf("math/roots", {"1", "0", "0", "", ""}, 3), "0");
  for (const char* const path : {"math/roots", "math/roots2"}) {
    EXPECT_EQ(Thrown(path, {"nan", "1", "1"}), "a, b and c must be finite");
    EXPECT_EQ(Thrown(path, {"1", "inf", "1"}), "a, b and c must be finite");
  }
}

TEST_F(Delta, RootsOfCoefficientsFarApart) {
  EXPECT_EQ(Result("math/roots", {"1e-200", "1", "1e200"}), "0");
  const struct {
    const char* a;
    const char* b;
    const char* c;
    double x1;
    double x2;
  } cases[] = {{"1e-165", "0", "-1e158", -3.1622776601683793e161, 3.1622776601683793e161},
               {"1e-160", "0", "-1e155", -3.1622776601683796e157, 3.1622776601683796e157},
               {"1e-300", "-1e-10", "1e-300", 1e-290, 1e290},
               {"1", "1e-320", "0", -1e-320, 0},
               {"4", "0", "-5e-324", -1.1113793747425387e-162, 1.1113793747425387e-162}};
  for (const char* const path : {"math/roots", "math/roots2"}) {
    for (const auto& one : cases) {
      EXPECT_EQ(Result(path, {one.a, one.b, one.c}), "2") << one.a;
      EXPECT_DOUBLE_EQ(
          std::strtod(OutputOf(path, {one.a, one.b, one.c, "", ""}, 3).c_str(), nullptr), one.x1);
      EXPECT_DOUBLE_EQ(
          std::strtod(OutputOf(path, {one.a, one.b, one.c, "", ""}, 4).c_str(), nullptr), one.x2);
    }
    EXPECT_EQ(Thrown(path, {"5e-324", "1", "0"}), "a solution is too large");
  }
  EXPECT_EQ(Thrown("math/roots2", {"0", "5e-324", "1"}), "a solution is too large");
}

TEST_F(Delta, NanIsNotClamped) {
  EXPECT_EQ(Result("math/clamp", {"nan"}), "nan");
}

TEST_F(Delta, BothEndsAreReachedExactly) {
  EXPECT_EQ(Result("math/lerp", {"1e17", "1", "1"}), "1");
  EXPECT_EQ(Result("math/lerp", {"1", "inf", "0"}), "1");
  EXPECT_EQ(Result("math/lerp", {"-1.5e308", "1.5e308"}), "0");
  EXPECT_EQ(Result("math/lerp", {"0.1", "0.1", "0.7"}), "0.1");
}

TEST_F(Delta, AMeanIsRoundedOnce) {
  EXPECT_EQ(Result("math/mean", {"[1,1,1,1,1,1]"}), "1");
  EXPECT_EQ(Result("math/mean", {"[1,1,3]"}), "1.6666666666666667");
  EXPECT_EQ(Result("math/mean", {"[5e-324,5e-324]"}), "5e-324");
}

TEST_F(Delta, AnglesAreInRadians) {
  const char* const pi = "3.141592653589793";
  EXPECT_EQ(Result("math/trig/sin", {"0"}), "0");
  EXPECT_EQ(Result("math/trig/cos", {pi}), "-1");
  EXPECT_EQ(Result("math/trig/tan", {"0"}), "0");
  EXPECT_EQ(Result("math/trig/asin", {"1"}), "1.5707963267948966");
  EXPECT_EQ(Result("math/trig/acos", {"-1"}), pi);
  EXPECT_EQ(Result("math/trig/atan", {"inf"}), "1.5707963267948966");
  EXPECT_EQ(Result("math/trig/atan2", {"0", "-1"}), pi);
  EXPECT_EQ(Result("math/trig/to_degrees", {pi}), "180");
  EXPECT_EQ(Result("math/trig/to_radians", {"180"}), pi);
  EXPECT_NE(Result("math/trig/sin", {"inf"}).find("nan"), std::string::npos);
  for (const char* const path : {"math/trig/asin", "math/trig/acos"}) {
    EXPECT_EQ(Thrown(path, {"1.5"}), "x must lie between -1 and 1");
    EXPECT_EQ(Thrown(path, {"-1.5"}), "x must lie between -1 and 1");
  }
}

TEST_F(Delta, TheConstantsAreReadOnly) {
  for (const char* const path : {"math/pi", "math/e"}) {
    const KVLSmartPtr<KVLCodeObject> object = KVLCodeEnv::GetDefault().FindObject(path);
    ASSERT_TRUE(object && object->AsVariable()) << path;
    EXPECT_TRUE(object->AsVariable()->IsReadOnly());
    EXPECT_EQ(object->AsVariable()->SetValueStr(context, "3"), KVLResult_Failure);
  }
  EXPECT_EQ(TextOf(*KVLCodeEnv::GetDefault().FindObject("math/pi")->AsVariable()),
            "3.141592653589793");
  EXPECT_EQ(TextOf(*KVLCodeEnv::GetDefault().FindObject("math/e")->AsVariable()),
            "2.718281828459045");
}

}  // namespace
