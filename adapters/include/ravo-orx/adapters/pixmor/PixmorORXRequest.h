#pragma once
// One editing request from the Pixmor surface to the Orx service.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <ravo-orx/adapters/pixmor/PixmorORXAbility.h>
#include <ravo-orx/adapters/pixmor/PixmorORXExecutionFacts.h>
#include <ravo-orx/adapters/pixmor/PixmorORXImageFacts.h>
#include <ravo-orx/contracts/support/RavoJSON.h>
#include <ravo-orx/contracts/support/RavoUUID.h>

namespace ravo::orx {

class PixmorORXRequest {
 public:
  // The schema every request is built with and every accepted response must carry.
  static constexpr std::string_view schemaName = "ravo.pixmor.orx.v1";

  PixmorORXRequest(PixmorORXAbility ability, std::string intent, std::vector<std::string> currentPipelineNodeKinds,
                   std::optional<std::string> selectedNodeKind, PixmorORXImageFacts imageFacts,
                   PixmorORXExecutionFacts executionFacts, RavoUUID requestID = RavoUUID::random());

  const std::string& schema() const { return schema_; }
  const RavoUUID& requestID() const { return requestID_; }  // the response must echo it
  PixmorORXAbility ability() const { return ability_; }
  const std::string& intent() const { return intent_; }  // the person's words, free text
  const std::vector<std::string>& currentPipelineNodeKinds() const { return currentPipelineNodeKinds_; }
  const std::optional<std::string>& selectedNodeKind() const { return selectedNodeKind_; }
  const PixmorORXImageFacts& imageFacts() const { return imageFacts_; }
  const PixmorORXExecutionFacts& executionFacts() const { return executionFacts_; }

  RavoJSON toJSON() const;
  // Takes the schema as it stands, so a request from a newer surface still reads.
  static PixmorORXRequest fromJSON(const RavoJSON& json);

  friend bool operator==(const PixmorORXRequest&, const PixmorORXRequest&) = default;

 private:
  PixmorORXRequest(std::string schema, RavoUUID requestID, PixmorORXAbility ability, std::string intent,
                   std::vector<std::string> currentPipelineNodeKinds, std::optional<std::string> selectedNodeKind,
                   PixmorORXImageFacts imageFacts, PixmorORXExecutionFacts executionFacts);

  std::string schema_;
  RavoUUID requestID_;
  PixmorORXAbility ability_;
  std::string intent_;
  std::vector<std::string> currentPipelineNodeKinds_;
  std::optional<std::string> selectedNodeKind_;
  PixmorORXImageFacts imageFacts_;
  PixmorORXExecutionFacts executionFacts_;
};

}  // namespace ravo::orx
