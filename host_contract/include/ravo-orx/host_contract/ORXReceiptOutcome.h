#pragma once
// What happened to an effect ("orx.host::ReceiptOutcome").

#include <cstdint>

#include <ravo-orx/host_contract/ORXHostEnum.h>

namespace ravo::orx {

enum class ORXReceiptOutcome : std::int32_t { executed = 0, refused = 1, cancelled = 2, failed = 3, notAttempted = 4 };

template <>
struct ORXHostEnumTraits<ORXReceiptOutcome> {
  static constexpr std::string_view typeID = "orx.host::ReceiptOutcome";
  static constexpr bool isErrorEnum = false;
  static constexpr std::int32_t caseCount = 5;
};

}  // namespace ravo::orx
