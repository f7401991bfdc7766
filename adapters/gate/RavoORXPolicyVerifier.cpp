#include <ravo-orx/adapters/gate/RavoORXPolicyVerifier.h>

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <string_view>

#include <ravo-orx/adapters/gate/RavoORXCapability.h>
#include <ravo-orx/adapters/gate/RavoORXEffect.h>

namespace ravo::orx {

namespace {

// Commands, roles, grant bits and control modes of the authorization module.
enum class Command : std::int32_t { none = 0, play = 1, pause = 2, volume = 4, queueMove = 5, mainScreen = 6 };
constexpr std::int32_t kUnpaired = 0;
constexpr std::int32_t kController = 2;
constexpr std::int32_t kPlaybackGrant = 1;
constexpr std::int32_t kVolumeGrant = 2;
constexpr std::int32_t kQueueGrant = 4;
constexpr std::int32_t kMainScreenGrant = 32;
constexpr std::int32_t kSharedControl = 1;
constexpr std::int32_t kGateSourceClass = 2;

// By the action codes of the built-in catalog (10-14 playback, 20-24 navigation) and of remote
// requests (1 pause, 2 resume).
Command command(RavoORXEffect effect, std::int64_t actionCode) {
  switch (effect) {
    case RavoORXEffect::transport:
      if (actionCode == 1 || actionCode == 10) return Command::pause;
      if (actionCode == 2 || actionCode == 11) return Command::play;
      if (actionCode == 12 || actionCode == 13) return Command::queueMove;
      return Command::none;
    case RavoORXEffect::volume:
      return actionCode == 14 ? Command::volume : Command::none;
    case RavoORXEffect::navigate:
      return actionCode >= 20 && actionCode <= 24 ? Command::mainScreen : Command::none;
    default:
      return Command::none;
  }
}

std::int32_t grantBits(std::string_view capability) {
  auto mapped = orxFromRawValue<RavoORXCapability>(capability);
  if (mapped == RavoORXCapability::mediaTransport) return kPlaybackGrant | kQueueGrant;
  if (mapped == RavoORXCapability::audioVolume) return kVolumeGrant;
  if (mapped == RavoORXCapability::uiNavigate) return kMainScreenGrant;
  return 0;
}

std::int32_t grantFlags(const RavoActionGrant& grant) {
  std::int32_t flags = 0;
  for (const auto& capability : grant.allowedCapabilities()) flags |= grantBits(capability.rawValue());
  return flags;
}

std::int32_t clamped(std::int64_t value) {
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, std::numeric_limits<std::int32_t>::min(),
                                                            std::numeric_limits<std::int32_t>::max()));
}

// The integer the intent's argument `name` carries: an i32 itself, or an enum's discriminant.
std::optional<std::int64_t> integerArgument(const ORXDecisionIntent& intent, std::string_view name) {
  for (const auto& argument : intent.typedArguments()) {
    if (argument.name() != name) continue;
    ORXCanonicalValue value = argument.value().canonicalValue();
    if (argument.value().kind() == ORXTypedValue::Kind::i32) return value.asInteger();
    if (argument.value().kind() == ORXTypedValue::Kind::enumeration) {
      const ORXCanonicalValue* discriminant = value.asObject()->value("discriminant");
      return discriminant ? discriminant->asInteger() : std::nullopt;
    }
    return std::nullopt;
  }
  return std::nullopt;
}

}  // namespace

RavoORXPolicyVerifier::RavoORXPolicyVerifier(std::shared_ptr<OrxPolicyRuntime> runtime, RavoWallClock clock)
    : runtime_(std::move(runtime)), clock_(std::move(clock)) {
  if (!runtime_ || !clock_) throw std::invalid_argument("policy verifier needs a runtime and a clock");
}

std::optional<AuthorizationFacts> RavoORXPolicyVerifier::authorizationFacts(const RavoORXShadowCandidate& candidate,
                                                                            const RavoActionGrant& grant,
                                                                            RavoTimePoint now) {
  const ORXDecisionIntent& intent = candidate.intent();
  if (candidate.generation().epoch() != grant.generation() || intent.generation() != candidate.generation() ||
      intent.digest() != candidate.intentDigest()) {
    return std::nullopt;
  }
  auto effect = orxFromRawValue<RavoORXEffect>(intent.effectType());
  auto actionCode = integerArgument(intent, "action_code");
  if (!effect || !actionCode) return std::nullopt;
  Command commandCode = command(*effect, *actionCode);
  if (commandCode == Command::none) return std::nullopt;

  auto sourceClass = integerArgument(intent, "source_class");
  auto remaining = std::chrono::duration_cast<std::chrono::milliseconds>(grant.expiresAt() - now);
  return AuthorizationFacts{.role = sourceClass == kGateSourceClass ? kController : kUnpaired,
                            .command = static_cast<std::int32_t>(commandCode),
                            .grantFlags = grantFlags(grant),
                            .tokenAgeMilliseconds = 0,
                            .tokenTTLMilliseconds = clamped(remaining.count()),
                            .rateUsed = 0,
                            .rateLimit = clamped(grant.maxUses()),
                            .controlMode = kSharedControl};
}

bool RavoORXPolicyVerifier::operator()(const RavoORXShadowCandidate& candidate,
                                       const RavoActionGrant& grant) const noexcept {
  try {
    auto facts = authorizationFacts(candidate, grant, clock_());
    return facts && runtime_->authorize(*facts).isAllowed;
  } catch (...) {
    // Only a hand-built candidate whose values cannot be encoded, or a failing clock, gets here;
    // neither verifies anything.
    return false;
  }
}

}  // namespace ravo::orx
