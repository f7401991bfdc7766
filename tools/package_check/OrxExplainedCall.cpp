#include <ravo-orx/package_check/OrxExplainedCall.h>

#include <algorithm>
#include <array>
#include <utility>

#include <ravo-orx/engine/OrxExecutionBound.h>
#include <ravo-orx/runtime/OrxEmittedRecordRules.h>

namespace ravo::orx {

using namespace internal;

namespace {

// The rule's refusal with its placeholders replaced by the record's values.
std::string refusalText(std::string_view text, const OrxEmittedRecord& record) {
  const std::array<std::pair<std::string_view, std::int64_t>, 9> fields{{
      {"{result}", record.result},
      {"{count}", static_cast<std::int64_t>(record.count)},
      {"{tag}", record.tag},
      {"{fact}", record.echoedFact},
      {"{0}", record.count > 0 ? record[0] : 0},
      {"{1}", record.count > 1 ? record[1] : 0},
      {"{2}", record.count > 2 ? record[2] : 0},
      {"{3}", record.count > 3 ? record[3] : 0},
      {"{4}", record.count > 4 ? record[4] : 0},
  }};
  std::string out;
  while (!text.empty()) {
    const auto field = std::find_if(fields.begin(), fields.end(), [&](const auto& f) { return text.starts_with(f.first); });
    if (field == fields.end()) {
      out += text.front();
      text.remove_prefix(1);
      continue;
    }
    out += std::to_string(field->second);
    text.remove_prefix(field->first.size());
  }
  return out;
}

std::optional<std::string> refusal(const OrxDecisionKind& kind, const OrxEmittedRecord& record) {
  for (const auto& rule : orxRecordRules(kind)) {
    if (!rule.holds(record)) return refusalText(rule.refusal, record);
  }
  return std::nullopt;
}

}  // namespace

OrxExplainedCall orxExplainCall(OrxMeasuredModuleInstance& module, const OrxDecisionKind& kind,
                                std::span<const std::int32_t> facts) {
  const OrxInvocation call = module.invoke(facts.data(), facts.size());
  OrxExplainedCall explained{call.result, std::nullopt, call.error, std::nullopt, module.lastMeasure()};
  if (call.emitted) explained.emitted = *call.emitted;
  if (explained.trap) return explained;
  const auto* values = explained.emitted ? explained.emitted->data() : nullptr;
  explained.refusal = refusal(kind, {kind.emitTag, call.result.value_or(kind.resultWhenNone), orxEchoedFact(kind, facts), values,
                                     explained.emitted ? explained.emitted->size() : 0});
  return explained;
}

std::string orxDescribeMeasure(const OrxCallMeasure& measure) {
  const std::string fuel = measure.fuel > kOrxFuelPerCall ? "more than " + std::to_string(kOrxFuelPerCall)
                                                          : std::to_string(measure.fuel) + " of " +
                                                                std::to_string(kOrxFuelPerCall);
  return "fuel " + fuel + " units, stack " + std::to_string(measure.peakStackUnits) + " of " +
         std::to_string(kOrxMaxStackUnits) + " units (a call's frame is " + std::to_string(kOrxFrameUnits) +
         " plus its parameters and locals, so recursion of a one-parameter function stops after " +
         std::to_string(kOrxMaxStackUnits / (kOrxFrameUnits + 1)) + " calls)";
}

}  // namespace ravo::orx
