// Feeds untrusted input to everything in the application actions that reads it: utterances for the
// intent resolver, the voice router and the shortlist; JSON for every action record; text for
// parameter parsing and remote targets. Decoding may refuse with RavoJSONDecodingError; anything
// decoded must encode and decode back to an equal record. Any other exception or a crash is a bug.
//
// The first byte picks the path; the rest is the input.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include <ravo-orx/contracts/actions/RavoActionIntentResolver.h>
#include <ravo-orx/contracts/actions/RavoActionProposal.h>
#include <ravo-orx/contracts/actions/RavoActionReceipt.h>
#include <ravo-orx/contracts/actions/RavoApplicationActionCatalog.h>
#include <ravo-orx/contracts/actions/RavoCapabilityFabric.h>
#include <ravo-orx/contracts/actions/RavoRemoteActionBroker.h>
#include <ravo-orx/contracts/actions/RavoVoiceFastPathRouter.h>
#include <ravo-orx/contracts/services/RavoAIProgressEvent.h>
#include <ravo-orx/contracts/support/RavoTextNormalization.h>

namespace ravo::orx {

namespace {

template <class Record>
void roundTrip(const RavoJSON& json) {
  try {
    Record decoded = Record::fromJSON(json);
    if (!(Record::fromJSON(decoded.toJSON()) == decoded)) std::abort();
  } catch (const RavoJSONDecodingError&) {
  }
}

void resolveText(std::string_view text) {
  RavoActionIntentResolver::resolve(text, RavoActionProposalOrigin::mcp, RavoApplicationActionCatalog::descriptors());
  RavoVoiceFastPathRouter::route(text);
  RavoCapabilityFabric::builtIn().shortlist(text, 5);
}

void decodeRecords(std::string_view text) {
  RavoJSON json;
  try {
    json = parseRavoJSON(text);
  } catch (const RavoJSONDecodingError&) {
    return;
  }
  roundTrip<RavoApplicationActionManifest>(json);
  roundTrip<RavoApplicationActionDescriptor>(json);
  roundTrip<RavoActionParameterSchema>(json);
  roundTrip<RavoActionValue>(json);
  roundTrip<RavoActionProposal>(json);
  roundTrip<RavoActionReceipt>(json);
  roundTrip<RavoScenarioNodeDefinition>(json);
  roundTrip<RavoAIProgressEvent>(json);
}

void parseText(std::string_view text) {
  for (const auto& [kind, _] : ORXRawValueTable<RavoActionValueKind>::entries) {
    auto schema = RavoActionParameterSchema({.key = "k", .kind = kind, .minimum = 0.0, .maximum = 1.0});
    if (auto value = schema.parse(text)) schema.validate(*value);
  }
  RavoRemotePlaybackTarget::make(RavoRemotePlaybackSource::youTube, 1, std::string(text));
  ravoTextTokens(text);
  ravoGraphemeCount(text);
}

}  // namespace

}  // namespace ravo::orx

using namespace ravo::orx;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);
  switch (data[0] % 3) {
    case 0: resolveText(text); break;
    case 1: decodeRecords(text); break;
    default: parseText(text); break;
  }
  return 0;
}
