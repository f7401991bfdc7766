// Any bytes as a policy module (the seeds are the three bundled modules, so most inputs are mutations of
// them): the host either refuses them with its own instantiation text or loads them, on the native tier
// only when they are exactly an approved module, and every decision then taken with them terminates
// with an answer that is in range or is the fail-safe decision. Each failed decision is counted once.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>

#include <ravo-orx/core/ORXSHA256.h>
#include <ravo-orx/loader/OrxModuleLoader.h>
#include <ravo-orx/runtime/OrxBuildConstants.h>
#include <ravo-orx/runtime/OrxLog.h>
#include <ravo-orx/runtime/OrxPolicyDecider.h>
#include <ravo-orx/runtime/RuntimeError.h>

namespace ravo::orx {

using namespace internal;

namespace {

constexpr std::string_view kName = "fuzz";

bool isApproved(std::span<const std::uint8_t> bytes) {
  const auto digest = ORXSHA256::hex(bytes);
  const auto& approved = OrxBuildConstants::expectedDigests();
  return std::any_of(approved.begin(), approved.end(), [&](const auto& entry) { return entry.second == digest; });
}

bool isRefusalText(std::string_view text) {
  const std::string refused = "Could not instantiate ORX module " + std::string(kName) + ": ";
  const std::string noDecide = "ORX module " + std::string(kName) + " has no decide export";
  return (text.starts_with(refused) && text.size() > refused.size()) || text == noDecide;
}

std::unique_ptr<LoadedModule> load(std::span<const std::uint8_t> bytes) {
  try {
    auto module = loadModule(kName, bytes);
    const auto expectedTier = isApproved(bytes) ? OrxExecutionTier::precompiled : OrxExecutionTier::interpreted;
    if (module->tier() != expectedTier) std::abort();
    return module;
  } catch (const RuntimeError& error) {
    if (!isRefusalText(error.what())) std::abort();
    return nullptr;
  }
}

bool isKnownReason(OrxAuthorizationReason reason) {
  return orxAuthorizationReason(rawValue(reason)).has_value();
}

}  // namespace

// Refusals are the expected outcome here; their log lines would only drown libFuzzer's report.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
  setOrxLogSink([](OrxLogLevel, std::string_view) {});
  return 0;
}

}  // namespace ravo::orx

using namespace ravo::orx;
using namespace ravo::orx::internal;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span<const std::uint8_t> bytes(data, size);
  auto first = load(bytes);
  if (!first) return 0;
  // The same bytes serve all three decisions, so each decision's validation meets whatever they emit.
  OrxPolicyDecider decider({std::move(first), load(bytes), load(bytes)});

  std::uint64_t failures = 0;
  for (const std::int32_t variant : {0, 1, -1}) {
    const auto authorization = decider.authorize({3, 2 + variant, 0xFF, 1000, 900000, variant, 600, 1});
    if (!isKnownReason(authorization.reason)) std::abort();
    if (authorization == OrxAuthorizationDecision::invalid() ||
        authorization == OrxAuthorizationDecision::runtimeUnavailable()) {
      ++failures;
    }

    const auto sync = decider.correctSync({66 * variant, 20, 5, 10000, 100, 0, 500, 50});
    if (!OrxPolicyDecider::isValidHostSyncOutput(sync.action, sync.rateX1000, sync.correctionMilliseconds,
                                                 sync.reason)) {
      std::abort();
    }

    const auto cinema = decider.decideCinemaAdmission({2400, 6000, 1000, 60 + variant, 0, 0, 11, 15, 24, 30, 20,
                                                       150, 30});
    if (!OrxPolicyDecider::isValidCinemaAdmissionOutput(cinema.route, cinema.sparseAnchorIntervalFrames,
                                                        cinema.safeBudgetTenthsMilliseconds, cinema.reason)) {
      std::abort();
    }
  }
  // Authorization's fail-safe answers cannot be forged by a module (their reasons are the host's own),
  // so each one seen is exactly one counted failure; sync and cinema may add more.
  if (decider.failureCount() < failures || decider.failureCount() > 9) std::abort();
  return 0;
}
