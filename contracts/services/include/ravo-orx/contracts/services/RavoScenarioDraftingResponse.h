#pragma once
// A drafting model's answer to one request: the proposed draft and the questions the model wants the
// person to answer.

#include <string>
#include <vector>

#include <ravo-orx/contracts/scenarios/RavoScenarioDraft.h>
#include <ravo-orx/contracts/support/RavoUUID.h>

namespace ravo::orx {

class RavoScenarioDraftingResponse {
 public:
  static constexpr std::size_t maximumQuestionCount = 8;
  static constexpr std::size_t maximumQuestionLength = 160;  // user-perceived characters

  // Cleans the questions: each is trimmed and cut to its first 160 user-perceived characters, blank
  // ones are dropped, and of the rest the first 8 are kept, in order.
  RavoScenarioDraftingResponse(RavoUUID id, RavoUUID requestID, RavoScenarioDraft draft,
                               std::vector<std::string> unresolvedQuestions);

  const RavoUUID& id() const { return id_; }
  const RavoUUID& requestID() const { return requestID_; }
  const RavoScenarioDraft& draft() const { return draft_; }
  const std::vector<std::string>& unresolvedQuestions() const { return unresolvedQuestions_; }

  friend bool operator==(const RavoScenarioDraftingResponse&, const RavoScenarioDraftingResponse&) = default;

 private:
  RavoUUID id_;
  RavoUUID requestID_;
  RavoScenarioDraft draft_;
  std::vector<std::string> unresolvedQuestions_;
};

}  // namespace ravo::orx
