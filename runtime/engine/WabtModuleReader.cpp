#include <ravo-orx/engine/WabtModuleReader.h>

#include <wabt/error-formatter.h>
#include <wabt/interp/binary-reader-interp.h>

#include <ravo-orx/engine/OrxLoadBudgets.h>

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

wabt::ReadBinaryOptions wabtReadOptions() {
  return wabt::ReadBinaryOptions(wabt::Features{}, /*log_stream=*/nullptr, /*read_debug_names=*/false,
                                 /*stop_on_first_error=*/true, /*fail_on_custom_section_error=*/false);
}

std::string wabtCompileError(const wabt::Errors& errors) {
  std::string text = wabt::FormatErrorsToString(errors, wabt::Location::Type::Binary);
  while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
  return "CompileError: " + text;
}

}  // namespace ravo::orx::internal
