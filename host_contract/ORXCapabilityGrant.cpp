#include <ravo-orx/host_contract/ORXCapabilityGrant.h>

#include <ravo-orx/core/ORXValidation.h>
#include <ravo-orx/host_contract/ORXCanonicalForm.h>
#include <ravo-orx/host_contract/ORXDecisionIntent.h>

namespace ravo::orx {

ORXCapabilityGrant::ORXCapabilityGrant(std::vector<ORXBudget> budgets, std::string capability,
                                       ORXDigest constraintsDigest, ORXDeadline deadline,
                                       ORXGenerationFence generation, ORXDigest grantID, std::string issuerClass,
                                       ORXDigest issuerID, ORXGrantScope scope)
    : budgets_(ORXDecisionIntent::uniqueBudgets(std::move(budgets))),
      capability_(ORXValidation::asciiIdentifier(capability, true, "capability")),
      constraintsDigest_(std::move(constraintsDigest)),
      deadline_(std::move(deadline)),
      generation_(std::move(generation)),
      grantID_(std::move(grantID)),
      issuerClass_(ORXValidation::asciiIdentifier(issuerClass, true, "issuer class")),
      issuerID_(std::move(issuerID)),
      scope_(std::move(scope)) {}

ORXCanonicalValue ORXCapabilityGrant::canonicalValue() const {
  return ORXCanonicalValue::object({
      {"budgets", ORXCanonicalForm::array(budgets_)},
      {"capability", ORXCanonicalForm::text(capability_)},
      {"constraints_digest", ORXCanonicalForm::digest(constraintsDigest_)},
      {"deadline", deadline_.canonicalValue()},
      {"generation", generation_.canonicalValue()},
      {"grant_id", ORXCanonicalForm::digest(grantID_)},
      {"issuer_class", ORXCanonicalForm::text(issuerClass_)},
      {"issuer_id", ORXCanonicalForm::digest(issuerID_)},
      {"scope", scope_.canonicalValue()},
  });
}

}  // namespace ravo::orx
