#pragma once
// One problem that validation found in a scenario draft. Cases are listed in the order validation
// looks for them; each carries what a drafting model or a person needs to correct the draft.

#include <cstdint>
#include <string>
#include <variant>

#include <ravo-orx/contracts/definitions/RavoScenarioCapability.h>
#include <ravo-orx/contracts/definitions/RavoScenarioNodeTypeID.h>
#include <ravo-orx/contracts/support/RavoUUID.h>

namespace ravo::orx {

class RavoScenarioValidationIssue {
 public:
  enum class Kind {
    graphTooLarge,                    // payload: size
    duplicateNodeID,                  // payload: nodeID
    unknownOrDisabledNode,            // payload: nodeType
    nodeVersionMismatch,              // payload: nodeType
    missingCapability,                // payload: capability
    invalidBounds,                    // payload: nodeType
    irreversibleWithoutConfirmation,  // payload: nodeType
    missingActionBinding,             // payload: nodeType
    invalidActionArguments,           // payload: nodeType
    unknownEdgeEndpoint,
    missingOutputKey,
    missingInputKey,
    cycleDetected,
    recurringScheduleNeedsActivation,
  };

  struct Size {
    std::int64_t actual;
    std::int64_t maximum;
    friend bool operator==(const Size&, const Size&) = default;
  };

  static RavoScenarioValidationIssue graphTooLarge(std::int64_t actual, std::int64_t maximum) {
    return {Kind::graphTooLarge, Size{actual, maximum}};
  }
  static RavoScenarioValidationIssue duplicateNodeID(const RavoUUID& id) { return {Kind::duplicateNodeID, id}; }
  static RavoScenarioValidationIssue missingCapability(const RavoScenarioCapability& capability) {
    return {Kind::missingCapability, capability};
  }
  static RavoScenarioValidationIssue unknownOrDisabledNode(const RavoScenarioNodeTypeID& type) {
    return {Kind::unknownOrDisabledNode, type};
  }
  static RavoScenarioValidationIssue nodeVersionMismatch(const RavoScenarioNodeTypeID& type) {
    return {Kind::nodeVersionMismatch, type};
  }
  static RavoScenarioValidationIssue invalidBounds(const RavoScenarioNodeTypeID& type) {
    return {Kind::invalidBounds, type};
  }
  static RavoScenarioValidationIssue irreversibleWithoutConfirmation(const RavoScenarioNodeTypeID& type) {
    return {Kind::irreversibleWithoutConfirmation, type};
  }
  static RavoScenarioValidationIssue missingActionBinding(const RavoScenarioNodeTypeID& type) {
    return {Kind::missingActionBinding, type};
  }
  static RavoScenarioValidationIssue invalidActionArguments(const RavoScenarioNodeTypeID& type) {
    return {Kind::invalidActionArguments, type};
  }
  static RavoScenarioValidationIssue unknownEdgeEndpoint() { return {Kind::unknownEdgeEndpoint, std::monostate{}}; }
  static RavoScenarioValidationIssue missingOutputKey() { return {Kind::missingOutputKey, std::monostate{}}; }
  static RavoScenarioValidationIssue missingInputKey() { return {Kind::missingInputKey, std::monostate{}}; }
  static RavoScenarioValidationIssue cycleDetected() { return {Kind::cycleDetected, std::monostate{}}; }
  static RavoScenarioValidationIssue recurringScheduleNeedsActivation() {
    return {Kind::recurringScheduleNeedsActivation, std::monostate{}};
  }

  Kind kind() const { return kind_; }
  // The payload of this case, or null.
  const Size* size() const { return std::get_if<Size>(&payload_); }
  const RavoUUID* nodeID() const { return std::get_if<RavoUUID>(&payload_); }
  const RavoScenarioNodeTypeID* nodeType() const { return std::get_if<RavoScenarioNodeTypeID>(&payload_); }
  const RavoScenarioCapability* capability() const { return std::get_if<RavoScenarioCapability>(&payload_); }

  // "graphTooLarge(actual: 257, maximum: 256)", "missingCapability(ravo.audio.volume)", "cycleDetected".
  std::string description() const;

  friend bool operator==(const RavoScenarioValidationIssue&, const RavoScenarioValidationIssue&) = default;

 private:
  using Payload = std::variant<std::monostate, Size, RavoUUID, RavoScenarioNodeTypeID, RavoScenarioCapability>;
  RavoScenarioValidationIssue(Kind kind, Payload payload) : kind_(kind), payload_(std::move(payload)) {}

  Kind kind_;
  Payload payload_;
};

}  // namespace ravo::orx
