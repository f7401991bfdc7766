#include <ravo-orx/engine/WabtReadOptions.h>

#include <wabt/error-formatter.h>

namespace ravo::orx::internal {

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
