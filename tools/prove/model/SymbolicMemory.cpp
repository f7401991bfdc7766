#include <ravo-orx/prove/SymbolicMemory.h>

#include <ravo-orx/prove/SymbolicFold.h>

namespace ravo::orx::internal {

namespace {

constexpr std::uint64_t kPageBytes = 65536;
// How many choices between memories a read of a known address follows before it leaves the rest to
// the solver: each doubles the read's formula.
constexpr int kReadBranches = 8;

}  // namespace

SymbolicMemoryModel::SymbolicMemoryModel(z3::context& context, std::uint32_t initialPages, std::uint32_t maximumPages,
                                         std::map<std::uint32_t, std::uint8_t> initialBytes)
    : context_(context),
      initialPages_(initialPages),
      maximumPages_(maximumPages),
      initialContents_(std::move(initialBytes)),
      initialBytes_(z3::const_array(context.bv_sort(32), context.bv_val(0, 8))) {
  for (const auto& [address, byte] : initialContents_) {
    initialBytes_ = z3::store(initialBytes_, context.bv_val(address, 32), context.bv_val(byte, 8));
  }
}

std::pair<z3::expr, z3::expr> SymbolicMemoryModel::locate(const SymbolicMemory& memory, const z3::expr& address,
                                                          std::uint64_t offset, unsigned width) const {
  const z3::expr effective = folded(z3::zext(address, 32) + context_.bv_val(offset, 64));
  const z3::expr size = folded(z3::zext(memory.pages, 32) * context_.bv_val(kPageBytes, 64));
  const z3::expr beyond = folded(z3::ugt(folded(effective + context_.bv_val(width, 64)), size));
  return {effective, beyond};
}

// The byte at a 32-bit address. A known address is looked up through the stores of known addresses
// and the choices between memories that merged paths leave, down to the data segments' bytes; what
// cannot be looked up is left to the solver as an array read.
z3::expr SymbolicMemoryModel::byteAt(const z3::expr& bytes, const z3::expr& address, int branches) const {
  if (!address.is_numeral()) return z3::select(bytes, address);
  const std::uint64_t wanted = address.get_numeral_uint64();
  z3::expr current = bytes;
  while (true) {
    if (z3::eq(current, initialBytes_)) {
      const auto found = initialContents_.find(static_cast<std::uint32_t>(wanted));
      return context_.bv_val(found == initialContents_.end() ? 0 : found->second, 8);
    }
    if (!current.is_app()) break;
    const Z3_decl_kind kind = current.decl().decl_kind();
    if (kind == Z3_OP_STORE && current.arg(1).is_numeral()) {
      if (current.arg(1).get_numeral_uint64() == wanted) return current.arg(2);
      current = current.arg(0);
      continue;
    }
    if (kind == Z3_OP_ITE && branches > 0) {
      return choose(current.arg(0), byteAt(current.arg(1), address, branches - 1),
                    byteAt(current.arg(2), address, branches - 1));
    }
    if (kind == Z3_OP_CONST_ARRAY) return current.arg(0);
    break;
  }
  return z3::select(current, address);
}

SymbolicResult SymbolicMemoryModel::load(const SymbolicMemory& memory, const z3::expr& address, std::uint64_t offset,
                                         unsigned width, unsigned resultBits, bool signExtend) const {
  const auto [effective, beyond] = locate(memory, address, offset, width);
  z3::expr value = byteAt(memory.bytes, folded(effective.extract(31, 0)), kReadBranches);
  for (unsigned i = 1; i < width; ++i) {
    const z3::expr at = folded(folded(effective + context_.bv_val(i, 64)).extract(31, 0));
    value = folded(z3::concat(byteAt(memory.bytes, at, kReadBranches), value));
  }
  const unsigned extension = resultBits - 8 * width;
  if (extension > 0) value = folded(signExtend ? z3::sext(value, extension) : z3::zext(value, extension));
  return {value, beyond};
}

std::pair<SymbolicMemory, z3::expr> SymbolicMemoryModel::store(const SymbolicMemory& memory, const z3::expr& address,
                                                               std::uint64_t offset, unsigned width,
                                                               const z3::expr& value) const {
  const auto [effective, beyond] = locate(memory, address, offset, width);
  z3::expr bytes = memory.bytes;
  for (unsigned i = 0; i < width; ++i) {
    const z3::expr at = folded(folded(effective + context_.bv_val(i, 64)).extract(31, 0));
    bytes = z3::store(bytes, at, folded(value.extract(8 * i + 7, 8 * i)));
  }
  return {{bytes, memory.pages}, beyond};
}

std::pair<z3::expr, SymbolicMemory> SymbolicMemoryModel::grow(const SymbolicMemory& memory,
                                                              const z3::expr& deltaPages) const {
  const z3::expr wanted = folded(z3::zext(memory.pages, 32) + z3::zext(deltaPages, 32));
  const z3::expr fits = folded(z3::ule(wanted, context_.bv_val(maximumPages_, 64)));
  const z3::expr old = choose(fits, memory.pages, context_.bv_val(-1, 32));
  return {old, {memory.bytes, choose(fits, folded(wanted.extract(31, 0)), memory.pages)}};
}

}  // namespace ravo::orx::internal
