#pragma once
// The strict parser of canonical JSON. It accepts the value subset the serializer produces (written with
// any whitespace, escapes and key order) and refuses everything else with ORXError::parse. Parsing a
// text and serializing the result tells whether the text was canonical.

#include <cstdint>
#include <span>
#include <string_view>

#include "core/ORXCanonicalValue.h"
#include "core/ORXError.h"

namespace ORXCanonicalJSON {

// Arrays and objects nest at most this deep. The parser recurses once per level, so the limit keeps
// hostile input from exhausting the stack; no record of the host contract comes near it.
inline constexpr int kMaxNestingDepth = 512;

ORXCanonicalValue parse(std::string_view text);
ORXCanonicalValue parse(std::span<const std::uint8_t> bytes);

}  // namespace ORXCanonicalJSON
