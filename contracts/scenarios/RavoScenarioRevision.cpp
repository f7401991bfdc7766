#include <ravo-orx/contracts/scenarios/RavoScenarioRevision.h>

#include <ravo-orx/contracts/scenarios/RavoScenarioCanonicalizer.h>

namespace ravo::orx {

RavoScenarioRevision::RavoScenarioRevision(RavoUUID id, std::int64_t revision, RavoScenarioDraft draft)
    : id_(id),
      revision_(revision),
      draft_(std::move(draft)),
      graphDigest_(RavoScenarioCanonicalizer::digest(draft_.graph())) {}

RavoScenarioRevision::RavoScenarioRevision(RavoUUID id, std::int64_t revision, RavoScenarioDraft draft,
                                           std::string graphDigest)
    : id_(id), revision_(revision), draft_(std::move(draft)), graphDigest_(std::move(graphDigest)) {}

bool RavoScenarioRevision::graphDigestMatchesDraft() const {
  return RavoScenarioCanonicalizer::digest(draft_.graph()) == graphDigest_;
}

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
  return {id, revision, std::move(draft), reader.required<std::string>("graphDigest")};
}

}  // namespace ravo::orx
