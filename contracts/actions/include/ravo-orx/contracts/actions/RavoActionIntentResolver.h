#pragma once
// Turns an utterance that plainly names one action ("пауза", "set volume 40%", "open music") into a
// proposal without any language model. Pure and stateless; it never executes anything.
//
// The text is normalised like search terms. A volume phrase ("volume", or the stem "громк") with a
// number 0-100 becomes a volume proposal at that percentage. Otherwise a search term equal to the text
// wins; failing that, a search term of at least four characters contained in the text. One matching
// action gives an exact proposal with the action's default arguments, several give a choice.

#include <string_view>
#include <vector>

#include <ravo-orx/contracts/actions/RavoActionIntentResolution.h>
#include <ravo-orx/contracts/actions/RavoApplicationActionDescriptor.h>

namespace ravo::orx {

struct RavoActionIntentResolver {
  // Proposals carry a fresh id, no stable target and `origin`.
  static RavoActionIntentResolution resolve(std::string_view text, RavoActionProposalOrigin origin,
                                            const std::vector<RavoApplicationActionDescriptor>& descriptors);
};

}  // namespace ravo::orx
