#include <ravo-orx/contracts/support/RavoGraphemePrefix.h>

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <cstdint>
#include <memory>
#include <stdexcept>

namespace ravo::orx {

std::string ravoGraphemePrefix(std::string_view text, std::size_t maximum) {
  // Every character takes at least one byte, so short texts need no break iteration.
  if (text.size() <= maximum) return std::string(text);
  const auto unicode = icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
  // Break iterators are not thread-safe and costly to create, so each thread keeps its own.
  thread_local const std::unique_ptr<icu::BreakIterator> breaks = [] {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::BreakIterator> created(icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    if (U_FAILURE(status)) throw std::runtime_error(std::string("ICU character break iterator unavailable: ") + u_errorName(status));
    return created;
  }();
  breaks->setText(unicode);
  int32_t end = 0;
  for (std::size_t count = 0; count < maximum; ++count) {
    const int32_t next = breaks->next();
    if (next == icu::BreakIterator::DONE) return std::string(text);
    end = next;
  }
  if (end == unicode.length()) return std::string(text);
  std::string prefix;
  unicode.tempSubString(0, end).toUTF8String(prefix);
  return prefix;
}

}  // namespace ravo::orx
