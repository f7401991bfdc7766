#pragma once
// Test support: the text with which the module host refuses bytes, or "" when it loads them.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <ravo-orx/loader/OrxModuleLoader.h>
#include <ravo-orx/runtime/RuntimeError.h>

namespace ravo::orx {

inline std::string moduleLoadError(std::string_view name, const std::vector<std::uint8_t>& bytes) {
  try {
    internal::loadModule(name, bytes);
    return "";
  } catch (const RuntimeError& error) {
    return error.message;
  }
}

}  // namespace ravo::orx
