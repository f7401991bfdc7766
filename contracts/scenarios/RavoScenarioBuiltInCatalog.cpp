#include <ravo-orx/contracts/scenarios/RavoScenarioBuiltInCatalog.h>

#include <ravo-orx/contracts/actions/RavoApplicationActionCatalog.h>

namespace ravo::orx {

namespace {

using Kind = RavoScenarioNodeKind;
using Risk = RavoScenarioRiskClass;
using Confirmation = RavoScenarioConfirmationPolicy;

struct BuiltIn {
  const char* id;
  Kind kind;
  std::vector<RavoScenarioCapability> capabilities;
  const char* adapter;  // "ravo.native.trigger" runs as adapter "adapter.ravo.native.trigger.v1"
  Risk risk = Risk::none;
  Confirmation confirmation = Confirmation::none;
  RavoScenarioDataEgressPolicy egress = RavoScenarioDataEgressPolicy::none;
  bool enabled = true;
};

RavoScenarioNodeDefinition definition(BuiltIn node) {
  // Triggers only produce an event; action steps only consume one; conditions and control steps pass it on.
  std::vector<std::string> event = {"event"};
  std::string adapter(node.adapter);
  return RavoScenarioNodeDefinition({
      .id = RavoScenarioNodeTypeID(node.id),
      .version = "1.0.0",
      .kind = node.kind,
      .inputKeys = node.kind == Kind::trigger ? std::vector<std::string>{} : event,
      .outputKeys = node.kind == Kind::action ? std::vector<std::string>{} : event,
      .requestedCapabilities = std::move(node.capabilities),
      .risk = node.risk,
      .idempotency = RavoScenarioIdempotency::idempotent,
      .reversibility = RavoScenarioReversibility::reversible,
      .confirmation = node.confirmation,
      .bounds = RavoScenarioExecutionBounds::manualAction(),
      .offlinePolicy = RavoScenarioOfflinePolicy::failClosed,
      .egressPolicy = node.egress,
      .adapterID = adapter,
      .adapterVersion = "1.0.0",
      .schemaDigest = "schema." + std::string(node.id) + ".v1",
      .implementationDigest = "adapter." + adapter + ".v1",
      .isEnabled = node.enabled,
  });
}

std::vector<RavoScenarioNodeDefinition> build() {
  using Capability = RavoScenarioCapability;
  std::vector<RavoScenarioNodeDefinition> all = RavoApplicationActionCatalog::scenarioNodeDefinitions();
  const BuiltIn native[] = {
      {"ravo.trigger.manual", Kind::trigger, {}, "ravo.native.trigger"},
      {"ravo.trigger.voice", Kind::trigger, {}, "ravo.native.voice"},
      {"ravo.trigger.schedule", Kind::trigger, {}, "ravo.native.schedule"},
      {"ravo.trigger.playback", Kind::trigger, {}, "ravo.native.playback"},
      {"ravo.trigger.home-state", Kind::trigger, {}, "ravo.native.home"},
      {"ravo.condition.time-window", Kind::condition, {}, "ravo.native.clock"},
      {"ravo.condition.provider-availability", Kind::condition, {}, "ravo.native.provider"},
      {"ravo.action.playback", Kind::action, {Capability::audioVolume(), Capability::mediaTransport()},
       "ravo.native.playback", Risk::low, Confirmation::perExecution},
      {"ravo.action.home", Kind::action, {Capability::homeControl()}, "ravo.native.home", Risk::medium,
       Confirmation::perTarget},
      {"ravo.action.notification", Kind::action, {Capability::notification()}, "ravo.native.notification", Risk::low,
       Confirmation::perExecution},
      {"ravo.control.wait", Kind::control, {}, "ravo.native.clock"},
      {"ravo.control.sequence", Kind::control, {}, "ravo.native.control"},
      {"ravo.control.confirm", Kind::control, {}, "ravo.native.confirmation"},
      // Listed so that hosts see it, but disabled until calls to external tool servers are approved.
      {"ravo.action.mcp-call", Kind::action, {Capability::mcpCall()}, "ravo.mcp.pending", Risk::high,
       Confirmation::explicitReview, RavoScenarioDataEgressPolicy::approvedProviderOnly, false},
  };
  for (const auto& node : native) all.push_back(definition(node));
  return all;
}

}  // namespace

const std::vector<RavoScenarioNodeDefinition>& RavoScenarioBuiltInCatalog::definitions() {
  static const std::vector<RavoScenarioNodeDefinition> all = build();
  return all;
}

}  // namespace ravo::orx
