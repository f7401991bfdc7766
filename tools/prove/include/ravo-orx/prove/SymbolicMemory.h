#pragma once
// A module's linear memory over symbolic addresses: its bytes are an array from 32-bit addresses to
// bytes, its size a number of 64 KiB pages. Loads and stores of 1, 2, 4 or 8 bytes are little-endian,
// a load extends its bytes with or without sign, and an access whose last byte lies beyond the
// memory's size traps. Growth adds zeroed pages up to the memory's maximum and returns the old size,
// or -1 without growing. A module without memory has none of 0 pages, so every access traps.

#include <cstdint>
#include <map>
#include <utility>

#include <z3++.h>

#include <ravo-orx/prove/SymbolicFold.h>

namespace ravo::orx::internal {

struct SymbolicMemory {
  z3::expr bytes;  // Array(32-bit address, 8-bit byte)
  z3::expr pages;  // 32 bits
};

class SymbolicMemoryModel {
 public:
  // `initialBytes` holds the non-zero bytes the data segments put in place; every other byte is 0.
  SymbolicMemoryModel(z3::context& context, std::uint32_t initialPages, std::uint32_t maximumPages,
                      std::map<std::uint32_t, std::uint8_t> initialBytes);

  SymbolicMemory initial() const { return {initialBytes_, context_.bv_val(initialPages_, 32)}; }

  // `width` bytes at address + offset, extended to `resultBits` (32 or 64).
  SymbolicResult load(const SymbolicMemory& memory, const z3::expr& address, std::uint64_t offset, unsigned width,
                      unsigned resultBits, bool signExtend) const;
  // The memory with the low `width` bytes of `value` at address + offset, and when the store traps.
  std::pair<SymbolicMemory, z3::expr> store(const SymbolicMemory& memory, const z3::expr& address,
                                            std::uint64_t offset, unsigned width, const z3::expr& value) const;
  // memory.grow: the old size or -1, and the memory after.
  std::pair<z3::expr, SymbolicMemory> grow(const SymbolicMemory& memory, const z3::expr& deltaPages) const;

 private:
  // The 64-bit address of the access, and whether it reaches past the memory's end.
  std::pair<z3::expr, z3::expr> locate(const SymbolicMemory& memory, const z3::expr& address, std::uint64_t offset,
                                       unsigned width) const;
  z3::expr byteAt(const z3::expr& bytes, const z3::expr& address, int branches) const;

  z3::context& context_;
  std::uint32_t initialPages_;
  std::uint32_t maximumPages_;
  std::map<std::uint32_t, std::uint8_t> initialContents_;
  z3::expr initialBytes_;
};

}  // namespace ravo::orx::internal
