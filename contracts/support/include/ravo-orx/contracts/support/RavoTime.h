#pragma once
// Points in time across the application records: one type in memory, one text form in JSON.
//
// Text form: RFC 3339 in UTC with a "Z" suffix, e.g. "2026-11-23T03:40:05.125Z". The fraction has
// 3, 6 or 9 digits, the fewest that hold the value exactly, so encoding never loses precision and
// equal times always encode alike. Reading accepts 0 to 9 fraction digits and a "Z" or ±hh:mm offset.

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace ravo::orx {

using RavoTimePoint = std::chrono::sys_time<std::chrono::nanoseconds>;

std::string formatRavoTime(RavoTimePoint time);
std::optional<RavoTimePoint> parseRavoTime(std::string_view text);

}  // namespace ravo::orx
