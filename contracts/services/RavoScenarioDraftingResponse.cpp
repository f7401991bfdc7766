#include <ravo-orx/contracts/services/RavoScenarioDraftingResponse.h>

#include <ravo-orx/contracts/support/RavoGraphemePrefix.h>
#include <ravo-orx/contracts/support/RavoTextNormalization.h>

namespace ravo::orx {

RavoScenarioDraftingResponse::RavoScenarioDraftingResponse(RavoUUID id, RavoUUID requestID, RavoScenarioDraft draft,
                                                           std::vector<std::string> unresolvedQuestions)
    : id_(id), requestID_(requestID), draft_(std::move(draft)) {
  for (const auto& question : unresolvedQuestions) {
    if (unresolvedQuestions_.size() == maximumQuestionCount) break;
    // Cut after trimming so that leading blanks do not use up the length.
    std::string cleaned = ravoGraphemePrefix(ravoTrimmedText(question), maximumQuestionLength);
    if (!cleaned.empty()) unresolvedQuestions_.push_back(std::move(cleaned));
  }
}

}  // namespace ravo::orx
