// Every reader of untrusted JSON, fed 100 MB documents, a million levels of nesting and objects of
// many members, answers with its own refusal text (or accepts what it is specified to accept) without
// exhausting the stack or spending quadratic time.

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "adapters/pixmor/tests/PixmorORXTestSupport.h"
#include <ravo-orx/contracts/services/RavoHomeInventorySnapshot.h>
#include <ravo-orx/contracts/services/RavoJSONScenarioDraftProposer.h>
#include "contracts/services/tests/RavoScenarioDraftingTestSupport.h"
#include <ravo-orx/core/ORXCanonicalJSON.h>
#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/host_contract/ORXDecisionEvidenceRecord.h>
#include "limits/HostileInputs.h"

namespace ravo::orx {

namespace {

using namespace hostile_inputs;

using Reader = std::function<void(const std::string&)>;

// "accepted", or the text of what the reader threw.
std::string outcome(const Reader& read, const std::string& text) {
  try {
    read(text);
    return "accepted";
  } catch (const std::exception& error) {
    return error.what();
  }
}

const RavoScenarioDraftingRequest& draftingRequest() {
  static const RavoScenarioDraftingRequest request(RavoUUID::random(), 1, "dim the lights", false, {});
  return request;
}

// The readers, by name; the expected texts of each case follow the same order.
const std::vector<std::pair<const char*, Reader>>& readers() {
  static const std::vector<std::pair<const char*, Reader>> all = {
      {"canonical JSON", [](const std::string& text) { ORXCanonicalJSON::parse(text); }},
      {"decision evidence", [](const std::string& text) { ORXDecisionEvidenceRecord::parseCanonicalBytes(text); }},
      {"application record", [](const std::string& text) { RavoHomeInventorySnapshot::fromJSON(parseRavoJSON(text)); }},
      {"Pixmor response", [](const std::string& text) { PixmorORXResponse::fromJSONText(text); }},
      {"drafting answer",
       [](const std::string& text) { RavoJSONScenarioDraftProposer::parseAnswer(text, draftingRequest()); }},
  };
  return all;
}

const std::string kCanonicalDepth = "orx.v051.parse_invalid: JSON nesting is deeper than 512 levels";
const std::string kRavoDepth = "malformed JSON: nesting is deeper than 512 levels";
const std::string kTrailing = "orx.v051.parse_invalid: trailing bytes after JSON value";
const std::string kNulSuffix = "malformed JSON: unexpected NUL byte at offset 2; expected end of input";
const std::string kNoField = "orx.v051.decision_evidence_invalid: DecisionEvidence has an unknown or missing field";

// Pixmor responses and drafting answers are capped at 1 MiB and refused unread beyond it.
std::string tooLarge(const char* reader, std::size_t bytes) {
  return std::string(reader) + ": answer of " + std::to_string(bytes) + " bytes exceeds the limit of 1048576";
}
std::string pixmorTooLarge(std::size_t bytes) { return tooLarge("PixmorORXResponse", bytes); }
std::string answerTooLarge(std::size_t bytes) { return tooLarge("model answer", bytes); }

TEST(JSONReaderLimits, EveryReaderRefusesHostileDocumentsWithItsOwnText) {
  struct Case {
    const char* name;
    std::string text;
    std::vector<std::string> expected;  // one per reader, in the order of readers()
  };
  // Past the 1 MiB cap of Pixmor responses and drafting answers, which refuse them unread; the other
  // readers read them whole.
  constexpr std::size_t kTwoMegabytes = 2u << 20;
  const std::string malformedPrefix =
      "malformed JSON: [json.exception.parse_error.101] parse error at line 1, column 2097153: syntax error while "
      "parsing value - invalid string: missing closing quote; last read: '\"aaaa";
  const std::string notJSON = "malformed JSON: [json.exception.parse_error.101] parse error at line 1, column 1: syntax "
                              "error while parsing value - invalid literal; last read: '\xFF'";
  const std::vector<Case> cases = {
      {"largest document", documentWithLongString(kLargeDocumentBytes),
       {"accepted", kNoField, "RavoHomeInventorySnapshot.providerID: missing key", pixmorTooLarge(kLargeDocumentBytes),
        answerTooLarge(kLargeDocumentBytes)}},
      {"unterminated string", unterminatedString(kTwoMegabytes),
       {"orx.v051.parse_invalid: unterminated string", "orx.v051.parse_invalid: unterminated string", malformedPrefix,
        pixmorTooLarge(kTwoMegabytes), answerTooLarge(kTwoMegabytes)}},
      {"padding", "{}" + std::string(kTwoMegabytes, ' '),
       {"accepted", "orx.v051.decision_evidence_noncanonical: DecisionEvidence bytes are not canonical",
        "RavoHomeInventorySnapshot.providerID: missing key", pixmorTooLarge(kTwoMegabytes + 2),
        answerTooLarge(kTwoMegabytes + 2)}},
      {"not UTF-8", std::string(kTwoMegabytes, '\xFF'),
       {"orx.v051.parse_invalid: unsupported JSON value",
        "orx.v051.decision_evidence_invalid: DecisionEvidence bytes must be UTF-8", notJSON,
        pixmorTooLarge(kTwoMegabytes), answerTooLarge(kTwoMegabytes)}},
      {"a million nested arrays", nestedArrays(1'000'000),
       {kCanonicalDepth, kCanonicalDepth, kRavoDepth, pixmorTooLarge(2'000'000), answerTooLarge(2'000'000)}},
      {"a million unclosed arrays", nestedArrays(1'000'000, false),
       {kCanonicalDepth, kCanonicalDepth, kRavoDepth, kRavoDepth, kRavoDepth}},
      {"a million nested objects", nestedObjects(1'000'000),
       {kCanonicalDepth, kCanonicalDepth, kRavoDepth, pixmorTooLarge(6'000'001), answerTooLarge(6'000'001)}},
      {"512 nested arrays", nestedArrays(512),
       {"accepted", "orx.v051.decision_evidence_invalid: DecisionEvidence must be an object",
        "RavoHomeInventorySnapshot: expected an object, found an array",
        "PixmorORXResponse: expected an object, found an array", "model answer: expected an object, found an array"}},
      {"513 nested arrays", nestedArrays(513), {kCanonicalDepth, kCanonicalDepth, kRavoDepth, kRavoDepth, kRavoDepth}},
      {"NUL byte and more after the value", std::string("{}\0junk", 7),
       {kTrailing, kTrailing, kNulSuffix, kNulSuffix, kNulSuffix}},
      // Under Pixmor's cap, yet about six seconds for nlohmann's own ordered-object builder, which
      // searches every member on each insertion.
      {"80,000 members", objectWithMembers(80'000),
       {"accepted", kNoField, "RavoHomeInventorySnapshot.providerID: missing key", "PixmorORXResponse.schema: missing key",
        "model answer.title: missing key"}},
  };
  for (const auto& c : cases) {
    ASSERT_EQ(c.expected.size(), readers().size()) << c.name;
    for (std::size_t r = 0; r < readers().size(); ++r) {
      const std::string actual = outcome(readers()[r].second, c.text);
      // Long refusals are cut; compare them by their start.
      const std::string& expected = c.expected[r];
      EXPECT_EQ(actual.substr(0, expected.size()), expected) << c.name << " / " << readers()[r].first;
      EXPECT_LE(actual.size(), 512u) << c.name << " / " << readers()[r].first;
    }
  }
}

TEST(JSONReaderLimits, RepeatedKeysInLargeObjectsKeepTheFirstPlaceAndTheLastValue) {
  std::string text = objectWithMembers(100);
  text.back() = ',';
  text += "\"k050\":1,\"k000\":2}";
  const RavoJSON json = parseRavoJSON(text);
  ASSERT_EQ(json.size(), 100u);
  EXPECT_EQ(json.begin().key(), "k000");
  EXPECT_EQ(json.at("k000"), 2);
  EXPECT_EQ(json.at("k050"), 1);
  EXPECT_EQ(json.at("k099"), 0);
  EXPECT_EQ(json, RavoJSON::parse(text));
}

// Hostile answers reach the surfaces as the usual outcomes: Pixmor's local proposal and a failed draft.
TEST(JSONReaderLimits, HostsTurnHostileAnswersIntoTheirUsualOutcomes) {
  struct Answer {
    const char* name;
    std::string text;
  };
  const std::vector<Answer> answers = {
      {"2 MB", documentWithLongString(2u << 20, "schema")},
      {"a million nested arrays", nestedArrays(1'000'000)},
      {"a million unclosed arrays", nestedArrays(1'000'000, false)},
  };
  const auto request = pixmor_test::makeRequest("brighten the faces");
  auto provider = drafting_test::eligible(RavoModelProviderDescriptor::appleFoundationModels());
  for (const auto& answer : answers) {
    PixmorORXHost host(std::make_shared<pixmor_test::ScriptedTransport>([&](const auto&) { return answer.text; }),
                       60'000);
    EXPECT_EQ(host.propose(request).fallbackReason(), PixmorORXHost::unavailableReason) << answer.name;

    auto service = drafting_test::builtInService();
    RavoJSONScenarioDraftProposer proposer([&](const std::string&) { return answer.text; });
    EXPECT_EQ(service.draft("dim the lights", false, provider, proposer),
              RavoScenarioDraftingOutcome::rejected(RavoScenarioDraftingRejection::providerFailed()))
        << answer.name;
  }
}

}  // namespace

}  // namespace ravo::orx
