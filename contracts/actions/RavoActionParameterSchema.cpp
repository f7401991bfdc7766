#include <ravo-orx/contracts/actions/RavoActionParameterSchema.h>

#include <algorithm>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdlib>

#include <ravo-orx/contracts/support/RavoTextNormalization.h>

namespace ravo::orx {

namespace {

std::string asciiLowercased(std::string text) {
  // Only ASCII words are recognised, and no non-ASCII letter lower-cases into one of them.
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return text;
}

std::optional<bool> parseBoolean(const std::string& text) {
  auto word = asciiLowercased(text);
  if (word == "true" || word == "yes" || word == "1" || word == "on") return true;
  if (word == "false" || word == "no" || word == "0" || word == "off") return false;
  return std::nullopt;
}

// A leading "+" is accepted like a leading "-"; std::from_chars takes only the latter.
std::string_view withoutPlusSign(std::string_view text) {
  if (text.size() > 1 && text[0] == '+' && text[1] != '-' && text[1] != '+') text.remove_prefix(1);
  return text;
}

std::optional<std::int64_t> parseInteger(std::string_view text) {
  text = withoutPlusSign(text);
  std::int64_t value = 0;
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

// std::from_chars calls a number too small for a double out of range, where the platform's parse
// rounds it to zero (a finite value, kept) and only a number too large becomes infinite (dropped).
// The C locale's strtod rounds such text that way; from_chars has already checked its syntax.
std::optional<double> parseFiniteNumber(const std::string& trimmed) {
  const std::string_view text = withoutPlusSign(trimmed);
  double value = 0;
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (end != text.data() + text.size() || error == std::errc::invalid_argument) return std::nullopt;
  if (error == std::errc::result_out_of_range) {
    static const locale_t cLocale = ::newlocale(LC_ALL_MASK, "C", nullptr);
    value = ::strtod_l(text.data(), nullptr, cLocale);
  }
  if (!std::isfinite(value)) return std::nullopt;
  return value;
}

std::optional<double> encodable(const std::optional<double>& limit) {
  if (limit) ravoEncodableActionNumber(*limit);
  return limit;
}

}  // namespace

RavoActionParameterSchema::RavoActionParameterSchema(Fields fields) : fields_(std::move(fields)) {
  std::sort(fields_.allowedStrings.begin(), fields_.allowedStrings.end());
}

bool RavoActionParameterSchema::withinLimits(double value) const {
  if (!std::isfinite(value)) return false;
  if (fields_.minimum && !(*fields_.minimum <= value)) return false;
  if (fields_.maximum && !(value <= *fields_.maximum)) return false;
  return true;
}

bool RavoActionParameterSchema::validate(const RavoActionValue& value) const {
  if (value.kind() != fields_.kind) return false;
  if (const std::string* text = value.stringValue()) {
    if (text->size() > maximumStringBytes) return false;
    const auto& allowed = fields_.allowedStrings;
    return allowed.empty() || std::find(allowed.begin(), allowed.end(), *text) != allowed.end();
  }
  if (const double* number = value.numberValue()) return withinLimits(*number);
  if (const std::int64_t* integer = value.integerValue()) return withinLimits(static_cast<double>(*integer));
  return true;
}

std::optional<RavoActionValue> RavoActionParameterSchema::parse(std::string_view text) const {
  std::string trimmed = ravoTrimmedText(text);
  switch (fields_.kind) {
    case RavoActionValueKind::string:
      return RavoActionValue::string(std::move(trimmed));
    case RavoActionValueKind::boolean:
      if (auto flag = parseBoolean(trimmed)) return RavoActionValue::boolean(*flag);
      return std::nullopt;
    case RavoActionValueKind::integer:
      if (auto integer = parseInteger(trimmed)) return RavoActionValue::integer(*integer);
      return std::nullopt;
    case RavoActionValueKind::number:
      if (auto number = parseFiniteNumber(trimmed)) return RavoActionValue::number(*number);
      return std::nullopt;
  }
  return std::nullopt;
}

RavoJSON RavoActionParameterSchema::toJSON() const {
  return RavoJSONObjectWriter()
      .add("key", fields_.key)
      .add("kind", fields_.kind)
      .add("required", fields_.required)
      .add("minimum", encodable(fields_.minimum))
      .add("maximum", encodable(fields_.maximum))
      .add("allowedStrings", fields_.allowedStrings)
      .add("defaultValue", fields_.defaultValue)
      .take();
}

RavoActionParameterSchema RavoActionParameterSchema::fromJSON(const RavoJSON& json) {
  RavoJSONObjectReader reader(json, "RavoActionParameterSchema");
  return {Fields{.key = reader.required<std::string>("key"),
                 .kind = reader.required<RavoActionValueKind>("kind"),
                 .required = reader.required<bool>("required"),
                 .minimum = reader.optional<double>("minimum"),
                 .maximum = reader.optional<double>("maximum"),
                 .allowedStrings = reader.required<std::vector<std::string>>("allowedStrings"),
                 .defaultValue = reader.optional<RavoActionValue>("defaultValue")},
          AsStored{}};
}

}  // namespace ravo::orx
