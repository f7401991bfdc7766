#pragma once
// Identifies a language-model provider, e.g. "ravo.model.ollama.loopback".

#include <ravo-orx/contracts/support/RavoTextIdentifier.h>

namespace ravo::orx {

class RavoModelProviderID : public RavoTextIdentifier<RavoModelProviderID> {
 public:
  using RavoTextIdentifier::RavoTextIdentifier;

  static RavoModelProviderID appleFoundationModels() { return RavoModelProviderID("ravo.model.apple.foundation"); }
  static RavoModelProviderID ollamaLoopback() { return RavoModelProviderID("ravo.model.ollama.loopback"); }
  static RavoModelProviderID lmStudioLoopback() { return RavoModelProviderID("ravo.model.lmstudio.loopback"); }
  static RavoModelProviderID openAICompatibleCloud() {
    return RavoModelProviderID("ravo.model.openai-compatible.cloud");
  }
};

}  // namespace ravo::orx
