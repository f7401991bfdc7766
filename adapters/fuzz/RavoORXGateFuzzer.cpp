// Proposals with any target texts, action code and generation: a candidate is either built, and then
// built again identically with an intent digest that is its intent's, or refused with ORXError. The
// gate, given the same texts through a descriptor and grant, answers without throwing.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include <ravo-orx/adapters/gate/RavoORXActionGateAdapter.h>
#include <ravo-orx/adapters/gate/RavoORXGate.h>
#include <ravo-orx/core/ORXError.h>

namespace ravo::orx {

namespace {

template <class T>
T take(std::string_view& input) {
  T value{};
  std::size_t n = std::min(sizeof(T), input.size());
  std::memcpy(&value, input.data(), n);
  input.remove_prefix(n);
  return value;
}

}  // namespace

}  // namespace ravo::orx

using namespace ravo::orx;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view input(reinterpret_cast<const char*>(data), size);
  const auto selector = take<std::uint8_t>(input);
  const auto actionCode = take<std::int32_t>(input);
  const auto epoch = take<std::int64_t>(input);
  const std::size_t split = input.find('\n');
  const std::string targetClass(input.substr(0, split));
  const std::string targetIdentifier(split == std::string_view::npos ? "" : input.substr(split + 1));

  const auto capability = ORXRawValueTable<RavoORXCapability>::entries[selector % 11].first;
  const auto effect = ORXRawValueTable<RavoORXEffect>::entries[(selector / 11) % 11].first;
  const auto source = static_cast<RavoORXProposalSource>(selector % 3);
  const RavoORXActionProposal proposal(capability, effect, ravoORXResource(capability), source, actionCode,
                                       targetClass, targetIdentifier);
  try {
    auto candidate = RavoORXGate::shadowCandidate(proposal, epoch);
    if (!(candidate == RavoORXGate::shadowCandidate(proposal, epoch))) __builtin_trap();
    if (candidate.intentDigest() != candidate.intent().digest()) __builtin_trap();
  } catch (const ORXError&) {
  }

  RavoApplicationActionDescriptor::Fields fields;
  fields.id = RavoApplicationActionID("ravo.fuzz.action");
  fields.requestedCapabilities = {RavoScenarioCapability(std::string(orxRawValue(capability)))};
  fields.effectTypes = {std::string(orxRawValue(effect))};
  fields.targetClass = targetClass;
  fields.actionCode = actionCode;
  const RavoActionProposal request(RavoUUID(), fields.id, targetIdentifier, {}, RavoActionProposalOrigin::mcp);
  const RavoActionGrant grant({.generation = epoch});
  const RavoORXActionGateAdapter gate([](const auto&, const auto&) -> bool { throw 0; });
  auto result = gate.evaluate(RavoApplicationActionDescriptor(std::move(fields)), request, grant);
  if (result.isAllowed() && result.code() != "orx.shadow_canonicalized") __builtin_trap();
  return 0;
}
