#pragma once
// Test support: the text with which the module host refuses bytes, or "" when it loads them.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/LoadedModule.h"
#include "runtime/RuntimeError.h"

inline std::string moduleLoadError(std::string_view name, const std::vector<std::uint8_t>& bytes) {
  try {
    LoadedModule::instantiate(name, bytes);
    return "";
  } catch (const RuntimeError& error) {
    return error.message;
  }
}
