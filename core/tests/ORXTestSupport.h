#pragma once
// Assertions shared by the core's tests.

#include <gtest/gtest.h>

#include <string>

#include <ravo-orx/core/ORXError.h>

namespace ravo::orx {

// Runs `body` and checks that it throws an ORXError whose text is exactly `description`.
template <class Body>
::testing::AssertionResult orxThrows(Body&& body, const std::string& description) {
  try {
    body();
  } catch (const ORXError& error) {
    if (error.description() == description) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "threw \"" << error.description() << "\"";
  }
  return ::testing::AssertionFailure() << "did not throw";
}

}  // namespace ravo::orx
