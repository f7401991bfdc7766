#pragma once
// A provider and where it stands in its lifecycle.
//
// Legal moves (staying in a state is always legal): discovered to configured; configured to
// authenticated or healthy; authenticated to healthy; healthy to eligible or back to configured;
// eligible to healthy or configured; any working state to unavailable, failed or (once configured)
// revoked; and the fallen states unavailable, revoked and failed only back to discovered or configured.

#include <optional>
#include <utility>

#include <ravo-orx/contracts/services/RavoModelProviderDescriptor.h>
#include <ravo-orx/contracts/services/RavoModelProviderLifecycleError.h>
#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

class RavoModelProviderRecord {
 public:
  RavoModelProviderRecord(RavoModelProviderDescriptor descriptor, RavoModelProviderState state,
                          bool authenticationConfirmed)
      : descriptor_(std::move(descriptor)), state_(state), authenticationConfirmed_(authenticationConfirmed) {}

  static bool isLegalTransition(RavoModelProviderState from, RavoModelProviderState to);

  const RavoModelProviderDescriptor& descriptor() const { return descriptor_; }
  RavoModelProviderState state() const { return state_; }
  // The person has confirmed the provider's credentials.
  bool authenticationConfirmed() const { return authenticationConfirmed_; }
  const RavoModelProviderID& id() const { return descriptor_.id(); }

  // This record moved to `to`, recording `authenticationConfirmed` when given (false withdraws an earlier
  // confirmation). Throws RavoModelProviderLifecycleError: invalidTransition for an illegal move,
  // missingAuthentication for eligibility without confirmed credentials where they are required.
  [[nodiscard]] RavoModelProviderRecord transition(RavoModelProviderState to,
                                                   std::optional<bool> authenticationConfirmed = std::nullopt) const;

  // Returns when the provider may serve a request; `localOnly` requests must not leave the device.
  // Throws RavoModelProviderLifecycleError: unavailable for a fallen provider, localOnlyViolation or
  // missingAuthentication for an eligible one, and invalidTransition(state, eligible) for a provider not
  // yet made eligible.
  void validateEligibility(bool localOnly) const;

  RavoJSON toJSON() const;
  static RavoModelProviderRecord fromJSON(const RavoJSON& json);

  friend bool operator==(const RavoModelProviderRecord&, const RavoModelProviderRecord&) = default;

 private:
  RavoModelProviderDescriptor descriptor_;
  RavoModelProviderState state_;
  bool authenticationConfirmed_;
};

}  // namespace ravo::orx
