#include <ravo-orx/contracts/actions/RavoPlayerActionIDs.h>

namespace ravo::orx {

#define RAVO_IDENTIFIER(Type, name, text)                \
  const Type& RavoPlayerActionIDs::name() {              \
    static const Type identifier{std::string(text)};     \
    return identifier;                                   \
  }

RAVO_IDENTIFIER(RavoApplicationID, application, "ravo.player")
RAVO_IDENTIFIER(RavoApplicationActionID, pause, "ravo.player.pause")
RAVO_IDENTIFIER(RavoApplicationActionID, resume, "ravo.player.resume")
RAVO_IDENTIFIER(RavoApplicationActionID, next, "ravo.player.next")
RAVO_IDENTIFIER(RavoApplicationActionID, previous, "ravo.player.previous")
RAVO_IDENTIFIER(RavoApplicationActionID, setVolume, "ravo.player.volume.set")
RAVO_IDENTIFIER(RavoApplicationActionID, openHome, "ravo.ui.home.open")
RAVO_IDENTIFIER(RavoApplicationActionID, openVideo, "ravo.ui.video.open")
RAVO_IDENTIFIER(RavoApplicationActionID, openMusic, "ravo.ui.music.open")
RAVO_IDENTIFIER(RavoApplicationActionID, openPixmor, "ravo.ui.pixmor.open")
RAVO_IDENTIFIER(RavoApplicationActionID, openKolto, "ravo.ui.kolto.open")

#undef RAVO_IDENTIFIER

}  // namespace ravo::orx
