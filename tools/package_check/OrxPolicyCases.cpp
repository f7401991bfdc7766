#include "tools/package_check/OrxPolicyCases.h"

namespace {

// One raw call's outcome, copied: the emitted values the engine holds last only until the next call.
struct Observed {
  std::optional<std::int32_t> result;
  std::optional<std::vector<std::int32_t>> emitted;
  std::optional<std::string> error;
};

std::string caseProblem(const Observed& call, const OrxPolicyAnswer& answer, const OrxPolicyCase& policyCase,
                        const OrxPolicyKind& kind) {
  const std::string expected = "expected " + orxFormatValues(policyCase.emits);
  if (call.error) return expected + ", trapped: " + *call.error;
  if (!call.emitted) return expected + ", emitted nothing";
  if (*call.emitted != policyCase.emits) return expected + ", emitted " + orxFormatValues(*call.emitted);
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

std::string orxFormatValues(std::span<const std::int32_t> values) {
  std::string text = "[";
  for (std::size_t i = 0; i < values.size(); ++i) text += (i ? ", " : "") + std::to_string(values[i]);
  return text + "]";
}

std::vector<OrxPolicyCaseResult> runPolicyCases(std::span<const std::uint8_t> wasm, const OrxPolicyManifest& manifest,
                                                const OrxPolicyKind& kind) {
  auto owned = LoadedModule::instantiate(manifest.module, wasm, /*allowPrecompiled=*/false);
  LoadedModule& module = *owned;  // the decider owns it; this tool calls it on the same thread only
  OrxPolicyDecider decider(orxModulesWith(kind, std::move(owned)));
  std::vector<OrxPolicyCaseResult> results;
  for (const auto& policyCase : manifest.cases) {
    const OrxInvocation call = module.invoke(policyCase.facts);
    Observed observed{call.result, std::nullopt, call.error};
    if (call.emitted) observed.emitted = *call.emitted;
    const auto answer = orxDecide(kind, decider, policyCase.facts);
    std::optional<std::int32_t> reason;
    if (observed.emitted && observed.emitted->size() > kind.reasonIndex) reason = (*observed.emitted)[kind.reasonIndex];
    results.push_back({&policyCase, caseProblem(observed, answer, policyCase, kind), reason});
  }
  return results;
}
