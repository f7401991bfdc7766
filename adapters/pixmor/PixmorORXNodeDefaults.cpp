#include <ravo-orx/adapters/pixmor/PixmorORXNodeDefaults.h>

namespace ravo::orx {

RavoJSON PixmorORXNodeDefaults::toJSON() const {
  return RavoJSONObjectWriter().add("nodeKind", nodeKind_).add("values", values_).take();
}

PixmorORXNodeDefaults PixmorORXNodeDefaults::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "PixmorORXNodeDefaults");
  return PixmorORXNodeDefaults{reader.required<std::string>("nodeKind"),
                               reader.required<std::map<std::string, double>>("values")};
}

}  // namespace ravo::orx
