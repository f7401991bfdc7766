#include <ravo-orx/contracts/actions/RavoActionIntentResolver.h>

#include <unicode/regex.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <charconv>
#include <functional>
#include <memory>
#include <optional>

#include <ravo-orx/contracts/actions/RavoPlayerActionIDs.h>
#include <ravo-orx/contracts/support/RavoTextNormalization.h>

namespace ravo::orx {

namespace {

// Terms shorter than this never match inside a longer text: "next" may, "да" may not.
constexpr std::size_t kMinimumContainedTermLength = 4;

// A number 0-100 not preceded by a digit, optionally followed by a percent sign. The look-behind
// needs ICU's engine. Null if the pattern could not be built, which leaves volume to phrase matching.
const icu::RegexPattern* volumePattern() {
  static const std::unique_ptr<icu::RegexPattern> pattern = [] {
    UErrorCode status = U_ZERO_ERROR;
    UParseError parseError;
    std::unique_ptr<icu::RegexPattern> compiled(
        icu::RegexPattern::compile(icu::UnicodeString::fromUTF8("(?<!\\d)(100|[1-9]?\\d)(?:\\s*%)?"), 0, parseError, status));
    return U_SUCCESS(status) ? std::move(compiled) : nullptr;
  }();
  return pattern.get();
}

// The first volume percentage in the text, as a level from 0 to 1.
std::optional<double> volumeLevel(std::string_view normalized) {
  const icu::RegexPattern* pattern = volumePattern();
  if (!pattern) return std::nullopt;
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString text = icu::UnicodeString::fromUTF8(icu::StringPiece(normalized.data(), static_cast<int32_t>(normalized.size())));
  std::unique_ptr<icu::RegexMatcher> matcher(pattern->matcher(text, status));
  if (U_FAILURE(status) || !matcher->find(status) || U_FAILURE(status)) return std::nullopt;
  std::string digits;
  matcher->group(1, status).toUTF8String(digits);
  if (U_FAILURE(status)) return std::nullopt;
  // \d also matches digits of other scripts; like the rest of the system, only ASCII digits read as a number.
  int percent = 0;
  auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), percent);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return std::clamp(percent / 100.0, 0.0, 1.0);
}

RavoActionProposal proposalFor(const RavoApplicationActionDescriptor& descriptor, RavoActionArguments arguments,
                               RavoActionProposalOrigin origin) {
  return RavoActionProposal(RavoUUID::random(), descriptor.id(), std::nullopt, std::move(arguments), origin);
}

using TermTest = std::function<bool(const std::string& term)>;

// Matches each descriptor at most once, in the given order; nothing when no descriptor matched.
std::optional<RavoActionIntentResolution> resolveByTerms(const std::vector<RavoApplicationActionDescriptor>& descriptors,
                                                         const TermTest& matches, RavoActionProposalOrigin origin) {
  std::vector<const RavoApplicationActionDescriptor*> matched;
  for (const auto& descriptor : descriptors) {
    const auto& terms = descriptor.searchTerms();
    if (std::any_of(terms.begin(), terms.end(), matches)) matched.push_back(&descriptor);
  }
  if (matched.empty()) return std::nullopt;
  if (matched.size() == 1) {
    return RavoActionIntentResolution::exact(proposalFor(*matched.front(), matched.front()->defaultArguments(), origin));
  }
  std::vector<RavoApplicationActionID> ids;
  for (const auto* descriptor : matched) ids.push_back(descriptor->id());
  return RavoActionIntentResolution::choices(std::move(ids));
}

}  // namespace

RavoActionIntentResolution RavoActionIntentResolution::choices(std::vector<RavoApplicationActionID> actionIDs) {
  std::sort(actionIDs.begin(), actionIDs.end());
  return {Payload(std::move(actionIDs))};
}

RavoActionIntentResolution RavoActionIntentResolver::resolve(std::string_view text, RavoActionProposalOrigin origin,
                                                             const std::vector<RavoApplicationActionDescriptor>& descriptors) {
  const std::string normalized = ravoNormalizedText(text);
  if (normalized.empty()) return RavoActionIntentResolution::none();

  if (normalized.find("громк") != std::string::npos || normalized.find("volume") != std::string::npos) {
    auto level = volumeLevel(normalized);
    auto volume = std::find_if(descriptors.begin(), descriptors.end(),
                               [](const auto& d) { return d.id() == RavoPlayerActionIDs::setVolume(); });
    if (level && volume != descriptors.end()) {
      RavoActionArguments arguments = {{"level", RavoActionValue::number(*level)}};
      // A volume phrase that the action refuses is not reinterpreted as some other action.
      if (!volume->validate(arguments).empty()) return RavoActionIntentResolution::none();
      return RavoActionIntentResolution::exact(proposalFor(*volume, std::move(arguments), origin));
    }
  }

  if (auto exact = resolveByTerms(descriptors, [&](const std::string& term) { return term == normalized; }, origin)) {
    return *exact;
  }
  auto contained = resolveByTerms(
      descriptors,
      [&](const std::string& term) {
        return normalized.find(term) != std::string::npos && ravoGraphemeCount(term) >= kMinimumContainedTermLength;
      },
      origin);
  return contained ? *contained : RavoActionIntentResolution::none();
}

}  // namespace ravo::orx
