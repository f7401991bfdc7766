#include <ravo-orx/contracts/services/RavoModelProviderRecord.h>

namespace ravo::orx {

using State = RavoModelProviderState;
using Error = RavoModelProviderLifecycleError;

bool RavoModelProviderRecord::isLegalTransition(State from, State to) {
  if (from == to) return true;
  switch (from) {
    case State::discovered: return to == State::configured || to == State::unavailable || to == State::failed;
    case State::configured:
      return to == State::authenticated || to == State::healthy || to == State::unavailable || to == State::revoked ||
             to == State::failed;
    case State::authenticated:
      return to == State::healthy || to == State::unavailable || to == State::revoked || to == State::failed;
    case State::healthy:
    case State::eligible:
      // Between themselves, and back to configured when a setting changes.
      return to == State::configured || to == State::healthy || to == State::eligible || to == State::unavailable ||
             to == State::revoked || to == State::failed;
    case State::unavailable:
    case State::revoked:
    case State::failed: return to == State::discovered || to == State::configured;
  }
  return false;
}

RavoModelProviderRecord RavoModelProviderRecord::transition(State to, std::optional<bool> authenticationConfirmed) const {
  const bool confirmed = authenticationConfirmed.value_or(authenticationConfirmed_);
  if (!isLegalTransition(state_, to)) throw Error::invalidTransition(state_, to);
  if (to == State::eligible && descriptor_.requiresAuthentication() && !confirmed) throw Error::missingAuthentication();
  return {descriptor_, to, confirmed};
}

void RavoModelProviderRecord::validateEligibility(bool localOnly) const {
  switch (state_) {
    case State::unavailable:
    case State::revoked:
    case State::failed: throw Error::unavailable();
    case State::eligible:
      if (localOnly && descriptor_.transport() == RavoModelProviderTransport::cloud) throw Error::localOnlyViolation();
      if (descriptor_.requiresAuthentication() && !authenticationConfirmed_) throw Error::missingAuthentication();
      return;
    default: throw Error::invalidTransition(state_, State::eligible);
  }
}

RavoJSON RavoModelProviderRecord::toJSON() const {
  return RavoJSONObjectWriter()
      .add("descriptor", descriptor_)
      .add("state", state_)
      .add("authenticationConfirmed", authenticationConfirmed_)
      .take();
}

RavoModelProviderRecord RavoModelProviderRecord::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoModelProviderRecord");
  return RavoModelProviderRecord{reader.required<RavoModelProviderDescriptor>("descriptor"),
                                 reader.required<State>("state"), reader.required<bool>("authenticationConfirmed")};
}

}  // namespace ravo::orx
