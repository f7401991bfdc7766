#pragma once
// The policy runtime's load error: a message that is also its description. Construction turns every
// one into `loadError` text and never throws; only OrxPolicyRuntime::locateArtifacts() throws it to a
// caller ("Bundled ORX artifacts were not found").

#include <exception>
#include <string>
#include <utility>
#include <ravo-orx/core/ORXExport.h>

namespace ravo::orx {

struct RAVO_ORX_API RuntimeError : std::exception {
  explicit RuntimeError(std::string message) : message(std::move(message)) {}
  const char* what() const noexcept override { return message.c_str(); }

  std::string message;
};

}  // namespace ravo::orx
