#pragma once
// Reading artifact files whole, with the operating system's reason when that fails.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <vector>

namespace ravo::orx::internal {

// The largest artifact file read. The approved files are a few KiB and their digests are fixed, so
// anything larger can only fail its digest check: it is refused before a byte of it is read.
inline constexpr std::size_t kOrxArtifactFileByteLimit = 4u << 20;

// Only regular files are read, and they are opened without blocking, so a FIFO, a device or a socket
// in the artifacts directory is refused at once instead of stalling or flooding the reader.
// Throws RuntimeError: "could not read <path>: <reason>".
std::vector<std::uint8_t> readArtifactFile(const std::filesystem::path& path);

}  // namespace ravo::orx::internal
