#pragma once
// What a Pixmor editing request asks the Orx service for.

#include <array>
#include <string_view>
#include <utility>

#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

enum class PixmorORXAbility {
  pipelineBuilder,
  nodeDefaults,
  variantPlanner,
  executionPolicy,
  guidedEditing,
  explainStage,
};

template <>
struct ORXRawValueTable<PixmorORXAbility> {
  static constexpr std::array<std::pair<PixmorORXAbility, std::string_view>, 6> entries{{
      {PixmorORXAbility::pipelineBuilder, "pixmor_pipeline_builder"},
      {PixmorORXAbility::nodeDefaults, "pixmor_node_defaults"},
      {PixmorORXAbility::variantPlanner, "pixmor_variant_planner"},
      {PixmorORXAbility::executionPolicy, "pixmor_execution_policy"},
      {PixmorORXAbility::guidedEditing, "pixmor_guided_editing"},
      {PixmorORXAbility::explainStage, "pixmor_explain_stage"},
  }};
};

}  // namespace ravo::orx
