#pragma once
// Issues the one-use, short-lived grant with which the user interface runs a harmless action directly
// through the broker, without consulting policy.

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

#include <ravo-orx/contracts/actions/RavoActionGrant.h>
#include <ravo-orx/contracts/actions/RavoApplicationActionDescriptor.h>

namespace ravo::orx {

struct RavoDirectActionGrantFactory {
  class Error : public std::runtime_error {
   public:
    enum class Code { actionNotEligible };

    explicit Error(Code code) : std::runtime_error("action not eligible for a direct grant"), code_(code) {}

    Code code() const { return code_; }

   private:
    Code code_;
  };

  // Longest stable target a direct grant may name, in UTF-8 bytes.
  static constexpr std::size_t maximumStableTargetBytes = 256;
  // Longest lifetime of a direct grant, in seconds.
  static constexpr double maximumLifetimeSeconds = 60;

  // A grant of one use for exactly this action, its capabilities and the given target, expiring
  // `lifetimeSeconds` after `now`. Only a harmless action qualifies: host-grant gate, no or low risk,
  // no confirmation, no egress, a stable target exactly when the action needs one, generation >= 0 and
  // a lifetime in (0, 60] seconds. Otherwise throws Error (actionNotEligible) without naming the rule,
  // so the caller cannot probe which rule to work around.
  static RavoActionGrant oneShot(const RavoApplicationActionDescriptor& descriptor, std::int64_t generation,
                                 const std::optional<std::string>& stableTargetID, RavoTimePoint now,
                                 double lifetimeSeconds);
};

}  // namespace ravo::orx
