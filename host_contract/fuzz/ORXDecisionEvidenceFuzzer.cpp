// Feeds arbitrary bytes to the strict decision evidence reader. Any input may be refused, but only with
// ORXError; whatever is accepted must re-serialize to exactly the bytes that were read.

#include <cstddef>
#include <cstdint>
#include <algorithm>
#include <cstdlib>
#include <span>
#include <vector>

#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/host_contract/ORXDecisionEvidenceRecord.h>

using namespace ravo::orx;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span<const std::uint8_t> bytes(data, size);
  try {
    const ORXDecisionEvidenceRecord record = ORXDecisionEvidenceRecord::parseCanonicalBytes(bytes);
    const std::vector<std::uint8_t> written = record.canonicalBytes();
    if (!std::equal(written.begin(), written.end(), bytes.begin(), bytes.end())) std::abort();
    if (!(ORXDecisionEvidenceRecord::parseCanonicalBytes(written) == record)) std::abort();
  } catch (const ORXError&) {
  }
  return 0;
}
