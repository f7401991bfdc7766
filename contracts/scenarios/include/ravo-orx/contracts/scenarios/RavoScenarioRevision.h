#pragma once
// One numbered version of a draft, pinned to the digest of its graph. A revision built here computes
// the digest from the draft; a decoded one keeps the digest it was written with, since another
// encoder may write the same graph differently. `graphDigestMatchesDraft` tells whether they agree.

#include <cstdint>
#include <string>

#include <ravo-orx/contracts/scenarios/RavoScenarioDraft.h>
#include <ravo-orx/contracts/support/RavoUUID.h>

namespace ravo::orx {

class RavoScenarioRevision {
 public:
  // Throws RavoScenarioEncodingError when the draft's graph has no JSON text.
  RavoScenarioRevision(RavoUUID id, std::int64_t revision, RavoScenarioDraft draft);

  const RavoUUID& id() const { return id_; }
  std::int64_t revision() const { return revision_; }
  const RavoScenarioDraft& draft() const { return draft_; }
  // 64 lowercase hex digits: RavoScenarioCanonicalizer::digest of the draft's graph.
  const std::string& graphDigest() const { return graphDigest_; }

  // Whether the stored digest is the one this system computes for the draft's graph. (Decoded
  // graphs always have JSON text: the decoders refuse non-finite numbers.)
  bool graphDigestMatchesDraft() const;

  RavoJSON toJSON() const;
  // Takes the values as they stand, the digest included.
  static RavoScenarioRevision fromJSON(const RavoJSON& json);

  friend bool operator==(const RavoScenarioRevision&, const RavoScenarioRevision&) = default;

 private:
  RavoScenarioRevision(RavoUUID id, std::int64_t revision, RavoScenarioDraft draft, std::string graphDigest);

  RavoUUID id_;
  std::int64_t revision_;
  RavoScenarioDraft draft_;
  std::string graphDigest_;
};

}  // namespace ravo::orx
