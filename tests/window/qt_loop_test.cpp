#include "qt/qt_loop.h"

#include "support/loop_contract.h"
#include "support/runner_contract.h"

namespace corvane {
namespace {

INSTANTIATE_TYPED_TEST_SUITE_P(Qt, LoopContract, QtLoop);
INSTANTIATE_TYPED_TEST_SUITE_P(Qt, RunnerContract, QtLoop);

TEST(QtLoop, AWaitThatNothingEndsComesBack) {
  QtLoop loop;
  const std::int64_t start = loop.MonotonicMilliseconds();
  for (int pass = 0; pass < 3; ++pass) loop.Yield();
  EXPECT_LT(loop.MonotonicMilliseconds() - start, 1500);
}

}  // namespace
}  // namespace corvane
