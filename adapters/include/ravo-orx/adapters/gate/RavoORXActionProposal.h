#pragma once
// An application action proposal in the gate's closed vocabulary: what capability and effect it needs,
// what resource it touches, who proposed it, and the exact target. The target class is checked when a
// candidate is built from it, not here, so that every refusal surfaces as the same ORXError there.

#include <cstdint>
#include <string>

#include <ravo-orx/adapters/gate/RavoORXCapability.h>
#include <ravo-orx/adapters/gate/RavoORXEffect.h>
#include <ravo-orx/adapters/gate/RavoORXProposalSource.h>
#include <ravo-orx/adapters/gate/RavoORXResource.h>

namespace ravo::orx {

class RavoORXActionProposal {
 public:
  RavoORXActionProposal(RavoORXCapability capability, RavoORXEffect effect, RavoORXResource resource,
                        RavoORXProposalSource source, std::int32_t actionCode, std::string targetClass,
                        std::string targetIdentifier)
      : capability_(capability),
        effect_(effect),
        resource_(resource),
        source_(source),
        actionCode_(actionCode),
        targetClass_(std::move(targetClass)),
        targetIdentifier_(std::move(targetIdentifier)) {}

  RavoORXCapability capability() const { return capability_; }
  RavoORXEffect effect() const { return effect_; }
  RavoORXResource resource() const { return resource_; }
  RavoORXProposalSource source() const { return source_; }
  std::int32_t actionCode() const { return actionCode_; }
  const std::string& targetClass() const { return targetClass_; }
  const std::string& targetIdentifier() const { return targetIdentifier_; }

  friend bool operator==(const RavoORXActionProposal&, const RavoORXActionProposal&) = default;

 private:
  RavoORXCapability capability_;
  RavoORXEffect effect_;
  RavoORXResource resource_;
  RavoORXProposalSource source_;
  std::int32_t actionCode_;
  std::string targetClass_;
  std::string targetIdentifier_;
};

}  // namespace ravo::orx
