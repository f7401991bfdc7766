#include <ravo-orx/host_contract/ORXPolicyArtifact.h>

#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXValidation.h>
#include <ravo-orx/host_contract/ORXCanonicalForm.h>

namespace ravo::orx {

ORXPolicyArtifact::ORXPolicyArtifact(std::string policyIdentity, ORXDigest policyInterfaceDigest,
                                     ORXDigest policySourceDigest, std::string policyVersion)
    : policyIdentity_(ORXValidation::asciiIdentifier(policyIdentity, true, "policy identity")),
      policyInterfaceDigest_(std::move(policyInterfaceDigest)),
      policySourceDigest_(std::move(policySourceDigest)),
      policyVersion_(std::move(policyVersion)) {
  if (policyVersion_.empty()) throw ORXError::invalid("orx.v051.policy_invalid", "policy version is required");
  // The version is free text but is hashed as a canonical string, so it must be UTF-8 from the start.
  if (!ORXValidation::isValidUTF8(policyVersion_)) {
    throw ORXError::invalid("orx.v051.policy_invalid", "policy version must be valid UTF-8");
  }
}

ORXCanonicalValue ORXPolicyArtifact::canonicalValue() const {
  return ORXCanonicalValue::object({
      {"policy_identity", ORXCanonicalForm::text(policyIdentity_)},
      {"policy_interface_digest", ORXCanonicalForm::digest(policyInterfaceDigest_)},
      {"policy_source_digest", ORXCanonicalForm::digest(policySourceDigest_)},
      {"policy_version", ORXCanonicalForm::text(policyVersion_)},
  });
}

}  // namespace ravo::orx
