#include <gtest/gtest.h>

#include <ravo-orx/contracts/definitions/RavoScenarioNodeDefinition.h>

namespace ravo::orx {

namespace {

RavoScenarioNodeDefinition::Fields sampleFields() {
  return {.id = RavoScenarioNodeTypeID("ravo.trigger.manual"),
          .version = "1.0.0",
          .kind = RavoScenarioNodeKind::trigger,
          .inputKeys = {"b", "a"},
          .outputKeys = {"event"},
          .requestedCapabilities = {RavoScenarioCapability::mcpCall(), RavoScenarioCapability::audioVolume()},
          .risk = RavoScenarioRiskClass::medium,
          .idempotency = RavoScenarioIdempotency::guarded,
          .reversibility = RavoScenarioReversibility::compensatable,
          .confirmation = RavoScenarioConfirmationPolicy::perTarget,
          .bounds = RavoScenarioExecutionBounds(5, 2, 10, 3),
          .offlinePolicy = RavoScenarioOfflinePolicy::deferUntilOnline,
          .egressPolicy = RavoScenarioDataEgressPolicy::approvedProviderOnly,
          .adapterID = "ravo.native.trigger",
          .adapterVersion = "2.1.0",
          .schemaDigest = "schema",
          .implementationDigest = "implementation",
          .isEnabled = false};
}

TEST(RavoScenarioNodeDefinition, ConstructionSortsButDecodingKeepsTheWrittenOrder) {
  RavoScenarioNodeDefinition definition(sampleFields());
  EXPECT_EQ(definition.inputKeys(), (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(definition.requestedCapabilities(),
            (std::vector{RavoScenarioCapability::audioVolume(), RavoScenarioCapability::mcpCall()}));

  RavoJSON json = definition.toJSON();
  std::vector<std::string> keys;
  for (const auto& item : json.items()) keys.push_back(item.key());
  EXPECT_EQ(keys, (std::vector<std::string>{"id", "version", "kind", "inputKeys", "outputKeys", "requestedCapabilities",
                                            "risk", "idempotency", "reversibility", "confirmation", "bounds",
                                            "offlinePolicy", "egressPolicy", "adapterID", "adapterVersion",
                                            "schemaDigest", "implementationDigest", "isEnabled"}));
  EXPECT_EQ(RavoScenarioNodeDefinition::fromJSON(json), definition);

  json["inputKeys"] = {"b", "a"};
  auto decoded = RavoScenarioNodeDefinition::fromJSON(json);
  EXPECT_EQ(decoded.inputKeys(), (std::vector<std::string>{"b", "a"}));
  EXPECT_NE(decoded, definition);
}

TEST(RavoScenarioNodeDefinition, DecodingRefusesMissingMistypedAndUnknownValues) {
  const RavoJSON valid = RavoScenarioNodeDefinition(sampleFields()).toJSON();
  struct Case {
    const char* key;
    RavoJSON value;  // null removes the key
    const char* message;
  };
  const Case cases[] = {
      {"risk", nullptr, "RavoScenarioNodeDefinition.risk: missing key"},
      {"risk", "severe", "RavoScenarioNodeDefinition.risk: unknown value \"severe\""},
      {"kind", "Trigger", "RavoScenarioNodeDefinition.kind: unknown value \"Trigger\""},
      {"isEnabled", "true", "RavoScenarioNodeDefinition.isEnabled: expected a boolean, found a string"},
      {"bounds", RavoJSON{{"timeoutSeconds", 1}}, "RavoScenarioExecutionBounds.retryLimit: missing key"},
      {"requestedCapabilities", RavoJSON::array({1}),
       "RavoScenarioNodeDefinition.requestedCapabilities[0]: expected a string, found an integer"},
  };
  for (const auto& c : cases) {
    RavoJSON json = valid;
    if (c.value.is_null()) {
      json.erase(c.key);
    } else {
      json[c.key] = c.value;
    }
    try {
      RavoScenarioNodeDefinition::fromJSON(json);
      ADD_FAILURE() << "decoded with " << c.key << " = " << c.value.dump();
    } catch (const RavoJSONDecodingError& error) {
      EXPECT_STREQ(error.what(), c.message);
    }
  }
}

template <class E>
void expectLabelsRoundTrip() {
  for (const auto& [label, text] : ORXRawValueTable<E>::entries) {
    EXPECT_EQ(RavoJSONCodec<E>::decode(RavoJSONCodec<E>::encode(label), "label"), label) << text;
  }
  EXPECT_THROW(RavoJSONCodec<E>::decode("unknown", "label"), RavoJSONDecodingError);
}

TEST(RavoScenarioLabels, RoundTripEveryCaseAndRefuseOtherTexts) {
  expectLabelsRoundTrip<RavoScenarioNodeKind>();
  expectLabelsRoundTrip<RavoScenarioRiskClass>();
  expectLabelsRoundTrip<RavoScenarioIdempotency>();
  expectLabelsRoundTrip<RavoScenarioReversibility>();
  expectLabelsRoundTrip<RavoScenarioConfirmationPolicy>();
  expectLabelsRoundTrip<RavoScenarioOfflinePolicy>();
  expectLabelsRoundTrip<RavoScenarioDataEgressPolicy>();
  expectLabelsRoundTrip<RavoScenarioActivationRequest>();
  expectLabelsRoundTrip<RavoScenarioLifecycle>();
  expectLabelsRoundTrip<RavoScenarioEffectReceiptOutcome>();
  EXPECT_EQ(RavoJSONCodec<RavoScenarioLifecycle>::decode("revoked", "lifecycle"), RavoScenarioLifecycle::revoked);
  EXPECT_THROW(RavoJSONCodec<RavoScenarioLifecycle>::decode("Revoked", "lifecycle"), RavoJSONDecodingError);
}

TEST(RavoScenarioExecutionBounds, ManualActionEncodesItsFourLimits) {
  EXPECT_EQ(RavoScenarioExecutionBounds::manualAction().toJSON().dump(),
            R"({"timeoutSeconds":20,"retryLimit":0,"rateLimitPerHour":60,"maximumParallelism":1})");
}

}  // namespace

}  // namespace ravo::orx
