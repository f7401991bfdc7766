#pragma once
// The built-in actions: one manifest, the player's, with five playback and five navigation actions.
// Everything is built once, on first use, and shared.

#include <vector>

#include <ravo-orx/contracts/actions/RavoApplicationActionManifest.h>
#include <ravo-orx/contracts/actions/RavoPlayerActionIDs.h>
#include <ravo-orx/contracts/definitions/RavoScenarioNodeTypeID.h>

namespace ravo::orx {

struct RavoApplicationActionCatalog {
  static const RavoApplicationActionManifest& ravoPlayer();
  static const std::vector<RavoApplicationActionManifest>& builtInManifests();
  // All built-in actions, in manifest order and, within a manifest, in id order.
  static const std::vector<RavoApplicationActionDescriptor>& descriptors();
  // One node definition per built-in action, in the order of `descriptors`.
  static const std::vector<RavoScenarioNodeDefinition>& scenarioNodeDefinitions();

  // The built-in action with this id, or null.
  static const RavoApplicationActionDescriptor* descriptor(const RavoApplicationActionID& id);
  // A scenario action node's type is its action's id.
  static const RavoApplicationActionDescriptor* descriptor(const RavoScenarioNodeTypeID& nodeType);
};

}  // namespace ravo::orx
