#include <stdexcept>

#include "AlphaModule.h"
#include "KVLCodeFunctionCaller.h"

namespace {

class AlphaFunctions : public AlphaModule {
 protected:
  static std::string OutputOf(const MRBUnicodeString& path,
                              std::initializer_list<const char*> texts, int i) {
    const Answer answer = Call(path, texts);
    EXPECT_EQ(answer.code, KVLResult_Success) << path;
    return answer.texts[i].ConvertToChar();
  }

  static std::string Thrown(const MRBUnicodeString& path,
                            std::initializer_list<const char*> texts) {
    try {
      (void)Call(path, texts);
    } catch (const std::exception& exception) {
      return exception.what();
    }
    return "nothing";
  }
};

TEST_F(AlphaFunctions, TheFourOperations) {
  EXPECT_EQ(Result("math/add", {"3.5", "4.25"}), "7.75");
  EXPECT_EQ(Result("math/sub", {"1", "2.5"}), "-1.5");
  EXPECT_EQ(Result("math/mul", {"3", "-4"}), "-12");
  EXPECT_EQ(Result("math/div", {"1", "8"}), "0.125");
  EXPECT_EQ(Thrown("math/div", {"1", "0"}), "division by zero");
}

TEST_F(AlphaFunctions, LeftOutArgumentsHaveTheirDefaults) {
  EXPECT_EQ(Result("math/lerp", {"10", "20"}), "15");
  EXPECT_EQ(Result("math/lerp", {"10", "20", "0.1"}), "11");
  EXPECT_EQ(Result("math/hypot", {"-3"}), "3");
  EXPECT_EQ(Result("math/clamp", {"5"}), "1");
  EXPECT_EQ(Result("math/clamp", {"5", "0", "9"}), "5");
  EXPECT_EQ(Thrown("math/clamp", {"5", "9", "0"}), "low must not lie above high");
  EXPECT_EQ(Thrown("math/clamp", {"5", "nan", "0"}), "low must not lie above high");
}

TEST_F(AlphaFunctions, ACallerHoldsTheDefaultsBeforeAnyArgumentIsSet) {
  const KVLSmartPtr<KVLCodeObject> lerp = KVLCodeEnv::GetDefault().FindObject("math/lerp");
  const KVLCodeContext context;
  const KVLSmartPtr<KVLCodeFunctionCaller> caller = lerp->AsFunction()->CreateCaller(context);
  MRBUnicodeString text;
  EXPECT_EQ(caller->GetArgStr(2, text), KVLResult_Success);
  EXPECT_EQ(text, "0.5");
}

TEST_F(AlphaFunctions, OutputParametersComeBack) {
  EXPECT_EQ(OutputOf("math/divmod", {"17", "5", "", ""}, 2), "3");
  EXPECT_EQ(OutputOf("math/divmod", {"17", "5", "", ""}, 3), "2");
  EXPECT_EQ(OutputOf("math/divmod", {"-17", "5", "", ""}, 3), "-2");
  EXPECT_EQ(Result("math/divmod", {"17", "5"}), "");
  EXPECT_EQ(Thrown("math/divmod", {"1", "0"}), "division by zero");
  EXPECT_EQ(Thrown("math/divmod", {"-2147483648", "-1"}), "the quotient does not fit");
}

TEST_F(AlphaFunctions, RootsAreFoundInAscendingOrder) {
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

TEST_F(AlphaFunctions, AnInputOutputParameterIsChanged) {
  EXPECT_EQ(OutputOf("math/increment", {"41"}, 0), "42");
  EXPECT_EQ(OutputOf("math/increment", {"41", "-1"}, 0), "40");
  EXPECT_EQ(Thrown("math/increment", {"2147483647"}), "the sum does not fit");
}

TEST_F(AlphaFunctions, AnArgumentThatIsNotReadIsRefused) {
  EXPECT_EQ(Call("math/add", {"x", "1"}).code, KVLResult_InvalidArgument);
  EXPECT_EQ(Call("math/add", {"1", "2", "3"}).code, KVLResult_InvalidArgument);
  EXPECT_EQ(Call("list/size", {"1"}).code, KVLResult_InvalidArgument);
}

TEST_F(AlphaFunctions, SquareRootsOfNegativeNumbersAreRefused) {
  EXPECT_EQ(Result("math/sqrt", {"2.25"}), "1.5");
  EXPECT_EQ(Thrown("math/sqrt", {"-1"}), "square root of a negative number");
}

TEST_F(AlphaFunctions, Texts) {
  EXPECT_EQ(Result("text/length", {"a\xC3\xA9"}), "3");
  EXPECT_EQ(Result("text/upper", {"a\xC3\xA9z0{`"}), "A\xC3\xA9Z0{`");
  EXPECT_EQ(Result("text/lower", {"A@[Z"}), "a@[z");
  EXPECT_EQ(Result("text/strip", {" \t a b \n"}), "a b");
  EXPECT_EQ(Result("text/concat", {"a", "b"}), "ab");
  EXPECT_EQ(Result("text/repeat", {"ab"}), "abab");
  EXPECT_EQ(Result("text/repeat", {"ab", "0"}), "");
  EXPECT_EQ(Result("text/repeat", {"", "2147483647"}), "");
  EXPECT_EQ(Thrown("text/repeat", {"ab", "-1"}), "count must not be negative");
  EXPECT_EQ(Thrown("text/repeat", {"ab", "2147483647"}), "the text would be longer than 16 MiB");
  EXPECT_EQ(Result("text/find", {"abcabc", "c"}), "2");
  EXPECT_EQ(Result("text/find", {"abc", "x"}), "-1");
}

TEST_F(AlphaFunctions, JoinWritesEveryElementAsText) {
  EXPECT_EQ(Result("text/join", {"[1, 2.0, true, \"a, b\", (1,2), [x, 1]]"}),
            "1, 2, true, a, b, (1,2), [\"x\",1]");
  EXPECT_EQ(Result("text/join", {"[a, b]", ""}), "ab");
  EXPECT_EQ(Result("text/join", {"[]"}), "");
  EXPECT_EQ(Result("text/join", {"NULL"}), "");
}

TEST_F(AlphaFunctions, Lists) {
  EXPECT_EQ(Result("list/size", {"[1, [2, 3]]"}), "2");
  EXPECT_EQ(Result("list/size", {"NULL"}), "0");
  EXPECT_EQ(Result("list/get", {"[a, b]"}), "a");
  EXPECT_EQ(Result("list/get", {"[a, [b]]", "1"}), "[\"b\"]");
  EXPECT_EQ(Thrown("list/get", {"[a, b]", "2"}), "index 2 is outside a list of 2");
  EXPECT_EQ(Thrown("list/get", {"[a, b]", "-1"}), "index -1 is outside a list of 2");
  EXPECT_EQ(Thrown("list/get", {"NULL"}), "index 0 is outside a list of 0");
  EXPECT_EQ(Result("list/append", {"[1]", "2"}), "[1,\"2\"]");
  EXPECT_EQ(Result("list/append", {"NULL", "x"}), "[\"x\"]");
  EXPECT_EQ(Result("list/reverse", {"[1, 2, 3]"}), "[3,2,1]");
  EXPECT_EQ(Result("list/range", {"1", "3"}), "[1,2,3]");
  EXPECT_EQ(Result("list/range", {"3", "1"}), "[]");
  EXPECT_EQ(Result("list/range", {"5", "1", "-2"}), "[5,3,1]");
  EXPECT_EQ(Result("list/range", {"2147483646", "2147483647"}), "[2147483646,2147483647]");
  EXPECT_EQ(Thrown("list/range", {"1", "3", "0"}), "step must not be 0");
  EXPECT_EQ(Thrown("list/range", {"0", "2147483647"}),
            "the list would have more than 1000000 elements");
}

TEST_F(AlphaFunctions, SumConvertsEachElement) {
  EXPECT_EQ(Result("list/sum", {"[1, 2.5, true, \"4\"]"}), "8.5");
  EXPECT_EQ(Result("list/sum", {"[]"}), "0");
  EXPECT_EQ(Thrown("list/sum", {"[1, x]"}), "element 1 is no number");
}

}  // namespace
