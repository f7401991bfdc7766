#pragma once
// Reading artifact files whole, with the operating system's reason when that fails.

#include <cstdint>
#include <filesystem>
#include <vector>

// Throws RuntimeError: "could not read <path>: <reason>".
std::vector<std::uint8_t> readArtifactFile(const std::filesystem::path& path);
