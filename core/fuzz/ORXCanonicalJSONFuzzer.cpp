// Feeds arbitrary bytes to the canonical JSON parser. Any input may be refused, but only with ORXError;
// whatever is accepted must serialize to canonical text that parses back to the same value and
// re-serializes to the same bytes.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "core/ORXCanonicalJSON.h"
#include "core/ORXError.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  ORXCanonicalValue value = ORXCanonicalValue::boolean(false);
  try {
    value = ORXCanonicalJSON::parse(std::span(data, size));
  } catch (const ORXError&) {
    return 0;
  }
  const std::string canonical = value.canonicalString();
  const ORXCanonicalValue reparsed = ORXCanonicalJSON::parse(canonical);
  if (!(reparsed == value) || reparsed.canonicalString() != canonical) std::abort();
  return 0;
}
