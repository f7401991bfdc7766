#include <gtest/gtest.h>

#include <ravo-orx/contracts/support/RavoTextNormalization.h>

namespace ravo::orx {

namespace {

TEST(RavoTextNormalization, FoldsCaseAndDiacriticsAndTrims) {
  struct Case {
    const char* text;
    const char* normalized;
  };
  const Case cases[] = {
      {" Pause ", "pause"},
      {"PAUSE", "pause"},
      {"Pâuse", "pause"},
      {"  ПАУЗА \n", "пауза"},
      {"стой", "стои"},
      {"Ёлка", "елка"},
      {"Straße", "strasse"},
      {"İstanbul", "istanbul"},
      {"e\u0301te\u0301", "ete"},
      {"\u00a0\u3000tab\t", "tab"},
      {"open  kolto", "open  kolto"},
      {"", ""},
      {"\xff", "\xef\xbf\xbd"},  // ill-formed UTF-8 reads as U+FFFD
  };
  for (const auto& c : cases) EXPECT_EQ(ravoNormalizedText(c.text), c.normalized) << c.text;
  EXPECT_EQ(ravoTrimmedText(" \n Pâuse\r\n"), "Pâuse");
}

TEST(RavoTextNormalization, CountsUserPerceivedCharactersAndFindsControls) {
  struct Case {
    const char* text;
    size_t graphemes;
    bool control;
  };
  const Case cases[] = {
      {"", 0, false},
      {"стоп", 4, false},
      {"e\u0301", 1, false},
      {"\U0001F1F7\U0001F1FA", 1, false},   // a flag is two regional indicators
      {"\U0001F469\u200D\U0001F4BB", 1, true},  // zero width joiner is a format character
      {"a\nb", 3, true},
      {"\u00ad", 1, true},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ravoGraphemeCount(c.text), c.graphemes) << c.text;
    EXPECT_EQ(ravoContainsControlCharacter(c.text), c.control) << c.text;
  }
  EXPECT_TRUE(ravoContainsControlCharacter(std::string_view("a\0b", 3)));
}

TEST(RavoTextNormalization, ValidatesUTF8) {
  for (const char* good : {"", "ascii", "пауза", "\U0010FFFF"}) EXPECT_TRUE(ravoIsValidUTF8(good)) << good;
  for (const char* bad : {"\xc0\xaf", "\xed\xa0\x80", "\xf4\x90\x80\x80", "\xe2\x82", "\x80"}) {
    EXPECT_FALSE(ravoIsValidUTF8(bad));
  }
}

TEST(RavoTextNormalization, SplitsTokensAtEverythingButLettersAndNumbers) {
  struct Case {
    const char* text;
    std::vector<std::string> tokens;
  };
  const Case cases[] = {
      {"громкость 50%", {"громкость", "50"}},
      {"open-pixmor, now!", {"open", "pixmor", "now"}},
      {"  ", {}},
      {"e\u0301t\u00e9", {"e\u0301t\u00e9"}},
      {"日本語テキスト", {"日本語テキスト"}},
      {"٣ items", {"٣", "items"}},
  };
  for (const auto& c : cases) EXPECT_EQ(ravoTextTokens(c.text), c.tokens) << c.text;
}

}  // namespace

}  // namespace ravo::orx
