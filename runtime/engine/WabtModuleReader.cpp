#include <ravo-orx/engine/WabtModuleReader.h>

#include <wabt/interp/binary-reader-interp.h>

#include <ravo-orx/engine/OrxLoadBudgets.h>
#include <ravo-orx/engine/WabtReadOptions.h>

namespace ravo::orx::internal {

std::optional<std::string> readWabtModule(const std::uint8_t* bytes, std::size_t size, wabt::interp::ModuleDesc& desc,
                                          OrxCodeAnalysis& analysis) {
  if (auto exceeded = checkLoadBudgets(bytes, size)) return "CompileError: " + *exceeded;
  analysis = analyzeCode(bytes, size);
  if (analysis.overBudget) return "CompileError: " + *analysis.overBudget;
  return readValidatedModule(bytes, size, desc);
}

std::optional<std::string> readValidatedModule(const std::uint8_t* bytes, std::size_t size,
                                               wabt::interp::ModuleDesc& desc) {
  wabt::Errors errors;
  if (wabt::Succeeded(wabt::interp::ReadBinaryInterp("module", bytes, size, wabtReadOptions(), &errors, &desc))) {
    return std::nullopt;
  }
  return wabtCompileError(errors);
}

}  // namespace ravo::orx::internal
