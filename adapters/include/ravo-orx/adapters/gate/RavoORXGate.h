#pragma once
// Turns action proposals into the host-contract records of a policy decision (a generation fence, a
// capability observation, a canonical typed input and a decision intent) and into progress events.
//
// Fence and observation identifiers mix in an activation identifier: a random UUID, lower-cased,
// created once per process on first use, so identifiers from one run of the application never
// collide with those of another. Everything else in a candidate depends only on the proposal and
// the epoch, so two runs agree on the proposal digest.

#include <cstdint>
#include <string_view>

#include <ravo-orx/adapters/gate/RavoORXActionProposal.h>
#include <ravo-orx/adapters/gate/RavoORXShadowCandidate.h>
#include <ravo-orx/contracts/actions/RavoRemoteAction.h>
#include <ravo-orx/contracts/services/RavoAIProgressEvent.h>
#include <ravo-orx/core/ORXError.h>

namespace ravo::orx {

namespace RavoORXGate {

// Throws the ORXError of the first record that refuses its parts, e.g. for a target class that is
// not a qualified lower-case identifier or a negative epoch.
RavoORXShadowCandidate shadowCandidate(const RavoORXActionProposal& proposal, std::int64_t generationEpoch);

// As above, under the given activation identifier (lower-cased) instead of this process's: replays a
// recorded run byte for byte, and lets tests pin the exact bytes.
RavoORXShadowCandidate shadowCandidate(const RavoORXActionProposal& proposal, std::int64_t generationEpoch,
                                       std::string_view activationIdentifier);

// A remote pause (action code 1) or resume (2) of the approved target, as a transport proposal from
// the user interface when the approval came from an explicit touch and from the router otherwise.
RavoORXActionProposal actionProposal(const RavoNativeActionRequest& request);

RavoORXShadowCandidate shadowCandidate(const RavoNativeActionRequest& request, std::int64_t generationEpoch);

// A fresh event stamped with the current wall-clock time, reporting the operation of the proposal's
// effect and the proposal's source as its raw value.
RavoAIProgressEvent progressEvent(const RavoORXActionProposal& proposal, std::int64_t sequence,
                                  RavoAIProgressPhase phase);

}  // namespace RavoORXGate

}  // namespace ravo::orx
