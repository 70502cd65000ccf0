#include <algorithm>
#include <random>

#include "KVLKit.h"
#include "LoadedModules.h"
#include "TestSession.h"

namespace {

class Kappa : public LoadedModules {
 protected:
  Kappa() : LoadedModules({"Alpha", "Beta", "Gamma", "Zeta", "Kappa"}) {}
};

int asked = 0;

// Functions that are there for a test only.
class Predicates {
 public:
  Predicates() {
    Publish("t/divides", "a, b",
            kvl::detail::Describe([](int a, int b) { return ++asked, b % a == 0; }));
    Publish("t/number", "a, b", kvl::detail::Describe([](int a, int b) { return a == b ? 1 : 0; }));
    Publish("t/text", "a, b",
            kvl::detail::Describe([](int, int) { return MRBUnicodeString("perhaps"); }));
    Publish("t/one", "a", kvl::detail::Describe([](int) { return true; }));
    Publish("t/three", "a, b, c", kvl::detail::Describe([](int, int, int) { return true; }));
    Publish("t/more", "a, b, c = 5, d",
            kvl::detail::Describe([](int a, int b, int c, kvl::Out<int> d) {
              d = 1;
              return a + b == c;
            }));
    Publish("t/throws", "a, b", kvl::detail::Describe([](int a, int) -> bool {
              if (a == 2) throw std::runtime_error("not two");
              return false;
            }));
  }

