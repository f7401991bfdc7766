#pragma once
// The gate for actions that need nothing beyond the host's grant, which the broker has checked
// before asking: it admits everything at the host-grant level.

#include <ravo-orx/contracts/actions/RavoActionGateChecking.h>

namespace ravo::orx {

class RavoHostGrantActionGate final : public RavoActionGateChecking {
 public:
  RavoActionGateResult evaluate(const RavoApplicationActionDescriptor&, const RavoActionProposal&,
                                const RavoActionGrant&) const override {
    return RavoActionGateResult::allow(RavoActionGateLevel::hostGrant, "host.grant.checked");
  }
};

}  // namespace ravo::orx
