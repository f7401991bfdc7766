#include "contracts/scenarios/RavoScenarioRevision.h"

#include "contracts/scenarios/RavoScenarioCanonicalizer.h"
#include "contracts/scenarios/RavoScenarioEncodingError.h"

RavoScenarioRevision::RavoScenarioRevision(RavoUUID id, std::int64_t revision, RavoScenarioDraft draft)
    : id_(id),
      revision_(revision),
      draft_(std::move(draft)),
      graphDigest_(RavoScenarioCanonicalizer::digest(draft_.graph())) {}

RavoJSON RavoScenarioRevision::toJSON() const {
  return RavoJSONObjectWriter()
      .add("id", id_)
      .add("revision", revision_)
      .add("draft", draft_)
      .add("graphDigest", graphDigest_)
      .take();
}

RavoScenarioRevision RavoScenarioRevision::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoScenarioRevision");
  auto id = reader.required<RavoUUID>("id");
  auto revision = reader.required<std::int64_t>("revision");
  auto draft = reader.required<RavoScenarioDraft>("draft");
  auto graphDigest = reader.required<std::string>("graphDigest");
  // A decoded graph keeps its lists as written, so a faithfully stored revision digests to the same text.
  try {
    RavoScenarioRevision result(id, revision, std::move(draft));
    if (result.graphDigest_ == graphDigest) return result;
  } catch (const RavoScenarioEncodingError& error) {  // only for JSON built in memory, never for parsed text
    throw RavoJSONDecodingError(std::string("RavoScenarioRevision.draft: ") + error.what());
  }
  throw RavoJSONDecodingError("RavoScenarioRevision.graphDigest: does not match the draft's graph");
}
