#include <gtest/gtest.h>

#include <limits>
#include <string>

#include <ravo-orx/contracts/scenarios/RavoScenarioCanonicalizer.h>
#include <ravo-orx/contracts/scenarios/RavoScenarioEncodingError.h>

namespace ravo::orx {

namespace {

RavoUUID uuid(const char* text) { return RavoUUID::parse(text).value(); }

RavoScenarioGraph graphWithArguments(RavoActionArguments arguments, std::vector<std::string> targets = {}) {
  return {{{uuid("6f1c2d3e-4b5a-4978-8a9b-0c1d2e3f4a5b"), RavoScenarioNodeTypeID("ravo.player.volume.set"), "1.0.0",
            std::move(targets), RavoScenarioActionBinding(std::move(arguments))}},
          {{uuid("00000000-0000-0000-0000-0000000000a1"), "out\"put", uuid("ffffffff-0000-0000-0000-00000000000b"),
            "in/put"}},
          {RavoScenarioCapability("ravo.audio.volume")}};
}

std::string numberText(double number) {
  const std::string text =
      RavoScenarioCanonicalizer::encodedGraph(graphWithArguments({{"level", RavoActionValue::number(number)}}));
  const std::string before = "\"number\":";
  const std::size_t start = text.find(before) + before.size();
  return text.substr(start, text.find('}', start) - start);
}

TEST(RavoScenarioGraphText, WritesNumbersAsTheOriginPlatformDoes) {
  struct Case {
    double number;
    const char* text;
  };
  const Case cases[] = {
      {1.0, "1"},
      {0.0, "0"},
      {-3.0, "-3"},
      {-0.0, "-0"},
      {0.25, "0.25"},
      {0.2, "0.2"},
      {100.5, "100.5"},
      {0.0001, "0.0001"},
      {1e-5, "1e-05"},
      {-1.5e-7, "-1.5e-07"},
      {123456789012345.0, "123456789012345"},
      {123456789012345.5, "123456789012345.5"},
      {-99999999999999.25, "-99999999999999.25"},
      {1e15, "1e+15"},
      {1.5e20, "1.5e+20"},
      {1.7976931348623157e308, "1.7976931348623157e+308"},
      {5e-324, "5e-324"},
      {0.1 + 0.2, "0.30000000000000004"},
  };
  for (const auto& c : cases) EXPECT_EQ(numberText(c.number), c.text) << c.text;
}

TEST(RavoScenarioGraphText, MatchesTheGeneralJSONWriterWithSortedKeys) {
  // nlohmann's writer, run over the records' JSON with sorted keys, is the independent oracle for
  // everything but integral numbers, which it writes with ".0".
  const RavoScenarioGraph graph = graphWithArguments(
      {{"z.text", RavoActionValue::string("tab\t quote\" backslash\\ nul" + std::string(1, '\0') + " \x1f\x7f/ \xc3\xa9 \xf0\x9f\x98\x80")},
       {"a.flag", RavoActionValue::boolean(false)},
       {"B.count", RavoActionValue::integer(-9223372036854775807 - 1)},
       {"m.level", RavoActionValue::number(0.75)},
       {"\xc3\xa9.on", RavoActionValue::boolean(true)}},
      {"player\nmain", "\xef\xbd\xa1", "a"});
  EXPECT_EQ(RavoScenarioCanonicalizer::encodedGraph(graph), nlohmann::json(graph.toJSON()).dump());
}

TEST(RavoScenarioGraphText, RefusesWhatHasNoJSONText) {
  const std::string prefix = "scenario graph cannot be encoded: ";
  struct Case {
    RavoScenarioGraph graph;
    std::string message;
  };
  const Case cases[] = {
      {graphWithArguments({{"level", RavoActionValue::number(std::numeric_limits<double>::quiet_NaN())}}),
       prefix + "non-finite action number"},
      {graphWithArguments({{"level", RavoActionValue::number(-std::numeric_limits<double>::infinity())}}),
       prefix + "non-finite action number"},
      {graphWithArguments({}, {"ok", "bad \xff"}), prefix + "[json.exception.type_error.316] invalid UTF-8 byte at index 4: 0xFF"},
      {graphWithArguments({{"\xc3", RavoActionValue::boolean(true)}}),
       prefix + "[json.exception.type_error.316] incomplete UTF-8 string; last byte: 0xC3"},
  };
  for (const auto& c : cases) {
    try {
      RavoScenarioCanonicalizer::digest(c.graph);
      ADD_FAILURE() << c.message;
    } catch (const RavoScenarioEncodingError& error) {
      EXPECT_EQ(error.what(), c.message);
    }
  }
}

}  // namespace

}  // namespace ravo::orx
