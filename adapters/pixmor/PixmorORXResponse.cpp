#include <ravo-orx/adapters/pixmor/PixmorORXResponse.h>

#include <string>
#include <utility>

namespace ravo::orx {

PixmorORXResponse::PixmorORXResponse(std::string schema, RavoUUID requestID, PixmorORXAbility ability,
                                     std::vector<std::string> pipelineNodeKinds,
                                     std::vector<PixmorORXNodeDefaults> nodeDefaults,
                                     std::vector<PixmorORXVariantPlan> variantPlans,
                                     PixmorORXExecutionPolicy executionPolicy, std::vector<std::string> guidedSteps,
                                     std::optional<std::string> stageExplanation, PixmorORXResponseOrigin origin,
                                     std::optional<std::string> fallbackReason)
    : schema_(std::move(schema)),
      requestID_(requestID),
      ability_(ability),
      pipelineNodeKinds_(std::move(pipelineNodeKinds)),
      nodeDefaults_(std::move(nodeDefaults)),
      variantPlans_(std::move(variantPlans)),
      executionPolicy_(executionPolicy),
      guidedSteps_(std::move(guidedSteps)),
      stageExplanation_(std::move(stageExplanation)),
      origin_(origin),
      fallbackReason_(std::move(fallbackReason)) {}

RavoJSON PixmorORXResponse::toJSON() const {
  return RavoJSONObjectWriter()
      .add("schema", schema_)
      .add("requestID", requestID_)
      .add("ability", ability_)
      .add("pipelineNodeKinds", pipelineNodeKinds_)
      .add("nodeDefaults", nodeDefaults_)
      .add("variantPlans", variantPlans_)
      .add("executionPolicy", executionPolicy_)
      .add("guidedSteps", guidedSteps_)
      .add("stageExplanation", stageExplanation_)
      .add("origin", origin_)
      .add("fallbackReason", fallbackReason_)
      .take();
}

PixmorORXResponse PixmorORXResponse::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "PixmorORXResponse");
  return PixmorORXResponse{reader.required<std::string>("schema"),
                           reader.required<RavoUUID>("requestID"),
                           reader.required<PixmorORXAbility>("ability"),
                           reader.required<std::vector<std::string>>("pipelineNodeKinds"),
                           reader.required<std::vector<PixmorORXNodeDefaults>>("nodeDefaults"),
                           reader.required<std::vector<PixmorORXVariantPlan>>("variantPlans"),
                           reader.required<PixmorORXExecutionPolicy>("executionPolicy"),
                           reader.required<std::vector<std::string>>("guidedSteps"),
                           reader.optional<std::string>("stageExplanation"),
                           reader.required<PixmorORXResponseOrigin>("origin"),
                           reader.optional<std::string>("fallbackReason")};
}

PixmorORXResponse PixmorORXResponse::fromJSONText(std::string_view text) {
  if (text.size() > maximumJSONTextBytes) {
    throw RavoJSONDecodingError("PixmorORXResponse: answer of " + std::to_string(text.size()) +
                                " bytes exceeds the limit of " + std::to_string(maximumJSONTextBytes));
  }
  return RavoJSONCodec<PixmorORXResponse>::decode(parseRavoJSON(text), "PixmorORXResponse");
}

}  // namespace ravo::orx
