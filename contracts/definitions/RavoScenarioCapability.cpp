#include <ravo-orx/contracts/definitions/RavoScenarioCapability.h>

namespace ravo::orx {

#define RAVO_CAPABILITY(name, text)                                   \
  const RavoScenarioCapability& RavoScenarioCapability::name() {      \
    static const RavoScenarioCapability capability{std::string(text)}; \
    return capability;                                                \
  }

RAVO_CAPABILITY(mediaTransport, "ravo.media.transport")
RAVO_CAPABILITY(audioVolume, "ravo.audio.volume")
RAVO_CAPABILITY(homeControl, "ravo.home.control")
RAVO_CAPABILITY(notification, "ravo.notification.send")
RAVO_CAPABILITY(mcpCall, "ravo.mcp.call")

#undef RAVO_CAPABILITY

}  // namespace ravo::orx
