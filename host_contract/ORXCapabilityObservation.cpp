#include <ravo-orx/host_contract/ORXCapabilityObservation.h>

#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXValidation.h>
#include <ravo-orx/host_contract/ORXCanonicalForm.h>

namespace ravo::orx {

ORXCapabilityObservation::ORXCapabilityObservation(ORXGenerationFence generation, ORXDigest logicalObservationID,
                                                   ORXDigest observationID, std::string observationType,
                                                   ORXTypedValue observedValue, ORXEnumValue precision,
                                                   ORXDigest provenance, ORXEnumValue sourceClass)
    : generation_(std::move(generation)),
      logicalObservationID_(std::move(logicalObservationID)),
      observationID_(std::move(observationID)),
      observedValue_(std::move(observedValue)),
      precision_(std::move(precision)),
      provenance_(std::move(provenance)),
      sourceClass_(std::move(sourceClass)) {
  if (precision_.typeID() != "orx.host::ObservationPrecision" || sourceClass_.typeID() != "orx.host::SourceClass") {
    throw ORXError::invalid("orx.v051.typed_value_invalid", "observation enums have invalid types");
  }
  observationType_ = ORXValidation::asciiIdentifier(observationType, true, "observation type");
}

ORXCanonicalValue ORXCapabilityObservation::canonicalValue() const {
  return ORXCanonicalValue::object({
      {"generation", generation_.canonicalValue()},
      {"logical_observation_id", ORXCanonicalForm::digest(logicalObservationID_)},
      {"observation_id", ORXCanonicalForm::digest(observationID_)},
      {"observation_type", ORXCanonicalForm::text(observationType_)},
      {"observed_value", observedValue_.canonicalValue()},
      {"precision", precision_.canonicalValue()},
      {"provenance", ORXCanonicalForm::digest(provenance_)},
      {"source_class", sourceClass_.canonicalValue()},
  });
}

}  // namespace ravo::orx
