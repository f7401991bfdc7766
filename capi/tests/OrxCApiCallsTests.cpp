// How a C entry point reports what its C++ body throws: each kind of exception becomes its status and
// the calling thread's last-error text, and nothing escapes.

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include <ravo-orx/core/ORXError.h>

#include "capi/OrxCApiCalls.h"

namespace {

using namespace ravo::orx;
using namespace ravo::orx::internal;

TEST(OrxCApiCalls, EachExceptionBecomesItsStatusAndMessage) {
  struct Case {
    const char* what;
    void (*thrower)();
    orx_status status;
    std::string message;
  };
  const std::vector<Case> cases{
      {"a refusal of the core", [] { throw ORXError::parse("unexpected JSON byte"); }, ORX_STATUS_INVALID_INPUT,
       ORXError::parse("unexpected JSON byte").description()},
      {"memory exhausted", [] { throw std::bad_alloc(); }, ORX_STATUS_OUT_OF_MEMORY, "out of memory"},
      {"any other exception", [] { throw std::runtime_error("disk gone"); }, ORX_STATUS_INTERNAL_ERROR, "disk gone"},
      {"not an exception at all", [] { throw 7; }, ORX_STATUS_INTERNAL_ERROR, "unknown exception"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(orxCCall([&]() -> orx_status {
                c.thrower();
                return ORX_OK;
              }),
              c.status)
        << c.what;
    EXPECT_EQ(orx_last_error(), c.message) << c.what;
  }
}

}  // namespace
