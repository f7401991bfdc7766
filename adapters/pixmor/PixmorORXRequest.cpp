#include <ravo-orx/adapters/pixmor/PixmorORXRequest.h>

#include <utility>

namespace ravo::orx {

PixmorORXRequest::PixmorORXRequest(PixmorORXAbility ability, std::string intent,
                                   std::vector<std::string> currentPipelineNodeKinds,
                                   std::optional<std::string> selectedNodeKind, PixmorORXImageFacts imageFacts,
                                   PixmorORXExecutionFacts executionFacts, RavoUUID requestID)
    : PixmorORXRequest(std::string(schemaName), requestID, ability, std::move(intent),
                       std::move(currentPipelineNodeKinds), std::move(selectedNodeKind), imageFacts, executionFacts) {}

PixmorORXRequest::PixmorORXRequest(std::string schema, RavoUUID requestID, PixmorORXAbility ability,
                                   std::string intent, std::vector<std::string> currentPipelineNodeKinds,
                                   std::optional<std::string> selectedNodeKind, PixmorORXImageFacts imageFacts,
                                   PixmorORXExecutionFacts executionFacts)
    : schema_(std::move(schema)),
      requestID_(requestID),
      ability_(ability),
      intent_(std::move(intent)),
      currentPipelineNodeKinds_(std::move(currentPipelineNodeKinds)),
      selectedNodeKind_(std::move(selectedNodeKind)),
      imageFacts_(imageFacts),
      executionFacts_(executionFacts) {}

RavoJSON PixmorORXRequest::toJSON() const {
  return RavoJSONObjectWriter()
      .add("schema", schema_)
      .add("requestID", requestID_)
      .add("ability", ability_)
      .add("intent", intent_)
      .add("currentPipelineNodeKinds", currentPipelineNodeKinds_)
      .add("selectedNodeKind", selectedNodeKind_)
      .add("imageFacts", imageFacts_)
      .add("executionFacts", executionFacts_)
      .take();
}

PixmorORXRequest PixmorORXRequest::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "PixmorORXRequest");
  return PixmorORXRequest{reader.required<std::string>("schema"),
                          reader.required<RavoUUID>("requestID"),
                          reader.required<PixmorORXAbility>("ability"),
                          reader.required<std::string>("intent"),
                          reader.required<std::vector<std::string>>("currentPipelineNodeKinds"),
                          reader.optional<std::string>("selectedNodeKind"),
                          reader.required<PixmorORXImageFacts>("imageFacts"),
                          reader.required<PixmorORXExecutionFacts>("executionFacts")};
}

}  // namespace ravo::orx
