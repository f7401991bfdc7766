#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

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

// Past the 64 KiB that objects are put in order in place within.
constexpr std::size_t kLargePadding = 70'000;

// An object of `members` in the order given, compact or with spaces around every member; `padding`
// bytes of one more member make it span more than the 64 KiB put in order in place.
std::string objectText(const std::vector<std::string>& members, std::size_t padding, bool spaced) {
  const std::string comma = spaced ? " , " : ",";
  std::string text = spaced ? "{ " : "{";
  for (std::size_t i = 0; i < members.size(); ++i) text += (i > 0 ? comma : "") + members[i];
  if (padding > 0) text += comma + "\"~padding\":\"" + std::string(padding, 'p') + "\"";
  return text + (spaced ? " }" : "}");
}

// `inner` inside out-of-order objects, innermost first: 's' a small one, 'l' one that passes 64 KiB at
// its last member, 'e' one that has passed it before `inner` begins; or 'a' in an array after small
// objects, one in order and one not.
std::string wrapped(std::string inner, std::string_view wrappers, bool spaced) {
  for (char wrapper : wrappers) {
    if (wrapper == 'a') {
      inner = R"([{"p":1,"q":2},{"q":1,"p":2},)" + inner + "]";
      continue;
    }
    std::vector<std::string> members = {"\"w\":" + inner, "\"v\":0"};
    if (wrapper == 'e') members.insert(members.begin(), "\"x\":\"" + std::string(kLargePadding, 'x') + "\"");
    inner = objectText(members, wrapper == 'l' ? kLargePadding : 0, spaced);
  }
  return inner;
}

// Small objects are put in order in place and larger ones read again in key order; alone or nested in
// either kind, written compactly or with spaces, each canonicalizes to the text its parsed value
// serializes to (sorted there by a separate comparison of the decoded keys).
TEST(ORXCanonicalJSONCanonicalize, ReordersObjectsAsTheValueTreeDoes) {
  const std::vector<std::vector<std::string>> memberSets = {
      // Keys that differ only after an escape.
      {R"("ab\u0063":1)", R"("abb":2)", R"("a\u0062d":3)", R"("ab":4)", R"("a\u0062\u0062a":5)", R"("\u0061":6)"},
      // Equal prefixes, a NUL, a byte above ASCII, the empty key.
      {R"("key":1)", R"("k":2)", R"("key\u0000":3)", R"("keyA":4)", R"("ke":5)", "\"key\xc3\xa9\":6", R"("":7)"},
      // Code-point order, not UTF-16 order; escapes that stay escaped.
      {R"("\ud83d\ude00":1)", R"("\uff61":2)", R"("z":3)", "\"\xc3\xa9\":4", R"("\u007f":5)", R"("\t":6)", R"("\"":7)"},
      // Values of every kind, containers holding out-of-order objects of their own.
      {R"("s":"t\u0065xt")", R"("n":-0)", R"("t":true)", R"("f":false)", R"("a":[{"y":1,"x":{"d":0,"c":1}},[]])",
       R"("o":{"q":{"b":1,"a":0},"p":[]})"},
  };
  const std::string_view wrappings[] = {"", "s", "l", "e", "a", "sl", "ls", "se", "es", "la", "sls", "lll", "ses", "lal"};
  for (const auto& members : memberSets) {
    for (int order = 0; order < 3; ++order) {
      std::vector<std::string> written = members;
      if (order == 1) std::reverse(written.begin(), written.end());
      if (order == 2) std::rotate(written.begin(), written.begin() + 1, written.end());
      for (std::size_t padding : {std::size_t{0}, kLargePadding}) {
        for (bool spaced : {false, true}) {
          for (std::string_view wrappers : wrappings) {
            const std::string text = wrapped(objectText(written, padding, spaced), wrappers, spaced);
            EXPECT_EQ(ORXCanonicalJSON::canonicalize(text), ORXCanonicalJSON::parse(text).canonicalString())
                << text.substr(0, 200) << " (padding " << padding << ", wrapped " << wrappers << ")";
          }
        }
      }
    }
  }
}

// A repeated key is refused in objects of every size and nesting, naming the first repeat in the order
// written, as the parser names it; so is a later error in a document that was to be read again.
TEST(ORXCanonicalJSONCanonicalize, RefusesRepeatedKeysInObjectsOfEverySize) {
  const std::string repeats = "orx.v051.collection_duplicate: canonical object repeats key ";
  struct Case {
    std::vector<std::string> members;
    std::string key;
  };
  const Case cases[] = {
      {{R"("b":1)", R"("a":2)", R"("b":3)"}, "b"},
      {{R"("\u0061":1)", R"("b":0)", R"("a":2)"}, "a"},
      {{R"("b":1)", R"("a":2)", R"("a":3)", R"("b":4)"}, "a"},
      {{R"("a":1)", R"("\u0061":2)"}, "a"},
      {{R"("c":0)", R"("b":1)", R"("b":2)"}, "b"},
      {{R"("z":0)", R"("k\n":1)", R"("k\u000a":2)"}, "k\n"},
      {{R"("c":0)", R"("b":{"y":1,"x":2,"y":3})", R"("a":0)"}, "y"},
  };
  for (const auto& c : cases) {
    for (std::size_t padding : {std::size_t{0}, kLargePadding}) {
      for (std::string_view wrappers : {"", "s", "l", "e", "ls"}) {
        const std::string text = wrapped(objectText(c.members, padding, false), wrappers, false);
        const std::string error = repeats + "'" + c.key + "'";
        EXPECT_TRUE(orxThrows([&] { ORXCanonicalJSON::canonicalize(text); }, error)) << text.substr(0, 100);
        EXPECT_TRUE(orxThrows([&] { ORXCanonicalJSON::parse(text); }, error)) << text.substr(0, 100);
      }
    }
  }
  // Past a large object out of order, the first reading still checks every later byte.
  const std::string large = objectText({R"("b":1)", R"("a":2)"}, kLargePadding, false);
  EXPECT_TRUE(orxThrows([&] { ORXCanonicalJSON::canonicalize("[" + large + R"(,{"q":1,"q":2}])"); }, repeats + "'q'"));
  EXPECT_TRUE(orxThrows([&] { ORXCanonicalJSON::canonicalize("[" + large + ",1.5]"); },
                        "orx.v051.parse_invalid: floating JSON numbers are not canonical ORX values"));
}

TEST(ORXCanonicalJSONCanonicalize, NestedObjectsOutOfOrderAroundALargeMember) {
  // Every level closes out of order around a member past 64 KiB: read again, each level in key order.
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
