#pragma once
// The default safeguard: high-risk actions need an independent controller and are refused; low-risk
// actions without a confirmation policy run; everything else needs a matching, unexpired confirmation.

#include <ravo-orx/contracts/actions/RavoActionSafeguardChecking.h>
#include <ravo-orx/contracts/actions/RavoWallClock.h>

namespace ravo::orx {

class RavoDefaultActionSafeguard final : public RavoActionSafeguardChecking {
 public:
  // A confirmation's expiry is judged by this clock rather than by the caller's time, so a stale
  // confirmation cannot be replayed by passing an old time.
  explicit RavoDefaultActionSafeguard(RavoWallClock clock = ravoWallClockNow) : clock_(std::move(clock)) {}

  RavoActionSafeguardResult evaluate(const RavoApplicationActionDescriptor& descriptor,
                                     const RavoActionProposal& proposal,
                                     const std::optional<RavoActionConfirmation>& confirmation) const override;

 private:
  RavoWallClock clock_;
};

}  // namespace ravo::orx
