#pragma once
// The arguments of one subcommand, taken apart the same way by every subcommand: options may stand
// anywhere ("--limit 5" or "--limit=5", flags such as "--raw"); the other words are positional and
// taken in order. A subcommand takes its options before its positional words. "--" ends the options,
// so a text that starts with "--" can still be passed. Whatever a subcommand did not take is a usage
// mistake, reported by finish().

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace ravo::orx {

// A usage mistake: the message names what was wrong; the tool adds where to find help.
class OrxCliUsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class OrxCliArguments {
 public:
  explicit OrxCliArguments(std::vector<std::string> words);

  // Whether "--name" was given; removes it.
  bool flag(std::string_view name);
  // The value of "--name VALUE" or "--name=VALUE"; removes both. Throws when the value is missing.
  std::optional<std::string> option(std::string_view name);

  // The next positional word; throws "missing <what>" when there is none.
  std::string next(std::string_view what);
  std::optional<std::string> nextIfAny();

  // Throws for an unknown option or a positional word nobody took.
  void finish() const;

 private:
  // The index of the first untaken "--name" or "--name=VALUE", or nothing.
  std::optional<std::size_t> findOption(std::string_view name) const;
  bool isOption(std::size_t index) const { return index < optionsEnd_ && words_[index].starts_with("--"); }
  std::string take(std::size_t index);

  std::vector<std::string> words_;  // not yet taken, in order, without the "--" that ends the options
  std::size_t optionsEnd_;          // words from here on are positional whatever they look like
};

// Reads a whole decimal integer in [minimum, maximum]; throws a usage error naming `what` otherwise.
std::int64_t orxCliInteger(std::string_view text, std::string_view what, std::int64_t minimum, std::int64_t maximum);

}  // namespace ravo::orx
