#include <ravo-orx/engine/OrxLoadBudgets.h>

#include <vector>

namespace ravo::orx::internal {

namespace {

enum Section : std::uint8_t {
  kType = 1,
  kImport = 2,
  kFunction = 3,
  kTable = 4,
  kMemory = 5,
  kGlobal = 6,
  kExport = 7,
  kElement = 9,
  kCode = 10,
  kData = 11,
  kDataCount = 12,
};
enum ImportKind : std::uint8_t { kImportFunction = 0, kImportTable = 1, kImportMemory = 2 };
constexpr std::size_t kHeaderSize = 8;  // magic and version
constexpr std::uint8_t kFunctionForm = 0x60;

// A bounds-checked reader over one range of the bytes. Any malformed read makes it fail for good; the
// scan then stops and leaves the refusal to wabt.
class Cursor {
 public:
  Cursor(const std::uint8_t* bytes, std::size_t begin, std::size_t end) : bytes_(bytes), offset_(begin), end_(end) {}

  bool ok() const { return ok_; }
  bool atEnd() const { return offset_ >= end_; }
  std::size_t offset() const { return offset_; }

  std::uint8_t byte() {
    if (!ok_ || offset_ >= end_) return fail();
    return bytes_[offset_++];
  }

  // An unsigned LEB128 of at most 32 bits.
  std::uint32_t u32() {
    std::uint64_t value = 0;
    for (int shift = 0; shift < 35; shift += 7) {
      const std::uint8_t next = byte();
      if (!ok_) return 0;
      value |= static_cast<std::uint64_t>(next & 0x7F) << shift;
      if ((next & 0x80) == 0) return value > UINT32_MAX ? fail() : static_cast<std::uint32_t>(value);
    }
    return fail();
  }

  void skip(std::uint64_t count) {
    if (!ok_ || count > end_ - offset_) {
      fail();
      return;
    }
    offset_ += count;
  }

  // Limits of a table or memory; returns the initial size.
  std::uint32_t limitsInitial() {
    const std::uint32_t flags = u32();
    if (flags > 1) return fail();  // shared or 64-bit: features the engine does not enable
    const std::uint32_t initial = u32();
    if (flags == 1) u32();
    return initial;
  }

 private:
  std::uint8_t fail() {
    ok_ = false;
    return 0;
  }

  const std::uint8_t* bytes_;
  std::size_t offset_;
  std::size_t end_;
  bool ok_ = true;
};

// Totals that span sections, and the first budget exceeded.
class BudgetScan {
 public:
  std::optional<std::string> exceeded;

  // Records `value` and whether it fits; a false return stops the scan.
  bool within(const char* budget, std::uint64_t value, std::uint64_t limit) {
    if (value <= limit) return true;
    if (!exceeded) exceeded = loadBudgetExceeded(budget, value, limit);
    return false;
  }

  bool section(std::uint8_t id, Cursor& in) {
    switch (id) {
      case kType: return types(in);
      case kImport: return imports(in);
      case kFunction: return functions(in);
      case kTable: return tables(in);
      case kMemory: return memories(in);
      case kGlobal: return within("globals", in.u32(), kOrxMaxGlobals);
      case kExport: return within("exports", in.u32(), kOrxMaxExports);
      case kElement: return within("element segments", in.u32(), kOrxMaxElementSegments);
      case kCode: return code(in);
      case kData:
      case kDataCount: return within("data segments", in.u32(), kOrxMaxDataSegments);
      default: return true;
    }
  }

 private:
  bool types(Cursor& in) {
    const std::uint32_t count = in.u32();
    if (!within("function types", count, kOrxMaxTypes)) return false;
    for (std::uint32_t i = 0; i < count && in.ok(); ++i) {
      if (in.byte() != kFunctionForm) return false;
      const std::uint32_t params = in.u32();
      if (!within("parameters per function type", params, kOrxMaxParamsPerType)) return false;
      in.skip(params);
      const std::uint32_t results = in.u32();
      if (!within("results per function type", results, kOrxMaxResultsPerType)) return false;
      in.skip(results);
      signatureSize_.push_back(std::uint64_t{params} + results);
      if (!signatureSlots(params + std::uint64_t{results})) return false;
    }
    return in.ok();
  }

