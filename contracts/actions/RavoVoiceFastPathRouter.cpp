#include <ravo-orx/contracts/actions/RavoVoiceFastPathRouter.h>

#include <set>

#include <ravo-orx/contracts/actions/RavoActionIntentResolver.h>
#include <ravo-orx/contracts/actions/RavoApplicationActionCatalog.h>

namespace ravo::orx {

namespace {

const std::set<RavoApplicationActionID>& playbackActionIDs() {
  using IDs = RavoPlayerActionIDs;
  static const std::set<RavoApplicationActionID> ids = {IDs::pause(), IDs::resume(), IDs::next(), IDs::previous(),
                                                        IDs::setVolume()};
  return ids;
}

}  // namespace

RavoVoiceFastPathDecision RavoVoiceFastPathRouter::route(std::string_view text) {
  auto resolution = RavoActionIntentResolver::resolve(text, RavoActionProposalOrigin::deterministicRouter,
                                                      RavoApplicationActionCatalog::descriptors());
  const RavoActionProposal* proposal = resolution.proposal();
  if (proposal && playbackActionIDs().contains(proposal->actionID())) return RavoVoiceFastPathDecision::action(*proposal);
  return RavoVoiceFastPathDecision::aiDrafting();
}

void RavoVoiceFastPathRouter::dispatch(std::string_view text, const std::function<void(const RavoActionProposal&)>& action,
                                       const std::function<void()>& aiDrafting) {
  auto decision = route(text);
  if (const RavoActionProposal* proposal = decision.proposal()) {
    action(*proposal);
  } else {
    aiDrafting();
  }
}

}  // namespace ravo::orx
