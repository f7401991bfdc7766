#pragma once
// Identifies an action, e.g. "ravo.player.pause", and the application that offers it, e.g. "ravo.player".

#include <ravo-orx/contracts/support/RavoTextIdentifier.h>

namespace ravo::orx {

class RavoApplicationActionID : public RavoTextIdentifier<RavoApplicationActionID> {
 public:
  using RavoTextIdentifier::RavoTextIdentifier;
};

class RavoApplicationID : public RavoTextIdentifier<RavoApplicationID> {
 public:
  using RavoTextIdentifier::RavoTextIdentifier;
};

}  // namespace ravo::orx
