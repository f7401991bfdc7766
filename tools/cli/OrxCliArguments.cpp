#include <ravo-orx/cli/OrxCliArguments.h>

#include <algorithm>
#include <charconv>

namespace ravo::orx {

OrxCliArguments::OrxCliArguments(std::vector<std::string> words) : words_(std::move(words)) {
  const auto end = std::find(words_.begin(), words_.end(), "--");
  optionsEnd_ = static_cast<std::size_t>(end - words_.begin());
  if (end != words_.end()) words_.erase(end);
}

std::string OrxCliArguments::take(std::size_t index) {
  std::string word = std::move(words_[index]);
  words_.erase(words_.begin() + static_cast<std::ptrdiff_t>(index));
  if (index < optionsEnd_) --optionsEnd_;
  return word;
}

std::optional<std::size_t> OrxCliArguments::findOption(std::string_view name) const {
  for (std::size_t index = 0; index < optionsEnd_; ++index) {
    const std::string_view word = words_[index];
    if (word == name || (word.starts_with(name) && word.size() > name.size() && word[name.size()] == '=')) {
      return index;
    }
  }
  return std::nullopt;
}

bool OrxCliArguments::flag(std::string_view name) {
  const auto index = findOption(name);
  if (!index || words_[*index] != name) return false;
  take(*index);
  return true;
}

std::optional<std::string> OrxCliArguments::option(std::string_view name) {
  const auto index = findOption(name);
  if (!index) return std::nullopt;
  const std::string word = take(*index);
  if (word != name) return word.substr(name.size() + 1);
  // The value is the word that followed, whatever it looks like ("--limit -1").
  if (*index >= words_.size()) throw OrxCliUsageError(std::string(name) + " needs a value");
  return take(*index);
}

std::string OrxCliArguments::next(std::string_view what) {
  if (auto word = nextIfAny()) return std::move(*word);
  throw OrxCliUsageError("missing " + std::string(what));
}

std::optional<std::string> OrxCliArguments::nextIfAny() {
  for (std::size_t index = 0; index < words_.size(); ++index) {
    if (!isOption(index)) return take(index);
  }
  return std::nullopt;
}

void OrxCliArguments::finish() const {
  for (std::size_t index = 0; index < words_.size(); ++index) {
    if (isOption(index)) throw OrxCliUsageError("unknown option " + words_[index]);
  }
  if (!words_.empty()) throw OrxCliUsageError("unexpected argument \"" + words_.front() + "\"");
}

std::int64_t orxCliInteger(std::string_view text, std::string_view what, std::int64_t minimum, std::int64_t maximum) {
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (text.empty() || error != std::errc() || end != text.data() + text.size() || value < minimum || value > maximum) {
    throw OrxCliUsageError(std::string(what) + " must be an integer from " + std::to_string(minimum) + " to " +
                           std::to_string(maximum) + ", got \"" + std::string(text) + "\"");
  }
  return value;
}

}  // namespace ravo::orx
