#pragma once
// Unicode text helpers shared by action matching, scenarios, home control and drafting. All take and
// return UTF-8; ill-formed UTF-8 is read with each bad sequence as U+FFFD, so no input is refused.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace ravo::orx {

// Folds case and diacritics the way "en_US_POSIX" matching does (decompose, drop nonspacing marks,
// recompose, full case folding, lower-case), then trims white space and line breaks. So "  Pâuse "
// and "PAUSE" both give "pause", and the Russian "й" and "ё" fold to "и" and "е".
std::string ravoNormalizedText(std::string_view text);

// Drops leading and trailing white space and line breaks (the Unicode White_Space property).
std::string ravoTrimmedText(std::string_view text);

// The number of user-perceived characters (extended grapheme clusters).
std::size_t ravoGraphemeCount(std::string_view text);

// Whether any code point has the general category Cc (control) or Cf (format).
bool ravoContainsControlCharacter(std::string_view text);

// Whether the bytes are well-formed UTF-8 (no overlong forms, surrogates or values past U+10FFFF).
bool ravoIsValidUTF8(std::string_view text);

// Splits at every user-perceived character that is neither a letter nor a number, in any script,
// dropping empty pieces. Callers normalise first when they compare tokens.
std::vector<std::string> ravoTextTokens(std::string_view text);

}  // namespace ravo::orx
