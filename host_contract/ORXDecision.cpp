#include <ravo-orx/host_contract/ORXDecision.h>

#include <ravo-orx/core/ORXError.h>

namespace ravo::orx {

ORXDecision::ORXDecision(ORXDecisionOutcome outcome, std::optional<ORXFailureReason> reason,
                         ORXDigest evidenceDigest, ORXGenerationFence generation)
    : outcome_(outcome), reason_(reason), evidenceDigest_(std::move(evidenceDigest)), generation_(std::move(generation)) {
  if ((outcome_ == ORXDecisionOutcome::deny) != reason_.has_value()) {
    throw ORXError::invalid("orx.v051.decision_evidence_invalid", "deny requires a reason and allow/limit require none");
  }
}

}  // namespace ravo::orx
