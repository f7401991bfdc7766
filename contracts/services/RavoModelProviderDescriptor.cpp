#include <ravo-orx/contracts/services/RavoModelProviderDescriptor.h>

namespace ravo::orx {

const std::vector<RavoModelProviderDescriptor>& RavoModelProviderDescriptor::builtIns() {
  using Kind = RavoModelProviderKind;
  using Transport = RavoModelProviderTransport;
  static const std::vector<RavoModelProviderDescriptor> descriptors{
      {RavoModelProviderID::appleFoundationModels(), Kind::appleFoundationModels, Transport::onDevice,
       "Apple Foundation Models", false},
      {RavoModelProviderID::ollamaLoopback(), Kind::ollama, Transport::loopback, "Ollama on this device", false},
      {RavoModelProviderID::lmStudioLoopback(), Kind::lmStudio, Transport::loopback, "LM Studio on this device", false},
      {RavoModelProviderID::openAICompatibleCloud(), Kind::openAICompatibleCloud, Transport::cloud,
       "OpenAI-compatible cloud provider", true},
  };
  return descriptors;
}

const RavoModelProviderDescriptor& RavoModelProviderDescriptor::appleFoundationModels() { return builtIns()[0]; }
const RavoModelProviderDescriptor& RavoModelProviderDescriptor::ollamaLoopback() { return builtIns()[1]; }
const RavoModelProviderDescriptor& RavoModelProviderDescriptor::lmStudioLoopback() { return builtIns()[2]; }
const RavoModelProviderDescriptor& RavoModelProviderDescriptor::openAICompatibleCloud() { return builtIns()[3]; }

RavoJSON RavoModelProviderDescriptor::toJSON() const {
  return RavoJSONObjectWriter()
      .add("id", id_)
      .add("kind", kind_)
      .add("transport", transport_)
      .add("displayName", displayName_)
      .add("requiresAuthentication", requiresAuthentication_)
      .take();
}

RavoModelProviderDescriptor RavoModelProviderDescriptor::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoModelProviderDescriptor");
  return RavoModelProviderDescriptor{reader.required<RavoModelProviderID>("id"),
                                     reader.required<RavoModelProviderKind>("kind"),
                                     reader.required<RavoModelProviderTransport>("transport"),
                                     reader.required<std::string>("displayName"),
                                     reader.required<bool>("requiresAuthentication")};
}

}  // namespace ravo::orx
