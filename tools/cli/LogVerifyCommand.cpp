#include <ravo-orx/core/ORXDigest.h>
#include <ravo-orx/cli/OrxCliCommand.h>
#include <ravo-orx/cli/OrxCliDecisionLog.h>

namespace ravo::orx {

namespace {

int runVerify(OrxCliArguments& arguments) {
  const auto head = arguments.option("--head");
  if (head) {
    try {
      ORXDigest checked(*head);
    } catch (const ORXError&) {
      throw OrxCliUsageError("--head must be sha256: followed by 64 lowercase hex digits");
    }
  }
  const auto file = arguments.next("FILE");
  arguments.finish();
  const auto verifier = orxCliVerifyLog(file, head);
  orxCliPrintLogSummary(verifier);
  orxCliThrowLogProblem(file, verifier);
  return 0;
}

}  // namespace

constinit const OrxCliCommand kOrxCliLogVerifyCommand{
    "verify", "FILE|- [--head DIGEST]", "check a decision log's form, chain and sequence",
    "Reads the log line by line and checks that every line is canonical JSON and a record or a seal,\n"
    "that every seal lists exactly the digests of the records before it, in order, names the seal\n"
    "before it and continues its block number and sequence range, and that the file does not end in\n"
    "the middle of a line. Prints lines, blocks, records per kind and source, the gaps the log declared\n"
    "(records its full buffer dropped), the records not sealed yet, and the head: the digest of the last\n"
    "seal. With --head, that digest must be DIGEST, which alone shows that no whole block was cut off the\n"
    "end. The first problem found is one line on standard error naming the line and the record, with\n"
    "exit status 1.\n",
    runVerify};

}  // namespace ravo::orx
