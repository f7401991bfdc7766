// The strict reader of decision evidence bytes. Evidence bytes are security input: they are accepted
// only when they are valid UTF-8, parse as canonical JSON, are byte-identical to their own
// re-serialization, decode into a valid record, and that record serializes back to the same bytes.

#include <charconv>
#include <initializer_list>
#include <limits>
#include <optional>
#include <set>

#include <ravo-orx/core/ORXCanonicalJSON.h>
#include <ravo-orx/core/ORXError.h>
#include <ravo-orx/core/ORXValidation.h>
#include <ravo-orx/host_contract/ORXDecisionEvidenceRecord.h>

namespace ravo::orx {

namespace {

using Object = ORXCanonicalObject;
using Value = ORXCanonicalValue;

[[noreturn]] void invalid(std::string message) {
  throw ORXError::invalid("orx.v051.decision_evidence_invalid", std::move(message));
}

[[noreturn]] void noncanonical(const char* message) {
  throw ORXError::invalid("orx.v051.decision_evidence_noncanonical", message);
}

// The object `value` holds, whose keys must be exactly `keys`.
const Object& readObject(const Value& value, std::initializer_list<std::string_view> keys, std::string_view label) {
  const Object* object = value.asObject();
  if (!object) invalid(std::string(label) + " must be an object");
  const std::set<std::string_view> expected(keys);
  bool exact = object->fields().size() == expected.size();
  for (const auto& [key, member] : object->fields()) exact = exact && expected.contains(key);
  if (!exact) invalid(std::string(label) + " has an unknown or missing field");
  return *object;
}

// Members of objects from readObject: their keys are known to exist.
const Value& member(const Object& object, std::string_view key) { return *object.value(key); }

const std::string& readString(const Object& object, std::string_view key) {
  const std::string* text = member(object, key).asString();
  if (!text) invalid(std::string(key) + " must be a string");
  return *text;
}

ORXDigest readDigest(const Object& object, std::string_view key) { return ORXDigest(readString(object, key)); }

std::int64_t readI64(const Value& value) {
  const Object& object = readObject(value, {"decimal", "type"}, "i64");
  const std::string* decimal = member(object, "decimal").asString();
  const std::string* type = member(object, "type").asString();
  std::int64_t result = 0;
  // Only the one spelling the writer produces: no "+", no leading zeros, no "-0".
  const bool canonical = decimal && type && *type == "i64" &&
                         std::from_chars(decimal->data(), decimal->data() + decimal->size(), result).ec == std::errc() &&
                         std::to_string(result) == *decimal;
  if (!canonical) invalid("i64 is not canonical");
  return result;
}

// A discriminant of the host enum `typeID`, checked against the host registry.
std::int32_t readEnumDiscriminant(const Value& value, std::string_view typeID, bool requireErrorEnum) {
  const Object& object = readObject(value, {"discriminant", "type"}, typeID);
  const std::optional<std::int64_t> discriminant = member(object, "discriminant").asInteger();
  const std::string* type = member(object, "type").asString();
  if (!discriminant || *discriminant < std::numeric_limits<std::int32_t>::min() ||
      *discriminant > std::numeric_limits<std::int32_t>::max() || !type || *type != typeID) {
    invalid(std::string(typeID) + " is invalid");
  }
  const auto narrowed = static_cast<std::int32_t>(*discriminant);
  ORXEnumValue(narrowed, *type, ORXClosedEnumContext::host(), typeID, requireErrorEnum);
  return narrowed;
}

// The case of a host enumeration; `unknown` is the message for a registered discriminant without a case.
template <class E>
E readHostEnum(const Value& value, const char* unknown) {
  using Traits = ORXHostEnumTraits<E>;
  const auto discriminant = readEnumDiscriminant(value, Traits::typeID, Traits::isErrorEnum);
  const std::optional<E> result = orxHostEnumFromDiscriminant<E>(discriminant);
  if (!result) invalid(unknown);
  return *result;
}

ORXResourceClass readResourceClass(const Value& value) {
  return ORXResourceClass(readEnumDiscriminant(value, "orx.host::ResourceClass", false));
}

// The payload of an option form with the given type text, or nothing for "none".
const Value* readOption(const Value& value, std::string_view typeText) {
  const std::string failure = std::string(typeText) + " is not canonical";
  const Object* object = value.asObject();
  const Value* tag = object ? object->value("tag") : nullptr;
  const std::string* tagText = tag ? tag->asString() : nullptr;
  if (!tagText) invalid(failure);
  const bool some = *tagText == "some";
  const std::size_t expectedSize = some ? 3 : 2;
  const Value* type = object->value("type");
  const bool shaped = (some || *tagText == "none") && object->fields().size() == expectedSize && type &&
                      type->asString() && *type->asString() == typeText && (!some || object->value("value"));
  if (!shaped) invalid(failure);
  return some ? object->value("value") : nullptr;
}

std::vector<ORXBudget> readBudgets(const Value& value) {
  const Value::Array* elements = value.asArray();
  if (!elements) invalid("budgets must be an array");
  std::vector<ORXBudget> budgets;
  for (const auto& element : *elements) {
    const Object& object = readObject(element, {"limit", "resource_class"}, "Budget");
    const std::int64_t limit = readI64(member(object, "limit"));
    budgets.emplace_back(limit, readResourceClass(member(object, "resource_class")));
  }
  return budgets;
}

ORXGrantScope readGrantScope(const Value& value) {
  const Object& object = readObject(value, {"effect_types", "max_uses", "resource_classes", "target_class"}, "GrantScope");
  const Value::Array* effectTypeValues = member(object, "effect_types").asArray();
  const Value::Array* resourceClassValues = member(object, "resource_classes").asArray();
  if (!effectTypeValues || !resourceClassValues) invalid("GrantScope collections are invalid");
  std::vector<std::string> effectTypes;
  for (const auto& effectType : *effectTypeValues) {
    if (!effectType.asString()) invalid("effect type must be a string");
    effectTypes.push_back(*effectType.asString());
  }
  const std::int64_t maxUses = readI64(member(object, "max_uses"));
  std::vector<ORXResourceClass> resourceClasses;
  for (const auto& resourceClass : *resourceClassValues) resourceClasses.push_back(readResourceClass(resourceClass));
  return ORXGrantScope(std::move(effectTypes), maxUses, std::move(resourceClasses), readString(object, "target_class"));
}

ORXGenerationFence readGenerationFence(const Value& value) {
  const Object& object = readObject(value, {"domain", "epoch", "fence_id"}, "generation_fence");
  const std::string& domain = readString(object, "domain");
  const std::int64_t epoch = readI64(member(object, "epoch"));
  return ORXGenerationFence(domain, epoch, readDigest(object, "fence_id"));
}

ORXDeadline readDeadline(const Value& value) {
  const Value* payload = readOption(value, ORXHostOptionTraits<ORXDeadlineValue>::typeText);
  if (!payload) return ORXDeadline::none();
  const Object& object = readObject(*payload, {"clock_domain", "not_after_ns", "now_ns"}, "deadline");
  const std::string& clockDomain = readString(object, "clock_domain");
  const std::int64_t notAfter = readI64(member(object, "not_after_ns"));
  return ORXDeadline::some(ORXDeadlineValue(clockDomain, notAfter, readI64(member(object, "now_ns"))));
}

ORXOptionalGrantScope readOptionalGrantScope(const Value& value) {
  const Value* payload = readOption(value, ORXHostOptionTraits<ORXGrantScope>::typeText);
  return payload ? ORXOptionalGrantScope::some(readGrantScope(*payload)) : ORXOptionalGrantScope::none();
}

ORXOptionalFailureReason readOptionalFailureReason(const Value& value) {
  const Value* payload = readOption(value, ORXHostOptionTraits<ORXFailureReason>::typeText);
  return payload ? ORXOptionalFailureReason::some(readHostEnum<ORXFailureReason>(*payload, "FailureReason discriminant is invalid"))
                 : ORXOptionalFailureReason::none();
}

ORXDecisionEvidenceRecord decodeRecord(const Value& value) {
  const Object& object = readObject(
      value,
      {"canonical_typed_input_digest", "contract_version", "deadline", "decision_outcome", "effective_budgets",
       "effective_scope", "generation_fence", "grant_set_digest", "intent_digest", "orx_abi_lane",
       "package_identity_digest", "policy_digest", "policy_identity", "reason", "requested_budgets", "requested_scope",
       "verified_artifact_digest"},
      "DecisionEvidence");
  if (readString(object, "contract_version") != ORXDecisionEvidenceRecord::contractVersion) {
    invalid("Host Contract version is not accepted");
  }
  // Members are read in key order; arguments are gathered first so that the first failure in that order
  // is the one reported.
  ORXDigest typedInputDigest = readDigest(object, "canonical_typed_input_digest");
  ORXDeadline deadline = readDeadline(member(object, "deadline"));
  const auto outcome = readHostEnum<ORXDecisionOutcome>(member(object, "decision_outcome"),
                                                    "Decision outcome discriminant is invalid");
  std::vector<ORXBudget> effectiveBudgets = readBudgets(member(object, "effective_budgets"));
  ORXOptionalGrantScope effectiveScope = readOptionalGrantScope(member(object, "effective_scope"));
  ORXGenerationFence fence = readGenerationFence(member(object, "generation_fence"));
  ORXDigest grantSetDigest = readDigest(object, "grant_set_digest");
  ORXDigest intentDigest = readDigest(object, "intent_digest");
  std::string lane = readString(object, "orx_abi_lane");
  ORXDigest packageIdentityDigest = readDigest(object, "package_identity_digest");
  ORXDigest policyDigest = readDigest(object, "policy_digest");
  std::string policyIdentity = readString(object, "policy_identity");
  ORXOptionalFailureReason reason = readOptionalFailureReason(member(object, "reason"));
  std::vector<ORXBudget> requestedBudgets = readBudgets(member(object, "requested_budgets"));
  ORXGrantScope requestedScope = readGrantScope(member(object, "requested_scope"));
  ORXDigest verifiedArtifactDigest = readDigest(object, "verified_artifact_digest");
  return ORXDecisionEvidenceRecord(std::move(lane), std::move(typedInputDigest), std::move(deadline), outcome,
                                   std::move(effectiveBudgets), std::move(effectiveScope), std::move(fence),
                                   std::move(grantSetDigest), std::move(intentDigest), std::move(packageIdentityDigest),
                                   std::move(policyDigest), std::move(policyIdentity), std::move(reason),
                                   std::move(requestedBudgets), std::move(requestedScope),
                                   std::move(verifiedArtifactDigest));
}

}  // namespace

ORXDecisionEvidenceRecord ORXDecisionEvidenceRecord::parseCanonicalBytes(std::string_view bytes) {
  if (!ORXValidation::isValidUTF8(bytes)) invalid("DecisionEvidence bytes must be UTF-8");
  const Value value = ORXCanonicalJSON::parse(bytes);
  if (value.canonicalString() != bytes) noncanonical("DecisionEvidence bytes are not canonical");
  ORXDecisionEvidenceRecord record = decodeRecord(value);
  if (record.canonicalValue().canonicalString() != bytes) {
    noncanonical("DecisionEvidence record does not round-trip canonically");
  }
  return record;
}

ORXDecisionEvidenceRecord ORXDecisionEvidenceRecord::parseCanonicalBytes(std::span<const std::uint8_t> bytes) {
  return parseCanonicalBytes(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

}  // namespace ravo::orx
