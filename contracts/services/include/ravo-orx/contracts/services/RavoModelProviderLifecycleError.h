#pragma once
// Why a provider cannot move to a state or serve a request. Carries the states involved so that the
// caller can word its own message.

#include <optional>
#include <stdexcept>
#include <string>

#include <ravo-orx/contracts/services/RavoModelProviderLabels.h>

namespace ravo::orx {

class RavoModelProviderLifecycleError : public std::runtime_error {
 public:
  enum class Code { invalidTransition, missingAuthentication, localOnlyViolation, unavailable };

  static RavoModelProviderLifecycleError invalidTransition(RavoModelProviderState from, RavoModelProviderState to);
  static RavoModelProviderLifecycleError missingAuthentication();
  static RavoModelProviderLifecycleError localOnlyViolation();
  static RavoModelProviderLifecycleError unavailable();

  Code code() const { return code_; }
  // The refused move, for invalidTransition.
  std::optional<RavoModelProviderState> from() const { return from_; }
  std::optional<RavoModelProviderState> to() const { return to_; }

  friend bool operator==(const RavoModelProviderLifecycleError& a, const RavoModelProviderLifecycleError& b) {
    return a.code_ == b.code_ && a.from_ == b.from_ && a.to_ == b.to_;
  }

 private:
  RavoModelProviderLifecycleError(Code code, const std::string& message,
                                  std::optional<RavoModelProviderState> from = std::nullopt,
                                  std::optional<RavoModelProviderState> to = std::nullopt)
      : std::runtime_error(message), code_(code), from_(from), to_(to) {}

  Code code_;
  std::optional<RavoModelProviderState> from_;
  std::optional<RavoModelProviderState> to_;
};

}  // namespace ravo::orx
