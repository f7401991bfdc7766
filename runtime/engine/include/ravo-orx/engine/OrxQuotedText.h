#pragma once
// Text that a module supplies, quoted in a refusal or a description (an import's name, an export's, a
// message of wabt's that names one): the core's excerpt of it at kOrxQuotedTextBytes, made printable
// (ORXMessageText), so no refusal grows with the module and nothing a module names reaches a terminal
// or a log as anything but text.

#include <cstddef>
#include <string>
#include <string_view>

namespace ravo::orx::internal {

inline constexpr std::size_t kOrxQuotedTextBytes = 256;

std::string orxQuotedText(std::string_view bytes, std::size_t byteLimit = kOrxQuotedTextBytes);

}  // namespace ravo::orx::internal
