#include <ravo-orx/contracts/services/RavoModelProviderLifecycleError.h>

#include <string>

namespace ravo::orx {

using State = RavoModelProviderState;

RavoModelProviderLifecycleError RavoModelProviderLifecycleError::invalidTransition(State from, State to) {
  return {Code::invalidTransition,
          "model provider cannot move from " + std::string(orxRawValue(from)) + " to " + std::string(orxRawValue(to)),
          from, to};
}

RavoModelProviderLifecycleError RavoModelProviderLifecycleError::missingAuthentication() {
  return {Code::missingAuthentication, "model provider credentials are not confirmed"};
}

RavoModelProviderLifecycleError RavoModelProviderLifecycleError::localOnlyViolation() {
  return {Code::localOnlyViolation, "model provider sends requests off the device"};
}

RavoModelProviderLifecycleError RavoModelProviderLifecycleError::unavailable() {
  return {Code::unavailable, "model provider is unavailable"};
}

}  // namespace ravo::orx
