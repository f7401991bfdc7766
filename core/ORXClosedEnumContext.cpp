#include <ravo-orx/core/ORXClosedEnumContext.h>

#include <ravo-orx/core/ORXError.h>

namespace ravo::orx {

namespace {

std::set<std::int32_t> range(std::int32_t first, std::int32_t last) {
  std::set<std::int32_t> values;
  for (std::int32_t value = first; value <= last; ++value) values.insert(value);
  return values;
}

}  // namespace

ORXClosedEnumContext::ORXClosedEnumContext(const std::vector<ORXClosedEnumSchema>& schemas) {
  for (const auto& schema : schemas) {
    if (!schemas_.emplace(schema.typeID(), schema).second) {
      throw ORXError::duplicate("enum schema repeats '" + schema.typeID() + "'");
    }
  }
}

const ORXClosedEnumContext& ORXClosedEnumContext::host() {
  // A function-local static: built exactly once, even when first reached from several threads.
  static const ORXClosedEnumContext registry({
      {"orx.host::ResourceClass", ORXClosedEnumKind::enumeration, range(0, 5)},
      {"orx.host::SourceClass", ORXClosedEnumKind::enumeration, range(0, 3)},
      {"orx.host::ObservationPrecision", ORXClosedEnumKind::enumeration, range(0, 5)},
      {"orx.host::DecisionOutcome", ORXClosedEnumKind::enumeration, range(0, 2)},
      {"orx.host::FailureReason", ORXClosedEnumKind::errorEnum, range(0, 13)},
      {"orx.host::ReceiptOutcome", ORXClosedEnumKind::enumeration, range(0, 4)},
      {"orx.host::TerminalState", ORXClosedEnumKind::enumeration, range(0, 2)},
  });
  return registry;
}

const ORXClosedEnumSchema* ORXClosedEnumContext::schema(std::string_view typeID) const {
  const auto found = schemas_.find(typeID);
  return found == schemas_.end() ? nullptr : &found->second;
}

}  // namespace ravo::orx
