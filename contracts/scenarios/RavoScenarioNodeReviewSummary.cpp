#include <ravo-orx/contracts/scenarios/RavoScenarioNodeReviewSummary.h>

namespace ravo::orx {

std::string RavoScenarioNodeReviewSummary::id() const {
  std::string text = nodeType_.rawValue() + "|" + nodeVersion_;
  for (const auto& target : stableTargetIDs_) text += "|" + target;
  return text;
}

std::string RavoScenarioNodeReviewSummary::versionKey() const {
  std::string text = nodeType_.rawValue();
  for (const auto& target : stableTargetIDs_) text += "|" + target;
  return text;
}

RavoJSON RavoScenarioNodeReviewSummary::toJSON() const {
  return RavoJSONObjectWriter()
      .add("nodeType", nodeType_)
      .add("nodeVersion", nodeVersion_)
      .add("stableTargetIDs", stableTargetIDs_)
      .take();
}

RavoScenarioNodeReviewSummary RavoScenarioNodeReviewSummary::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoScenarioNodeReviewSummary");
  return {reader.required<RavoScenarioNodeTypeID>("nodeType"), reader.required<std::string>("nodeVersion"),
          reader.required<std::vector<std::string>>("stableTargetIDs")};
}

}  // namespace ravo::orx
