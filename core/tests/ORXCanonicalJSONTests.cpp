#include <gtest/gtest.h>

#include <string>

#include <ravo-orx/core/ORXCanonicalJSON.h>
#include "core/tests/ORXTestSupport.h"

namespace ravo::orx {

namespace {

using V = ORXCanonicalValue;

std::string parseError(const char* message) { return std::string("orx.v051.parse_invalid: ") + message; }

TEST(ORXCanonicalJSON, RefusesEachMalformedTextWithItsMessage) {
  struct Case {
    std::string text;
    const char* message;
  };
  const Case cases[] = {
      {"", "unexpected end of JSON"},
      {" \t\r\n", "unexpected end of JSON"},
      {"[", "unexpected end of JSON"},
      {"null", "unsupported JSON value"},
      {"+1", "unsupported JSON value"},
      {".5", "unsupported JSON value"},
      {"[1,]", "unsupported JSON value"},
      {"\xff", "unsupported JSON value"},
      {"\f1", "unsupported JSON value"},  // only space, tab, line feed and carriage return are whitespace
      {"\v1", "unsupported JSON value"},
      {"[1\f]", "unexpected JSON byte"},
      {"{1:2}", "object key must be a JSON string"},
      {"{\"a\":1,}", "object key must be a JSON string"},
      {"{\"a\":1,", "object key must be a JSON string"},
      {"{", "object key must be a JSON string"},
      {"{\"a\" 1}", "unexpected JSON byte"},
      {"{\"a\":1 \"b\":2}", "unexpected JSON byte"},
      {"{\"a\":1", "unexpected JSON byte"},
      {"[1 2]", "unexpected JSON byte"},
      {"[1", "unexpected JSON byte"},
      {"t rue", "unexpected JSON byte"},
      {"fals", "unexpected JSON byte"},
      {"\"\\ud83d \\ude00\"", "unexpected JSON byte"},
      {"\"\\ud83dA\"", "unexpected JSON byte"},
      {"\"abc", "unterminated string"},
      {"\"", "unterminated string"},
      {std::string("\"a\x01\""), "unescaped control character"},
      {std::string("\"a\0\"", 4), "unescaped control character"},
      {"\"\\", "incomplete string escape"},
      {"\"\\x\"", "invalid string escape"},
      {"\"\\udc00\"", "invalid UTF-16 surrogate"},
      {"\"\\ude00\"", "invalid UTF-16 surrogate"},
      {"\"\\udfff\"", "invalid UTF-16 surrogate"},
      {"\"\\ud800\"", "unexpected JSON byte"},
      {"\"\\udbff\"", "unexpected JSON byte"},
      {"\"\\ud83d\\u0041\"", "invalid UTF-16 surrogate pair"},
      {"\"\\ud83d\\ud83d\"", "invalid UTF-16 surrogate pair"},
      {"\"\\ud800\\udbff\"", "invalid UTF-16 surrogate pair"},
      {"\"\\udbff\\ue000\"", "invalid UTF-16 surrogate pair"},
      {"\"\xc3\"", "invalid UTF-8 string"},
      {"\"\xed\xa0\x80\"", "invalid UTF-8 string"},  // an encoded surrogate
      {"\"\xc0\xaf\"", "invalid UTF-8 string"},      // an overlong solidus
      {"\"\xf4\x90\x80\x80\"", "invalid UTF-8 string"},
      {"\"\\u12\"", "incomplete unicode escape"},
      {"\"\\u00g0\"", "invalid unicode escape"},
      {"-", "invalid number"},
      {"-a", "invalid number"},
      {"1.5", "floating JSON numbers are not canonical ORX values"},
      {"1e3", "floating JSON numbers are not canonical ORX values"},
      {"-0E1", "floating JSON numbers are not canonical ORX values"},
      {"9223372036854775808", "integer is out of Int64 range"},
      {"-9223372036854775809", "integer is out of Int64 range"},
      {"01", "trailing bytes after JSON value"},
      {"{} {}", "trailing bytes after JSON value"},
      {"true\xff", "trailing bytes after JSON value"},
  };
  for (const auto& c : cases) {
    EXPECT_TRUE(orxThrows([&] { ORXCanonicalJSON::parse(c.text); }, parseError(c.message))) << c.text;
  }
  for (const char* repeated : {"{\"a\":1,\"b\":2,\"a\":3}", "{\"a\":1,\"a\":2}", "{\"a\":1,\"a\":1}"}) {
    EXPECT_TRUE(orxThrows([&] { ORXCanonicalJSON::parse(repeated); },
                          "orx.v051.collection_duplicate: canonical object repeats key 'a'"))
        << repeated;
  }
}

// Both ends of every byte range of well-formed UTF-8, and the first byte past each; the padded cases put the
// byte at every position of an eight-byte ASCII run.
TEST(ORXCanonicalJSON, AcceptsExactlyWellFormedUTF8) {
  struct Case {
    std::string bytes;
    bool valid;
  };
  const Case cases[] = {
      {"\x7f", true},          {"\x80", false},         {"\xbf", false},          {"\xc1\xbf", false},
      {"\xc2\x80", true},      {"\xdf\xbf", true},      {"\xc2\x7f", false},      {"\xc2\xc0", false},
      {"\xe0\x80\xaf", false}, {"\xe0\x9f\xbf", false}, {"\xe0\xa0\x80", true},   {"\xe1\x80\x80", true},
      {"\xec\xbf\xbf", true},  {"\xed\x80\x80", true},  {"\xed\x9f\xbf", true},   {"\xed\xa0\x80", false},
      {"\xed\xbf\xbf", false}, {"\xee\x80\x80", true},  {"\xef\xbf\xbf", true},   {"\xe1\x7f\x80", false},
      {"\xe1\xc0\x80", false}, {"\xe1\x80\x7f", false}, {"\xe1\x80\xc0", false},  {"\xe1\x80", false},
      {"\xf0\x8f\xbf\xbf", false}, {"\xf0\x90\x80\x80", true}, {"\xf3\xbf\xbf\xbf", true},
      {"\xf4\x8f\xbf\xbf", true},  {"\xf4\x90\x80\x80", false}, {"\xf5\x80\x80\x80", false},
      {"\xf1\x80\x80\x7f", false}, {"\xf1\x80\x7f\x80", false}, {"\xf1\x80\x80", false}, {"\xf8\x88\x80\x80\x80", false},
      {"\xfe", false},         {"\xff", false},
      {"abcdefgh", true},      {"abcdefg\xff", false},  {"abcdefgh\xff", false},  {"\xffzbcdefgh", false},
      {"abcdefg\xc3\xa9z", true}, {"abcdefghijklmno\x80", false},
  };
  const std::string notUTF8 = "orx.v051.value_invalid: canonical string must be valid UTF-8";
  for (const auto& c : cases) {
    if (c.valid) {
      EXPECT_EQ(*V::string(c.bytes).asString(), c.bytes);
      EXPECT_EQ(*ORXCanonicalJSON::parse("\"" + c.bytes + "\"").asString(), c.bytes);
    } else {
      EXPECT_TRUE(orxThrows([&] { V::string(c.bytes); }, notUTF8)) << testing::PrintToString(c.bytes);
      EXPECT_TRUE(orxThrows([&] { ORXCanonicalJSON::parse("\"" + c.bytes + "\""); }, parseError("invalid UTF-8 string")))
          << testing::PrintToString(c.bytes);
    }
  }
}

TEST(ORXCanonicalJSON, ReadsValuesAndSortsKeys) {
  struct Case {
    std::string text;
    V expected;
    std::string canonical;
  };
  const Case cases[] = {
      {"{}", V::object(ORXCanonicalObject()), "{}"},
      {"[]", V::array({}), "[]"},
      {" [ 1 , 2 ] ", V::array({V::integer(1), V::integer(2)}), "[1,2]"},
      {"{\"b\":1,\"a\":true}", V::object({{"a", V::boolean(true)}, {"b", V::integer(1)}}), "{\"a\":true,\"b\":1}"},
      {"9223372036854775807", V::integer(INT64_MAX), "9223372036854775807"},
      {"-9223372036854775808", V::integer(INT64_MIN), "-9223372036854775808"},
      {"-0", V::integer(0), "0"},
      {"\"\\ud83d\\ude00\"", V::string("\xf0\x9f\x98\x80"), "\"\xf0\x9f\x98\x80\""},
      // The first and last scalars around and beyond the surrogate range.
      {"\"\\ud7ff\\ue000\"", V::string("\xed\x9f\xbf\xee\x80\x80"), "\"\xed\x9f\xbf\xee\x80\x80\""},
      {"\"\\ud800\\udc00\\udbff\\udfff\"", V::string("\xf0\x90\x80\x80\xf4\x8f\xbf\xbf"),
       "\"\xf0\x90\x80\x80\xf4\x8f\xbf\xbf\""},
      {"\"\\u0020 \\u007f\\u0080\\u07ff\\u0800\\uffff\"", V::string("  \x7f\xc2\x80\xdf\xbf\xe0\xa0\x80\xef\xbf\xbf"),
       "\"  \x7f\xc2\x80\xdf\xbf\xe0\xa0\x80\xef\xbf\xbf\""},
      {"\"\\u0000\"", V::string(std::string(1, '\0')), "\"\\u0000\""},
      {"\"\\/\\u00e9\\u001F\"", V::string("/\xc3\xa9\x1f"), "\"/\xc3\xa9\\u001f\""},
      {"[false,[{}]]", V::array({V::boolean(false), V::array({V::object(ORXCanonicalObject())})}), "[false,[{}]]"},
  };
  for (const auto& c : cases) {
    const V value = ORXCanonicalJSON::parse(c.text);
    EXPECT_EQ(value, c.expected) << c.text;
    EXPECT_EQ(value.canonicalString(), c.canonical) << c.text;
  }
}

TEST(ORXCanonicalJSON, KeyOrderIsCodePointOrderNotUTF16Order) {
  // U+FF61 is above the UTF-16 surrogates that encode U+1F600, yet below it as a scalar.
  const V value = ORXCanonicalJSON::parse("{\"\\ud83d\\ude00\":1,\"\\uff61\":2,\"z\":3}");
  EXPECT_EQ(value.canonicalString(), "{\"z\":3,\"\xef\xbd\xa1\":2,\"\xf0\x9f\x98\x80\":1}");
}

TEST(ORXCanonicalJSON, CanonicalTextsSurviveARoundTrip) {
  for (const char* text : {"{\"a\":[1,-2,true,false,\"\\\"\\\\\\b\\f\\n\\r\\t\\u000b\"],\"b\":{}}", "\"\x7f/\"",
                           "[[[[[]]]]]", "{\"\":\"\"}"}) {
    EXPECT_EQ(ORXCanonicalJSON::parse(text).canonicalString(), text);
  }
}

TEST(ORXCanonicalJSON, HostileInputGetsAnErrorOrAValueQuickly) {
  const std::string tooDeep = parseError("JSON nesting is deeper than 512 levels");
  const std::size_t limit = ORXCanonicalJSON::kMaxNestingDepth;
  EXPECT_NO_THROW(ORXCanonicalJSON::parse(std::string(limit, '[') + std::string(limit, ']')));
  EXPECT_TRUE(orxThrows([&] { ORXCanonicalJSON::parse(std::string(limit + 1, '[') + std::string(limit + 1, ']')); },
                        tooDeep));
  EXPECT_TRUE(orxThrows([] { ORXCanonicalJSON::parse(std::string(1000000, '[')); }, tooDeep));
  std::string objects;
  for (int i = 0; i < 1000000; ++i) objects += "{\"a\":";
  EXPECT_TRUE(orxThrows([&] { ORXCanonicalJSON::parse(objects); }, tooDeep));

  const std::string big(10 * 1024 * 1024, 'x');
  EXPECT_EQ(*ORXCanonicalJSON::parse("\"" + big + "\"").asString(), big);
  EXPECT_TRUE(orxThrows([&] { ORXCanonicalJSON::parse("\"" + big); }, parseError("unterminated string")));
  EXPECT_TRUE(orxThrows([&] { ORXCanonicalJSON::parse(std::string(10 * 1024 * 1024, '7')); },
                        parseError("integer is out of Int64 range")));
}

}  // namespace

}  // namespace ravo::orx
