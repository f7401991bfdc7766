#pragma once
// The identifiers of the built-in player actions, so that no caller spells them.

#include <ravo-orx/contracts/actions/RavoApplicationActionID.h>

namespace ravo::orx {

struct RavoPlayerActionIDs {
  static const RavoApplicationID& application();  // "ravo.player"
  static const RavoApplicationActionID& pause();
  static const RavoApplicationActionID& resume();
  static const RavoApplicationActionID& next();
  static const RavoApplicationActionID& previous();
  static const RavoApplicationActionID& setVolume();  // "ravo.player.volume.set"
  static const RavoApplicationActionID& openHome();
  static const RavoApplicationActionID& openVideo();
  static const RavoApplicationActionID& openMusic();
  static const RavoApplicationActionID& openPixmor();
  static const RavoApplicationActionID& openKolto();
};

}  // namespace ravo::orx
