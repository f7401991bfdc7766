#pragma once
// Identifies a home provider, e.g. "ravo.home.apple-home".

#include "contracts/support/RavoTextIdentifier.h"

class RavoHomeProviderID : public RavoTextIdentifier<RavoHomeProviderID> {
 public:
  using RavoTextIdentifier::RavoTextIdentifier;

  static RavoHomeProviderID appleHome() { return RavoHomeProviderID("ravo.home.apple-home"); }
  static RavoHomeProviderID tuyaCloud() { return RavoHomeProviderID("ravo.home.tuya-cloud"); }
};
