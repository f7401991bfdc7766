#pragma once
// Names a scenario node type, e.g. "ravo.trigger.manual". A scenario action node's type is the id of
// its action.

#include <ravo-orx/contracts/support/RavoTextIdentifier.h>

namespace ravo::orx {

class RavoScenarioNodeTypeID : public RavoTextIdentifier<RavoScenarioNodeTypeID> {
 public:
  using RavoTextIdentifier::RavoTextIdentifier;
};

}  // namespace ravo::orx
