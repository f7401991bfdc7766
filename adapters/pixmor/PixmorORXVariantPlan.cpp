#include <ravo-orx/adapters/pixmor/PixmorORXVariantPlan.h>

namespace ravo::orx {

RavoJSON PixmorORXVariantPlan::toJSON() const {
  return RavoJSONObjectWriter().add("name", name_).add("emphasis", emphasis_).take();
}

PixmorORXVariantPlan PixmorORXVariantPlan::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "PixmorORXVariantPlan");
  return PixmorORXVariantPlan{reader.required<std::string>("name"), reader.required<std::string>("emphasis")};
}

}  // namespace ravo::orx
