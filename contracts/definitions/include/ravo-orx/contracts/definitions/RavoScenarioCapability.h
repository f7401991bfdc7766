#pragma once
// Names a capability that a node type or an action needs, e.g. "ravo.media.transport". Any text is
// accepted; the named constants are the ones the built-in nodes use.

#include <ravo-orx/contracts/support/RavoTextIdentifier.h>

namespace ravo::orx {

class RavoScenarioCapability : public RavoTextIdentifier<RavoScenarioCapability> {
 public:
  using RavoTextIdentifier::RavoTextIdentifier;

  const std::string& id() const { return rawValue(); }

  static const RavoScenarioCapability& mediaTransport();
  static const RavoScenarioCapability& audioVolume();
  static const RavoScenarioCapability& homeControl();
  static const RavoScenarioCapability& notification();
  static const RavoScenarioCapability& mcpCall();
};

}  // namespace ravo::orx
