#pragma once
// A pattern given on the command line (`policy test --run`): a regular expression in ICU's syntax
// (that of ICU's RegexPattern, close to ECMAScript's and Perl's: classes, groups, alternation,
// quantifiers, anchors, look-around), searched for anywhere in a text.
//
// It runs on ICU's matcher rather than std::regex, which recurses once per character of the text and
// overflows the stack on a long case name or pattern. ICU's matcher keeps its backtracking on the heap
// under a limit and counts its steps, so every search ends: one that would need more than its limits
// is refused, as is a pattern longer than kOrxCliPatternByteLimit.

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include <unicode/uversion.h>

U_NAMESPACE_BEGIN
class RegexPattern;
U_NAMESPACE_END

namespace ravo::orx {

// The longest pattern taken; a case selector is a few words.
inline constexpr std::size_t kOrxCliPatternByteLimit = 1'000;

class OrxCliPattern {
 public:
  // Throws OrxCliUsageError naming `option` when the pattern is too long or no regular expression.
  OrxCliPattern(std::string_view option, std::string pattern);
  OrxCliPattern(OrxCliPattern&&) noexcept;
  ~OrxCliPattern();

  // Whether the pattern matches anywhere in `text` (UTF-8). Throws OrxCliUsageError when the search
  // would take more than its limits of time or backtracking memory.
  bool foundIn(std::string_view text) const;

 private:
  std::string option_;
  std::string pattern_;
  std::unique_ptr<icu::RegexPattern> compiled_;
};

}  // namespace ravo::orx
