#pragma once
// The level at which a gate admitted a proposal. Policy inputs carry it as a number, so its JSON form
// is the integer raw value rather than a label text.

#include <cstdint>

#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

enum class RavoActionGateLevel : std::int32_t { hostGrant = 0, orxVerified = 1 };

template <>
struct RavoJSONCodec<RavoActionGateLevel> {
  static RavoActionGateLevel decode(const RavoJSON& json, std::string_view context) {
    auto raw = RavoJSONCodec<std::int32_t>::decode(json, context);
    if (raw != 0 && raw != 1) ravo_json_detail::fail(context, "unknown gate level " + std::to_string(raw));
    return static_cast<RavoActionGateLevel>(raw);
  }
  static RavoJSON encode(RavoActionGateLevel level) { return static_cast<std::int32_t>(level); }
};

}  // namespace ravo::orx
