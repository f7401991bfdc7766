#pragma once
// Test support: assembles WebAssembly text with the wat2wasm the build already depends on.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include <unistd.h>

namespace ravo::orx {

inline std::vector<std::uint8_t> readTestFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + path.string());
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline std::vector<std::uint8_t> assembleWat(const std::string& text) {
  const auto directory = std::filesystem::temp_directory_path() / ("orx-wat-" + std::to_string(::getpid()));
  std::filesystem::create_directories(directory);
  const auto source = directory / "module.wat";
  const auto binary = directory / "module.wasm";
  std::ofstream(source) << text;
  const std::string command = "wat2wasm '" + source.string() + "' -o '" + binary.string() + "' 2>&1";
  if (std::system(command.c_str()) != 0) throw std::runtime_error("wat2wasm refused:\n" + text);
  auto bytes = readTestFile(binary);
  std::filesystem::remove_all(directory);
  return bytes;
}

}  // namespace ravo::orx
