#pragma once
// Cutting texts to a length in user-perceived characters, for records that bound their texts.
// Kept apart from RavoTextNormalization so that it can join it unchanged.

#include <cstddef>
#include <string>
#include <string_view>

namespace ravo::orx {

// The first `maximum` user-perceived characters (extended grapheme clusters) of UTF-8 text. A text
// that is short enough comes back byte for byte; a cut one has each ill-formed sequence read as U+FFFD.
std::string ravoGraphemePrefix(std::string_view text, std::size_t maximum);

}  // namespace ravo::orx
