#include <wabt/interp/interp.h>

#include <ravo-orx/engine/OrxModuleInstance.h>
#include <ravo-orx/engine/OrxFuelMetering.h>
#include <ravo-orx/engine/OrxQuotedText.h>
#include <ravo-orx/engine/WabtModuleReader.h>

namespace ravo::orx::internal {

namespace {

using namespace wabt::interp;

std::string typeList(const wabt::TypeVector& types) {
  std::string text = "(";
  for (size_t i = 0; i < types.size(); ++i) {
    if (i) text += ", ";
    text += types[i].GetName();
  }
  return text + ")";
}

// `name` is the module's own: quoted, since the descriptions are printed and compared as text.
std::string describe(const std::string& name, const ExternType& type) {
  const std::string quoted = orxQuotedText(name);
  if (type.kind != ExternKind::Func) return std::string(wabt::GetKindName(type.kind)) + " " + quoted;
  const auto& function = *wabt::cast<FuncType>(&type);
  return "func " + quoted + typeList(function.params) + " -> " + typeList(function.results);
}

}  // namespace

std::optional<OrxModuleInterface> describeModuleInterface(const std::uint8_t* bytes, std::size_t size) {
  ModuleDesc desc;
  OrxCodeAnalysis analysis;
  if (readWabtModule(bytes, size, desc, analysis)) return std::nullopt;
  OrxModuleInterface interface;
  for (const auto& import : desc.imports) {
    interface.imports.push_back(describe(import.type.module + "." + import.type.name, *import.type.type));
  }
  for (const auto& export_ : desc.exports) interface.exports.push_back(describe(export_.type.name, *export_.type.type));
  return interface;
}

std::optional<OrxExecutionBound> describeExecutionBound(const std::uint8_t* bytes, std::size_t size) {
  ModuleDesc desc;
  OrxCodeAnalysis analysis;
  if (readWabtModule(bytes, size, desc, analysis)) return std::nullopt;
  return OrxExecutionBound{analysis.bounded, analysis.worstCaseCost, kOrxFuelPerCall, analysis.meteringReason};
}

std::optional<std::vector<std::uint8_t>> executedModuleBytes(const std::uint8_t* bytes, std::size_t size) {
  ModuleDesc desc;
  OrxCodeAnalysis analysis;
  if (readWabtModule(bytes, size, desc, analysis)) return std::nullopt;
  if (analysis.bounded) return std::vector<std::uint8_t>(bytes, bytes + size);
  std::vector<std::uint8_t> metered;
  if (meterModule(bytes, size, analysis.sites, metered)) return std::nullopt;
  return metered;
}

}  // namespace ravo::orx::internal
