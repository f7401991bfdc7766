#pragma once
// The strict parser of canonical JSON. It accepts the value subset the serializer produces (written with
// any whitespace, escapes and key order) and refuses everything else with ORXError::parse. Parsing a
// text and serializing the result tells whether the text was canonical.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include <ravo-orx/core/ORXCanonicalValue.h>
#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXExport.h>

namespace ravo::orx {

namespace ORXCanonicalJSON {

// Arrays and objects nest at most this deep. The parser recurses once per level, so the limit keeps
// hostile input from exhausting the stack; no record of the host contract comes near it. Values built
// in code are held to the same depth.
inline constexpr int kMaxNestingDepth = ORXCanonicalValue::kMaxNestingDepth;

RAVO_ORX_API ORXCanonicalValue parse(std::string_view text);
RAVO_ORX_API ORXCanonicalValue parse(std::span<const std::uint8_t> bytes);

// The canonical text of the document: the bytes parse(text).canonicalString() gives, refused with the
// same errors, but written straight from the text without building the value. Objects whose keys
// arrive out of order are put in order when they close, or, past 64 KiB, by reading the text a second
// time. The output is never longer than the text. Besides the two, canonicalize keeps 4 bytes (8 past
// 4 GiB) per member of the objects still open and of the large ones read again, under two thirds of
// the text since a member takes at least six bytes, and at most some 128 KiB for the small objects it
// reorders: its peak memory stays within three times the text.
RAVO_ORX_API std::string canonicalize(std::string_view text);

}  // namespace ORXCanonicalJSON

}  // namespace ravo::orx
