#pragma once
// Who proposed an action, in the coarse terms policy sees: the deterministic router (voice and other
// rule-based routes, and models that the router speaks for), the on-device assistant model, or a
// person at the user interface. The raw values are shared with policy modules.

#include <cstdint>
#include <optional>

namespace ravo::orx {

enum class RavoORXProposalSource : std::int32_t {
  deterministicRouter = 0,
  appleIntelligence = 1,
  userInterface = 2,
};

// Nothing outside 0-2.
constexpr std::optional<RavoORXProposalSource> ravoORXProposalSource(std::int32_t rawValue) {
  if (rawValue < 0 || rawValue > 2) return std::nullopt;
  return static_cast<RavoORXProposalSource>(rawValue);
}

}  // namespace ravo::orx
