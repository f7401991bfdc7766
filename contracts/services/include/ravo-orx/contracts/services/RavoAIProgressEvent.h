#pragma once
// One step of the assistant's handling of a request, reported so that a surface can show progress:
// the phase reached and the kind of operation under way. Sequence numbers and source codes belong to
// the components that emit events; the record stores them as given.

#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

enum class RavoAIProgressPhase {
  received,
  localResolution,
  capabilityCheck,
  hostEffect,
  providerLookup,
  replyReady,
  blocked,
  failed,
};

enum class RavoAIOperation {
  navigation,
  mediaTransport,
  audioVolume,
  librarySearch,
  mediaPlayback,
  providerPlayback,
  playlistWrite,
  nowPlayingRead,
  assistantReply,
  smartHomeControl,
  scenarioLoopback,
};

template <>
struct ORXRawValueTable<RavoAIProgressPhase> {
  using E = RavoAIProgressPhase;
  static constexpr std::array<std::pair<E, std::string_view>, 8> entries{{{E::received, "received"},
                                                                          {E::localResolution, "localResolution"},
                                                                          {E::capabilityCheck, "capabilityCheck"},
                                                                          {E::hostEffect, "hostEffect"},
                                                                          {E::providerLookup, "providerLookup"},
                                                                          {E::replyReady, "replyReady"},
                                                                          {E::blocked, "blocked"},
                                                                          {E::failed, "failed"}}};
};

template <>
struct ORXRawValueTable<RavoAIOperation> {
  using E = RavoAIOperation;
  static constexpr std::array<std::pair<E, std::string_view>, 11> entries{{{E::navigation, "navigation"},
                                                                           {E::mediaTransport, "mediaTransport"},
                                                                           {E::audioVolume, "audioVolume"},
                                                                           {E::librarySearch, "librarySearch"},
                                                                           {E::mediaPlayback, "mediaPlayback"},
                                                                           {E::providerPlayback, "providerPlayback"},
                                                                           {E::playlistWrite, "playlistWrite"},
                                                                           {E::nowPlayingRead, "nowPlayingRead"},
                                                                           {E::assistantReply, "assistantReply"},
                                                                           {E::smartHomeControl, "smartHomeControl"},
                                                                           {E::scenarioLoopback, "scenarioLoopback"}}};
};

class RavoAIProgressEvent {
 public:
  RavoAIProgressEvent(RavoUUID id, std::int64_t sequence, RavoAIProgressPhase phase, RavoAIOperation operation,
                      std::int32_t source, RavoTimePoint timestamp)
      : id_(id), sequence_(sequence), phase_(phase), operation_(operation), source_(source), timestamp_(timestamp) {}

  const RavoUUID& id() const { return id_; }
  std::int64_t sequence() const { return sequence_; }
  RavoAIProgressPhase phase() const { return phase_; }
  RavoAIOperation operation() const { return operation_; }
  std::int32_t source() const { return source_; }
  RavoTimePoint timestamp() const { return timestamp_; }

  RavoJSON toJSON() const;
  static RavoAIProgressEvent fromJSON(const RavoJSON& json);

  friend bool operator==(const RavoAIProgressEvent&, const RavoAIProgressEvent&) = default;

 private:
  RavoUUID id_;
  std::int64_t sequence_;
  RavoAIProgressPhase phase_;
  RavoAIOperation operation_;
  std::int32_t source_;
  RavoTimePoint timestamp_;
};

}  // namespace ravo::orx
