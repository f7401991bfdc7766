#include <ravo-orx/host_contract/ORXCanonicalTypedInput.h>

#include <ravo-orx/host_contract/ORXCanonicalForm.h>
#include <ravo-orx/host_contract/ORXSortedUnique.h>

namespace ravo::orx {

ORXCanonicalTypedInput::ORXCanonicalTypedInput(std::vector<ORXCapabilityObservation> observations)
    : observations_(orxSortedUnique(
          std::move(observations),
          [](const ORXCapabilityObservation& o) -> const ORXDigest& { return o.observationID(); },
          "observations have duplicate observation IDs")) {}

ORXCanonicalValue ORXCanonicalTypedInput::canonicalValue() const {
  return ORXCanonicalValue::object({{"observations", ORXCanonicalForm::array(observations_)}});
}

}  // namespace ravo::orx
