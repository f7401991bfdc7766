#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include <ravo-orx/contracts/services/RavoHomeCommandProposalValidator.h>
#include <ravo-orx/contracts/services/RavoHomeInventoryValidator.h>

namespace ravo::orx {

namespace {

using Capability = RavoHomeInventoryCapability;
using Kind = RavoHomeCommandKind;
using CommandIssue = RavoHomeCommandProposalValidationIssue;
using InventoryIssue = RavoHomeInventoryValidationIssue;

const RavoTimePoint capturedAt = std::chrono::sys_days{std::chrono::November / 23 / 2026} + std::chrono::hours(6);

RavoHomeInventoryDevice device(std::string id, std::vector<Capability> capabilities, bool isReachable = true,
                               std::string displayName = "Lamp") {
  return {std::move(id), RavoHomeInventoryDeviceKind::light, std::move(displayName), "Kitchen", std::move(capabilities),
          isReachable};
}

TEST(RavoHomeInventoryDevice, NormalisesNamesAndCapabilities) {
  const std::string accented = "e\xCC\x81";  // one character, 3 bytes
  std::string longID;
  for (int i = 0; i < 161; ++i) longID += accented;
  const RavoHomeInventoryDevice lamp(longID, RavoHomeInventoryDeviceKind::light, std::string(97, 'n'), "  \n Hall \t",
                                     {Capability::power, Capability::targetTemperature, Capability::brightness,
                                      Capability::power},
                                     true);
  EXPECT_EQ(lamp.id(), longID.substr(0, 160 * accented.size()));
  EXPECT_EQ(lamp.displayName(), std::string(96, 'n'));
  EXPECT_EQ(lamp.roomName(), "Hall");
  EXPECT_EQ(lamp.capabilities(),
            (std::vector{Capability::brightness, Capability::power, Capability::targetTemperature}));
  EXPECT_EQ(RavoHomeInventoryDevice(" id ", RavoHomeInventoryDeviceKind::outlet, " ", " \u3000 ", {}, false).roomName(),
            std::nullopt);

  const RavoHomeInventorySnapshot snapshot(RavoHomeProviderID::tuyaCloud(), capturedAt,
                                           {device("b", {}, true, "first b"), device("a", {}), lamp,
                                            device("b", {}, true, "second b")});
  EXPECT_EQ(snapshot.devices()[0].id(), "a");
  EXPECT_EQ(snapshot.devices()[1].displayName(), "first b");
  EXPECT_EQ(snapshot.devices()[2].displayName(), "second b");
  EXPECT_EQ(RavoHomeInventorySnapshot::fromJSON(parseRavoJSON(snapshot.toJSON().dump())), snapshot);
  EXPECT_FALSE(RavoHomeInventoryDevice(" ", RavoHomeInventoryDeviceKind::unknown, "", std::nullopt, {}, false)
                   .toJSON()
                   .contains("roomName"));
}

TEST(RavoHomeInventoryValidator, ReportsEveryIssueDeviceByDevice) {
  struct Case {
    const char* name;
    std::vector<RavoHomeInventoryDevice> devices;
    std::vector<InventoryIssue> expected;
  };
  const Case cases[] = {
      {"sane", {device("a", {Capability::power}), device("b", {Capability::color})}, {}},
      {"blank id still checks the rest", {device("  ", {}, true, " \n")},
       {InventoryIssue::emptyDeviceID(), InventoryIssue::emptyDisplayName("  "), InventoryIssue::noCapabilities("  ")}},
      {"duplicate id reported for the second", {device("a", {Capability::power}), device("a", {})},
       {InventoryIssue::duplicateDeviceID("a"), InventoryIssue::noCapabilities("a")}},
      {"ids compare untrimmed", {device("a", {Capability::power}), device("a ", {Capability::power})}, {}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(RavoHomeInventoryValidator::validate({RavoHomeProviderID::appleHome(), capturedAt, c.devices}), c.expected)
        << c.name;
  }

  std::vector<RavoHomeInventoryDevice> many;
  for (int i = 0; i < 513; ++i) many.push_back(device(i == 0 ? "" : std::to_string(i), {}));
  EXPECT_EQ(RavoHomeInventoryValidator::validate({RavoHomeProviderID::appleHome(), capturedAt, many}),
            std::vector{InventoryIssue::tooManyDevices(513, 512)});
  many.pop_back();
  EXPECT_EQ(RavoHomeInventoryValidator::validate({RavoHomeProviderID::appleHome(), capturedAt, many}).size(), 513u);
}

TEST(RavoHomeCommandProposalValidator, ReportsEveryIssueInCheckingOrder) {
  const RavoHomeInventorySnapshot home(
      RavoHomeProviderID::appleHome(), capturedAt,
      {device("lamp", {Capability::power, Capability::brightness}), device("far", {Capability::power}, false),
       device("thermostat", {Capability::targetTemperature}),
       device("bulb", {Capability::colorTemperature, Capability::color})});
  const double nan = std::numeric_limits<double>::quiet_NaN();
  struct Case {
    const char* deviceID;
    Kind kind;
    std::optional<bool> power;
    std::optional<double> scalar;
    bool confirmed;
    std::vector<CommandIssue> expected;
  };
  const Case cases[] = {
      {"lamp", Kind::power, true, std::nullopt, true, {}},
      {"lamp", Kind::power, true, 50, true, {CommandIssue::invalidPowerValue()}},
      {"lamp", Kind::power, std::nullopt, std::nullopt, true, {CommandIssue::invalidPowerValue()}},
      {"lamp", Kind::brightness, std::nullopt, 100, true, {}},
      {"lamp", Kind::brightness, false, 0, true, {}},
      {"lamp", Kind::brightness, std::nullopt, 100.5, true, {CommandIssue::invalidScalarValue()}},
      {"lamp", Kind::brightness, std::nullopt, nan, true, {CommandIssue::invalidScalarValue()}},
      {"lamp", Kind::brightness, true, std::nullopt, true, {CommandIssue::invalidScalarValue()}},
      {"bulb", Kind::colorTemperature, std::nullopt, 1500, true, {}},
      {"bulb", Kind::colorTemperature, std::nullopt, 9000, true, {}},
      {"bulb", Kind::colorTemperature, std::nullopt, 1499, true, {CommandIssue::invalidScalarValue()}},
      {"thermostat", Kind::targetTemperature, std::nullopt, 35, true, {}},
      {"thermostat", Kind::targetTemperature, std::nullopt, 5, true, {}},
      {"thermostat", Kind::targetTemperature, std::nullopt, 35.1, true, {CommandIssue::invalidScalarValue()}},
      {"thermostat", Kind::power, true, std::nullopt, true, {CommandIssue::missingCapability(Capability::power)}},
      {"far", Kind::brightness, std::nullopt, -1, false,
       {CommandIssue::unreachableDevice(), CommandIssue::confirmationRequired(),
        CommandIssue::missingCapability(Capability::brightness), CommandIssue::invalidScalarValue()}},
      {"Lamp", Kind::power, true, std::nullopt, true, {CommandIssue::unknownDevice()}},
  };
  for (const auto& c : cases) {
    const RavoHomeCommandProposal proposal(RavoUUID::random(), RavoHomeProviderID::appleHome(), c.deviceID, c.kind,
                                           c.power, c.scalar, c.confirmed);
    EXPECT_EQ(RavoHomeCommandProposalValidator::validate(proposal, home), c.expected)
        << c.deviceID << " " << orxRawValue(c.kind) << " " << c.scalar.value_or(-99);
  }
  const RavoHomeCommandProposal elsewhere(RavoUUID::random(), RavoHomeProviderID::tuyaCloud(), "nowhere", Kind::power,
                                          std::nullopt, nan, false);
  EXPECT_EQ(RavoHomeCommandProposalValidator::validate(elsewhere, home), std::vector{CommandIssue::providerMismatch()});
  EXPECT_THROW(elsewhere.toJSON(), std::invalid_argument);
}

TEST(RavoHomeCommandProposal, RoundTripsThroughJSONLeavingAbsentValuesOut) {
  const RavoHomeCommandProposal dim(RavoUUID::random(), RavoHomeProviderID::tuyaCloud(), "lamp", Kind::brightness,
                                    std::nullopt, 42.5, true);
  const auto json = dim.toJSON();
  EXPECT_FALSE(json.contains("powerValue"));
  EXPECT_EQ(json["providerID"], "ravo.home.tuya-cloud");
  EXPECT_EQ(RavoHomeCommandProposal::fromJSON(parseRavoJSON(json.dump())), dim);
  auto unknownKind = json;
  unknownKind["kind"] = "volume";
  EXPECT_THROW(RavoHomeCommandProposal::fromJSON(unknownKind), RavoJSONDecodingError);
}

}  // namespace

}  // namespace ravo::orx
