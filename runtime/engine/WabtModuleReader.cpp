#include "runtime/engine/WabtModuleReader.h"

#include <wabt/binary-reader.h>
#include <wabt/error-formatter.h>
#include <wabt/interp/binary-reader-interp.h>

#include "runtime/engine/OrxLoadBudgets.h"

std::optional<std::string> readWabtModule(const std::uint8_t* bytes, std::size_t size, const wabt::Features& features,
                                          wabt::interp::ModuleDesc& desc) {
  if (auto exceeded = checkLoadBudgets(bytes, size)) return "CompileError: " + *exceeded;
  wabt::Errors errors;
  wabt::ReadBinaryOptions options(features, nullptr, false, true, false);
  if (wabt::Succeeded(wabt::interp::ReadBinaryInterp("module", bytes, size, options, &errors, &desc))) {
    return std::nullopt;
  }
  std::string text = wabt::FormatErrorsToString(errors, wabt::Location::Type::Binary);
  while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
  return "CompileError: " + text;
}
