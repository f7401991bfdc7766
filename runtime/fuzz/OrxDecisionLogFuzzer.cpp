// Reads arbitrary bytes as a decision log, line by line, through the verifier. It must never crash,
// and whatever it accepts must be a log: every record it read is sealed or reported as not sealed yet,
// and a log it accepts reads the same a second time.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include <ravo-orx/runtime/OrxDecisionLogVerifier.h>

namespace {

struct Verdict {
  std::optional<std::string> problem;
  std::uint64_t records = 0;
  std::optional<std::string> head;
};

Verdict verify(std::string_view input) {
  ravo::orx::internal::OrxDecisionLogVerifier verifier;
  std::uint64_t read = 0;
  std::size_t start = 0;
  for (std::size_t newline; (newline = input.find('\n', start)) != std::string_view::npos; start = newline + 1) {
    if (!verifier.read(input.substr(start, newline - start))) break;
    ++read;
  }
  verifier.finish(start < input.size(), std::nullopt);
  if (!verifier.problem() && verifier.sealedRecords() + verifier.unsealedRecords() + verifier.blocks() != read) {
    std::abort();  // a line was taken without being counted as a record or a seal
  }
  return {verifier.problem(), verifier.sealedRecords(), verifier.head()};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const Verdict first = verify(input);
  const Verdict second = verify(input);
  if (first.problem != second.problem || first.records != second.records || first.head != second.head) std::abort();
  return 0;
}
