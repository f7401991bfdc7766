#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include <ravo-orx/contracts/actions/RavoActionProposal.h>
#include <ravo-orx/contracts/actions/RavoActionReceipt.h>
#include <ravo-orx/contracts/actions/RavoApplicationActionManifest.h>

namespace ravo::orx {

namespace {

using Value = RavoActionValue;
using Kind = RavoActionValueKind;

RavoActionParameterSchema level(bool required = true) {
  return RavoActionParameterSchema({.key = "level", .kind = Kind::number, .required = required, .minimum = 0.0,
                                    .maximum = 1.0, .defaultValue = Value::number(0.5)});
}

RavoApplicationActionDescriptor::Fields volumeFields(std::vector<RavoActionParameterSchema> parameters) {
  return {.id = RavoApplicationActionID("ravo.test.volume"),
          .applicationID = RavoApplicationID("ravo.test"),
          .title = "Volume",
          .searchTerms = {" Pause ", "PAUSE", "pause", "Pâuse", ""},
          .parameters = std::move(parameters),
          .requestedCapabilities = {RavoScenarioCapability("b"), RavoScenarioCapability("a"), RavoScenarioCapability("a")},
          .effectTypes = {"z", "y"},
          .adapterID = "ravo.native.test",
          .adapterVersion = "2.0.0",
          .entryPoints = {RavoActionEntryPoint::voice, RavoActionEntryPoint::button, RavoActionEntryPoint::button,
                          RavoActionEntryPoint::appIntent}};
}

std::string repeated(std::string_view piece, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += piece;
  return text;
}

TEST(RavoActionParameterSchema, ValidatesKindsLimitsAndAllowedStrings) {
  auto mode = RavoActionParameterSchema({.key = "mode", .kind = Kind::string, .allowedStrings = {"loud", "calm"}});
  auto text = RavoActionParameterSchema({.key = "text", .kind = Kind::string});
  auto count = RavoActionParameterSchema({.key = "count", .kind = Kind::integer, .minimum = -2.0, .maximum = 3.0});
  auto flag = RavoActionParameterSchema({.key = "flag", .kind = Kind::boolean});
  struct Case {
    const RavoActionParameterSchema& schema;
    Value value;
    bool valid;
  };
  const Case cases[] = {
      {level(), Value::number(1.0), true},
      {level(), Value::number(0.0), true},
      {level(), Value::number(1.0000001), false},
      {level(), Value::number(-0.0000001), false},
      {level(), Value::integer(1), false},  // an integer is no number
      {level(), Value::number(std::nan("")), false},
      {level(), Value::number(std::numeric_limits<double>::infinity()), false},
      {count, Value::integer(3), true},
      {count, Value::integer(-2), true},
      {count, Value::integer(4), false},
      {count, Value::number(2.0), false},
      {text, Value::string(std::string(512, 'x')), true},
      {text, Value::string(std::string(513, 'x')), false},
      {text, Value::string(repeated("я", 256)), true},  // 512 bytes
      {text, Value::string(repeated("я", 257)), false},
      {mode, Value::string("calm"), true},
      {mode, Value::string("Calm"), false},
      {mode, Value::boolean(true), false},
      {flag, Value::boolean(false), true},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.schema.validate(c.value), c.valid) << c.schema.key() << " " << c.value.toJSON().dump();
  }
  EXPECT_EQ(mode.allowedStrings(), (std::vector<std::string>{"calm", "loud"}));
}

TEST(RavoActionParameterSchema, ParsesTrimmedTextByKind) {
  struct Case {
    Kind kind;
    const char* text;
    std::optional<Value> parsed;
  };
  const Case cases[] = {
      {Kind::boolean, "ON", Value::boolean(true)},
      {Kind::boolean, " yes ", Value::boolean(true)},
      {Kind::boolean, "Off", Value::boolean(false)},
      {Kind::boolean, "0", Value::boolean(false)},
      {Kind::boolean, "y", std::nullopt},
      {Kind::integer, " 42\n", Value::integer(42)},
      {Kind::integer, "+7", Value::integer(7)},
      {Kind::integer, "-9223372036854775808", Value::integer(std::numeric_limits<std::int64_t>::min())},
      {Kind::integer, "9223372036854775808", std::nullopt},
      {Kind::integer, "4.0", std::nullopt},
      {Kind::integer, "", std::nullopt},
      {Kind::integer, "+-1", std::nullopt},
      {Kind::number, " 0.25 ", Value::number(0.25)},
      {Kind::number, "1e-3", Value::number(0.001)},
      {Kind::number, "abc", std::nullopt},
      {Kind::number, "nan", std::nullopt},
      {Kind::number, "inf", std::nullopt},
      {Kind::number, "1e400", std::nullopt},
      {Kind::number, "-1e400", std::nullopt},
      // Too small for a double: the parse rounds to a finite zero, which is kept.
      {Kind::number, "1e-400", Value::number(0.0)},
      {Kind::number, "+1e-400", Value::number(0.0)},
      {Kind::number, "1e-99999999999999999999", Value::number(0.0)},
      {Kind::number, "1e-400x", std::nullopt},
      {Kind::number, "5e-324", Value::number(std::numeric_limits<double>::denorm_min())},
      {Kind::string, "  hello there \t", Value::string("hello there")},
  };
  for (const auto& c : cases) {
    auto schema = RavoActionParameterSchema({.key = "k", .kind = c.kind});
    EXPECT_EQ(schema.parse(c.text), c.parsed) << orxRawValue(c.kind) << " \"" << c.text << "\"";
  }
}

// JSON cannot carry a non-finite limit: nlohmann would write null, and the decoded schema would then
// accept what the original refused.
TEST(RavoActionParameterSchema, RefusesToEncodeNonFiniteLimits) {
  const double nan = std::nan(""), infinity = std::numeric_limits<double>::infinity();
  const RavoActionParameterSchema::Fields refused[] = {
      {.key = "k", .kind = Kind::number, .minimum = nan},
      {.key = "k", .kind = Kind::number, .maximum = infinity},
      {.key = "k", .kind = Kind::integer, .minimum = -infinity, .maximum = 3.0},
  };
  for (const auto& fields : refused) {
    try {
      RavoActionParameterSchema(fields).toJSON();
      ADD_FAILURE() << fields.minimum.value_or(0) << " " << fields.maximum.value_or(0);
    } catch (const std::invalid_argument& error) {
      EXPECT_STREQ(error.what(), "non-finite action number");
    }
  }
  EXPECT_EQ(level().toJSON().dump(),
            R"({"key":"level","kind":"number","required":true,"minimum":0.0,"maximum":1.0,"allowedStrings":[],)"
            R"("defaultValue":{"kind":"number","number":0.5}})");
}

TEST(RavoApplicationActionDescriptor, NormalisesItsCollectionsOnConstructionOnly) {
  auto other = RavoActionParameterSchema({.key = "a", .kind = Kind::boolean});
  RavoApplicationActionDescriptor descriptor(volumeFields({level(), other}));
  EXPECT_EQ(descriptor.searchTerms(), (std::vector<std::string>{"", "pause"}));
  EXPECT_EQ(descriptor.parameters().front().key(), "a");
  EXPECT_EQ(descriptor.requestedCapabilities(),
            (std::vector{RavoScenarioCapability("a"), RavoScenarioCapability("a"), RavoScenarioCapability("b")}));
  EXPECT_EQ(descriptor.effectTypes(), (std::vector<std::string>{"y", "z"}));
  EXPECT_EQ(descriptor.entryPoints(),
            (std::vector{RavoActionEntryPoint::appIntent, RavoActionEntryPoint::button, RavoActionEntryPoint::voice}));
  EXPECT_EQ(descriptor.defaultArguments(), (RavoActionArguments{{"level", Value::number(0.5)}}));

  RavoJSON json = descriptor.toJSON();
  EXPECT_EQ(json.size(), 20u);
  EXPECT_EQ(RavoApplicationActionDescriptor::fromJSON(json), descriptor);
  json["entryPoints"] = {"voice", "button"};
  EXPECT_EQ(RavoApplicationActionDescriptor::fromJSON(json).entryPoints(),
            (std::vector{RavoActionEntryPoint::voice, RavoActionEntryPoint::button}));
  json.erase("actionCode");
  EXPECT_THROW(RavoApplicationActionDescriptor::fromJSON(json), RavoJSONDecodingError);
}

TEST(RavoApplicationActionDescriptor, ValidatesAndParsesArguments) {
  RavoApplicationActionDescriptor required(volumeFields({level()}));
  RavoApplicationActionDescriptor optional(volumeFields({level(false)}));
  struct ValidationCase {
    const RavoApplicationActionDescriptor& descriptor;
    RavoActionArguments arguments;
    std::vector<std::string> issues;
  };
  const ValidationCase validations[] = {
      {required, {{"level", Value::number(0.5)}}, {}},
      {required, {{"level", Value::number(0.5)}, {"extra", Value::boolean(true)}}, {"unknown argument: extra"}},
      {required, {}, {"missing argument: level"}},
      {optional, {}, {}},
      {required, {{"level", Value::integer(1)}}, {"invalid argument: level"}},
      {required, {{"zeta", Value::integer(1)}, {"alpha", Value::integer(1)}},
       {"missing argument: level", "unknown argument: alpha", "unknown argument: zeta"}},
  };
  for (const auto& c : validations) EXPECT_EQ(c.descriptor.validate(c.arguments), c.issues);

  struct ParseCase {
    std::map<std::string, std::string> raw;
    std::optional<RavoActionArguments> parsed;
  };
  const ParseCase parses[] = {
      {{{"level", " 0.25 "}}, RavoActionArguments{{"level", Value::number(0.25)}}},
      {{{"level", "abc"}}, std::nullopt},
      {{{"level", "nan"}}, std::nullopt},
      {{{"level", "1.5"}}, std::nullopt},  // parses, then fails validation
      {{{"volume", "1"}}, std::nullopt},
      {{}, std::nullopt},  // the required level is missing
  };
  for (const auto& c : parses) EXPECT_EQ(required.parseModelArguments(c.raw), c.parsed);
  EXPECT_EQ(optional.parseModelArguments({}), RavoActionArguments{});
}

TEST(RavoActionValue, EncodesTheKindAndItsPayloadAndRefusesNonFiniteNumbers) {
  struct Case {
    Value value;
    const char* json;
  };
  const Case cases[] = {
      {Value::number(0.5), R"({"kind":"number","number":0.5})"},
      {Value::string("x"), R"({"kind":"string","string":"x"})"},
      {Value::boolean(true), R"({"kind":"boolean","boolean":true})"},
      {Value::integer(3), R"({"kind":"integer","integer":3})"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.value.toJSON().dump(), c.json);
    EXPECT_EQ(Value::fromJSON(RavoJSON::parse(c.json)), c.value);
  }
  EXPECT_EQ(Value::fromJSON(RavoJSON::parse(R"({"kind":"number","number":1,"string":7})")), Value::number(1.0));

  try {
    Value::number(std::numeric_limits<double>::infinity()).toJSON();
    ADD_FAILURE();
  } catch (const std::invalid_argument& error) {
    EXPECT_STREQ(error.what(), "non-finite action number");
  }
  struct Refusal {
    RavoJSON json;
    const char* message;
  };
  const Refusal refusals[] = {
      {{{"kind", "number"}, {"number", std::nan("")}}, "RavoActionValue.number: non-finite action number"},
      {{{"kind", "integer"}, {"integer", 2.5}}, "RavoActionValue.integer: expected an integer, found a number"},
      {{{"kind", "text"}, {"text", "x"}}, "RavoActionValue.kind: unknown value \"text\""},
      {{{"kind", "string"}}, "RavoActionValue.string: missing key"},
  };
  EXPECT_THROW(Value::fromJSON(parseRavoJSON(R"({"kind":"number","number":1e400})")), RavoJSONDecodingError);
  for (const auto& c : refusals) {
    try {
      Value::fromJSON(c.json);
      ADD_FAILURE() << c.json.dump();
    } catch (const RavoJSONDecodingError& error) {
      EXPECT_STREQ(error.what(), c.message);
    }
  }
}

TEST(RavoActionRecords, LeaveAbsentOptionalsOutOfTheirJSON) {
  auto id = *RavoUUID::parse("00000000-0000-4000-8000-000000000001");
  RavoActionReceipt bare({.id = id, .proposalID = id, .actionID = RavoApplicationActionID("a"), .reasonCode = "r"});
  EXPECT_EQ(bare.toJSON().dump(),
            R"({"id":"00000000-0000-4000-8000-000000000001","proposalID":"00000000-0000-4000-8000-000000000001",)"
            R"("actionID":"a","outcome":"blocked","reasonCode":"r"})");
  RavoActionReceipt full({.id = id, .proposalID = id, .actionID = RavoApplicationActionID("a"), .grantID = id,
                          .outcome = RavoActionReceiptOutcome::completed, .reasonCode = "handler.ok",
                          .gateLevel = RavoActionGateLevel::orxVerified, .stableTargetID = "t1"});
  RavoJSON json = full.toJSON();
  EXPECT_EQ(json["gateLevel"], 1);
  EXPECT_EQ(RavoActionReceipt::fromJSON(json), full);
  json["gateLevel"] = 2;
  EXPECT_THROW(RavoActionReceipt::fromJSON(json), RavoJSONDecodingError);

  RavoActionProposal proposal(id, RavoApplicationActionID("a"), std::nullopt, {{"n", Value::integer(1)}},
                              RavoActionProposalOrigin::mcp);
  EXPECT_EQ(proposal.toJSON().dump(),
            R"({"id":"00000000-0000-4000-8000-000000000001","actionID":"a",)"
            R"("arguments":{"n":{"kind":"integer","integer":1}},"origin":"mcp"})");
  EXPECT_EQ(RavoActionProposal::fromJSON(proposal.toJSON()), proposal);
}

TEST(RavoApplicationActionManifest, DerivesItsIdAndOneActionNodePerAction) {
  RavoApplicationActionDescriptor volume(volumeFields({level()}));
  auto pauseFields = volumeFields({});
  pauseFields.id = RavoApplicationActionID("ravo.test.pause");
  RavoApplicationActionManifest manifest(RavoApplicationID("ravo.test"), "Test", "1.0.0",
                                         {volume, RavoApplicationActionDescriptor(pauseFields)});
  EXPECT_EQ(manifest.id(), "ravo.test@1.0.0");
  ASSERT_EQ(manifest.actions().front().id().rawValue(), "ravo.test.pause");

  auto nodes = manifest.scenarioNodeDefinitions();
  ASSERT_EQ(nodes.size(), 2u);
  const auto& node = nodes.back();
  EXPECT_EQ(node.id().rawValue(), "ravo.test.volume");
  EXPECT_EQ(node.kind(), RavoScenarioNodeKind::action);
  EXPECT_EQ(node.inputKeys(), std::vector<std::string>{"event"});
  EXPECT_EQ(node.bounds(), RavoScenarioExecutionBounds::manualAction());
  EXPECT_EQ(node.schemaDigest(), "action-schema.ravo.test.volume.1.0.0");
  EXPECT_EQ(node.implementationDigest(), "action-adapter.ravo.native.test.2.0.0");

  RavoJSON json = manifest.toJSON();
  std::swap(json["actions"][0], json["actions"][1]);
  EXPECT_EQ(RavoApplicationActionManifest::fromJSON(json).actions().front().id().rawValue(), "ravo.test.volume");
}

}  // namespace

}  // namespace ravo::orx
