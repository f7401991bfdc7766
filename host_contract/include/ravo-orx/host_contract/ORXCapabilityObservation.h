#pragma once
// One observation of the world a decision may depend on: what was observed, its typed value, how
// precise it is, where it came from, and the generation it belongs to.

#include <string>

#include <ravo-orx/core/ORXCanonicalValue.h>
#include <ravo-orx/core/ORXDigest.h>
#include <ravo-orx/core/ORXEnumValue.h>
#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXTypedValue.h>
#include <ravo-orx/host_contract/ORXGenerationFence.h>

namespace ravo::orx {

class ORXCapabilityObservation {
 public:
  // Throws unless `precision` is an "orx.host::ObservationPrecision" and `sourceClass` an
  // "orx.host::SourceClass" value, and the observation type is a qualified identifier.
  ORXCapabilityObservation(ORXGenerationFence generation, ORXDigest logicalObservationID, ORXDigest observationID,
                           std::string observationType, ORXTypedValue observedValue, ORXEnumValue precision,
                           ORXDigest provenance, ORXEnumValue sourceClass);

  const ORXGenerationFence& generation() const { return generation_; }
  const ORXDigest& logicalObservationID() const { return logicalObservationID_; }
  const ORXDigest& observationID() const { return observationID_; }
  const std::string& observationType() const { return observationType_; }
  const ORXTypedValue& observedValue() const { return observedValue_; }
  const ORXEnumValue& precision() const { return precision_; }
  const ORXDigest& provenance() const { return provenance_; }
  const ORXEnumValue& sourceClass() const { return sourceClass_; }
  // Throws what the observed value's encoding throws.
  ORXCanonicalValue canonicalValue() const;

  friend bool operator==(const ORXCapabilityObservation&, const ORXCapabilityObservation&) = default;

 private:
  ORXGenerationFence generation_;
  ORXDigest logicalObservationID_;
  ORXDigest observationID_;
  std::string observationType_;
  ORXTypedValue observedValue_;
  ORXEnumValue precision_;
  ORXDigest provenance_;
  ORXEnumValue sourceClass_;
};

}  // namespace ravo::orx
