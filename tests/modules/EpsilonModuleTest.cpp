#include "LoadedModules.h"

namespace {

class Epsilon : public LoadedModules {
 protected:
  Epsilon() : LoadedModules({"Alpha", "Beta", "Gamma", "Epsilon", "Zeta"}) {}
};

TEST_F(Epsilon, Texts) {
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

TEST_F(Epsilon, JoinWritesEveryElementAsText) {
  EXPECT_EQ(Result("text/join", {"[1, 2.0, true, \"a, b\", Point(1,2), [x, 1]]"}),
            "1, 2, true, a, b, (1, 2), [\"x\",1]");
  EXPECT_EQ(Result("text/join", {"[a, b]", ""}), "ab");
  EXPECT_EQ(Result("text/join", {"[]"}), "");
  EXPECT_EQ(Result("text/join", {"NULL"}), "");
}

}  // namespace
