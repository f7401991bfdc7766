#pragma once
// Identifies a home provider, e.g. "ravo.home.apple-home".

#include <ravo-orx/contracts/support/RavoTextIdentifier.h>

namespace ravo::orx {

class RavoHomeProviderID : public RavoTextIdentifier<RavoHomeProviderID> {
 public:
  using RavoTextIdentifier::RavoTextIdentifier;

  static RavoHomeProviderID appleHome() { return RavoHomeProviderID("ravo.home.apple-home"); }
  static RavoHomeProviderID tuyaCloud() { return RavoHomeProviderID("ravo.home.tuya-cloud"); }
};

}  // namespace ravo::orx
