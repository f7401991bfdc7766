// Any bytes as a drafting model's answer: reading it either refuses with RavoJSONDecodingError or
// gives a draft that validates without throwing, digests, round-trips as a revision and compares
// equal to itself.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include <ravo-orx/contracts/scenarios/RavoScenarioBuiltInCatalog.h>
#include <ravo-orx/contracts/scenarios/RavoScenarioCatalog.h>
#include <ravo-orx/contracts/scenarios/RavoScenarioRevisionDiffer.h>
#include <ravo-orx/contracts/services/RavoJSONScenarioDraftProposer.h>

using namespace ravo::orx;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const RavoScenarioDraftingRequest request(RavoUUID::random(), 1, "fuzz", false, {});
  std::string_view answer(reinterpret_cast<const char*>(data), size);
  std::optional<RavoScenarioDraftingResponse> response;
  try {
    response.emplace(RavoJSONScenarioDraftProposer::parseAnswer(answer, request));
  } catch (const RavoJSONDecodingError&) {
    return 0;
  }
  RavoScenarioCatalog::validate(response->draft(), RavoScenarioBuiltInCatalog::definitions());
  RavoScenarioRevision revision(RavoUUID::random(), 1, response->draft());
  if (RavoScenarioRevision::fromJSON(parseRavoJSON(revision.toJSON().dump())) != revision) std::abort();
  const RavoScenarioRevisionDiff unchanged({.fromRevisionID = revision.id(), .toRevisionID = revision.id()});
  if (RavoScenarioRevisionDiffer::compare(revision, revision) != unchanged) std::abort();
  return 0;
}
