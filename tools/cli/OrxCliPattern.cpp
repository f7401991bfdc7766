#include <ravo-orx/cli/OrxCliPattern.h>

#include <cstdint>

#include <unicode/regex.h>
#include <unicode/unistr.h>
#include <unicode/utypes.h>

#include <ravo-orx/core/ORXMessageText.h>
#include <ravo-orx/cli/OrxCliArguments.h>

namespace ravo::orx {

namespace {

// Steps of ICU's matcher per search, "on the order of milliseconds" each by ICU's account: a case name
// is searched in microseconds, and a pattern that backtracks without end is stopped within a second.
constexpr std::int32_t kSearchTimeLimit = 1'000;
// The heap a search may use for its backtracking (ICU's own default).
constexpr std::int32_t kSearchStackBytes = 8 << 20;

std::string shown(std::string_view text) {
  return "\"" + internal::ORXMessageText::printable(internal::ORXMessageText::excerpt(text, 64)) + "\"";
}

}  // namespace

OrxCliPattern::OrxCliPattern(std::string_view option, std::string pattern)
    : option_(option), pattern_(std::move(pattern)) {
  if (pattern_.size() > kOrxCliPatternByteLimit) {
    throw OrxCliUsageError(option_ + " takes a pattern of at most " + std::to_string(kOrxCliPatternByteLimit) +
                           " bytes, got " + std::to_string(pattern_.size()));
  }
  UErrorCode status = U_ZERO_ERROR;
  UParseError where{};
  compiled_.reset(icu::RegexPattern::compile(icu::UnicodeString::fromUTF8(pattern_), 0, where, status));
  if (U_FAILURE(status)) {
    throw OrxCliUsageError(option_ + " " + shown(pattern_) + " is not a regular expression: " + u_errorName(status) +
                           " at character " + std::to_string(where.offset + 1));
  }
}

OrxCliPattern::OrxCliPattern(OrxCliPattern&&) noexcept = default;
OrxCliPattern::~OrxCliPattern() = default;

bool OrxCliPattern::foundIn(std::string_view text) const {
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeString subject =
      icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
  const std::unique_ptr<icu::RegexMatcher> matcher(compiled_->matcher(subject, status));
  if (U_SUCCESS(status)) matcher->setTimeLimit(kSearchTimeLimit, status);
  if (U_SUCCESS(status)) matcher->setStackLimit(kSearchStackBytes, status);
  const bool found = U_SUCCESS(status) && matcher->find(status);
  if (U_FAILURE(status)) {
    throw OrxCliUsageError(option_ + " " + shown(pattern_) + " could not be searched for in " + shown(text) + ": " +
                           u_errorName(status));
  }
  return found;
}

}  // namespace ravo::orx
