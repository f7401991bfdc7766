#include <ravo-orx/engine/WabtReadOptions.h>

#include <wabt/error-formatter.h>

#include <ravo-orx/engine/OrxQuotedText.h>

namespace ravo::orx::internal {

wabt::ReadBinaryOptions wabtReadOptions() {
  return wabt::ReadBinaryOptions(wabt::Features{}, /*log_stream=*/nullptr, /*read_debug_names=*/false,
                                 /*stop_on_first_error=*/true, /*fail_on_custom_section_error=*/false);
}

std::string wabtCompileError(const wabt::Errors& errors) {
  wabt::Errors quoted = errors;  // wabt quotes the module's names as they are
  for (auto& error : quoted) error.message = orxQuotedText(error.message);
  std::string text = wabt::FormatErrorsToString(quoted, wabt::Location::Type::Binary);
  while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
  return "CompileError: " + text;
}

}  // namespace ravo::orx::internal
