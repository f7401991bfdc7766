#pragma once
// Proofs about policy modules, for every facts vector within the ranges a manifest declares:
//   - prove: `decide` never traps, the host accepts every record it emits (each rule of the kind's
//     table, OrxEmittedRecordRules.h), and each property of the manifest holds of the host's decision;
//   - diff: two modules give the same host decision for every facts vector, or how they differ;
//   - coverage: which values of the decision's fields the module can give that no case reaches.
// Each answer is proved, refuted with a counterexample, or unknown with why (a gap of the model, the
// time or memory limit): never a wrong proof. A counterexample is replayed through the runtime's own
// decision path on the interpreter before it is reported, and a replay that disagrees with the model
// is the prover's fault (OrxProverDisagreement), never the module's.
//
// The model assumes a fresh instance, as the host instantiates it; a module that could leave its
// instance changed for the next call is a gap, so nothing is proved of it that a later call could
// break.

#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include <ravo-orx/package_check/OrxPolicyManifest.h>
#include <ravo-orx/package_check/OrxPolicyProperty.h>
#include <ravo-orx/runtime/OrxDecisionKinds.h>

namespace ravo::orx {

struct OrxFactRange {
  std::int32_t from;
  std::int32_t to;
};

struct OrxProofOptions {
  std::vector<OrxFactRange> ranges;  // one per fact of the kind, in argument order
  std::vector<OrxPolicyProperty> properties;
  unsigned timeoutMilliseconds = 5000;  // per query
  // Per module, for building its model. Apart from the queries' limit: a model is built once, and one
  // cut short leaves every obligation unknown, so a slower machine must not lose a proof to it.
  unsigned modelMilliseconds = 60'000;
  unsigned memoryMegabytes = 512;       // Z3's, process-wide
  unsigned unrollBound = 64;

  // Every fact over its whole range, no property.
  static OrxProofOptions unrestricted(const OrxDecisionKind& kind);
  // The manifest's ranges (any fact it does not list over its whole range) and properties.
  static OrxProofOptions of(const OrxDecisionKind& kind, const OrxPolicyManifest& manifest);
};

enum class OrxProofVerdict { proved, refuted, unknown };

struct OrxObligationResult {
  std::string obligation;  // "decide never traps", "property \"role == 0 implies not isAllowed\"", ...
  OrxProofVerdict verdict;
  // Refuted: "facts {...} give {...}" and why (the trap, the refusal); unknown: why.
  std::string detail;
};

// A counterexample whose replay on the runtime disagreed with the model: what() names the facts and
// gives both answers.
class OrxProverDisagreement : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The obligations of `wasm` as a module of `kind`: no trap, each rule of the host, and each property
// of `options` unless `validityOnly`. Throws RuntimeError with the module host's text when the host
// refuses the module, and OrxProverDisagreement.
std::vector<OrxObligationResult> orxProvePolicy(std::span<const std::uint8_t> wasm, const OrxDecisionKind& kind,
                                                const OrxProofOptions& options, bool validityOnly = false);

// Why `policy build` may not approve `wasm`: each validity obligation (no trap, no record the host
// refuses) refuted, with its counterexample, or left unknown, with why; nothing when all are proved or
// when the manifest skips the proof (its "proof": {"skip": reason}). Throws as orxProvePolicy does.
std::vector<std::string> orxValidityProblems(const OrxPolicyManifest& manifest, std::span<const std::uint8_t> wasm);

struct OrxPolicyDifference {
  std::vector<std::string> fields;  // the fields that differ
  std::string facts;                // as a JSON object keyed by the fact names
  std::string oldDecision;          // as JSON with its "source", as `ravo-orx decide` prints it
  std::string newDecision;
};

struct OrxPolicyDiff {
  std::vector<OrxPolicyDifference> differences;  // one per distinct set of differing fields
  std::vector<std::string> fieldSummaries;       // "reason: differs for some facts", one per field
  std::optional<std::string> unknown;            // why equivalence could not be decided
  bool truncated = false;                        // more difference sets than were listed
};

// Whether `oldWasm` and `newWasm` give the same decision fields for every facts vector in the ranges;
// with `allFields`, also whether they trap, decide's result and the emitted values alike. Throws as
// orxProvePolicy does.
OrxPolicyDiff orxDiffPolicies(std::span<const std::uint8_t> oldWasm, std::span<const std::uint8_t> newWasm,
                              const OrxDecisionKind& kind, const OrxProofOptions& options, bool allFields);

// The named values (a boolean, a reason code a module may answer with, an action, a route) each
// decision field can take, by the model within the ranges, that no facts vector of `cases` gives, by
// the runtime, each with facts that give it: "reason needsAdmin, as for facts {...}". A value the
// solver could not decide is said as "action seek: unknown (why)". Other integer fields are not
// listed. Throws as orxProvePolicy does.
std::vector<std::string> orxUnreachedDecisions(std::span<const std::uint8_t> wasm, const OrxDecisionKind& kind,
                                               const OrxProofOptions& options,
                                               const std::vector<std::vector<std::int32_t>>& cases);

}  // namespace ravo::orx
