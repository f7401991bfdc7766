#pragma once
// Names a scenario node type, e.g. "ravo.trigger.manual". A scenario action node's type is the id of
// its action.

#include "contracts/support/RavoTextIdentifier.h"

class RavoScenarioNodeTypeID : public RavoTextIdentifier<RavoScenarioNodeTypeID> {
 public:
  using RavoTextIdentifier::RavoTextIdentifier;
};