  bool imports(Cursor& in) {
    const std::uint32_t count = in.u32();
    if (!within("imports", count, kOrxMaxImports)) return false;
    for (std::uint32_t i = 0; i < count && in.ok(); ++i) {
      in.skip(in.u32());  // module name
      in.skip(in.u32());  // field name
      switch (in.byte()) {
        case kImportFunction:
          if (!function(in.u32())) return false;
          break;
        case kImportTable:
          in.byte();  // element type
          if (!table(in.limitsInitial())) return false;
          break;
        case kImportMemory:
          if (!memory(in.limitsInitial())) return false;
          break;
        default: return true;  // globals and anything later need nothing; wabt reads the rest
      }
    }
    return in.ok();
  }

  bool functions(Cursor& in) {
    const std::uint32_t count = in.u32();
    if (!within("functions", functions_ + count, kOrxMaxFunctions)) return false;
    for (std::uint32_t i = 0; i < count && in.ok(); ++i) {
      if (!function(in.u32())) return false;
    }
    return in.ok();
  }

  bool tables(Cursor& in) {
    const std::uint32_t count = in.u32();
    if (!within("tables", tables_ + count, kOrxMaxTables)) return false;
    for (std::uint32_t i = 0; i < count && in.ok(); ++i) {
      in.byte();  // element type
      if (!table(in.limitsInitial())) return false;
    }
    return in.ok();
  }

  bool memories(Cursor& in) {
    const std::uint32_t count = in.u32();
    for (std::uint32_t i = 0; i < count && in.ok(); ++i) {
      if (!memory(in.limitsInitial())) return false;
    }
    return in.ok();
  }

  bool code(Cursor& in) {
    const std::uint32_t count = in.u32();
    for (std::uint32_t i = 0; i < count && in.ok(); ++i) {
      const std::uint32_t bodySize = in.u32();
      const std::size_t bodyEnd = in.offset() + bodySize;
      std::uint64_t locals = 0;
      const std::uint32_t groups = in.u32();
      for (std::uint32_t g = 0; g < groups && in.ok() && in.offset() < bodyEnd; ++g) {
        locals += in.u32();
        in.byte();  // type
        if (!within("locals per function", locals, kOrxMaxLocalsPerFunction)) return false;
      }
      if (!in.ok() || in.offset() > bodyEnd) return false;
      in.skip(bodyEnd - in.offset());
    }
    return in.ok();
  }

  bool function(std::uint32_t typeIndex) {
    ++functions_;
    if (!within("functions", functions_, kOrxMaxFunctions)) return false;
    return signatureSlots(typeIndex < signatureSize_.size() ? signatureSize_[typeIndex] : 0);
  }

  // wabt keeps each type's parameters and results, and copies them again into every function.
  bool signatureSlots(std::uint64_t count) {
    signatureSlots_ += count;
    return within("parameters and results over all types and functions", signatureSlots_, kOrxMaxSignatureSlots);
  }

  bool table(std::uint32_t initial) {
    ++tables_;
    tableElements_ += initial;
    return within("tables", tables_, kOrxMaxTables) &&
           within("table elements", tableElements_, kOrxMaxTableElements);
  }

  bool memory(std::uint32_t initialPages) { return within("initial memory pages", initialPages, kOrxMaxMemoryPages); }

  std::vector<std::uint64_t> signatureSize_;  // parameters and results of each type, in index order
  std::uint64_t signatureSlots_ = 0;
  std::uint64_t functions_ = 0;
  std::uint64_t tables_ = 0;
  std::uint64_t tableElements_ = 0;
};

}  // namespace

std::string loadBudgetExceeded(const char* budget, std::uint64_t value, std::uint64_t limit) {
  return "load budget exceeded: " + std::string(budget) + " " + std::to_string(value) + " (budget " +
         std::to_string(limit) + ")";
}

std::optional<std::string> checkLoadBudgets(const std::uint8_t* bytes, std::size_t size) {
  BudgetScan scan;
  if (!scan.within("module bytes", size, kOrxMaxModuleBytes)) return scan.exceeded;
  Cursor sections(bytes, kHeaderSize, size);
  while (!sections.atEnd() && sections.ok()) {
    const std::uint8_t id = sections.byte();
    const std::uint32_t sectionSize = sections.u32();
    const std::size_t begin = sections.offset();
    sections.skip(sectionSize);
    if (!sections.ok()) break;
    Cursor section(bytes, begin, begin + sectionSize);
    if (!scan.section(id, section)) break;
  }
  return scan.exceeded;
}

}  // namespace ravo::orx::internal
