#pragma once
// Voice commands that plainly name a playback action run at once; everything else, navigation
// included, goes to assistant drafting, which can ask back and explain.

#include <functional>
#include <string_view>
#include <optional>

#include <ravo-orx/contracts/actions/RavoActionProposal.h>

namespace ravo::orx {

class RavoVoiceFastPathDecision {
 public:
  static RavoVoiceFastPathDecision action(RavoActionProposal proposal) {
    return RavoVoiceFastPathDecision(std::move(proposal));
  }
  static RavoVoiceFastPathDecision aiDrafting() { return RavoVoiceFastPathDecision(std::nullopt); }

  // The playback proposal to execute now, or null when the utterance goes to drafting.
  const RavoActionProposal* proposal() const { return proposal_ ? &*proposal_ : nullptr; }

  friend bool operator==(const RavoVoiceFastPathDecision&, const RavoVoiceFastPathDecision&) = default;

 private:
  explicit RavoVoiceFastPathDecision(std::optional<RavoActionProposal> proposal) : proposal_(std::move(proposal)) {}

  std::optional<RavoActionProposal> proposal_;
};

struct RavoVoiceFastPathRouter {
  // Resolves against the built-in actions with origin deterministicRouter. The proposal has no stable
  // target: the caller attaches the current playback target before execution.
  static RavoVoiceFastPathDecision route(std::string_view text);

  // Routes and calls exactly one of the two callbacks, synchronously.
  static void dispatch(std::string_view text, const std::function<void(const RavoActionProposal&)>& action,
                       const std::function<void()>& aiDrafting);
};

}  // namespace ravo::orx
