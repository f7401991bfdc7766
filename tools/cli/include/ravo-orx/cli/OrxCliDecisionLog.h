#pragma once
// What `log verify` and `log replay` share: a decision log read through the verifier line by line, and
// the summary of what it proved.

#include <optional>
#include <string>

#include <ravo-orx/runtime/OrxDecisionLogVerifier.h>

namespace ravo::orx {

// Verifies the log in `file` ('-' or none: standard input), handing each record to `onRecord` as it
// is read; the verifier says what it found. With `head`, the last seal must be that digest. Throws
// std::runtime_error when the file cannot be read or holds a line over the line limit.
internal::OrxDecisionLogVerifier orxCliVerifyLog(const std::optional<std::string>& file,
                                                 const std::optional<std::string>& head,
                                                 internal::OrxDecisionLogVerifier::RecordRead onRecord = {});

// Prints what the verifier proved: lines, blocks, records per kind and source, the declared gaps, the
// records not sealed yet and the head.
void orxCliPrintLogSummary(const internal::OrxDecisionLogVerifier& verifier);

// Throws "<file>: <problem>" when the verifier found one.
void orxCliThrowLogProblem(const std::optional<std::string>& file, const internal::OrxDecisionLogVerifier& verifier);

}  // namespace ravo::orx
