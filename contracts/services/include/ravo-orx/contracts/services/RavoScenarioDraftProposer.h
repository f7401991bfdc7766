#pragma once
// The adapter between the drafting service and a language model: turns a request into the model's
// proposed draft. It may take as long as the model does and may throw; the service calls it without
// holding its lock and turns any exception into a failed proposal.

#include <ravo-orx/contracts/services/RavoScenarioDraftingRequest.h>
#include <ravo-orx/contracts/services/RavoScenarioDraftingResponse.h>

namespace ravo::orx {

class RavoScenarioDraftProposer {
 public:
  virtual ~RavoScenarioDraftProposer() = default;

  virtual RavoScenarioDraftingResponse proposeDraft(const RavoScenarioDraftingRequest& request) = 0;
};

}  // namespace ravo::orx
