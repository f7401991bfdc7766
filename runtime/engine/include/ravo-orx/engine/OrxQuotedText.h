#pragma once
// Text that a module supplies, quoted in a refusal or a description (an import's name, an export's, a
// message of wabt's that names one): at most kOrxQuotedTextBytes bytes of it, cut before a character
// that would pass the limit and then ended with "…"; control characters (U+0000–U+001F, U+007F–U+009F)
// and bytes that are not UTF-8 written as \xNN. So no refusal grows with the module, and nothing a
// module names reaches a terminal or a log as anything but text. The command line prints its error
// lines through it too, without the limit: quoting quoted text changes nothing.

#include <cstddef>
#include <string>
#include <string_view>

namespace ravo::orx::internal {

inline constexpr std::size_t kOrxQuotedTextBytes = 256;

std::string orxQuotedText(std::string_view bytes, std::size_t byteLimit = kOrxQuotedTextBytes);

}  // namespace ravo::orx::internal
