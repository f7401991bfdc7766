#pragma once
// The declaration of one action: identity, display texts, the phrases that name it, its parameters,
// the capabilities and effects it involves, its policy labels and the adapter that carries it out.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <ravo-orx/contracts/actions/RavoActionLabels.h>
#include <ravo-orx/contracts/actions/RavoActionParameterSchema.h>
#include <ravo-orx/contracts/actions/RavoApplicationActionID.h>
#include <ravo-orx/contracts/definitions/RavoScenarioCapability.h>
#include <ravo-orx/contracts/definitions/RavoScenarioLabels.h>

namespace ravo::orx {

class RavoApplicationActionDescriptor {
 public:
  struct Fields {
    RavoApplicationActionID id{};
    RavoApplicationID applicationID{};
    std::string title{};
    std::string summary{};
    std::string category{};
    std::string systemImage{};
    std::vector<std::string> searchTerms{};
    std::vector<RavoActionParameterSchema> parameters{};
    std::vector<RavoScenarioCapability> requestedCapabilities{};
    std::vector<std::string> effectTypes{};
    RavoScenarioRiskClass risk = RavoScenarioRiskClass::none;
    RavoScenarioConfirmationPolicy confirmation = RavoScenarioConfirmationPolicy::none;
    RavoScenarioDataEgressPolicy egressPolicy = RavoScenarioDataEgressPolicy::none;
    RavoActionGateRequirement minimumGate = RavoActionGateRequirement::hostGrant;
    bool requiresStableTarget = false;
    std::string targetClass{};
    std::string adapterID{};
    std::string adapterVersion{};
    std::int32_t actionCode = 0;
    std::vector<RavoActionEntryPoint> entryPoints{};

    friend bool operator==(const Fields&, const Fields&) = default;
  };

  // Normalises the collections: search terms are folded, de-duplicated and sorted; parameters sorted
  // by key; capabilities and effect types sorted (duplicates kept); entry points de-duplicated and
  // sorted by their text.
  explicit RavoApplicationActionDescriptor(Fields fields);

  const RavoApplicationActionID& id() const { return fields_.id; }
  const RavoApplicationID& applicationID() const { return fields_.applicationID; }
  const std::string& title() const { return fields_.title; }
  const std::string& summary() const { return fields_.summary; }
  const std::string& category() const { return fields_.category; }
  const std::string& systemImage() const { return fields_.systemImage; }
  const std::vector<std::string>& searchTerms() const { return fields_.searchTerms; }
  const std::vector<RavoActionParameterSchema>& parameters() const { return fields_.parameters; }
  const std::vector<RavoScenarioCapability>& requestedCapabilities() const { return fields_.requestedCapabilities; }
  const std::vector<std::string>& effectTypes() const { return fields_.effectTypes; }
  RavoScenarioRiskClass risk() const { return fields_.risk; }
  RavoScenarioConfirmationPolicy confirmation() const { return fields_.confirmation; }
  RavoScenarioDataEgressPolicy egressPolicy() const { return fields_.egressPolicy; }
  RavoActionGateRequirement minimumGate() const { return fields_.minimumGate; }
  bool requiresStableTarget() const { return fields_.requiresStableTarget; }
  const std::string& targetClass() const { return fields_.targetClass; }
  const std::string& adapterID() const { return fields_.adapterID; }
  const std::string& adapterVersion() const { return fields_.adapterVersion; }
  std::int32_t actionCode() const { return fields_.actionCode; }
  const std::vector<RavoActionEntryPoint>& entryPoints() const { return fields_.entryPoints; }

  // The default value of every parameter that has one, by key.
  RavoActionArguments defaultArguments() const;

  // Issues, sorted: "unknown argument: k" for undeclared keys, "invalid argument: k" for values the
  // parameter refuses, "missing argument: k" for absent required ones. Empty means valid.
  std::vector<std::string> validate(const RavoActionArguments& arguments) const;

  // Types a model's text arguments by their parameters; nothing when a key is undeclared, a text
  // does not parse or the typed arguments do not validate.
  std::optional<RavoActionArguments> parseModelArguments(const std::map<std::string, std::string>& raw) const;

  RavoJSON toJSON() const;
  // Keeps every list in the order written.
  static RavoApplicationActionDescriptor fromJSON(const RavoJSON& json);

  friend bool operator==(const RavoApplicationActionDescriptor&, const RavoApplicationActionDescriptor&) = default;

 private:
  struct AsStored {};
  RavoApplicationActionDescriptor(Fields fields, AsStored) : fields_(std::move(fields)) {}

  const RavoActionParameterSchema* parameter(const std::string& key) const;

  Fields fields_;
};

}  // namespace ravo::orx
