#pragma once
// Benchmark support: replaces the global operator new so that a benchmark can count the heap
// allocations of the thread it measures (other threads, such as a decision log's, allocate apart).
// Include it in exactly one source file of a benchmark program.

#include <cstdint>
#include <cstdlib>
#include <new>

namespace ravo::orx {

inline thread_local std::uint64_t orxBenchAllocations = 0;

}  // namespace ravo::orx

// These replace the global allocation functions as a pair, so malloc/free match; g++ cannot see that.
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"

void* operator new(std::size_t size) {
  ++ravo::orx::orxBenchAllocations;
  if (void* memory = std::malloc(size ? size : 1)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
