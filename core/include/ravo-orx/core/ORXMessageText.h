#pragma once
// What a message quotes of its input. Error texts end up in terminals and logs, so a file name or a
// piece of a document in one shows control bytes and bytes outside UTF-8 as escapes, never as
// themselves (a carriage return would overwrite the line, an escape sequence drive the terminal), and
// a long quote is cut to a length, always between two characters.

#include <cstddef>
#include <string>
#include <string_view>

namespace ravo::orx::internal {

namespace ORXMessageText {

// `text` with each control character (bytes below 0x20 and 0x7F, and U+0080–U+009F) written as \n, \r,
// \t or \xHH per byte, and each byte that is not part of a well-formed UTF-8 character as \xHH.
// Everything else is kept as it is.
std::string printable(std::string_view text);

// The start of `text` of at most `maximumBytes`, followed by "…" when anything was cut. The cut falls
// before the character it would split, so a well-formed text stays well formed.
std::string excerpt(std::string_view text, std::size_t maximumBytes);

}  // namespace ORXMessageText

}  // namespace ravo::orx::internal
