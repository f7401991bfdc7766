#pragma once
// Why a decision denied or an effect failed ("orx.host::FailureReason", an error enum), and the optional
// form records carry.

#include <cstdint>

#include <ravo-orx/host_contract/ORXHostEnum.h>
#include <ravo-orx/host_contract/ORXHostOption.h>

namespace ravo::orx {

enum class ORXFailureReason : std::int32_t {
  capabilityMissing = 0,
  grantMissing = 1,
  grantScopeMismatch = 2,
  staleGeneration = 3,
  deadlineExceeded = 4,
  budgetExceeded = 5,
  invalidIntent = 6,
  unknownCapability = 7,
  unknownEffect = 8,
  authorityWidening = 9,
  replayRejected = 10,
  duplicateRejected = 11,
  invalidReceipt = 12,
  hostFailure = 13,
};

template <>
struct ORXHostEnumTraits<ORXFailureReason> {
  static constexpr std::string_view typeID = "orx.host::FailureReason";
  static constexpr bool isErrorEnum = true;
  static constexpr std::int32_t caseCount = 14;
};

template <>
struct ORXHostOptionTraits<ORXFailureReason> {
  static constexpr std::string_view typeText = "option<orx.host::FailureReason>";
  static ORXCanonicalValue encode(ORXFailureReason reason) { return orxHostEnumValue(reason).canonicalValue(); }
};

using ORXOptionalFailureReason = ORXHostOption<ORXFailureReason>;

}  // namespace ravo::orx