 private:
  void Publish(const char* path, const char* params, const kvl::detail::Described& described) {
    registerers.emplace_back(std::make_unique<KVLCodeObjectRegisterer>(
        KVLCodeEnv::GetDefault(),
        KVLSmartPtr<KVLCodeObject>(new kvl::Function("predicate", described, params)), path,
        KVLSourceLocation()));
  }
  std::vector<std::unique_ptr<KVLCodeObjectRegisterer>> registerers;
};

TEST_F(Kappa, MaximumFindsAsManyPairsAsThereCanBe) {
  const Predicates predicates;
  // Taking the first that fits would leave 4 alone.
  EXPECT_EQ(Result("match/maximum", {"[2, 4]", "[4, 6]", "t/divides"}), "[[0,1],[1,0]]");
  EXPECT_EQ(Result("match/maximum", {"[7, 2, 3]", "[9, 5, 4]", "t/divides"}), "[[1,2],[2,0]]");
  EXPECT_EQ(Result("match/maximum", {"[]", "[1]", "t/divides"}), "[]");
  EXPECT_EQ(Result("match/maximum", {"[1]", "[]", "t/divides"}), "[]");
  EXPECT_EQ(Result("match/maximum", {"[7]", "[5]", "t/divides"}), "[]");
  EXPECT_EQ(Result("match/maximum", {"[\"2\"]", "[4.0]", "t/divides"}), "[[0,0]]");
}

TEST_F(Kappa, ThePredicateIsAskedOnceAtMostForEachTwo) {
  const Predicates predicates;
  asked = 0;
  (void)Result("match/maximum", {"[2,3,5,7]", "[210,6,15,11]", "t/divides"});
  EXPECT_LE(asked, 16);
  EXPECT_GT(asked, 0);
}

TEST_F(Kappa, ThePredicateMayAnswerWithANumberAndHaveDefaultsAndOutputs) {
  const Predicates predicates;
  EXPECT_EQ(Result("match/maximum", {"[1,2]", "[2,1]", "t/number"}), "[[0,1],[1,0]]");
  EXPECT_EQ(Result("match/maximum", {"[1,2]", "[3,4]", "t/more"}), "[[0,1],[1,0]]");
}

TEST_F(Kappa, APredicateThatDoesNotFitIsRefused) {
  const Predicates predicates;
  EXPECT_EQ(Thrown("match/maximum", {"[1]", "[1]", "t/none"}), "there is no function 't/none'");
  EXPECT_EQ(Thrown("match/maximum", {"[1]", "[1]", "t/one"}), "'t/one' does not take two values");
  EXPECT_EQ(Thrown("match/maximum", {"[]", "[]", "t/three"}), "'t/three' does not take two values");
  EXPECT_EQ(Thrown("match/maximum", {"[1]", "[1]", "t/text"}),
            "'predicate' answers neither true nor false");
  EXPECT_EQ(Thrown("match/maximum", {"[x]", "[1]", "t/divides"}),
            "argument 'a' of 'predicate' must be of the type 'int'");
  EXPECT_EQ(Thrown("match/maximum", {"[1,2,3]", "[1,2,3]", "t/throws"}), "not two");
}

TEST_F(Kappa, PerfectMatchesAllOrFails) {
  const Predicates predicates;
  EXPECT_EQ(Result("match/perfect", {"[2, 4]", "[4, 6]", "t/divides"}), "[[0,1],[1,0]]");
  EXPECT_EQ(Result("match/perfect", {"[]", "[]", "t/divides"}), "[]");
  EXPECT_EQ(Thrown("match/perfect", {"[2, 4]", "[4, 5]", "t/divides"}),
            "there is no perfect matching");
  EXPECT_EQ(Thrown("match/perfect", {"[2]", "[4, 6]", "t/divides"}),
            "there is no perfect matching");
}

TEST_F(Kappa, NumbersAreMatchedWithinTheTolerance) {
  EXPECT_EQ(Result("match/by_tolerance", {"[1, 2]", "[2.4, 1.5]", "0.5"}), "[[0,1],[1,0]]");
  EXPECT_EQ(Result("match/by_tolerance", {"[1]", "[1.5]", "0.5"}), "[[0,0]]");
  EXPECT_EQ(Result("match/by_tolerance", {"[1]", "[1.6]", "0.5"}), "[]");
  EXPECT_EQ(Result("match/by_tolerance", {"[1]", "[1]", "0"}), "[[0,0]]");
  EXPECT_EQ(Result("match/by_tolerance", {"[inf, nan]", "[nan, inf]", "0"}), "[[0,1]]");
  EXPECT_EQ(Thrown("match/by_tolerance", {"[1]", "[1]", "-1"}),
            "the tolerance must not be negative");
  EXPECT_EQ(Thrown("match/by_tolerance", {"[1]", "[1]", "nan"}),
            "the tolerance must not be negative");
}

// Sorted numbers can be matched in one pass: the size must be the same.
TEST_F(Kappa, AsManyNumbersAreMatchedAsAGreedyPassOverSortedOnesDoes) {
  constexpr unsigned int Seed = 11;
  SCOPED_TRACE("seed " + std::to_string(Seed));
  std::mt19937 random(Seed);
  for (int round = 0; round < 50; ++round) {
    std::vector<int> left(random() % 12);
    std::vector<int> right(random() % 12);
    for (std::vector<int>* const numbers : {&left, &right})
      for (int& number : *numbers)
        number = static_cast<int>(random() % 30);
    const auto text = [](const std::vector<int>& numbers) {
      std::string list = "[";
      for (const int number : numbers)
        list += (list.size() > 1 ? "," : "") + std::to_string(number);
      return list + "]";
    };
    const std::string pairs =
        Result("match/by_tolerance", {text(left).c_str(), text(right).c_str(), "2"});
    std::sort(left.begin(), left.end());
    std::sort(right.begin(), right.end());
    std::ptrdiff_t expected = 0;
    for (std::size_t i = 0, j = 0; i < left.size() && j < right.size();) {
      if (std::abs(left[i] - right[j]) <= 2) {
        ++expected, ++i, ++j;
      } else if (left[i] < right[j]) {
        ++i;
      } else {
        ++j;
      }
    }
    EXPECT_EQ(std::count(pairs.begin() + 1, pairs.end(), '['), expected) << pairs;
  }
}

TEST_F(Kappa, PointsAreMatchedByTheirDistance) {
  EXPECT_EQ(
      Result("match/points", {"[Point(0,0), Point(10,0)]", "[Point(10,1,0), \"(0,0,1)\"]", "1"}),
      "[[0,1],[1,0]]");
  EXPECT_EQ(Result("match/points", {"[Vector(1,1,1)]", "[Point(1,1,1)]", "0"}), "[[0,0]]");
  EXPECT_EQ(Result("match/points", {"[Point(0,0)]", "[Point(1,1)]", "1"}), "[]");
  EXPECT_EQ(Result("match/points", {"[Point(inf,0)]", "[Point(inf,0)]", "0"}), "[[0,0]]");
  EXPECT_EQ(Result("match/points", {"[Point(inf,0)]", "[Point(0,0)]", "inf"}), "[[0,0]]");
  EXPECT_EQ(Result("match/points", {"[Point(inf,0)]", "[Point(0,0)]", "1e300"}), "[]");
  EXPECT_EQ(Thrown("match/points", {"[Point(0,0), 5]", "[]", "1"}), "element 1 is no Point");
  EXPECT_EQ(Thrown("match/points", {"[]", "[]", "-0.5"}), "the tolerance must not be negative");
}

TEST(KappaAlone, PointsAreKnownByTheirTextWithoutTheirModule) {
  std::vector<LibraryHandler> handlers;
  for (const char* const name : {"KVLCodeEnv_Alpha", "KVLCodeEnv_Gamma", "KVLCodeEnv_Kappa"})
    handlers.push_back(MRBGetEntryPoint(name, nullptr, nullptr, 1, 1, 0));
  {
    KVLVector<MRBUnicodeString> texts;
    for (const char* const text : {"[\"(0,0)\"]", "[\"(0,0,1)\"]", "1"})
      texts.Append(text);
    MRBUnicodeString result;
    const KVLSmartPtr<KVLCodeObject> points = KVLCodeEnv::GetDefault().FindObject("match/points");
    EXPECT_EQ(points->AsFunction()->ParseAndCall(KVLCodeContext(), texts, result), 0);
    EXPECT_EQ(result, "[[0,0]]");
  }
  for (const LibraryHandler& handler : handlers)
    EXPECT_EQ(MRBCloseLibrary(handler), 0);
}

TEST_F(Kappa, NamesAreMatchedByLikeness) {
  EXPECT_EQ(Result("match/names", {"[a, B]", "[b, A]"}), "[[0,1],[1,0]]");
  EXPECT_EQ(Result("match/names", {"[abc]", "[abd]"}), "[]");
  EXPECT_EQ(Result("match/names", {"[abc]", "[abd]", "1"}), "[[0,0]]");
  EXPECT_EQ(Result("match/names", {"[abc]", "[ab]", "1"}), "[[0,0]]");
  EXPECT_EQ(Result("match/names", {"[abc]", "[xabc]", "1"}), "[[0,0]]");
  EXPECT_EQ(Result("match/names", {"[abc]", "[acb]", "1"}), "[]");
  EXPECT_EQ(Result("match/names", {"[abc]", "[acb]", "2"}), "[[0,0]]");
  EXPECT_EQ(Result("match/names", {"[kitten]", "[SITTING]", "2"}), "[]");
  EXPECT_EQ(Result("match/names", {"[kitten]", "[SITTING]", "3"}), "[[0,0]]");
  EXPECT_EQ(Result("match/names", {"[\"\"]", "[abc]", "2"}), "[]");
  EXPECT_EQ(Result("match/names", {"[\"\"]", "[abc]", "2147483647"}), "[[0,0]]");
  EXPECT_EQ(Thrown("match/names", {"[a]", "[a]", "-1"}), "slips must not be negative");
}

TEST_F(Kappa, TheLikestNamesAreMatchedFirst) {
  EXPECT_EQ(Result("match/names", {"[Width, width, wid]", "[width, Width, widt]", "3"}),
            "[[0,1],[1,0],[2,2]]");
}

TEST_F(Kappa, LikenessAgreesWithTheWholeTableOfDistances) {
  constexpr unsigned int Seed = 5;
  SCOPED_TRACE("seed " + std::to_string(Seed));
  std::mt19937 random(Seed);
  for (int round = 0; round < 400; ++round) {
    std::string a(random() % 7, ' ');
    std::string b(random() % 7, ' ');
    for (std::string* const text : {&a, &b})
      for (char& byte : *text)
        byte = "xyz"[random() % 3];
    std::vector<std::vector<int>> table(a.size() + 1, std::vector<int>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i)
      for (std::size_t j = 0; j <= b.size(); ++j) {
        if (i == 0 || j == 0) {
          table[i][j] = static_cast<int>(i + j);
          continue;
        }
        table[i][j] = std::min({table[i - 1][j] + 1, table[i][j - 1] + 1,
                                table[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
      }
    const int distance = table[a.size()][b.size()];
    const std::string left = "[\"" + a + "\"]";
    const std::string right = "[\"" + b + "\"]";
    const auto matched = [&](int slips) {
      return Result("match/names", {left.c_str(), right.c_str(), std::to_string(slips).c_str()}) ==
             "[[0,0]]";
    };
    ASSERT_TRUE(matched(distance)) << a << " " << b;
    ASSERT_FALSE(distance > 0 && matched(distance - 1)) << a << " " << b;
  }
}

TEST_F(Kappa, UnmatchedTellsWhoIsLeft) {
  EXPECT_EQ(Result("match/unmatched", {"[[0,2],[1,0]]", "[a,b,c]"}), "[2]");
  EXPECT_EQ(Result("match/unmatched", {"[[0,2],[1,0]]", "[a,b,c]", "true"}), "[1]");
  EXPECT_EQ(Result("match/unmatched", {"[]", "[a,b]"}), "[0,1]");
  EXPECT_EQ(Result("match/unmatched", {"[]", "[]"}), "[]");
  EXPECT_EQ(Thrown("match/unmatched", {"[[3,0]]", "[a,b,c]"}), "index 3 is outside a list of 3");
  EXPECT_EQ(Thrown("match/unmatched", {"[[-1,0]]", "[a]"}), "index -1 is outside a list of 1");
  EXPECT_EQ(Thrown("match/unmatched", {"[[0]]", "[a]"}), "a pair has two indexes");
  EXPECT_EQ(Refused("match/unmatched", {"[[0,x]]", "[a]"}), KVLResult_InvalidArgument);
}

TEST_F(Kappa, ListsThatAreTooLongAreRefused) {
  std::string list = "[0";
  for (int i = 1; i < 8193; ++i)
    list += ",0";
  list += "]";
  EXPECT_EQ(Thrown("match/by_tolerance", {list.c_str(), list.c_str(), "0"}),
            "the lists have more than 67108864 pairs of elements");
}

TEST_F(Kappa, EachFunctionMayBeInterrupted) {
  const Predicates predicates;
  TestSession session;
  context.SetSession(&session);
  const std::initializer_list<const char*> calls[] = {{"[1,2]", "[3,3]", "t/divides"},
                                                      {"[1,2]", "[3,3]", "0"},
                                                      {"[Point(0,0)]", "[Point(1,1)]", "0"},
                                                      {"[a]", "[b]", "1"}};
  int i = 0;
  for (const char* const path :
       {"match/maximum", "match/by_tolerance", "match/points", "match/names"}) {
    session.polls = 0;
    session.pollsUntilInterrupted = 0;
    EXPECT_EQ(Thrown(path, calls[i++]), "interrupted") << path;
  }
}

TEST_F(Kappa, PairsAreAPublishedType) {
  EXPECT_EQ(Through("KVLVector<KVLVector<int>>", "[[0,2], [1 , 0],[]]"), "[[0,2],[1,0],[]]");
  EXPECT_EQ(Through("KVLVector<KVLVector<int>>", "[1]"), "refused");
  EXPECT_EQ(Converted("KVLVector<KVLCodeValue_var>", "[[0,2]]", "KVLVector<KVLVector<int>>"),
            "[[0,2]]");
}

}  // namespace
