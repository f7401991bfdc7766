#include <ravo-orx/contracts/support/RavoTextNormalization.h>

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

#include <cstdint>
#include <memory>
#include <stdexcept>

namespace ravo::orx {

namespace {

icu::UnicodeString fromUTF8(std::string_view text) {
  return icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
}

std::string toUTF8(const icu::UnicodeString& text) {
  std::string result;
  text.toUTF8String(result);
  return result;
}

void check(UErrorCode status, const char* what) {
  // ICU's data is linked into the library; failing to load it is a broken installation, not bad input.
  if (U_FAILURE(status)) throw std::runtime_error(std::string("ICU ") + what + " unavailable: " + u_errorName(status));
}

const icu::Normalizer2& decomposition() {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* normalizer = icu::Normalizer2::getNFDInstance(status);
  check(status, "NFD normalizer");
  return *normalizer;
}

const icu::Normalizer2& composition() {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* normalizer = icu::Normalizer2::getNFCInstance(status);
  check(status, "NFC normalizer");
  return *normalizer;
}

icu::UnicodeString trimmed(const icu::UnicodeString& text) {
  int32_t start = 0;
  int32_t end = text.length();
  while (start < end && u_isUWhiteSpace(text.char32At(start))) start = text.moveIndex32(start, 1);
  while (end > start) {
    int32_t previous = text.moveIndex32(end, -1);
    if (!u_isUWhiteSpace(text.char32At(previous))) break;
    end = previous;
  }
  return icu::UnicodeString(text, start, end - start);
}

// A break iterator is not thread-safe and costly to create, so each thread keeps its own.
icu::BreakIterator& characterBreaks(const icu::UnicodeString& text) {
  thread_local std::unique_ptr<icu::BreakIterator> iterator = [] {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::BreakIterator> created(icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    check(status, "character break iterator");
    return created;
  }();
  iterator->setText(text);
  return *iterator;
}

// Whether `test` holds for any code point of the UTF-8 text; an ill-formed sequence reads as a negative value.
template <class Test>
bool anyCodePoint(std::string_view text, Test test) {
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  const auto length = static_cast<std::int64_t>(text.size());
  for (std::int64_t i = 0; i < length;) {
    UChar32 c;
    U8_NEXT(bytes, i, length, c);
    if (test(c)) return true;
  }
  return false;
}

bool isLetterOrNumber(UChar32 c) { return (U_GET_GC_MASK(c) & (U_GC_L_MASK | U_GC_N_MASK)) != 0; }

}  // namespace

std::string ravoNormalizedText(std::string_view text) {
  icu::UnicodeString folded = fromUTF8(text);
  folded.foldCase(U_FOLD_CASE_DEFAULT);

  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString decomposed = decomposition().normalize(folded, status);
  check(status, "decomposition");
  icu::UnicodeString bare;
  for (int32_t i = 0; i < decomposed.length(); i = decomposed.moveIndex32(i, 1)) {
    UChar32 c = decomposed.char32At(i);
    if (u_charType(c) != U_NON_SPACING_MARK) bare.append(c);
  }
  icu::UnicodeString composed = composition().normalize(bare, status);
  check(status, "composition");
  // Case folding maps a few letters (Cherokee) to capitals, so lower-casing comes last.
  composed.toLower(icu::Locale::getRoot());
  return toUTF8(trimmed(composed));
}

std::string ravoTrimmedText(std::string_view text) { return toUTF8(trimmed(fromUTF8(text))); }

std::size_t ravoGraphemeCount(std::string_view text) {
  icu::UnicodeString unicode = fromUTF8(text);
  icu::BreakIterator& breaks = characterBreaks(unicode);
  std::size_t count = 0;
  for (int32_t end = breaks.next(); end != icu::BreakIterator::DONE; end = breaks.next()) ++count;
  return count;
}

bool ravoContainsControlCharacter(std::string_view text) {
  return anyCodePoint(text, [](UChar32 c) {
    auto type = u_charType(c < 0 ? 0xFFFD : c);
    return type == U_CONTROL_CHAR || type == U_FORMAT_CHAR;
  });
}

bool ravoIsValidUTF8(std::string_view text) {
  return !anyCodePoint(text, [](UChar32 c) { return c < 0; });
}

std::vector<std::string> ravoTextTokens(std::string_view text) {
  icu::UnicodeString unicode = fromUTF8(text);
  icu::BreakIterator& breaks = characterBreaks(unicode);
  std::vector<std::string> tokens;
  int32_t tokenStart = 0;
  auto closeToken = [&](int32_t end) {
    if (end > tokenStart) tokens.push_back(toUTF8(icu::UnicodeString(unicode, tokenStart, end - tokenStart)));
  };
  for (int32_t start = breaks.first(), end = breaks.next(); end != icu::BreakIterator::DONE;
       start = end, end = breaks.next()) {
    // A cluster counts as a letter or number by its base character; marks ride along with it.
    if (!isLetterOrNumber(unicode.char32At(start))) {
      closeToken(start);
      tokenStart = end;
    }
  }
  closeToken(unicode.length());
  return tokens;
}

}  // namespace ravo::orx
