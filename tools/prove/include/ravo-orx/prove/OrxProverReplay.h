#pragma once
// A counterexample checked against the runtime before anyone is shown it: its facts are decided again
// by the runtime's own decision path on the interpreter (loadModule and OrxPolicyDecider, on a fresh
// instance as the model assumes), and the call is explained (what decide returned and emitted, the trap,
// the refusing rule). Where the runtime's answer is not the model's, the prover is at fault.

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include <z3++.h>

#include <ravo-orx/package_check/OrxDecisionByKind.h>
#include <ravo-orx/package_check/OrxExplainedCall.h>
#include <ravo-orx/prove/OrxHostDecisionModel.h>

namespace ravo::orx::internal {

struct OrxReplay {
  OrxPolicyAnswer answer;
  OrxExplainedCall call;
};

OrxReplay orxReplay(std::span<const std::uint8_t> wasm, const OrxDecisionKind& kind, std::span<const std::int32_t> facts);

// A decision as `ravo-orx decide` prints it: its fields and its "source".
std::string orxAnswerText(const OrxPolicyAnswer& answer);

// What the model answers in `model`: the decision fields and their source.
struct OrxModelAnswer {
  std::array<std::int32_t, kOrxMaxDecisionFields> fields{};
  OrxDecisionSource source = OrxDecisionSource::policy;
};
OrxModelAnswer orxModelAnswer(const OrxHostDecisionModel& host, const z3::model& model);

// Throws OrxProverDisagreement, naming the facts and both answers, unless the runtime's answer is the
// model's. `what` names the module ("old module", "the module").
void orxConfirm(const OrxDecisionKind& kind, std::string_view what, std::string_view facts, const OrxModelAnswer& model,
                const OrxPolicyAnswer& runtime);

// Throws OrxProverDisagreement with `problem` and the facts.
[[noreturn]] void orxDisagree(std::string_view facts, const std::string& problem);

std::int32_t orxModelValue(const z3::model& model, const z3::expr& value);

}  // namespace ravo::orx::internal
