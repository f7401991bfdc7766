#pragma once
// Test support: modules assembled byte by byte, for shapes too large or too malformed for wat2wasm
// (a type of 10,000 parameters shared by 10,000 functions, 100,000 tables, declared counts that lie).

#include <cstdint>
#include <string>
#include <vector>

namespace ravo::orx {

using ModuleBytes = std::vector<std::uint8_t>;

inline ModuleBytes leb(std::uint64_t value) {
  ModuleBytes out;
  do {
    std::uint8_t byte = value & 0x7F;
    value >>= 7;
    out.push_back(value ? byte | 0x80 : byte);
  } while (value);
  return out;
}

inline ModuleBytes operator+(ModuleBytes left, const ModuleBytes& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

inline ModuleBytes repeated(const ModuleBytes& item, std::uint64_t count) {
  ModuleBytes out;
  out.reserve(item.size() * count);
  for (std::uint64_t i = 0; i < count; ++i) out.insert(out.end(), item.begin(), item.end());
  return out;
}

// A vector of `count` copies of `item`, prefixed by its count.
inline ModuleBytes vectorOf(const ModuleBytes& item, std::uint64_t count) { return leb(count) + repeated(item, count); }

inline ModuleBytes section(std::uint8_t id, const ModuleBytes& payload) {
  return ModuleBytes{id} + leb(payload.size()) + payload;
}

inline ModuleBytes moduleHeader() { return {0x00, 0x61, 0x73, 0x6D, 0x01, 0x00, 0x00, 0x00}; }

// A function type of `params` i32 parameters and `results` i32 results.
inline ModuleBytes functionType(std::uint64_t params, std::uint64_t results) {
  return ModuleBytes{0x60} + vectorOf({0x7F}, params) + vectorOf({0x7F}, results);
}

// A function body: `localCount` i32 locals in one group, then `code` and `end`.
inline ModuleBytes functionBody(std::uint64_t localCount, const ModuleBytes& code) {
  const ModuleBytes body = (localCount ? leb(1) + leb(localCount) + ModuleBytes{0x7F} : leb(0)) + code + ModuleBytes{0x0B};
  return leb(body.size()) + body;
}

// `functions` functions of type 0, each with `body`, the first exported as decide.
inline ModuleBytes moduleOfFunctions(const ModuleBytes& types, std::uint64_t functions, const ModuleBytes& body) {
  const std::string decide = "decide";
  return moduleHeader() + section(1, types) + section(3, vectorOf({0x00}, functions)) +
         section(7, leb(1) + leb(decide.size()) + ModuleBytes(decide.begin(), decide.end()) + ModuleBytes{0x00, 0x00}) +
         section(10, vectorOf(body, functions));
}

}  // namespace ravo::orx
