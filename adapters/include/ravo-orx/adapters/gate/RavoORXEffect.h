#pragma once
// The effects the gate can put before policy, each reported to progress surfaces as one operation.

#include <array>
#include <string_view>
#include <utility>

#include <ravo-orx/contracts/services/RavoAIProgressEvent.h>
#include <ravo-orx/core/ORXRawValue.h>

namespace ravo::orx {

enum class RavoORXEffect {
  navigate,
  transport,
  volume,
  librarySearch,
  mediaPlay,
  appleMusicPlay,
  playlistWrite,
  assistantReply,
  mediaRead,
  smartHomeLightControl,
  localNotification,
};

template <>
struct ORXRawValueTable<RavoORXEffect> {
  using E = RavoORXEffect;
  static constexpr std::array<std::pair<E, std::string_view>, 11> entries{{
      {E::navigate, "ravo.effect.ui.navigate"},
      {E::transport, "ravo.effect.media.transport"},
      {E::volume, "ravo.effect.audio.volume"},
      {E::librarySearch, "ravo.effect.library.search"},
      {E::mediaPlay, "ravo.effect.media.play"},
      {E::appleMusicPlay, "ravo.effect.music.apple.play"},
      {E::playlistWrite, "ravo.effect.library.playlist.write"},
      {E::assistantReply, "ravo.effect.assistant.reply"},
      {E::mediaRead, "ravo.effect.media.read"},
      {E::smartHomeLightControl, "ravo.effect.home.light.control"},
      {E::localNotification, "ravo.effect.notification.local"},
  }};
};

// The operation a progress event reports while an action with this effect is handled. Local
// notifications are how scenarios loop back to the person, hence `scenarioLoopback`.
constexpr RavoAIOperation ravoORXProgressOperation(RavoORXEffect effect) {
  using E = RavoORXEffect;
  using O = RavoAIOperation;
  switch (effect) {
    case E::navigate:
      return O::navigation;
    case E::transport:
      return O::mediaTransport;
    case E::volume:
      return O::audioVolume;
    case E::librarySearch:
      return O::librarySearch;
    case E::mediaPlay:
      return O::mediaPlayback;
    case E::appleMusicPlay:
      return O::providerPlayback;
    case E::playlistWrite:
      return O::playlistWrite;
    case E::assistantReply:
      return O::assistantReply;
    case E::mediaRead:
      return O::nowPlayingRead;
    case E::smartHomeLightControl:
      return O::smartHomeControl;
    case E::localNotification:
      return O::scenarioLoopback;
  }
  return O::scenarioLoopback;
}

}  // namespace ravo::orx
