#include <ravo-orx/host_contract/ORXGrantSet.h>

#include <ravo-orx/host_contract/ORXCanonicalForm.h>
#include <ravo-orx/host_contract/ORXSortedUnique.h>

namespace ravo::orx {

ORXGrantSet::ORXGrantSet(std::vector<ORXCapabilityGrant> grants)
    : grants_(orxSortedUnique(
          std::move(grants), [](const ORXCapabilityGrant& g) -> const ORXDigest& { return g.grantID(); },
          "grants have duplicate grant IDs")) {}

ORXCanonicalValue ORXGrantSet::canonicalValue() const {
  return ORXCanonicalValue::object({{"grants", ORXCanonicalForm::array(grants_)}});
}

}  // namespace ravo::orx
