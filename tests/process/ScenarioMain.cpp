// Runs one case: what the kernel remembers for the rest of the process, one case leaves to the
// next. The case is named with --gtest_filter.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

namespace {

class OneCaseOnly : public testing::EmptyTestEventListener {
  void OnTestProgramStart(const testing::UnitTest& program) override {
    if (program.test_to_run_count() == 1) return;
    std::fprintf(stderr, "%d cases match; name exactly one with --gtest_filter\n",
                 program.test_to_run_count());
    std::exit(2);
  }
};

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (!testing::GTEST_FLAG(list_tests)) {
    testing::UnitTest::GetInstance()->listeners().Append(new OneCaseOnly);
  }
  return RUN_ALL_TESTS();
}
