#pragma once
// Thrown by the broker's set-up operations (installing manifests and grants, registering handlers).

#include <stdexcept>
#include <string>

namespace ravo::orx {

class RavoActionBrokerError : public std::runtime_error {
 public:
  enum class Code { duplicateAction, unknownAction, invalidGrant };

  RavoActionBrokerError(Code code, const std::string& message) : std::runtime_error(message), code_(code) {}

  Code code() const { return code_; }

 private:
  Code code_;
};

}  // namespace ravo::orx
