#include <ravo-orx/contracts/actions/RavoActionIntentResolver.h>
#include <ravo-orx/contracts/actions/RavoApplicationActionCatalog.h>
#include <ravo-orx/contracts/actions/RavoVoiceFastPathRouter.h>
#include <ravo-orx/cli/OrxCliCommand.h>
#include <ravo-orx/cli/OrxCliIO.h>

namespace ravo::orx {

namespace {

// A proposal without its id: the id is fresh on every run and would make the output unrepeatable.
RavoJSON proposalJSON(std::string_view kind, const RavoActionProposal& proposal) {
  return {{"kind", kind},
          {"actionID", proposal.actionID().rawValue()},
          {"arguments", RavoJSONCodec<RavoActionArguments>::encode(proposal.arguments())}};
}

RavoJSON resolutionJSON(const RavoActionIntentResolution& resolution) {
  if (const auto* proposal = resolution.proposal()) return proposalJSON("exact", *proposal);
  if (const auto* choices = resolution.choices()) {
    return {{"kind", "choices"}, {"actionIDs", RavoJSONCodec<std::vector<RavoApplicationActionID>>::encode(*choices)}};
  }
  return {{"kind", "none"}};
}

RavoJSON routeJSON(const RavoVoiceFastPathDecision& route) {
  if (const auto* proposal = route.proposal()) return proposalJSON("action", *proposal);
  return {{"kind", "aiDrafting"}};
}

int runResolve(OrxCliArguments& arguments) {
  const std::string text = arguments.next("TEXT");
  arguments.finish();
  // The router resolves as the deterministic router; the resolution is asked the same way so that the
  // two answers differ only where routing itself decides.
  const auto resolution = RavoActionIntentResolver::resolve(text, RavoActionProposalOrigin::deterministicRouter,
                                                            RavoApplicationActionCatalog::descriptors());
  orxCliPrintJSON(RavoJSON{{"resolution", resolutionJSON(resolution)},
                           {"voiceRoute", routeJSON(RavoVoiceFastPathRouter::route(text))}});
  return 0;
}

}  // namespace

constinit const OrxCliCommand kOrxCliResolveCommand{
    "resolve", "TEXT", "resolve an utterance against the built-in actions and route it as voice",
    "Prints how the built-in actions resolve TEXT and where the voice fast path sends it, as JSON:\n"
    "  resolution: {\"kind\":\"exact\",\"actionID\":...,\"arguments\":{...}}, {\"kind\":\"choices\",\n"
    "              \"actionIDs\":[...]} or {\"kind\":\"none\"}\n"
    "  voiceRoute: {\"kind\":\"action\",\"actionID\":...,\"arguments\":{...}} or {\"kind\":\"aiDrafting\"}\n"
    "Quote a TEXT of several words.\n",
    runResolve};

}  // namespace ravo::orx
