#include <ravo-orx/package_check/OrxPolicyCases.h>

#include <algorithm>
#include <stdexcept>
#include <type_traits>

#include <ravo-orx/loader/OrxModuleLoader.h>
#include <ravo-orx/package_check/OrxExplainedCall.h>

namespace ravo::orx {

using namespace internal;

namespace {

// "[5201, 1, 6, 0, 3]", "[role, command]"
template <class Item>
std::string formatList(std::span<const Item> items) {
  std::string text = "[";
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (i) text += ", ";
    if constexpr (std::is_integral_v<Item>) {
      text += std::to_string(items[i]);
    } else {
      text += items[i];
    }
  }
  return text + "]";
}

// One raw call's outcome, copied: the emitted values the engine holds last only until the next call.
struct Observed {
  std::optional<std::int32_t> result;
  std::optional<std::vector<std::int32_t>> emitted;
  std::optional<std::string> error;
};

std::string caseProblem(const Observed& call, const OrxPolicyAnswer& answer, const OrxPolicyCase& policyCase,
                        const OrxDecisionKind& kind) {
  const std::string expected = "expected " + formatList<std::int32_t>(policyCase.emits);
  if (call.error) return expected + ", trapped: " + *call.error;
  if (!call.emitted) return expected + ", emitted nothing";
  if (*call.emitted != policyCase.emits) return expected + ", emitted " + formatList<std::int32_t>(*call.emitted);
  if (call.result != policyCase.emits[1]) {
    return expected + " and decide returning " + std::to_string(policyCase.emits[1]) + ", decide returned " +
           (call.result ? std::to_string(*call.result) : std::string("nothing"));
  }
  if (answer.source != OrxDecisionSource::policy || answer.decision != orxDecisionEmitted(kind, policyCase.emits)) {
    return expected + ", which the runtime refuses (" + std::string(orxCaseName(answer.source)) + ")";
  }
  return {};
}

}  // namespace

void OrxPolicyRunFuel::charge(std::uint64_t fuel) {
  used_ += fuel;
  if (used_ <= limit_) return;
  throw OrxPolicyRunFuelExhausted("the cases used more than " + std::to_string(limit_) +
                                  " fuel units, the most one run may use; the cases after it were not run "
                                  "(docs/POLICY-MANIFEST.md, \"Budgets\")");
}

std::vector<OrxPolicyCaseResult> runPolicyCases(std::span<const std::uint8_t> wasm, const OrxPolicyManifest& manifest,
                                                const OrxDecisionKind& kind, OrxPolicyRunFuel& fuel) {
  auto owned = loadModule(manifest.module, wasm, /*allowPrecompiled=*/false);
  // Counts the emissions of each case, which the runtime's own instance does not.
  const auto measured = loadMeasuredModule(manifest.module, wasm);
  LoadedModule& module = *owned;  // the decider owns it; this tool calls it on the same thread only
  OrxPolicyDecider decider(orxModulesWith(kind, std::move(owned)));
  std::vector<OrxPolicyCaseResult> results;
  for (const auto& policyCase : manifest.cases) {
    const OrxInvocation call = module.invoke(policyCase.facts);
    Observed observed{call.result, std::nullopt, call.error};
    if (call.emitted) observed.emitted = *call.emitted;
    const auto answer = orxDecide(kind, decider, policyCase.facts);
    const auto explained = orxExplainCall(*measured, kind, policyCase.facts);
    fuel.charge(explained.measure.fuel);
    results.push_back({&policyCase, caseProblem(observed, answer, policyCase, kind), explained.measure.emits});
  }
  return results;
}

}  // namespace ravo::orx
