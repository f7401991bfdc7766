#include <gtest/gtest.h>

#include <string>

#include <ravo-orx/contracts/support/RavoJSON.h>

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

}  // namespace

}  // namespace ravo::orx
