#include <ravo-orx/contracts/actions/RavoActionValue.h>

#include <cmath>
#include <stdexcept>

namespace ravo::orx {

namespace {
constexpr const char* kNonFinite = "non-finite action number";
}  // namespace

double ravoEncodableActionNumber(double value) {
  if (!std::isfinite(value)) throw std::invalid_argument(kNonFinite);
  return value;
}

RavoJSON RavoActionValue::toJSON() const {
  RavoJSONObjectWriter writer;
  writer.add("kind", kind());
  std::string key(orxRawValue(kind()));
  std::visit(
      [&](const auto& value) {
        if constexpr (std::is_same_v<std::decay_t<decltype(value)>, double>) {
          writer.add(key, ravoEncodableActionNumber(value));
        } else {
          writer.add(key, value);
        }
      },
      payload_);
  return writer.take();
}

RavoActionValue RavoActionValue::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoActionValue");
  switch (reader.required<RavoActionValueKind>("kind")) {
    case RavoActionValueKind::string:
      return string(reader.required<std::string>("string"));
    case RavoActionValueKind::boolean:
      return boolean(reader.required<bool>("boolean"));
    case RavoActionValueKind::integer:
      return integer(reader.required<std::int64_t>("integer"));
    case RavoActionValueKind::number: {
      // The shared number reader would refuse too, but the message names what went wrong for an action.
      auto it = json.find("number");
      if (it != json.end() && it->is_number_float() && !std::isfinite(it->get<double>())) {
        ravo_json_detail::fail("RavoActionValue.number", kNonFinite);
      }
      return number(reader.required<double>("number"));
    }
  }
  ravo_json_detail::fail("RavoActionValue.kind", "unknown kind");
}

}  // namespace ravo::orx
