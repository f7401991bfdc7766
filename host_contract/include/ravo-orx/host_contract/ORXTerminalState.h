#pragma once
// How an effect ended ("orx.host::TerminalState").

#include <cstdint>

#include <ravo-orx/host_contract/ORXHostEnum.h>

namespace ravo::orx {

enum class ORXTerminalState : std::int32_t { completed = 0, cancelled = 1, failed = 2 };

template <>
struct ORXHostEnumTraits<ORXTerminalState> {
  static constexpr std::string_view typeID = "orx.host::TerminalState";
  static constexpr bool isErrorEnum = false;
  static constexpr std::int32_t caseCount = 3;
};

}  // namespace ravo::orx
