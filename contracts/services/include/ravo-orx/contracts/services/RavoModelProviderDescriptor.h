#pragma once
// What a language-model provider is: its kind, where its requests travel and how it is shown.

#include <string>
#include <utility>
#include <vector>

#include <ravo-orx/contracts/services/RavoModelProviderID.h>
#include <ravo-orx/contracts/services/RavoModelProviderLabels.h>
#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

class RavoModelProviderDescriptor {
 public:
  RavoModelProviderDescriptor(RavoModelProviderID id, RavoModelProviderKind kind, RavoModelProviderTransport transport,
                              std::string displayName, bool requiresAuthentication)
      : id_(std::move(id)),
        kind_(kind),
        transport_(transport),
        displayName_(std::move(displayName)),
        requiresAuthentication_(requiresAuthentication) {}

  // The providers the assistant knows without configuration.
  static const RavoModelProviderDescriptor& appleFoundationModels();
  static const RavoModelProviderDescriptor& ollamaLoopback();
  static const RavoModelProviderDescriptor& lmStudioLoopback();
  static const RavoModelProviderDescriptor& openAICompatibleCloud();
  static const std::vector<RavoModelProviderDescriptor>& builtIns();  // the four above, in that order

  const RavoModelProviderID& id() const { return id_; }
  RavoModelProviderKind kind() const { return kind_; }
  RavoModelProviderTransport transport() const { return transport_; }
  const std::string& displayName() const { return displayName_; }
  // The person must confirm the provider's credentials before it can become eligible.
  bool requiresAuthentication() const { return requiresAuthentication_; }

  RavoJSON toJSON() const;
  static RavoModelProviderDescriptor fromJSON(const RavoJSON& json);

  friend bool operator==(const RavoModelProviderDescriptor&, const RavoModelProviderDescriptor&) = default;

 private:
  RavoModelProviderID id_;
  RavoModelProviderKind kind_;
  RavoModelProviderTransport transport_;
  std::string displayName_;
  bool requiresAuthentication_;
};

}  // namespace ravo::orx
