#include <ravo-orx/checks/OrxDecisionBenchmark.h>

#include <fmt/format.h>

#include <chrono>

#include <ravo-orx/checks/OrxRuntimeCheckCatalog.h>

namespace ravo::orx {

namespace {

constexpr int kIterations = 5000;

// Two's-complement addition that wraps instead of overflowing.
std::int32_t wrappingAdd(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

}  // namespace

std::string OrxDecisionBenchmarkResult::line() const {
  return fmt::format("ORX host benchmark: {:.2f} \u00B5s/decision \u00B7 checksum {}", microsecondsPerDecision,
                     checksum);
}

OrxDecisionBenchmarkResult runOrxDecisionBenchmark(OrxPolicyRuntime& runtime) {
  const auto start = std::chrono::steady_clock::now();
  std::int32_t checksum = 0;
  for (int i = 0; i < kIterations; ++i) {
    checksum = wrappingAdd(checksum, runtime.authorize(orx_check_facts::controllerCommand).policyVersion);
    checksum = wrappingAdd(checksum, rawValue(runtime.correctSync(orx_check_facts::syncSmallDrift).action));
  }
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
  return {elapsed.count() * 1'000'000.0 / (2.0 * kIterations), checksum};
}

}  // namespace ravo::orx
