#include "posix/posix_loop.h"
#include "support/runner_contract.h"

namespace corvane {
namespace {

INSTANTIATE_TYPED_TEST_SUITE_P(Posix, RunnerContract, PosixLoop);

}  // namespace
}  // namespace corvane
