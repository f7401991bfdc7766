#include <ravo-orx/contracts/scenarios/RavoScenarioValidationIssue.h>

#include <array>
#include <string_view>

namespace ravo::orx {

namespace {

constexpr std::array<std::string_view, 14> kKindNames = {
    "graphTooLarge",         "duplicateNodeID",       "unknownOrDisabledNode", "nodeVersionMismatch",
    "missingCapability",     "invalidBounds",         "irreversibleWithoutConfirmation",
    "missingActionBinding",  "invalidActionArguments", "unknownEdgeEndpoint",  "missingOutputKey",
    "missingInputKey",       "cycleDetected",          "recurringScheduleNeedsActivation"};

struct PayloadText {
  std::string operator()(std::monostate) const { return {}; }
  std::string operator()(const RavoScenarioValidationIssue::Size& size) const {
    return "actual: " + std::to_string(size.actual) + ", maximum: " + std::to_string(size.maximum);
  }
  std::string operator()(const RavoUUID& id) const { return id.uuidString(); }
  std::string operator()(const RavoScenarioNodeTypeID& nodeType) const { return nodeType.rawValue(); }
  std::string operator()(const RavoScenarioCapability& capability) const { return capability.rawValue(); }
};

}  // namespace

std::string RavoScenarioValidationIssue::description() const {
  std::string text(kKindNames[static_cast<size_t>(kind_)]);
  std::string payload = std::visit(PayloadText{}, payload_);
  return payload.empty() ? text : text + "(" + payload + ")";
}

}  // namespace ravo::orx
