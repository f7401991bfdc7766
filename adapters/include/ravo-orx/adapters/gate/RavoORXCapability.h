#pragma once
// The capabilities the gate can put before policy, each tied to the one resource it acts on. An
// application capability outside this set cannot be mapped, and the gate refuses its actions.

#include <array>
#include <string_view>
#include <utility>

#include <ravo-orx/adapters/gate/RavoORXResource.h>
#include <ravo-orx/core/ORXRawValue.h>

namespace ravo::orx {

enum class RavoORXCapability {
  uiNavigate,
  mediaTransport,
  audioVolume,
  localLibrarySearch,
  localMediaPlay,
  appleMusicPlay,
  playlistWrite,
  assistantReply,
  mediaRead,
  smartHomeLightControl,
  localNotification,
};

template <>
struct ORXRawValueTable<RavoORXCapability> {
  using E = RavoORXCapability;
  static constexpr std::array<std::pair<E, std::string_view>, 11> entries{{
      {E::uiNavigate, "ravo.ui.navigate"},
      {E::mediaTransport, "ravo.media.transport"},
      {E::audioVolume, "ravo.audio.volume"},
      {E::localLibrarySearch, "ravo.library.local.search"},
      {E::localMediaPlay, "ravo.library.local.play"},
      {E::appleMusicPlay, "ravo.music.apple.play"},
      {E::playlistWrite, "ravo.library.playlist.write"},
      {E::assistantReply, "ravo.assistant.reply"},
      {E::mediaRead, "ravo.media.read"},
      {E::smartHomeLightControl, "ravo.home.light.control"},
      {E::localNotification, "ravo.notification.local"},
  }};
};

// The resource an action with this capability acts on.
constexpr RavoORXResource ravoORXResource(RavoORXCapability capability) {
  using C = RavoORXCapability;
  using R = RavoORXResource;
  switch (capability) {
    case C::uiNavigate:
      return R::userInterface;
    case C::mediaTransport:
    case C::audioVolume:
      return R::playback;
    case C::localLibrarySearch:
    case C::localMediaPlay:
      return R::localLibrary;
    case C::appleMusicPlay:
      return R::appleMusic;
    case C::playlistWrite:
      return R::persistentLibrary;
    case C::assistantReply:
    case C::mediaRead:
    case C::smartHomeLightControl:
    case C::localNotification:
      return R::assistant;
  }
  return R::assistant;
}

}  // namespace ravo::orx
