#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

namespace ravo_json_detail {

void fail(std::string_view context, std::string_view problem) {
  std::string message(context);
  message += ": ";
  message += problem;
  throw RavoJSONDecodingError(message);
}

std::string describe(const RavoJSON& value) {
  switch (value.type()) {
    case RavoJSON::value_t::null: return "null";
    case RavoJSON::value_t::object: return "an object";
    case RavoJSON::value_t::array: return "an array";
    case RavoJSON::value_t::string: return "a string";
    case RavoJSON::value_t::boolean: return "a boolean";
    case RavoJSON::value_t::number_integer:
    case RavoJSON::value_t::number_unsigned: return "an integer";
    case RavoJSON::value_t::number_float: return "a number";
    default: return "an unsupported value";
  }
}

}  // namespace ravo_json_detail

using ravo_json_detail::describe;
using ravo_json_detail::fail;

std::string RavoJSONCodec<std::string>::decode(const RavoJSON& json, std::string_view context) {
  if (!json.is_string()) fail(context, "expected a string, found " + describe(json));
  return json.get<std::string>();
}

bool RavoJSONCodec<bool>::decode(const RavoJSON& json, std::string_view context) {
  if (!json.is_boolean()) fail(context, "expected a boolean, found " + describe(json));
  return json.get<bool>();
}

double RavoJSONCodec<double>::decode(const RavoJSON& json, std::string_view context) {
  if (!json.is_number()) fail(context, "expected a number, found " + describe(json));
  double value = json.get<double>();
  if (!std::isfinite(value)) fail(context, "expected a finite number");
  return value;
}

RavoUUID RavoJSONCodec<RavoUUID>::decode(const RavoJSON& json, std::string_view context) {
  auto text = RavoJSONCodec<std::string>::decode(json, context);
  auto uuid = RavoUUID::parse(text);
  if (!uuid) fail(context, "malformed UUID \"" + text + "\"");
  return *uuid;
}

RavoTimePoint RavoJSONCodec<RavoTimePoint>::decode(const RavoJSON& json, std::string_view context) {
  auto text = RavoJSONCodec<std::string>::decode(json, context);
  auto time = parseRavoTime(text);
  if (!time) fail(context, "malformed time \"" + text + "\" (expected RFC 3339, e.g. 2026-01-31T12:00:00.000Z)");
  return *time;
}

RavoJSONObjectReader::RavoJSONObjectReader(const RavoJSON& json, std::string_view typeName)
    : json_(json), typeName_(typeName) {
  if (!json.is_object()) fail(typeName, "expected an object, found " + describe(json));
}

const RavoJSON* RavoJSONObjectReader::find(std::string_view key) const {
  auto it = json_.find(key);
  return it == json_.end() ? nullptr : &*it;
}

std::string RavoJSONObjectReader::context(std::string_view key) const {
  std::string text(typeName_);
  text += ".";
  text += key;
  return text;
}

}  // namespace ravo::orx
