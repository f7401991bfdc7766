#pragma once
// wabt's module reader reserves room for the declared number of data segments as soon as it reads the
// data count section, before anything validates it; a module of a few bytes declaring four billion
// segments would exhaust memory inside the reader. The host therefore checks that declaration against
// the module's size (every segment takes at least one byte) before handing the bytes to the reader.
// Malformed section framing is left to the reader, which refuses it with its own error.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

// The refusal text, or nothing when the declared data count is plausible.
std::optional<std::string> findImplausibleDataCount(const std::uint8_t* bytes, std::size_t size);
