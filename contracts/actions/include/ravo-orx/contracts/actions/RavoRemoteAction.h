#pragma once
// Pause and resume aimed at playback that runs somewhere other than the local player. A request is
// bound to one exact playback target (source, generation, opaque identifier), so a late command cannot
// act on whatever happens to play later.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

enum class RavoRemoteActionID { pause, resume };
enum class RavoRemoteActionOrigin { deterministicVoice, explicitTouch };
enum class RavoRemotePlaybackSource { local, remoteProvider, appleMusic, youTube };
// Why a remote action is refused.
enum class RavoRemoteActionBlock { targetUnavailable };

template <>
struct ORXRawValueTable<RavoRemoteActionID> {
  using E = RavoRemoteActionID;
  static constexpr std::array<std::pair<E, std::string_view>, 2> entries{
      {{E::pause, "ravo.playback.pause"}, {E::resume, "ravo.playback.resume"}}};
};

template <>
struct ORXRawValueTable<RavoRemoteActionOrigin> {
  using E = RavoRemoteActionOrigin;
  static constexpr std::array<std::pair<E, std::string_view>, 2> entries{
      {{E::deterministicVoice, "deterministicVoice"}, {E::explicitTouch, "explicitTouch"}}};
};

template <>
struct ORXRawValueTable<RavoRemotePlaybackSource> {
  using E = RavoRemotePlaybackSource;
  static constexpr std::array<std::pair<E, std::string_view>, 4> entries{{{E::local, "local"},
                                                                          {E::remoteProvider, "remoteProvider"},
                                                                          {E::appleMusic, "appleMusic"},
                                                                          {E::youTube, "youTube"}}};
};

class RavoRemotePlaybackTarget {
 public:
  // Longest opaque identifier, in UTF-8 bytes.
  static constexpr std::size_t maximumIdentifierBytes = 256;

  // Nothing when the identifier is empty, too long, not UTF-8 or holds a control or format character:
  // the identifier travels to other processes and must not smuggle in line breaks or invisible text.
  static std::optional<RavoRemotePlaybackTarget> make(RavoRemotePlaybackSource source, std::uint64_t generation,
                                                      std::string opaqueIdentifier);

  RavoRemotePlaybackSource source() const { return source_; }
  std::uint64_t generation() const { return generation_; }
  const std::string& opaqueIdentifier() const { return opaqueIdentifier_; }

  friend bool operator==(const RavoRemotePlaybackTarget&, const RavoRemotePlaybackTarget&) = default;

 private:
  RavoRemotePlaybackTarget(RavoRemotePlaybackSource source, std::uint64_t generation, std::string opaqueIdentifier)
      : source_(source), generation_(generation), opaqueIdentifier_(std::move(opaqueIdentifier)) {}

  RavoRemotePlaybackSource source_;
  std::uint64_t generation_;
  std::string opaqueIdentifier_;
};

class RavoRemoteActionProposal {
 public:
  RavoRemoteActionProposal(RavoRemoteActionID actionID, RavoRemoteActionOrigin origin, RavoRemotePlaybackTarget target)
      : actionID_(actionID), origin_(origin), target_(std::move(target)) {}

  RavoRemoteActionID actionID() const { return actionID_; }
  RavoRemoteActionOrigin origin() const { return origin_; }
  const RavoRemotePlaybackTarget& target() const { return target_; }

  friend bool operator==(const RavoRemoteActionProposal&, const RavoRemoteActionProposal&) = default;

 private:
  RavoRemoteActionID actionID_;
  RavoRemoteActionOrigin origin_;
  RavoRemotePlaybackTarget target_;
};

// Permission to perform one action on one target, a bounded number of times.
class RavoScopedActionApproval {
 public:
  RavoScopedActionApproval(RavoRemoteActionID actionID, RavoRemotePlaybackTarget target, RavoRemoteActionOrigin origin,
                           std::string targetClass, std::int64_t maximumUses)
      : actionID_(actionID),
        target_(std::move(target)),
        origin_(origin),
        targetClass_(std::move(targetClass)),
        maximumUses_(maximumUses) {}

  RavoRemoteActionID actionID() const { return actionID_; }
  const RavoRemotePlaybackTarget& target() const { return target_; }
  RavoRemoteActionOrigin origin() const { return origin_; }
  const std::string& targetClass() const { return targetClass_; }
  std::int64_t maximumUses() const { return maximumUses_; }

  friend bool operator==(const RavoScopedActionApproval&, const RavoScopedActionApproval&) = default;

 private:
  RavoRemoteActionID actionID_;
  RavoRemotePlaybackTarget target_;
  RavoRemoteActionOrigin origin_;
  std::string targetClass_;
  std::int64_t maximumUses_;
};

// What is handed to the platform's playback layer.
class RavoNativeActionRequest {
 public:
  explicit RavoNativeActionRequest(RavoScopedActionApproval approval) : approval_(std::move(approval)) {}

  const RavoScopedActionApproval& approval() const { return approval_; }

  friend bool operator==(const RavoNativeActionRequest&, const RavoNativeActionRequest&) = default;

 private:
  RavoScopedActionApproval approval_;
};

}  // namespace ravo::orx
