#include <ravo-orx/contracts/actions/RavoApplicationActionDescriptor.h>

#include <algorithm>

#include <ravo-orx/contracts/support/RavoTextNormalization.h>

namespace ravo::orx {

namespace {

template <class T>
void sortUnique(std::vector<T>& values, auto less) {
  std::sort(values.begin(), values.end(), less);
  values.erase(std::unique(values.begin(), values.end()), values.end());
}

}  // namespace

RavoApplicationActionDescriptor::RavoApplicationActionDescriptor(Fields fields) : fields_(std::move(fields)) {
  for (auto& term : fields_.searchTerms) term = ravoNormalizedText(term);
  sortUnique(fields_.searchTerms, std::less<>());
  std::stable_sort(fields_.parameters.begin(), fields_.parameters.end(),
                   [](const auto& a, const auto& b) { return a.key() < b.key(); });
  std::sort(fields_.requestedCapabilities.begin(), fields_.requestedCapabilities.end());
  std::sort(fields_.effectTypes.begin(), fields_.effectTypes.end());
  sortUnique(fields_.entryPoints, [](RavoActionEntryPoint a, RavoActionEntryPoint b) {
    return orxRawValue(a) < orxRawValue(b);
  });
}

const RavoActionParameterSchema* RavoApplicationActionDescriptor::parameter(const std::string& key) const {
  for (const auto& schema : fields_.parameters) {
    if (schema.key() == key) return &schema;
  }
  return nullptr;
}

RavoActionArguments RavoApplicationActionDescriptor::defaultArguments() const {
  RavoActionArguments defaults;
  for (const auto& schema : fields_.parameters) {
    if (schema.defaultValue()) defaults.emplace(schema.key(), *schema.defaultValue());
  }
  return defaults;
}

std::vector<std::string> RavoApplicationActionDescriptor::validate(const RavoActionArguments& arguments) const {
  std::vector<std::string> issues;
  for (const auto& [key, value] : arguments) {
    if (!parameter(key)) issues.push_back("unknown argument: " + key);
  }
  for (const auto& schema : fields_.parameters) {
    auto argument = arguments.find(schema.key());
    if (argument != arguments.end()) {
      if (!schema.validate(argument->second)) issues.push_back("invalid argument: " + schema.key());
    } else if (schema.required()) {
      issues.push_back("missing argument: " + schema.key());
    }
  }
  std::sort(issues.begin(), issues.end());
  return issues;
}

std::optional<RavoActionArguments> RavoApplicationActionDescriptor::parseModelArguments(
    const std::map<std::string, std::string>& raw) const {
  RavoActionArguments typed;
  for (const auto& [key, text] : raw) {
    const RavoActionParameterSchema* schema = parameter(key);
    if (!schema) return std::nullopt;
    auto value = schema->parse(text);
    if (!value) return std::nullopt;
    typed.emplace(key, std::move(*value));
  }
  if (!validate(typed).empty()) return std::nullopt;
  return typed;
}

RavoJSON RavoApplicationActionDescriptor::toJSON() const {
  return RavoJSONObjectWriter()
      .add("id", fields_.id)
      .add("applicationID", fields_.applicationID)
      .add("title", fields_.title)
      .add("summary", fields_.summary)
      .add("category", fields_.category)
      .add("systemImage", fields_.systemImage)
      .add("searchTerms", fields_.searchTerms)
      .add("parameters", fields_.parameters)
      .add("requestedCapabilities", fields_.requestedCapabilities)
      .add("effectTypes", fields_.effectTypes)
      .add("risk", fields_.risk)
      .add("confirmation", fields_.confirmation)
      .add("egressPolicy", fields_.egressPolicy)
      .add("minimumGate", fields_.minimumGate)
      .add("requiresStableTarget", fields_.requiresStableTarget)
      .add("targetClass", fields_.targetClass)
      .add("adapterID", fields_.adapterID)
      .add("adapterVersion", fields_.adapterVersion)
      .add("actionCode", fields_.actionCode)
      .add("entryPoints", fields_.entryPoints)
      .take();
}

RavoApplicationActionDescriptor RavoApplicationActionDescriptor::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoApplicationActionDescriptor");
  return {Fields{.id = reader.required<RavoApplicationActionID>("id"),
                 .applicationID = reader.required<RavoApplicationID>("applicationID"),
                 .title = reader.required<std::string>("title"),
                 .summary = reader.required<std::string>("summary"),
                 .category = reader.required<std::string>("category"),
                 .systemImage = reader.required<std::string>("systemImage"),
                 .searchTerms = reader.required<std::vector<std::string>>("searchTerms"),
                 .parameters = reader.required<std::vector<RavoActionParameterSchema>>("parameters"),
                 .requestedCapabilities = reader.required<std::vector<RavoScenarioCapability>>("requestedCapabilities"),
                 .effectTypes = reader.required<std::vector<std::string>>("effectTypes"),
                 .risk = reader.required<RavoScenarioRiskClass>("risk"),
                 .confirmation = reader.required<RavoScenarioConfirmationPolicy>("confirmation"),
                 .egressPolicy = reader.required<RavoScenarioDataEgressPolicy>("egressPolicy"),
                 .minimumGate = reader.required<RavoActionGateRequirement>("minimumGate"),
                 .requiresStableTarget = reader.required<bool>("requiresStableTarget"),
                 .targetClass = reader.required<std::string>("targetClass"),
                 .adapterID = reader.required<std::string>("adapterID"),
                 .adapterVersion = reader.required<std::string>("adapterVersion"),
                 .actionCode = reader.required<std::int32_t>("actionCode"),
                 .entryPoints = reader.required<std::vector<RavoActionEntryPoint>>("entryPoints")},
          AsStored{}};
}

}  // namespace ravo::orx
