#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include <ravo-orx/contracts/support/RavoJSON.h>
#include <ravo-orx/contracts/support/RavoTextNormalization.h>

namespace ravo::orx {

namespace {

// The same value with the same JSON type at every level (nlohmann's == takes 1 and 1u as equal).
bool sameDocument(const RavoJSON& a, const RavoJSON& b) {
  if (a.type() != b.type()) return false;
  if (a.is_array()) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
      if (!sameDocument(a[i], b[i])) return false;
    }
    return true;
  }
  if (a.is_object()) {
    if (a.size() != b.size()) return false;
    for (auto i = a.begin(), j = b.begin(); i != a.end(); ++i, ++j) {
      if (i.key() != j.key() || !sameDocument(i.value(), j.value())) return false;
    }
    return true;
  }
  return a == b;
}

// nlohmann's own parser is the oracle: the reader must build what it builds and refuse what it refuses,
// in its words.
TEST(RavoJSONReader, ReadsAndRefusesExactlyAsNlohmannDoes) {
  const std::string texts[] = {
      " {\"b\" : [1, -1, 1.5, -0, 0, 2E+2, 1e-400, -0.0], \"a\": {}} ",
      "[18446744073709551615, 18446744073709551616, -9223372036854775808, -9223372036854775809]",
      "\"\\u00e9\\ud83d\\ude00\\/\\b\\f\\n\\r\\t\\\"\\\\\\u0000 \x7f \xc3\xa9\"",
      "[null,true,false,[],[[]],{\"\":null}]",
      "{\"a\":1,\"b\":2,\"a\":3}",
      "\xef\xbb\xbf{\"bom\":true}",
      "{\"a\":1,}",
      "[1,]",
      "01",
      "-",
      "1.",
      ".5",
      "1e",
      "+1",
      "\"\\ud800\"",
      "\"\\udc00\"",
      "\"\\ud800\\u0041\"",
      "\"\\x\"",
      "\"\x01\"",
      "\"\xff\"",
      "\"\xed\xa0\x80\"",
      "\"abc",
      "tru",
      "nul",
      "{} x",
      "/* note */ 1",
      "1e400",
      "{\"a\" 1}",
      "",
      "  ",
      "\f[]",
      "[1,\f2]",
      "[-1.5, -0.25e1, -0.0e0, -12.75]",
      "[01]",
      "{\"k0\":0,\"k1\":1,\"k2\":2,\"k3\":3,\"k4\":4,\"k5\":5,\"k6\":6,\"k7\":7,\"k8\":8,\"k9\":9,\"k10\":10,"
      "\"k11\":11,\"k12\":12,\"k13\":13,\"k14\":14,\"k15\":15,\"k16\":16,\"k3\":33,\"k17\":17}",
  };
  for (const auto& text : texts) {
    std::string expectedError;
    RavoJSON expected;
    try {
      expected = RavoJSON::parse(text);
    } catch (const RavoJSON::exception& error) {
      expectedError = std::string("malformed JSON: ") + error.what();
    }
    try {
      const RavoJSON read = parseRavoJSON(text);
      EXPECT_EQ(expectedError, "") << text;
      EXPECT_TRUE(sameDocument(read, expected)) << text << " read as " << read.dump();
    } catch (const RavoJSONDecodingError& error) {
      EXPECT_EQ(error.what(), expectedError) << text;
    }
  }
}

// An unterminated string makes nlohmann quote the rest of the text; the message is cut, but never
// inside a character, whatever the width of the character the cut falls in.
TEST(RavoJSONReader, CutsLongErrorsAtACharacterBoundary) {
  for (const std::string character : {"\xc3\xa9", "\xe2\x82\xac", "\xf0\x9f\x98\x80"}) {
    for (std::size_t lead = 0; lead < 4; ++lead) {
      std::string text = "\"" + std::string(lead, 'a');
      while (text.size() < 600) text += character;
      std::string full;
      try {
        full = RavoJSON::parse(text).dump();  // not reached: the string is unterminated
      } catch (const RavoJSON::exception& error) {
        full = std::string("malformed JSON: ") + error.what();
      }
      try {
        parseRavoJSON(text);
        ADD_FAILURE() << "an unterminated string was read";
      } catch (const RavoJSONDecodingError& error) {
        const std::string message = error.what(), ellipsis = "\u2026";
        ASSERT_TRUE(message.ends_with(ellipsis)) << message;
        const std::string kept = message.substr(0, message.size() - ellipsis.size());
        EXPECT_TRUE(ravoIsValidUTF8(kept)) << character << " after " << lead;
        EXPECT_TRUE(full.starts_with(kept)) << message;
        EXPECT_GT(kept.size(), 200u);
        EXPECT_LT(kept.size(), 300u);
      }
    }
  }
}

// nlohmann's lexer ends the input at a NUL, so a value followed by one would otherwise be read.
TEST(RavoJSONReader, RefusesANulAfterTheValue) {
  const std::pair<std::string, std::size_t> cases[] = {
      {std::string("{}\0", 3), 2}, {std::string("{}\0junk", 7), 2}, {std::string("1 \0", 3), 2}, {std::string("\0", 1), 0}};
  for (const auto& [text, offset] : cases) {
    try {
      parseRavoJSON(text);
      ADD_FAILURE() << "read " << text.size() << " bytes with a NUL";
    } catch (const RavoJSONDecodingError& error) {
      if (offset == 0) continue;  // nothing before the NUL: nlohmann's own "unexpected end of input"
      EXPECT_EQ(error.what(), "malformed JSON: unexpected NUL byte at offset " + std::to_string(offset) +
                                  "; expected end of input");
    }
  }
}

