#pragma once
// The node types the host can execute: one per built-in application action, then the fourteen native
// triggers, conditions, actions and control steps. Built once, on first use, and shared.

#include <vector>

#include <ravo-orx/contracts/definitions/RavoScenarioNodeDefinition.h>

namespace ravo::orx {

struct RavoScenarioBuiltInCatalog {
  static const std::vector<RavoScenarioNodeDefinition>& definitions();
};

}  // namespace ravo::orx
