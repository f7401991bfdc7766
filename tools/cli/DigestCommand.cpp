#include <ravo-orx/core/ORXCanonicalJSON.h>
#include <ravo-orx/core/ORXDigest.h>
#include <ravo-orx/core/ORXSHA256.h>
#include <ravo-orx/cli/OrxCliCommand.h>
#include <ravo-orx/cli/OrxCliIO.h>

namespace ravo::orx {

namespace {

// Only the record kinds' own tags are accepted: a misspelt tag would otherwise give a well-formed
// digest that matches nothing, which is the mistake this command exists to catch.
ORXDigestDomain digestDomain(std::string_view tag) {
  if (const auto domain = orxFromRawValue<ORXDigestDomain>(tag)) return *domain;
  std::string tags;
  for (const auto& [domain, text] : ORXRawValueTable<ORXDigestDomain>::entries) {
    tags += tags.empty() ? "" : ", ";
    tags += text;
  }
  throw OrxCliUsageError("unknown digest tag \"" + std::string(tag) + "\"; the tags are " + tags);
}

int runDigest(OrxCliArguments& arguments) {
  if (arguments.flag("--raw")) {
    const auto file = arguments.nextIfAny();
    arguments.finish();
    ORXSHA256 hasher;
    orxCliReadInPieces(file, [&](std::string_view piece) { hasher.update(piece); });
    orxCliPrint(ORXDigest::ofHash(hasher.finalize()).value());
    return 0;
  }
  const ORXDigestDomain domain = digestDomain(arguments.next("TAG"));
  const std::string input = orxCliReadDocument(arguments);
  orxCliPrint(ORXDigest::domain(domain, ORXCanonicalJSON::parse(std::string_view(input))).value());
  return 0;
}

}  // namespace

constinit const OrxCliCommand kOrxCliDigestCommand{
    "digest", "TAG [FILE] | --raw [FILE]", "print the domain digest of canonical ORX JSON, or of raw bytes",
    "With TAG, parses the document as canonical ORX JSON and prints \"sha256:\" and the SHA-256, in\n"
    "lowercase hex, of TAG, one zero byte and the value's canonical bytes. TAG is one of\n"
    "ORX_CANONICAL_TYPED_INPUT_V1, ORX_GRANT_SET_V1, ORX_DECISION_INTENT_V1, ORX_PACKAGE_IDENTITY_V1,\n"
    "ORX_POLICY_ARTIFACT_V1, ORX_VERIFIED_ARTIFACT_V1, ORX_DECISION_EVIDENCE_V1, ORX_EFFECT_RECEIPT_V1.\n"
    "With --raw, prints the plain digest of the document's bytes as they are.\n",
    runDigest};

}  // namespace ravo::orx
