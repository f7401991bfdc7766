#pragma once
// The closed vocabulary of Pixmor proposals: the stage kinds a pipeline may hold and the parameter keys
// their defaults may set. Names are matched exactly, case included.

#include <algorithm>
#include <array>
#include <string_view>

namespace ravo::orx {

struct PixmorORXVocabulary {
  static constexpr std::array<std::string_view, 10> stageKinds{
      "original", "rawDecode",       "toneRecovery", "denoise", "subjectMatte",
      "mlRestore", "detailSynthesis", "colorGrade",   "relight", "previewOutput",
  };
  static constexpr std::array<std::string_view, 6> defaultValueKeys{
      "strength", "detailRecovery", "structureProtection", "naturalness", "temporalStability", "maskInfluence",
  };

  static bool isStageKind(std::string_view text) { return std::ranges::find(stageKinds, text) != stageKinds.end(); }
  static bool isDefaultValueKey(std::string_view text) {
    return std::ranges::find(defaultValueKeys, text) != defaultValueKeys.end();
  }
};

}  // namespace ravo::orx
