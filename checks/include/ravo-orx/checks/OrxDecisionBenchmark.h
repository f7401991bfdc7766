#pragma once
// Measures the two most frequent decisions with fixed facts: 5000 authorizations and 5000 sync
// corrections, timed together on a monotonic clock, with a checksum that proves they were taken.

#include <cstdint>
#include <string>

#include <ravo-orx/runtime/OrxPolicyRuntime.h>

namespace ravo::orx {

struct OrxDecisionBenchmarkResult {
  double microsecondsPerDecision;
  std::int32_t checksum;

  // "ORX host benchmark: %.2f µs/decision · checksum %d"
  std::string line() const;
};

OrxDecisionBenchmarkResult runOrxDecisionBenchmark(OrxPolicyRuntime& runtime);

}  // namespace ravo::orx
