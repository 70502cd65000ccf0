#include "KVLCodeFunctionCaller.h"
#include "KVLKit.h"
#include "LoadedModules.h"
#include "TestSession.h"

namespace {

class Lambda : public LoadedModules {
 protected:
  Lambda() : LoadedModules({"Alpha", "Beta", "Gamma", "Delta", "Epsilon", "Zeta", "Lambda"}) {}

  std::string Published() const { return Result("func/published", {}); }
  static bool Exists(const char* path) {
    return !KVLCodeEnv::GetDefault().FindObject(path).IsNull();
  }
};

// A function that is there for a test only.
class Passing {
 public:
  template <class Callable>
  Passing(const char* path, const char* params, Callable callable)
      : registerer(KVLCodeEnv::GetDefault(),
                   KVLSmartPtr<KVLCodeObject>(
                       new kvl::Function("passing", kvl::detail::Describe(callable), params)),
                   path, KVLSourceLocation()) {}

 private:
  const KVLCodeObjectRegisterer registerer;
};

TEST_F(Lambda, CallConvertsItsArguments) {
  EXPECT_EQ(Result("func/call", {"math/add", "[3, \"4.25\"]"}), "7.25");
  EXPECT_EQ(Result("func/call", {"geom/distance", "[\"(0,0)\", Point(3,4)]"}), "5.0");
  EXPECT_EQ(Result("func/call", {"/math//lerp", "[0, 10]"}), "5.0");
  EXPECT_EQ(Result("func/call", {"text/upper", "[a]"}), "A");
  EXPECT_EQ(Result("func/call", {"geom/transform/identity"}),
            "Transform((1, 0, 0), (0, 1, 0), (0, 0, 1), (0, 0, 0))");
}

TEST_F(Lambda, CallLeavesOutputsOutAndReturnsNothingForVoid) {
  EXPECT_EQ(Result("func/call", {"math/divmod", "[7, 2]"}), "NULL");
  EXPECT_EQ(Result("func/call", {"math/roots", "[1, -3, 2]"}), "2");
}

TEST_F(Lambda, CallRefusesWhatDoesNotFit) {
  EXPECT_EQ(Thrown("func/call", {"math/ad", "[1,2]"}), "there is no function 'math/ad'");
  EXPECT_EQ(Thrown("func/call", {"math", "[1,2]"}), "there is no function 'math'");
  EXPECT_EQ(Thrown("func/call", {"math/pi", "[]"}), "there is no function 'math/pi'");
  EXPECT_EQ(Thrown("func/call", {"", "[]"}), "there is no function ''");
  EXPECT_EQ(Thrown("func/call", {"math/add", "[1]"}), "argument 'b' of 'add' is missing");
  EXPECT_EQ(Thrown("func/call", {"math/add", "[1,2,3]"}), "'add' takes no more than 2 arguments");
  EXPECT_EQ(Thrown("func/call", {"math/add", "[1,x]"}),
            "argument 'b' of 'add' must be of the type 'double'");
  EXPECT_EQ(Thrown("func/call", {"math/div", "[1,0]"}), "division by zero");
}

TEST_F(Lambda, LookingForAFunctionCreatesNothing) {
  (void)Thrown("func/call", {"no/such/path", "[]"});
  (void)Thrown("func/arity", {"no/such/path"});
  (void)Thrown("func/alias", {"x", "no/such/path"});
  for (const auto& child : KVLCodeEnv::GetDefault().IterOnSubEnvs())
    EXPECT_NE(child.key, "no");
}

TEST_F(Lambda, CallsThatLeadRoundEnd) {
  EXPECT_EQ(Result("func/bind", {"again", "func/call", "[\"session/again\", []]"}),
            "session/again");
  EXPECT_EQ(Thrown("session/again", {}), "calls by path nest deeper than 100");
  EXPECT_EQ(Thrown("session/again", {}), "calls by path nest deeper than 100");
  EXPECT_EQ(Result("func/call", {"math/add", "[1,2]"}), "3.0");
  EXPECT_EQ(Result("func/unalias", {"again"}), "");
}

TEST_F(Lambda, ArityCountsAllParameters) {
  EXPECT_EQ(Result("func/arity", {"math/add"}), "2");
  EXPECT_EQ(Result("func/arity", {"math/divmod"}), "4");
  EXPECT_EQ(Result("func/arity", {"geom/transform/identity"}), "0");
  EXPECT_EQ(Thrown("func/arity", {"geom"}), "there is no function 'geom'");
}

TEST_F(Lambda, AnAliasIsTheFunctionUnderAnotherName) {
  EXPECT_EQ(Result("func/alias", {"plus", "math/add"}), "session/plus");
  EXPECT_EQ(Result("session/plus", {"1", "2"}), "3");
  EXPECT_EQ(KVLCodeEnv::GetDefault().FindObject("session/plus")->ToStringCode(),
            "double plus(double a, double b)");
  EXPECT_EQ(Result("func/alias", {"deep/er", "session/plus"}), "session/deep/er");
  EXPECT_EQ(Result("session/deep/er", {"1", "2.5"}), "3.5");
  EXPECT_EQ(Published(), "[\"session/plus\",\"session/deep/er\"]");
  EXPECT_EQ(Result("func/unalias", {"session/plus"}), "");
  EXPECT_EQ(Thrown("session/deep/er", {"1", "2"}),
            "the function 'session/plus' is gone, or is not what it was");
  EXPECT_EQ(Result("func/unalias", {"deep/er"}), "");
  EXPECT_EQ(Published(), "[]");
}

TEST_F(Lambda, AnAliasKeepsDefaultsOutputsAndMethods) {
  (void)Result("func/alias", {"mix", "math/lerp"});
  EXPECT_EQ(Result("session/mix", {"0", "10"}), "5");
  (void)Result("func/alias", {"parts", "math/divmod"});
  EXPECT_EQ(OutputOf("session/parts", {"17", "5", "", ""}, 3), "2");
  (void)Result("func/alias", {"move", "_members/Point/Move"});
  EXPECT_TRUE(KVLCodeEnv::GetDefault().FindObject("session/move")->AsFunction()->IsMethod());
  EXPECT_EQ(OutputOf("session/move", {"(1,2)", "0.5"}, 0), "(1.5, 2)");
  for (const char* const path : {"mix", "parts", "move"})
    (void)Result("func/unalias", {path});
}

TEST_F(Lambda, NamesAreChecked) {
  for (const char* const name :
       {"", "/", "session", "session/", "a b", "1a", "_a", "a/../b", "a-b"})
    EXPECT_EQ(Thrown("func/alias", {name, "math/add"}),
              "'" + std::string(name) + "' is no name: letters, digits and \"_\", a letter first");
  (void)Result("func/alias", {"plus", "math/add"});
  EXPECT_EQ(Thrown("func/alias", {"plus", "math/sub"}), "'session/plus' is taken");
  EXPECT_EQ(Thrown("func/bind", {"session/plus", "math/sub", "[]"}), "'session/plus' is taken");
  EXPECT_EQ(Thrown("func/compose", {"plus", "[math/sub]"}), "'session/plus' is taken");
  (void)Result("func/unalias", {"plus"});
  EXPECT_EQ(Thrown("func/unalias", {"plus"}),
            "'session/plus' was not published by these functions");
  EXPECT_EQ(Thrown("func/unalias", {"math/add"}),
            "'session/math/add' was not published by these functions");
  EXPECT_TRUE(Exists("math/add"));
}

TEST_F(Lambda, WhatAnotherHasPublishedIsTaken) {
  const Passing other("session/other", "a", [](int a) { return a; });
  EXPECT_EQ(Thrown("func/alias", {"other", "math/add"}), "'session/other' is taken");
  EXPECT_EQ(Thrown("func/unalias", {"other"}),
            "'session/other' was not published by these functions");
  EXPECT_EQ(Result("session/other", {"7"}), "7");
}

TEST_F(Lambda, ABindingFixesArguments) {
  (void)Result("func/bind", {"ten_minus", "math/sub", "[10]"});
  EXPECT_EQ(Result("session/ten_minus", {"3"}), "7");
  EXPECT_EQ(KVLCodeEnv::GetDefault().FindObject("session/ten_minus")->ToStringCode(),
            "double ten_minus(double b)");
  (void)Result("func/bind", {"minus_ten", "math/sub", "[_, 10]"});
  EXPECT_EQ(Result("session/minus_ten", {"3"}), "-7");
  (void)Result("func/bind", {"middle", "math/lerp", "[_, _, 0.5]"});
  EXPECT_EQ(Result("session/middle", {"1", "2"}), "1.5");
  (void)Result("func/bind", {"all", "math/sub", "[5, \"2\"]"});
  EXPECT_EQ(Result("session/all", {}), "3");
  (void)Result("func/bind", {"from", "_members/Point/Distance", "[Point(1,1)]"});
  EXPECT_FALSE(KVLCodeEnv::GetDefault().FindObject("session/from")->AsFunction()->IsMethod());
  EXPECT_EQ(Result("session/from", {"(4,5)"}), "5");
  (void)Result("func/bind", {"said", "text/concat", "[\"\\\"quoted\\\"\"]"});
  EXPECT_EQ(Result("session/said", {"!"}), "\"\\\"quoted\\\"!\"");
  for (const char* const path : {"ten_minus", "minus_ten", "middle", "all", "from", "said"})
    (void)Result("func/unalias", {path});
}

TEST_F(Lambda, AFixedArgumentIsTheSameInEachCall) {
  (void)Result("func/bind", {"next", "math/increment", "[1]"});
  const KVLSmartPtr<KVLCodeObject> next = KVLCodeEnv::GetDefault().FindObject("session/next");
  const KVLSmartPtr<KVLCodeFunctionCaller> caller = next->AsFunction()->CreateCaller(context);
  EXPECT_EQ(caller->Call(), 0);
  EXPECT_EQ(caller->Call(), 0);
  EXPECT_EQ(caller->GetNbArgs(), 1);
  (void)Result("func/unalias", {"next"});
}

TEST_F(Lambda, ABindingThatDoesNotFitIsNotPublished) {
  EXPECT_EQ(Thrown("func/bind", {"b", "math/sub", "[x]"}),
            "argument 'a' of 'sub' must be of the type 'double'");
  EXPECT_EQ(Thrown("func/bind", {"b", "math/sub", "[1,2,3]"}),
            "'sub' takes no more than 2 arguments");
  EXPECT_FALSE(Exists("session/b"));
  EXPECT_FALSE(Exists("doc/session/b"));
}

TEST_F(Lambda, ACompositionHandsResultsOn) {
  (void)Result("func/compose", {"shout", "[text/strip, text/upper, text/length]"});
  EXPECT_EQ(Result("session/shout", {"  abc "}), "3");
  EXPECT_EQ(KVLCodeEnv::GetDefault().FindObject("session/shout")->ToStringCode(),
            "int shout(string text)");
  (void)Result("func/compose", {"rooted_sum", "[math/add, math/sqrt]"});
  EXPECT_EQ(Result("session/rooted_sum", {"9", "7"}), "4");
  (void)Result("func/compose", {"one", "[math/sqrt]"});
  EXPECT_EQ(Result("session/one", {"9"}), "3");
  (void)Result("func/compose", {"wrong", "[text/upper, math/sqrt]"});
  EXPECT_EQ(Thrown("session/wrong", {"x"}), "argument 'x' of 'sqrt' must be of the type 'double'");
  EXPECT_EQ(Result("session/wrong", {"9"}), "3") << "a text may be a number";
  EXPECT_EQ(Thrown("func/compose", {"c", "[]"}), "there is nothing to compose");
  EXPECT_EQ(Thrown("func/compose", {"c", "[math/sqrt, math/add]"}),
            "'math/add' does not take one value");
  EXPECT_EQ(Thrown("func/compose", {"c", "[math/sqrt, geom/transform/identity]"}),
            "'geom/transform/identity' does not take one value");
  EXPECT_EQ(Thrown("func/compose", {"c", "[math/nix]"}), "there is no function 'math/nix'");
  for (const char* const path : {"shout", "rooted_sum", "one", "wrong"})
    (void)Result("func/unalias", {path});
}

TEST_F(Lambda, WhatWouldCallItselfIsRefused) {
  (void)Result("func/alias", {"a", "math/sqrt"});
  (void)Result("func/compose", {"b", "[math/sqrt, session/a]"});
  (void)Result("func/unalias", {"a"});
  EXPECT_EQ(Thrown("func/alias", {"a", "session/b"}), "'session/b' would lead back to 'session/a'");
  EXPECT_EQ(Thrown("func/compose", {"a", "[math/sqrt, session/b]"}),
            "'session/b' would lead back to 'session/a'");
  (void)Result("func/unalias", {"b"});
}

TEST_F(Lambda, ManyWaysToTheSameFunctionAreFollowedOnce) {
  (void)Result("func/alias", {"f0", "math/sqrt"});
  for (int i = 1; i <= 60; ++i) {
    const std::string last = "session/f" + std::to_string(i - 1);
    const std::string name = "f" + std::to_string(i);
    (void)Result("func/compose", {name.c_str(), ("[" + last + "," + last + "]").c_str()});
  }
  EXPECT_TRUE(Exists("session/f60"));
  for (int i = 60; i >= 0; --i)
    (void)Result("func/unalias", {("f" + std::to_string(i)).c_str()});
  EXPECT_EQ(Published(), "[]");
}

TEST_F(Lambda, AFunctionThatIsGoneIsToldByTheCall) {
  {
    const Passing passing("t/passing", "a", [](int a) { return a + 1; });
    (void)Result("func/alias", {"next", "t/passing"});
    (void)Result("func/compose", {"after", "[math/sqrt, t/passing]"});
    EXPECT_EQ(Result("session/next", {"1"}), "2");
    EXPECT_EQ(Result("session/after", {"9"}), "4");
  }
  EXPECT_EQ(Thrown("session/next", {"1"}),
            "the function 't/passing' is gone, or is not what it was");
  EXPECT_EQ(Thrown("session/after", {"9"}), "there is no function 't/passing'");
  {
    const Passing other("t/passing", "a", [](double a) { return a; });
    EXPECT_EQ(Thrown("session/next", {"1"}),
              "the function 't/passing' is gone, or is not what it was");
    EXPECT_EQ(Result("session/after", {"9"}), "3");
  }
  const Passing again("t/passing", "a", [](int a) { return a + 5; });
  EXPECT_EQ(Result("session/next", {"1"}), "6");
  (void)Result("func/unalias", {"next"});
  (void)Result("func/unalias", {"after"});
}

TEST_F(Lambda, TimeCallsAsOftenAsAsked) {
  static int count = 0;
  const Passing counting("t/counting", "a", [](int& a) { count += ++a; });
  EXPECT_GE(std::stod(Result("func/time", {"t/counting", "[0]", "5"})), 0);
  EXPECT_EQ(count, 5) << "each call has the argument that was given";
  EXPECT_EQ(Thrown("func/time", {"t/counting", "[0]", "0"}), "repeats must be at least 1");
  EXPECT_EQ(Thrown("func/time", {"t/counting", "[]"}), "argument 'a' of 'passing' is missing");

  TestSession session;
  session.pollsUntilInterrupted = 3;
  context.SetSession(&session);
  EXPECT_EQ(Thrown("func/time", {"t/counting", "[0]", "2000000000"}), "interrupted");
  EXPECT_EQ(count, 8);
}

TEST_F(Lambda, PublishedFunctionsHaveDocs) {
  (void)Result("func/alias", {"plus", "/math/add"});
  (void)Result("func/bind", {"half", "math/lerp", "[_, _, 0.5]"});
  (void)Result("func/compose", {"c", "[math/add, math/sqrt]"});
  const auto doc = [this](const char* path) {
    return TextOf(*KVLCodeEnv::GetDefault().FindObject(path)->AsVariable());
  };
  EXPECT_EQ(doc("doc/session/plus"), "Another name of math/add.");
  EXPECT_EQ(doc("doc/session/half"), "math/lerp with some arguments fixed.");
  EXPECT_EQ(doc("doc/session/c"), "math/add, then math/sqrt.");
  for (const char* const path : {"plus", "half", "c"})
    (void)Result("func/unalias", {path});
  EXPECT_FALSE(Exists("doc/session/plus"));
}

LibraryHandler Load(const char* name) {
  return MRBGetEntryPoint(name, nullptr, nullptr, 1, 1, 0);
}

int CountObjects(const KVLCodeEnv& env) {
  int count = 0;
  for (const auto& object : env.IterOnObjects())
    count += object.value ? 1 : 0;
  for (const auto& child : env.IterOnSubEnvs())
    count += CountObjects(*child.value);
  return count;
}

void CallText(const char* path, std::initializer_list<const char*> args) {
  KVLVector<MRBUnicodeString> texts;
  for (const char* const arg : args)
    texts.Append(arg);
  MRBUnicodeString result;
  const KVLSmartPtr<KVLCodeObject> object = KVLCodeEnv::GetDefault().FindObject(path);
  ASSERT_TRUE(object) << path;
  EXPECT_EQ(object->AsFunction()->ParseAndCall(KVLCodeContext(), texts, result), 0) << path;
}

// The order in which the kernel unloads: what is bound goes first.
TEST(LambdaUnloading, PublishedFunctionsHoldNothingOfOtherModulesAndGoWithTheirOwn) {
  ASSERT_EQ(CountObjects(KVLCodeEnv::GetDefault()), 0);
  std::vector<LibraryHandler> others;
  for (const char* const name : {"Alpha", "Beta", "Gamma", "Delta", "Zeta"})
    others.push_back(Load(("KVLCodeEnv_" + std::string(name)).c_str()));
  const LibraryHandler lambda = Load("KVLCodeEnv_Lambda");
  CallText("func/alias", {"plus", "math/add"});
  CallText("func/bind", {"from", "_members/Point/Distance", "[Point(1,1)]"});
  CallText("session/from", {"(1,2)"});
  CallText("session/plus", {"1", "2"});
  for (const LibraryHandler& other : others)
    EXPECT_EQ(MRBCloseLibrary(other), 0);
  EXPECT_TRUE(KVLCodeEnv::GetDefault().FindObject("session/from"));
  EXPECT_FALSE(KVLCodeEnv::GetDefault()
                   .FindObject("session/from")
                   ->AsFunction()
                   ->CreateCaller(KVLCodeContext()));
  EXPECT_EQ(MRBCloseLibrary(lambda), 0);
  EXPECT_EQ(CountObjects(KVLCodeEnv::GetDefault()), 0);
}

}  // namespace
