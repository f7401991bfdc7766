// Feeds arbitrary bytes to the canonical JSON parser and to the canonicalizer. Any input may be
// refused, but only with ORXError, and both must refuse it with the same text; whatever is accepted
// must canonicalize to the text the parsed value serializes to, which parses back to the same value
// and re-serializes to the same bytes.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include <ravo-orx/core/ORXCanonicalJSON.h>
#include <ravo-orx/core/ORXError.h>

using namespace ravo::orx;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  std::optional<std::string> canonicalized;
  std::string canonicalizeError;
  try {
    canonicalized = ORXCanonicalJSON::canonicalize(text);
  } catch (const ORXError& error) {
    canonicalizeError = error.description();
  }
  std::optional<ORXCanonicalValue> value;
  try {
    value = ORXCanonicalJSON::parse(text);
  } catch (const ORXError& error) {
    if (canonicalized || error.description() != canonicalizeError) std::abort();
    return 0;
  }
  const std::string canonical = value->canonicalString();
  if (canonicalized != canonical) std::abort();
  const ORXCanonicalValue reparsed = ORXCanonicalJSON::parse(canonical);
  if (!(reparsed == *value) || reparsed.canonicalString() != canonical) std::abort();
  return 0;
}
