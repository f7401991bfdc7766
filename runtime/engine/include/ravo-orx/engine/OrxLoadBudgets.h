#pragma once
// Load budgets: limits on what a module may declare, checked on its raw bytes before wabt builds any
// structure from them. wabt's readers allocate for declared counts as they read (a function type of
// 10,000 parameters is copied into every function that uses it; each table reserves its elements), so
// a small file can otherwise cost gigabytes before any validation runs. Each budget is generous for a
// compiled policy and keeps the worst module of at most kOrxMaxModuleBytes to tens of megabytes and
// milliseconds. docs/ARCHITECTURE.md lists them with their reasons.
//
// Malformed section framing is left to wabt, which refuses it with its own error: the scan checks
// every count in file order before the entries it announces, exactly as far as wabt would read.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace ravo::orx::internal {

inline constexpr std::uint64_t kOrxMaxModuleBytes = 4 * 1024 * 1024;
inline constexpr std::uint64_t kOrxMaxTypes = 10'000;
inline constexpr std::uint64_t kOrxMaxParamsPerType = 1'000;
inline constexpr std::uint64_t kOrxMaxResultsPerType = 1'000;
inline constexpr std::uint64_t kOrxMaxSignatureSlots = 200'000;  // parameters and results, types and functions
inline constexpr std::uint64_t kOrxMaxFunctions = 10'000;
inline constexpr std::uint64_t kOrxMaxImports = 100;
inline constexpr std::uint64_t kOrxMaxExports = 1'000;
inline constexpr std::uint64_t kOrxMaxGlobals = 1'000;
inline constexpr std::uint64_t kOrxMaxTables = 16;
inline constexpr std::uint64_t kOrxMaxTableElements = 10'000;  // all tables together, and any one table's growth
inline constexpr std::uint64_t kOrxMaxDataSegments = 1'000;
inline constexpr std::uint64_t kOrxMaxElementSegments = 1'000;
inline constexpr std::uint64_t kOrxMaxLocalsPerFunction = 2'000;
inline constexpr std::uint64_t kOrxMaxMemoryPages = 256;  // 16 MiB: the initial size, and growth's cap
// Checked while the code is read (OrxExecutionBound.h): wabt's IR, which metering rewrites, holds
// every instruction as an object and nested blocks as nested lists, and its validation checks every
// value type an instruction names. An instruction counts one, plus each br_table target and typed
// select type, plus each value type checked for it (the parameters and results of its block type or
// callee, the values a branch keeps).
inline constexpr std::uint64_t kOrxMaxInstructions = 250'000;  // over all function bodies
inline constexpr std::uint64_t kOrxMaxElementSegmentEntries = 10'000;  // over all element segments
inline constexpr std::uint64_t kOrxMaxBlockNesting = 1'024;
// Checked before metering rewrites a module (OrxFuelMetering.h), from the sites the code analysis
// counted: the code the rewrite adds is held in wabt's IR like the module's own.
inline constexpr std::uint64_t kOrxMaxMeteringInstructions = 250'000;

// "load budget exceeded: <budget> <value> (budget <limit>)", or nothing when the bytes fit every budget.
std::optional<std::string> checkLoadBudgets(const std::uint8_t* bytes, std::size_t size);

// The refusal text for one budget, shared with the checks made while code is read.
std::string loadBudgetExceeded(const char* budget, std::uint64_t value, std::uint64_t limit);

}  // namespace ravo::orx::internal
