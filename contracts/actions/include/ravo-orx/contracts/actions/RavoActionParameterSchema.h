#pragma once
// One parameter of an action: its key, its kind, whether it is required, the range of a numeric
// parameter, the accepted values of a string parameter and an optional default.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <ravo-orx/contracts/actions/RavoActionValue.h>

namespace ravo::orx {

class RavoActionParameterSchema {
 public:
  struct Fields {
    std::string key{};
    RavoActionValueKind kind = RavoActionValueKind::string;
    bool required = false;
    std::optional<double> minimum{};  // inclusive, for integer and number parameters
    std::optional<double> maximum{};  // inclusive, for integer and number parameters
    std::vector<std::string> allowedStrings{};  // when non-empty, the accepted string values
    std::optional<RavoActionValue> defaultValue{};

    friend bool operator==(const Fields&, const Fields&) = default;
  };

  // Longest accepted string value, in UTF-8 bytes.
  static constexpr std::size_t maximumStringBytes = 512;

  // Sorts `allowedStrings` (duplicates kept).
  explicit RavoActionParameterSchema(Fields fields);

  const std::string& key() const { return fields_.key; }
  RavoActionValueKind kind() const { return fields_.kind; }
  bool required() const { return fields_.required; }
  const std::optional<double>& minimum() const { return fields_.minimum; }
  const std::optional<double>& maximum() const { return fields_.maximum; }
  const std::vector<std::string>& allowedStrings() const { return fields_.allowedStrings; }
  const std::optional<RavoActionValue>& defaultValue() const { return fields_.defaultValue; }

  // Whether the value has exactly this kind (an integer is no number) and lies within the limits.
  bool validate(const RavoActionValue& value) const;
  // Reads trimmed text as this kind: booleans accept true/yes/1/on and false/no/0/off in any case;
  // numbers must be finite. Gives nothing when the text does not read as the kind; limits are not checked.
  std::optional<RavoActionValue> parse(std::string_view text) const;

  RavoJSON toJSON() const;
  static RavoActionParameterSchema fromJSON(const RavoJSON& json);

  friend bool operator==(const RavoActionParameterSchema&, const RavoActionParameterSchema&) = default;

 private:
  struct AsStored {};
  RavoActionParameterSchema(Fields fields, AsStored) : fields_(std::move(fields)) {}

  bool withinLimits(double value) const;

  Fields fields_;
};

}  // namespace ravo::orx
