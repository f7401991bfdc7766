#pragma once
// A draft proposer for models that answer in JSON. It writes a prompt that states the request and the
// node types allowed, hands it to the model (any callable from prompt text to answer text, which may
// block and may throw) and reads the answer:
//
//   {"title": "Dim for the film",
//    "graph": {"nodes": [...], "edges": [...], "requestedCapabilities": [...]},
//    "unresolvedQuestions": ["Which lamp?"]}
//
// The graph is in the JSON form of RavoScenarioGraph, the one form reviewers and the digest also see;
// "unresolvedQuestions" may be left out. One surrounding Markdown code fence is tolerated because
// chat models add it unasked; anything else that is not such an object is refused by throwing
// RavoJSONDecodingError, which the drafting service reports as a failed proposal. The answer never
// chooses the ids: the response, the request it answers and the draft get theirs here.

#include <functional>
#include <string>
#include <string_view>

#include <cstddef>

#include <ravo-orx/contracts/services/RavoScenarioDraftProposer.h>

namespace ravo::orx {

class RavoJSONScenarioDraftProposer : public RavoScenarioDraftProposer {
 public:
  using Model = std::function<std::string(const std::string& prompt)>;

  explicit RavoJSONScenarioDraftProposer(Model model) : model_(std::move(model)) {}

  RavoScenarioDraftingResponse proposeDraft(const RavoScenarioDraftingRequest& request) override;

  // A draft holds at most 256 nodes, which no answer needs a mebibyte to describe; a longer answer is
  // refused unread rather than trimmed and parsed at a cost that grows with whatever the model sent.
  static constexpr std::size_t maximumAnswerBytes = 1 << 20;

  static std::string prompt(const RavoScenarioDraftingRequest& request);
  // Throws RavoJSONDecodingError for a malformed answer or one longer than maximumAnswerBytes.
  static RavoScenarioDraftingResponse parseAnswer(std::string_view answer, const RavoScenarioDraftingRequest& request);

 private:
  Model model_;
};

}  // namespace ravo::orx
