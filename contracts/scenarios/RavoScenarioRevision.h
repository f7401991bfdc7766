#pragma once
// One numbered version of a draft, pinned to the digest of its graph. The digest is always computed
// from the draft, never taken from outside, so a revision cannot claim a graph it does not hold.

#include <cstdint>
#include <string>

#include "contracts/scenarios/RavoScenarioDraft.h"
#include "contracts/support/RavoUUID.h"

class RavoScenarioRevision {
 public:
  // Throws RavoScenarioEncodingError when the draft's graph has no JSON text.
  RavoScenarioRevision(RavoUUID id, std::int64_t revision, RavoScenarioDraft draft);

  const RavoUUID& id() const { return id_; }
  std::int64_t revision() const { return revision_; }
  const RavoScenarioDraft& draft() const { return draft_; }
  // 64 lowercase hex digits: RavoScenarioCanonicalizer::digest of the draft's graph.
  const std::string& graphDigest() const { return graphDigest_; }

  RavoJSON toJSON() const;
  // Recomputes the digest and refuses a record whose "graphDigest" differs from it.
  static RavoScenarioRevision fromJSON(const RavoJSON& json);

  friend bool operator==(const RavoScenarioRevision&, const RavoScenarioRevision&) = default;

 private:
  RavoUUID id_;
  std::int64_t revision_;
  RavoScenarioDraft draft_;
  std::string graphDigest_;
};
