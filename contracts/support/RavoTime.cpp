#include <ravo-orx/contracts/support/RavoTime.h>

#include <fmt/format.h>

#include <cctype>

namespace ravo::orx {

namespace {

using namespace std::chrono;

// Reads exactly `count` digits at `pos`, advancing it.
std::optional<int> digits(std::string_view text, size_t& pos, size_t count) {
  if (pos + count > text.size()) return std::nullopt;
  int value = 0;
  for (size_t i = 0; i < count; ++i) {
    char c = text[pos + i];
    if (c < '0' || c > '9') return std::nullopt;
    value = value * 10 + (c - '0');
  }
  pos += count;
  return value;
}

bool expect(std::string_view text, size_t& pos, char c) {
  if (pos >= text.size() || text[pos] != c) return false;
  ++pos;
  return true;
}

}  // namespace

std::string formatRavoTime(RavoTimePoint time) {
  auto day = floor<days>(time);
  year_month_day date{day};
  hh_mm_ss<nanoseconds> clock{time - day};
  long long nanos = clock.subseconds().count();
  std::string fraction;
  if (nanos % 1'000'000 == 0) {
    fraction = fmt::format("{:03d}", nanos / 1'000'000);
  } else if (nanos % 1'000 == 0) {
    fraction = fmt::format("{:06d}", nanos / 1'000);
  } else {
    fraction = fmt::format("{:09d}", nanos);
  }
  return fmt::format("{:04d}-{:02d}-{:02d}T{:02d}:{:02d}:{:02d}.{}Z", static_cast<int>(date.year()),
                     static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                     clock.hours().count(), clock.minutes().count(), clock.seconds().count(),
                     fraction);
}

std::optional<RavoTimePoint> parseRavoTime(std::string_view text) {
  size_t pos = 0;
  auto year = digits(text, pos, 4);
  if (!year || !expect(text, pos, '-')) return std::nullopt;
  auto month = digits(text, pos, 2);
  if (!month || !expect(text, pos, '-')) return std::nullopt;
  auto dayOfMonth = digits(text, pos, 2);
  if (!dayOfMonth || !(expect(text, pos, 'T') || expect(text, pos, 't'))) return std::nullopt;
  auto hour = digits(text, pos, 2);
  if (!hour || !expect(text, pos, ':')) return std::nullopt;
  auto minute = digits(text, pos, 2);
  if (!minute || !expect(text, pos, ':')) return std::nullopt;
  auto second = digits(text, pos, 2);
  if (!second) return std::nullopt;

  long long nanos = 0;
  if (expect(text, pos, '.')) {
    size_t start = pos;
    while (pos < text.size() && std::isdigit(static_cast<unsigned char>(text[pos])) && pos - start < 9) {
      nanos = nanos * 10 + (text[pos] - '0');
      ++pos;
    }
    if (pos == start) return std::nullopt;
    for (size_t n = pos - start; n < 9; ++n) nanos *= 10;
  }

  minutes offset{0};
  if (!(expect(text, pos, 'Z') || expect(text, pos, 'z'))) {
    if (pos >= text.size() || (text[pos] != '+' && text[pos] != '-')) return std::nullopt;
    int sign = text[pos++] == '-' ? -1 : 1;
    auto offsetHours = digits(text, pos, 2);
    if (!offsetHours || !expect(text, pos, ':')) return std::nullopt;
    auto offsetMinutes = digits(text, pos, 2);
    if (!offsetMinutes || *offsetHours > 23 || *offsetMinutes > 59) return std::nullopt;
    offset = minutes{sign * (*offsetHours * 60 + *offsetMinutes)};
  }
  if (pos != text.size()) return std::nullopt;

  year_month_day date{std::chrono::year{*year}, std::chrono::month{static_cast<unsigned>(*month)},
                      std::chrono::day{static_cast<unsigned>(*dayOfMonth)}};
  if (!date.ok() || *hour > 23 || *minute > 59 || *second > 59) return std::nullopt;
  // Nanoseconds in 64 bits reach only the years 1678 to 2262: a time outside is refused, not wrapped.
  const sys_seconds wholeSeconds = sys_days{date} + hours{*hour} + minutes{*minute} + seconds{*second} - offset;
  long long count = 0;
  if (__builtin_mul_overflow(wholeSeconds.time_since_epoch().count(), 1'000'000'000LL, &count) ||
      __builtin_add_overflow(count, nanos, &count)) {
    return std::nullopt;
  }
  return RavoTimePoint{nanoseconds{count}};
}

}  // namespace ravo::orx
