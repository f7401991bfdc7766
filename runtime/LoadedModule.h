#pragma once
// The module host: one instantiated policy module, with the digest of the bytes it was made from.

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "runtime/OrxModuleInstance.h"

class LoadedModule {
 public:
  // Instantiates verified bytes. Throws RuntimeError: "Could not instantiate ORX module <name>: <engine
  // text>" or "ORX module <name> has no decide export".
  static std::unique_ptr<LoadedModule> instantiate(std::string_view name, std::span<const std::uint8_t> bytes,
                                                   std::string digest);

  LoadedModule(std::unique_ptr<OrxModuleInstance> instance, std::string digest);

  // 64 lowercase hex digits: SHA-256 of the module's bytes.
  const std::string& digest() const { return digest_; }

  // One `decide` call; never throws. Callers serialise calls (the runtime holds its lock).
  OrxInvocation invoke(std::span<const std::int32_t> arguments) noexcept;

 private:
  std::unique_ptr<OrxModuleInstance> instance_;
  std::string digest_;
};