TEST(RavoJSONReader, RefusesNestingPastTheLimitInTheSameWords) {
  const std::string message = "malformed JSON: nesting is deeper than 512 levels";
  for (const std::string& text : {std::string(513, '[') + std::string(513, ']'), std::string(100000, '[')}) {
    try {
      parseRavoJSON(text);
      ADD_FAILURE() << text.size();
    } catch (const RavoJSONDecodingError& error) {
      EXPECT_EQ(error.what(), message);
    }
  }
  EXPECT_EQ(parseRavoJSON(std::string(512, '[') + std::string(512, ']')).size(), 1u);
}


// Writes down what it is asked, in order: "key <object>: <key>" and "value <path>: <value> <number
// text>", paths as $.key[index]; throws at the key or value whose text is `refused`.
class RecordingFilter final : public RavoJSONFilter {
 public:
  explicit RecordingFilter(std::string refused = "") : refused_(std::move(refused)) {}

  void key(RavoJSONPath object, std::string_view key) const override {
    record("key " + shown(object) + ": " + std::string(key), std::string(key));
  }
  void value(RavoJSONPath path, const RavoJSON& value, std::string_view numberText) const override {
    record("value " + shown(path) + ": " + value.dump() + (numberText.empty() ? "" : " " + std::string(numberText)),
           value.dump());
  }

  mutable std::vector<std::string> events;

 private:
  static std::string shown(RavoJSONPath path) {
    std::string text = "$";
    for (const auto& step : path) text += step.index ? "[" + std::to_string(*step.index) + "]" : "." + std::string(step.key);
    return text;
  }
  void record(std::string event, const std::string& text) const {
    events.push_back(std::move(event));
    if (text == refused_) throw std::runtime_error("refused " + text);
  }

  std::string refused_;
};

// The filter is asked about every key and value before it is built, with its path, by the quick reader
// and by nlohmann's parser alike; what it throws ends the reading there.
TEST(RavoJSONReader, AsksTheFilterAboutEveryKeyAndValueAsItIsRead) {
  struct Row {
    const char* name;
    std::string text;
    std::string refused;
    std::vector<std::string> events;
  };
  std::string manyMembers = "{";
  for (int i = 0; i < 20; ++i) manyMembers += "\"m" + std::to_string(i) + "\":0,";
  manyMembers += "\"m3\":{\"x\":[true]}}";
  const std::vector<std::string> nested = {
      "value $: {}",          "key $: a",   "value $.a: []",       "value $.a[0]: 1",  "value $.a[1]: {}",
      "key $.a[1]: b",        "value $.a[1].b: true", "key $: c", "value $.c: \"x\""};
  const std::vector<Row> rows = {
      {"nested, read by the quick reader", R"({"a":[1,{"b":true}],"c":"x"})", "", nested},
      // The byte order mark makes the quick reader give up at once: nlohmann's parser asks the same.
      {"nested, read by nlohmann's parser", "\xef\xbb\xbf" R"({"a":[1,{"b":true}],"c":"x"})", "", nested},
      {"numbers that are no 64-bit integers are asked with their text", "[1.5,-2e3,7,-8]", "",
       {"value $: []", "value $[0]: 1.5 1.5", "value $[1]: -2000.0 -2e3", "value $[2]: 7", "value $[3]: -8"}},
      // Past 64 bits the quick reader gives up, and the text is read again from its start.
      {"a number past 64 bits", "[0,-9223372036854775809]", "",
       {"value $: []", "value $[0]: 0", "value $: []", "value $[0]: 0",
        "value $[1]: -9.223372036854776e+18 -9223372036854775809"}},
      {"a repeated key names the member it replaces", R"({"a":{"x":1},"a":{"y":2}})", "",
       {"value $: {}", "key $: a", "value $.a: {}", "key $.a: x", "value $.a.x: 1", "key $: a", "value $.a: {}",
        "key $.a: y", "value $.a.y: 2"}},
      {"a refused key ends the reading before its value", R"({"a":1,"junk":[1,2,3]})", "junk",
       {"value $: {}", "key $: a", "value $.a: 1", "key $: junk"}},
      {"a refused container ends the reading before its items", R"({"a":[1,2,3],"b":0})", "[]",
       {"value $: {}", "key $: a", "value $.a: []"}},
  };
  for (const auto& row : rows) {
    const RecordingFilter filter(row.refused);
    try {
      parseRavoJSON(row.text, filter);
      EXPECT_EQ(row.refused, "") << row.name;
    } catch (const std::runtime_error& error) {
      EXPECT_EQ(error.what(), "refused " + row.refused) << row.name;
    }
    EXPECT_EQ(filter.events, row.events) << row.name;
  }
  // In an object large enough to index its members, a member replaced by a container is named by its key.
  const RecordingFilter filter;
  parseRavoJSON(manyMembers, filter);
  EXPECT_EQ(std::vector<std::string>(filter.events.end() - 5, filter.events.end()),
            (std::vector<std::string>{"key $: m3", "value $.m3: {}", "key $.m3: x", "value $.m3.x: []",
                                      "value $.m3.x[0]: true"}));
}

}  // namespace

}  // namespace ravo::orx
