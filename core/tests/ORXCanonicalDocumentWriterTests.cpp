#include <gtest/gtest.h>

#include <string>

#include <ravo-orx/core/ORXCanonicalJSON.h>
#include "core/tests/ORXTestSupport.h"

namespace ravo::orx {

namespace {

using V = ORXCanonicalValue;

TEST(ORXCanonicalJSONCanonicalize, WritesTheCanonicalTextOfAnyValidDocument) {
  struct Case {
    std::string text;
    std::string canonical;
  };
  const Case cases[] = {
      {" { } ", "{}"},
      {"[ ]", "[]"},
      {"[{} ,[], {\"a\" :[ ]}]", "[{},[],{\"a\":[]}]"},
      {"{\"b\":1,\"a\":{\"d\":[1, 2],\"c\":\"x\"}}", "{\"a\":{\"c\":\"x\",\"d\":[1,2]},\"b\":1}"},
      {"[-0, true,false , \"\\/\\u00e9\\u001F\\u0041\"]", "[0,true,false,\"/\xc3\xa9\\u001fA\"]"},
      // Keys order by their decoded bytes, not by their escaped text: \u0001 < \n < A < backslash.
      {"{\"\\n\":1,\"A\":2,\"\\\\\":3,\"\\u0001\":4}", "{\"\\u0001\":4,\"\\n\":1,\"A\":2,\"\\\\\":3}"},
      // Code-point order, not UTF-16 order.
      {"{\"\\ud83d\\ude00\":1,\"\\uff61\":2,\"z\":3}", "{\"z\":3,\"\xef\xbd\xa1\":2,\"\xf0\x9f\x98\x80\":1}"},
      // A reordered object inside a reordered object, and members whose values are containers.
      {"{\"z\":{\"y\":[1,{\"q\":0,\"p\":1}],\"x\":\"\"},\"a\":[]}",
       "{\"a\":[],\"z\":{\"x\":\"\",\"y\":[1,{\"p\":1,\"q\":0}]}}"},
      {"{\"ab\":1,\"a\":2,\"\":3}", "{\"\":3,\"a\":2,\"ab\":1}"},
  };
  for (const auto& c : cases) EXPECT_EQ(ORXCanonicalJSON::canonicalize(c.text), c.canonical) << c.text;

  std::string reversed = "{";
  for (int i = 99; i >= 0; --i) reversed += "\"k" + std::to_string(1000 + i) + "\":" + std::to_string(i) + (i ? "," : "}");
  const std::string canonical = ORXCanonicalJSON::canonicalize(reversed);
  EXPECT_TRUE(canonical.starts_with("{\"k1000\":0,\"k1001\":1,")) << canonical;
  EXPECT_TRUE(canonical.ends_with(",\"k1099\":99}")) << canonical;
}

TEST(ORXCanonicalJSONCanonicalize, NestedObjectsOutOfOrderAroundALargeMember) {
  // Every level closes out of order and moves the large member again, until the budget of moved bytes
  // sends the document through its value; the text is the same either way.
  const std::string large(1 << 20, 'x');
  std::string text = "\"" + large + "\"";
  std::string canonical = text;
  for (int level = 0; level < 512; ++level) {
    text = "{\"b\":" + text + ",\"a\":" + std::to_string(level) + "}";
    canonical = "{\"a\":" + std::to_string(level) + ",\"b\":" + canonical + "}";
  }
  EXPECT_EQ(ORXCanonicalJSON::canonicalize(text), canonical);
  EXPECT_TRUE(orxThrows([&] { ORXCanonicalJSON::canonicalize(text + "{\"a\":1,\"a\":2}"); },
                        "orx.v051.parse_invalid: trailing bytes after JSON value"));
}

TEST(ORXCanonicalJSONCanonicalize, RefusesAsTheParserDoes) {
  struct Case {
    std::string text;
    std::string error;
  };
  const std::string parse = "orx.v051.parse_invalid: ";
  const std::string repeats = "orx.v051.collection_duplicate: canonical object repeats key ";
  const Case cases[] = {
      {"{\"a\":1,\"b\":2,\"a\":3}", repeats + "'a'"},
      // The first repeat in the order written is named, not the first in key order.
      {"{\"b\":1,\"a\":2,\"b\":3,\"a\":4}", repeats + "'b'"},
      {"{\"b\":1,\"a\":2,\"a\":3,\"b\":4}", repeats + "'a'"},
      {"{\"\\n\":1,\"x\":0,\"\\u000a\":2}", repeats + "'\n'"},
      {"[{\"z\":{\"q\":1,\"q\":2},\"a\":1}]", repeats + "'q'"},
      {"[1,]", parse + "unsupported JSON value"},
      {"{\"b\":1,\"a\":1", parse + "unexpected JSON byte"},
      {"{\"b\":1,\"a\":1,}", parse + "object key must be a JSON string"},
      {"\"\\ud83d\\u0041\"", parse + "invalid UTF-16 surrogate pair"},
      {"[1.5]", parse + "floating JSON numbers are not canonical ORX values"},
      {"{} x", parse + "trailing bytes after JSON value"},
      {std::string(513, '['), parse + "JSON nesting is deeper than 512 levels"},
      {std::string(1000000, '['), parse + "JSON nesting is deeper than 512 levels"},
  };
  for (const auto& c : cases) {
    EXPECT_TRUE(orxThrows([&] { ORXCanonicalJSON::canonicalize(c.text); }, c.error)) << c.text;
  }
}

TEST(ORXCanonicalValue, RefusesToBuildValuesDeeperThanTheParserReads) {
  const std::string tooDeep = "orx.v051.value_invalid: canonical value nests deeper than 512 levels";
  struct Case {
    const char* name;
    V (*wrap)(const V&);
    std::string open, close;
  };
  const Case cases[] = {
      {"arrays", [](const V& inner) { return V::array({inner}); }, "[", "]"},
      {"objects", [](const V& inner) { return V::object({{"a", inner}}); }, "{\"a\":", "}"},
  };
  for (const auto& c : cases) {
    // Asked for a million levels, building stops with an error at the first level past the limit.
    V value = V::integer(7);
    int levels = 0;
    try {
      for (; levels < 1000000; ++levels) value = c.wrap(value);
      ADD_FAILURE() << c.name << ": built a million levels";
    } catch (const ORXError& error) {
      EXPECT_EQ(error.description(), tooDeep) << c.name;
    }
    EXPECT_EQ(levels, 512) << c.name;
    EXPECT_EQ(value.nestingDepth(), 512) << c.name;
    std::string expected;
    for (int i = 0; i < 512; ++i) expected += c.open;
    expected += "7";
    for (int i = 0; i < 512; ++i) expected += c.close;
    EXPECT_EQ(value.canonicalString(), expected) << c.name;
    EXPECT_EQ(ORXCanonicalJSON::parse(expected), value) << c.name;
  }
  EXPECT_EQ(V::string("x").nestingDepth(), 0);
  EXPECT_EQ(V::array({V::integer(1), V::array({})}).nestingDepth(), 2);
}

}  // namespace

}  // namespace ravo::orx
