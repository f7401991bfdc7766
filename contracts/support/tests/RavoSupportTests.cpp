#include <gtest/gtest.h>

#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

namespace {

using namespace std::chrono;

TEST(RavoTime, EncodesWithTheFewestExactFractionDigitsAndReadsBack) {
  const RavoTimePoint base = sys_days{2026y / November / 23} + 3h + 40min + 5s;
  struct Case {
    RavoTimePoint time;
    const char* text;
  };
  const Case cases[] = {
      {base, "2026-11-23T03:40:05.000Z"},
      {base + 125ms, "2026-11-23T03:40:05.125Z"},
      {base + 125001us, "2026-11-23T03:40:05.125001Z"},
      {base + 7ns, "2026-11-23T03:40:05.000000007Z"},
      {RavoTimePoint{} - 1ms, "1969-12-31T23:59:59.999Z"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(formatRavoTime(c.time), c.text);
    EXPECT_EQ(parseRavoTime(c.text), c.time) << c.text;
  }
}

TEST(RavoTime, ReadsOffsetsAndShortFractionsAndRefusesMalformedText) {
  const RavoTimePoint expected = sys_days{2026y / November / 23} + 3h + 40min + 5s + 500ms;
  EXPECT_EQ(parseRavoTime("2026-11-23T05:40:05.5+02:00"), expected);
  EXPECT_EQ(parseRavoTime("2026-11-23T01:10:05.5-02:30"), expected);
  EXPECT_EQ(parseRavoTime("2026-11-23T03:40:05Z"), expected - 500ms);
  for (const char* bad : {"", "2026-11-23", "2026-11-23T03:40:05", "2026-02-30T00:00:00Z",
                          "2026-11-23T24:00:00Z", "2026-11-23T03:40:05.Z", "2026-11-23T03:40:05Zx",
                          "2026-11-23T03:40:05.1234567891Z", "2026-11-23T03:40:05+2:00",
                          "1014-11-23T06:00:00Z", "2263-01-01T00:00:00Z", "9999-12-31T23:59:59.999999999Z"}) {
    EXPECT_FALSE(parseRavoTime(bad)) << bad;
  }
}

TEST(RavoUUID, ParsesEitherCaseAndPrintsUppercase) {
  auto uuid = RavoUUID::parse("0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9");
  ASSERT_TRUE(uuid);
  EXPECT_EQ(uuid->uuidString(), "0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9");
  for (const char* bad : {"", "0a1b2c3d4e5f60718293a4b5c6d7e8f9", "0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8fg",
                          "0a1b2c3d-4e5f-6071-8293_a4b5c6d7e8f9", "0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9a"}) {
    EXPECT_FALSE(RavoUUID::parse(bad)) << bad;
  }
  EXPECT_NE(RavoUUID::random(), RavoUUID::random());
}

enum class Color { red, green };

}  // namespace

template <>
struct ORXRawValueTable<Color> {
  static constexpr std::array<std::pair<Color, std::string_view>, 2> entries{
      {{Color::red, "red"}, {Color::green, "green"}}};
};

namespace {

TEST(RavoJSONObjectReader, RefusesWhatDoesNotFitWithTheKeyInTheMessage) {
  struct Case {
    const char* json;
    const char* message;
    std::function<void(const RavoJSONObjectReader&)> read;
  };
  const Case cases[] = {
      {R"({})", "Rec.name: missing key", [](auto& r) { r.template required<std::string>("name"); }},
      {R"({"n":1.5})", "Rec.n: expected an integer, found a number", [](auto& r) { r.template required<int>("n"); }},
      {R"({"n":3000000000})", "Rec.n: integer out of range", [](auto& r) { r.template required<int32_t>("n"); }},
      {R"({"c":"blue"})", "Rec.c: unknown value \"blue\"", [](auto& r) { r.template required<Color>("c"); }},
      {R"({"u":"nope"})", "Rec.u: malformed UUID \"nope\"", [](auto& r) { r.template required<RavoUUID>("u"); }},
      {R"({"l":[1,"x"]})", "Rec.l[1]: expected an integer, found a string",
       [](auto& r) { r.template required<std::vector<int>>("l"); }},
  };
  for (const auto& c : cases) {
    const auto json = RavoJSON::parse(c.json);
    RavoJSONObjectReader reader(json, "Rec");
    try {
      c.read(reader);
      ADD_FAILURE() << "accepted " << c.json;
    } catch (const RavoJSONDecodingError& error) {
      EXPECT_STREQ(error.what(), c.message);
    }
  }
  const auto array = RavoJSON::array();
  EXPECT_THROW(RavoJSONObjectReader(array, "Rec"), RavoJSONDecodingError);
  EXPECT_THROW(parseRavoJSON("{\"a\":"), RavoJSONDecodingError);
}

TEST(RavoJSONObjectWriter, KeepsCallOrderAndLeavesAbsentOptionalsOut) {
  auto json = RavoJSONObjectWriter()
                  .add("z", std::string("last-declared-first"))
                  .add("missing", std::optional<int>())
                  .add("a", Color::green)
                  .take();
  EXPECT_EQ(json.dump(), R"({"z":"last-declared-first","a":"green"})");
  RavoJSONObjectReader reader(json, "Rec");
  EXPECT_EQ(reader.required<Color>("a"), Color::green);
  EXPECT_EQ(reader.optional<int>("missing"), std::nullopt);
}

}  // namespace

}  // namespace ravo::orx
