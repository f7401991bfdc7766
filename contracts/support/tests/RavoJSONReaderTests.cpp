#include <gtest/gtest.h>

#include <string>

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

}  // namespace

}  // namespace ravo::orx
