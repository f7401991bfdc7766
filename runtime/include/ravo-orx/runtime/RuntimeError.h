#pragma once
// The policy runtime's load error: a message that is also its description. It never leaves the
// runtime: construction turns it into `loadError` text.

#include <exception>
#include <string>
#include <utility>

namespace ravo::orx {

struct RuntimeError : std::exception {
  explicit RuntimeError(std::string message) : message(std::move(message)) {}
  const char* what() const noexcept override { return message.c_str(); }

  std::string message;
};

}  // namespace ravo::orx
