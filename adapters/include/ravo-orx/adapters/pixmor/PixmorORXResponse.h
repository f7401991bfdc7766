#pragma once
// An editing proposal for the Pixmor surface: from the Orx service or built locally.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <ravo-orx/adapters/pixmor/PixmorORXAbility.h>
#include <ravo-orx/adapters/pixmor/PixmorORXExecutionPolicy.h>
#include <ravo-orx/adapters/pixmor/PixmorORXNodeDefaults.h>
#include <ravo-orx/adapters/pixmor/PixmorORXResponseOrigin.h>
#include <ravo-orx/adapters/pixmor/PixmorORXVariantPlan.h>
#include <ravo-orx/contracts/support/RavoJSON.h>
#include <ravo-orx/contracts/support/RavoUUID.h>

namespace ravo::orx {

class PixmorORXResponse {
 public:
  // A valid proposal is a few kilobytes; answers beyond this are refused unread rather than parsed
  // into memory on the service's word.
  static constexpr std::size_t maximumJSONTextBytes = 1 << 20;

  PixmorORXResponse(std::string schema, RavoUUID requestID, PixmorORXAbility ability,
                    std::vector<std::string> pipelineNodeKinds, std::vector<PixmorORXNodeDefaults> nodeDefaults,
                    std::vector<PixmorORXVariantPlan> variantPlans, PixmorORXExecutionPolicy executionPolicy,
                    std::vector<std::string> guidedSteps, std::optional<std::string> stageExplanation,
                    PixmorORXResponseOrigin origin, std::optional<std::string> fallbackReason);

  const std::string& schema() const { return schema_; }
  const RavoUUID& requestID() const { return requestID_; }
  PixmorORXAbility ability() const { return ability_; }
  const std::vector<std::string>& pipelineNodeKinds() const { return pipelineNodeKinds_; }  // in pipeline order
  const std::vector<PixmorORXNodeDefaults>& nodeDefaults() const { return nodeDefaults_; }
  const std::vector<PixmorORXVariantPlan>& variantPlans() const { return variantPlans_; }
  const PixmorORXExecutionPolicy& executionPolicy() const { return executionPolicy_; }
  const std::vector<std::string>& guidedSteps() const { return guidedSteps_; }
  const std::optional<std::string>& stageExplanation() const { return stageExplanation_; }
  PixmorORXResponseOrigin origin() const { return origin_; }
  const std::optional<std::string>& fallbackReason() const { return fallbackReason_; }

  RavoJSON toJSON() const;
  static PixmorORXResponse fromJSON(const RavoJSON& json);
  // Reads a service answer: JSON text of at most maximumJSONTextBytes holding one response object.
  // Throws RavoJSONDecodingError for anything else.
  static PixmorORXResponse fromJSONText(std::string_view text);

  friend bool operator==(const PixmorORXResponse&, const PixmorORXResponse&) = default;

 private:
  std::string schema_;
  RavoUUID requestID_;
  PixmorORXAbility ability_;
  std::vector<std::string> pipelineNodeKinds_;
  std::vector<PixmorORXNodeDefaults> nodeDefaults_;
  std::vector<PixmorORXVariantPlan> variantPlans_;
  PixmorORXExecutionPolicy executionPolicy_;
  std::vector<std::string> guidedSteps_;
  std::optional<std::string> stageExplanation_;
  PixmorORXResponseOrigin origin_;
  std::optional<std::string> fallbackReason_;
};

}  // namespace ravo::orx
