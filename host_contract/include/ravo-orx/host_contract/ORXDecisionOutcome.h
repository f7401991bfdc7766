#pragma once
// The policy's answer: allow, deny or limit ("orx.host::DecisionOutcome").

#include <cstdint>

#include <ravo-orx/host_contract/ORXHostEnum.h>

namespace ravo::orx {

enum class ORXDecisionOutcome : std::int32_t { allow = 0, deny = 1, limit = 2 };

template <>
struct ORXHostEnumTraits<ORXDecisionOutcome> {
  static constexpr std::string_view typeID = "orx.host::DecisionOutcome";
  static constexpr bool isErrorEnum = false;
  static constexpr std::int32_t caseCount = 3;
};

}  // namespace ravo::orx
