#include <ravo-orx/contracts/services/RavoKettleLoopbackTick.h>

namespace ravo::orx {

RavoJSON RavoKettleLoopbackTick::toJSON() const {
  return RavoJSONObjectWriter()
      .add("phase", phase_)
      .add("nextCheckAt", nextCheckAt_)
      .add("shouldNotify", shouldNotify_)
      .take();
}

RavoKettleLoopbackTick RavoKettleLoopbackTick::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoKettleLoopbackTick");
  return RavoKettleLoopbackTick{reader.required<RavoKettleLoopbackPhase>("phase"),
                                reader.optional<RavoTimePoint>("nextCheckAt"), reader.required<bool>("shouldNotify")};
}

}  // namespace ravo::orx
