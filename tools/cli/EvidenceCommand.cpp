#include <ravo-orx/host_contract/ORXDecisionEvidenceRecord.h>
#include <ravo-orx/cli/OrxCliCommand.h>
#include <ravo-orx/cli/OrxCliIO.h>

namespace ravo::orx {

namespace {

std::string_view outcomeName(ORXDecisionOutcome outcome) {
  switch (outcome) {
    case ORXDecisionOutcome::allow: return "allow";
    case ORXDecisionOutcome::deny: return "deny";
    case ORXDecisionOutcome::limit: return "limit";
  }
  return {};
}

int runEvidence(OrxCliArguments& arguments) {
  const auto record = ORXDecisionEvidenceRecord::parseCanonicalBytes(orxCliReadDocument(arguments));
  orxCliPrintJSON(RavoJSON{{"digest", record.digest().value()},
                           {"decisionOutcome", outcomeName(record.decisionOutcome())},
                           {"trustLevel", orxRawValue(record.trustLevel())}});
  return 0;
}

}  // namespace

constinit const OrxCliCommand kOrxCliEvidenceCommand{
    "evidence", "[FILE]", "read decision evidence bytes strictly and print what they record",
    "Accepts the document only when it is exactly the canonical bytes of a valid decision evidence\n"
    "record (no trailing newline), and prints its digest, decision outcome and trust level as JSON:\n"
    "{\"digest\":\"sha256:...\",\"decisionOutcome\":\"allow\",\"trustLevel\":\"schemaOnly\"}\n",
    runEvidence};

}  // namespace ravo::orx
