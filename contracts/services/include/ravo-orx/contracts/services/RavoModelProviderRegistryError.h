#pragma once
// Why the provider registry refused to be built or to find a provider.

#include <stdexcept>
#include <string>
#include <utility>

#include <ravo-orx/contracts/services/RavoModelProviderID.h>

namespace ravo::orx {

class RavoModelProviderRegistryError : public std::runtime_error {
 public:
  enum class Code { duplicateDescriptor, unknownProvider };

  static RavoModelProviderRegistryError duplicateDescriptor(const RavoModelProviderID& id) {
    return {Code::duplicateDescriptor, id, "duplicate model provider \"" + id.rawValue() + "\""};
  }
  static RavoModelProviderRegistryError unknownProvider(const RavoModelProviderID& id) {
    return {Code::unknownProvider, id, "unknown model provider \"" + id.rawValue() + "\""};
  }

  Code code() const { return code_; }
  const RavoModelProviderID& providerID() const { return providerID_; }

  friend bool operator==(const RavoModelProviderRegistryError& a, const RavoModelProviderRegistryError& b) {
    return a.code_ == b.code_ && a.providerID_ == b.providerID_;
  }

 private:
  RavoModelProviderRegistryError(Code code, RavoModelProviderID providerID, const std::string& message)
      : std::runtime_error(message), code_(code), providerID_(std::move(providerID)) {}

  Code code_;
  RavoModelProviderID providerID_;
};

}  // namespace ravo::orx
