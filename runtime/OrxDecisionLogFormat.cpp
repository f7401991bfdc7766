#include <ravo-orx/runtime/OrxDecisionLogFormat.h>

#include <algorithm>
#include <array>
#include <limits>
#include <stdexcept>

#include <ravo-orx/core/ORXCanonicalJSON.h>
#include <ravo-orx/core/ORXCanonicalTextOutput.h>
#include <ravo-orx/core/ORXDigest.h>

namespace ravo::orx::internal {

namespace {

namespace Text = ORXCanonicalTextOutput;

// The indices of `names` in code-point order: canonical objects list their keys sorted, and the
// kinds' tables list facts and decision fields in declaration order.
template <std::size_t N>
std::array<std::size_t, N> sortedOrder(std::span<const std::string_view> names) {
  std::array<std::size_t, N> order{};
  for (std::size_t i = 0; i < names.size(); ++i) order[i] = i;
  std::sort(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(names.size()),
            [&](std::size_t a, std::size_t b) { return names[a] < names[b]; });
  return order;
}

struct KindOrder {
  std::array<std::size_t, kOrxMaxFacts> facts;
  std::array<std::size_t, kOrxMaxDecisionFields> decision;
  std::array<std::string_view, kOrxMaxDecisionFields> decisionNames;
};

const KindOrder& kindOrder(OrxDecisionKindID id) {
  static const auto orders = [] {
    std::array<KindOrder, kOrxDecisionKinds.size()> all{};
    for (std::size_t k = 0; k < kOrxDecisionKinds.size(); ++k) {
      const auto& kind = kOrxDecisionKinds[k];
      all[k].facts = sortedOrder<kOrxMaxFacts>(kind.factNames);
      for (std::size_t i = 0; i < kind.decisionFields.size(); ++i) all[k].decisionNames[i] = kind.decisionFields[i].name;
      all[k].decision = sortedOrder<kOrxMaxDecisionFields>(
          std::span<const std::string_view>(all[k].decisionNames.data(), kind.decisionFields.size()));
    }
    return all;
  }();
  return orders[static_cast<std::size_t>(id)];
}

void key(std::string& out, std::string_view name) {
  Text::appendEscaped(out, name);
  out.push_back(':');
}

void text(std::string& out, std::string_view name, std::string_view value) {
  key(out, name);
  Text::appendEscaped(out, value);
}

void integer(std::string& out, std::string_view name, std::int64_t value) {
  key(out, name);
  Text::appendInteger(out, value);
}

std::string_view caseName(OrxDecisionFieldForm form, std::int32_t raw) {
  switch (form) {
    case OrxDecisionFieldForm::authorizationReason: return orxCaseName(static_cast<OrxAuthorizationReason>(raw));
    case OrxDecisionFieldForm::syncAction: return orxCaseName(static_cast<OrxSyncAction>(raw));
    case OrxDecisionFieldForm::cinemaRoute: return orxCaseName(static_cast<OrxCinemaAdmissionRoute>(raw));
    case OrxDecisionFieldForm::cinemaReason: return orxCaseName(static_cast<OrxCinemaAdmissionReason>(raw));
    case OrxDecisionFieldForm::boolean:
    case OrxDecisionFieldForm::integer: break;
  }
  return {};
}

template <class E>
std::optional<std::int32_t> caseRaw(std::string_view name) {
  const auto value = orxFromRawValue<E>(name);
  return value ? std::optional<std::int32_t>(rawValue(*value)) : std::nullopt;
}

std::optional<std::int32_t> caseValue(OrxDecisionFieldForm form, std::string_view name) {
  switch (form) {
    case OrxDecisionFieldForm::authorizationReason: return caseRaw<OrxAuthorizationReason>(name);
    case OrxDecisionFieldForm::syncAction: return caseRaw<OrxSyncAction>(name);
    case OrxDecisionFieldForm::cinemaRoute: return caseRaw<OrxCinemaAdmissionRoute>(name);
    case OrxDecisionFieldForm::cinemaReason: return caseRaw<OrxCinemaAdmissionReason>(name);
    case OrxDecisionFieldForm::boolean:
    case OrxDecisionFieldForm::integer: break;
  }
  return std::nullopt;
}

void appendFieldValue(std::string& out, const OrxDecisionField& field, std::int32_t value) {
  switch (field.form) {
    case OrxDecisionFieldForm::boolean: Text::appendBoolean(out, value != 0); break;
    case OrxDecisionFieldForm::integer: Text::appendInteger(out, value); break;
    default: Text::appendEscaped(out, caseName(field.form, value));
  }
}

void appendDecision(std::string& out, const OrxDecisionRecord& record) {
  const auto& kind = record.kindEntry();
  const auto& order = kindOrder(record.kind);
  out.push_back('{');
  for (std::size_t i = 0; i < kind.decisionFields.size(); ++i) {
    if (i > 0) out.push_back(',');
    const auto& field = kind.decisionFields[order.decision[i]];
    key(out, field.name);
    appendFieldValue(out, field, record.decision[order.decision[i]]);
  }
  out.push_back('}');
}

void appendFacts(std::string& out, const OrxDecisionRecord& record) {
  const auto& kind = record.kindEntry();
  const auto& order = kindOrder(record.kind);
  out.push_back('{');
  for (std::size_t i = 0; i < kind.factNames.size(); ++i) {
    if (i > 0) out.push_back(',');
    integer(out, kind.factNames[order.facts[i]], record.facts[order.facts[i]]);
  }
  out.push_back('}');
}

// Reading: every failure is one message; the caller says which line.
[[noreturn]] void refuse(const std::string& message) { throw std::runtime_error(message); }

const ORXCanonicalObject& objectOf(const ORXCanonicalValue& value, std::string_view what) {
  const auto* object = value.asObject();
  if (!object) refuse(std::string(what) + " must be an object");
  return *object;
}

// The keys of `object` must be exactly `required` plus any of `optional`.
void expectKeys(const ORXCanonicalObject& object, std::string_view what, std::initializer_list<std::string_view> required,
                std::initializer_list<std::string_view> optional = {}) {
  std::size_t present = 0;
  for (const auto name : required) {
    if (!object.value(name)) refuse(std::string(what) + " has no \"" + std::string(name) + "\"");
    ++present;
  }
  for (const auto name : optional) present += object.value(name) ? 1 : 0;
  if (object.fields().size() != present) refuse(std::string(what) + " has a field it should not have");
}

std::int64_t integerIn(const ORXCanonicalObject& object, std::string_view name, std::int64_t minimum,
                       std::int64_t maximum) {
  const auto value = object.value(name) ? object.value(name)->asInteger() : std::nullopt;
  if (!value || *value < minimum || *value > maximum) {
    refuse("\"" + std::string(name) + "\" must be an integer from " + std::to_string(minimum) + " to " +
           std::to_string(maximum));
  }
  return *value;
}

constexpr std::int64_t kInt32Min = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kInt32Max = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t kInt64Max = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kInt64Min = std::numeric_limits<std::int64_t>::min();

const std::string& stringIn(const ORXCanonicalObject& object, std::string_view name) {
  const auto* value = object.value(name) ? object.value(name)->asString() : nullptr;
  if (!value) refuse("\"" + std::string(name) + "\" must be a string");
  return *value;
}

bool isDigestHex(std::string_view text) {
  return text.size() == kOrxDigestHexLength &&
         std::all_of(text.begin(), text.end(), [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); });
}

void readFacts(const ORXCanonicalObject& facts, const OrxDecisionKind& kind, OrxDecisionRecord& record) {
  if (facts.fields().size() != kind.factNames.size()) {
    refuse("\"facts\" must hold exactly the " + std::to_string(kind.factNames.size()) + " facts of " +
           std::string(kind.name));
  }
  for (std::size_t i = 0; i < kind.factNames.size(); ++i) {
    if (!facts.value(kind.factNames[i])) refuse("\"facts\" has no \"" + std::string(kind.factNames[i]) + "\"");
    record.facts[i] = static_cast<std::int32_t>(integerIn(facts, kind.factNames[i], kInt32Min, kInt32Max));
  }
}

void readDecision(const ORXCanonicalObject& decision, const OrxDecisionKind& kind, OrxDecisionRecord& record) {
  if (decision.fields().size() != kind.decisionFields.size()) refuse("\"decision\" has missing or extra fields");
  for (std::size_t i = 0; i < kind.decisionFields.size(); ++i) {
    const auto& field = kind.decisionFields[i];
    const auto* value = decision.value(field.name);
    if (!value) refuse("\"decision\" has no \"" + std::string(field.name) + "\"");
    switch (field.form) {
      case OrxDecisionFieldForm::boolean: {
        const auto flag = value->asBoolean();
        if (!flag) refuse("\"" + std::string(field.name) + "\" must be true or false");
        record.decision[i] = *flag ? 1 : 0;
        break;
      }
      case OrxDecisionFieldForm::integer:
        record.decision[i] = static_cast<std::int32_t>(integerIn(decision, field.name, kInt32Min, kInt32Max));
        break;
      default: {
        const auto* name = value->asString();
        const auto raw = name ? caseValue(field.form, *name) : std::nullopt;
        if (!raw) refuse("\"" + std::string(field.name) + "\" is not a case of its enumeration");
        record.decision[i] = *raw;
      }
    }
  }
}

OrxDecisionRecord readRecord(const ORXCanonicalObject& object) {
  expectKeys(object, "a decision record",
             {"decision", "facts", "kind", "monotonicNanoseconds", "sequence", "source", "type", "wallNanoseconds"},
             {"emitted", "emittedLength", "moduleSha256"});
  OrxDecisionRecord record;
  const auto* kind = orxDecisionKindNamed(stringIn(object, "kind"));
  if (!kind) refuse("\"kind\" must be authz, sync or cinema");
  record.kind = kind->id;
  const auto source = orxFromRawValue<OrxDecisionSource>(stringIn(object, "source"));
  if (!source) refuse("\"source\" is not a decision source");
  record.source = *source;
  record.sequence = static_cast<std::uint64_t>(integerIn(object, "sequence", 0, kInt64Max));
  record.monotonicNanoseconds = integerIn(object, "monotonicNanoseconds", kInt64Min, kInt64Max);
  record.wallNanoseconds = integerIn(object, "wallNanoseconds", kInt64Min, kInt64Max);
  readFacts(objectOf(*object.value("facts"), "\"facts\""), *kind, record);
  readDecision(objectOf(*object.value("decision"), "\"decision\""), *kind, record);
  if (object.value("moduleSha256")) {
    const auto& digest = stringIn(object, "moduleSha256");
    if (!isDigestHex(digest)) refuse("\"moduleSha256\" must be 64 lowercase hex digits");
    record.hasModule = true;
    std::copy(digest.begin(), digest.end(), record.moduleSha256.begin());
  }
  if (const auto* emitted = object.value("emitted")) {
    const auto* values = emitted->asArray();
    if (!values || values->size() > kOrxLoggedEmits) {
      refuse("\"emitted\" must be an array of at most " + std::to_string(kOrxLoggedEmits) + " integers");
    }
    record.hasEmission = true;
    record.emittedLength = static_cast<std::uint32_t>(values->size());
    for (std::size_t i = 0; i < values->size(); ++i) {
      const auto value = (*values)[i].asInteger();
      if (!value || *value < kInt32Min || *value > kInt32Max) refuse("\"emitted\" holds a value that is not 32-bit");
      record.emitted[i] = static_cast<std::int32_t>(*value);
    }
    if (object.value("emittedLength")) {
      if (values->size() != kOrxLoggedEmits) refuse("\"emittedLength\" comes only with a full \"emitted\"");
      record.emittedLength =
          static_cast<std::uint32_t>(integerIn(object, "emittedLength", kOrxLoggedEmits + 1, UINT32_MAX));
    }
  } else if (object.value("emittedLength")) {
    refuse("\"emittedLength\" comes only with \"emitted\"");
  }
  return record;
}

OrxDecisionLogSeal readSeal(const ORXCanonicalObject& object) {
  expectKeys(object, "a seal", {"block", "dropped", "firstSequence", "nextSequence", "records", "type"}, {"previous"});
  OrxDecisionLogSeal seal;
  seal.block = static_cast<std::uint64_t>(integerIn(object, "block", 0, kInt64Max));
  seal.firstSequence = static_cast<std::uint64_t>(integerIn(object, "firstSequence", 0, kInt64Max));
  seal.nextSequence = static_cast<std::uint64_t>(
      integerIn(object, "nextSequence", static_cast<std::int64_t>(seal.firstSequence), kInt64Max));
  seal.dropped = static_cast<std::uint64_t>(integerIn(object, "dropped", 0, kInt64Max));
  if (object.value("previous")) {
    seal.previous = stringIn(object, "previous");
    ORXDigest checked(*seal.previous);  // throws for anything but a digest text
  }
  const auto* records = object.value("records")->asArray();
  if (!records || records->size() > kOrxDecisionLogMaxBlockRecords) {
    refuse("\"records\" must be an array of at most " + std::to_string(kOrxDecisionLogMaxBlockRecords) + " digests");
  }
  for (const auto& digest : *records) {
    const auto* text = digest.asString();
    if (!text) refuse("\"records\" must hold digest texts");
    ORXDigest checked(*text);
    seal.records.push_back(*text);
  }
  if (seal.nextSequence - seal.firstSequence != records->size() + seal.dropped) {
    refuse("the sequence range does not hold its records and declared drops");
  }
  return seal;
}

}  // namespace

void orxAppendRecordLine(std::string& out, const OrxDecisionRecord& record) {
  out += "{\"decision\":";
  appendDecision(out, record);
  if (record.hasEmission) {
    out += ",\"emitted\":[";
    const auto values = record.emittedValues();
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (i > 0) out.push_back(',');
      Text::appendInteger(out, values[i]);
    }
    out.push_back(']');
    if (record.emittedLength > kOrxLoggedEmits) {
      out.push_back(',');
      integer(out, "emittedLength", record.emittedLength);
    }
  }
  out += ",\"facts\":";
  appendFacts(out, record);
  out.push_back(',');
  text(out, "kind", record.kindEntry().name);
  if (record.hasModule) {
    out.push_back(',');
    text(out, "moduleSha256", record.moduleDigest());
  }
  out.push_back(',');
  integer(out, "monotonicNanoseconds", record.monotonicNanoseconds);
  out.push_back(',');
  integer(out, "sequence", static_cast<std::int64_t>(record.sequence));
  out.push_back(',');
  text(out, "source", orxCaseName(record.source));
  out += ",\"type\":\"decision\",";
  integer(out, "wallNanoseconds", record.wallNanoseconds);
  out.push_back('}');
}

void orxAppendSealLine(std::string& out, const OrxDecisionLogSeal& seal) {
  out.push_back('{');
  integer(out, "block", static_cast<std::int64_t>(seal.block));
  out.push_back(',');
  integer(out, "dropped", static_cast<std::int64_t>(seal.dropped));
  out.push_back(',');
  integer(out, "firstSequence", static_cast<std::int64_t>(seal.firstSequence));
  out.push_back(',');
  integer(out, "nextSequence", static_cast<std::int64_t>(seal.nextSequence));
  if (seal.previous) {
    out.push_back(',');
    text(out, "previous", *seal.previous);
  }
  out += ",\"records\":[";
  for (std::size_t i = 0; i < seal.records.size(); ++i) {
    if (i > 0) out.push_back(',');
    Text::appendEscaped(out, seal.records[i]);
  }
  out += "],\"type\":\"seal\"}";
}

std::string orxDecisionFieldText(const OrxDecisionField& field, std::int32_t value) {
  std::string text;
  appendFieldValue(text, field, value);
  return field.form == OrxDecisionFieldForm::boolean || field.form == OrxDecisionFieldForm::integer
             ? text
             : text.substr(1, text.size() - 2);  // the case name without its quotes
}

std::string orxDecisionLogLineDigest(std::string_view domain, std::string_view line) {
  return ORXDigest::domainOfCanonicalText(domain, line).value();
}

OrxDecisionLogLine orxReadDecisionLogLine(std::string_view line) {
  if (line.size() > kOrxDecisionLogLineLimit) {
    refuse("the line is longer than " + std::to_string(kOrxDecisionLogLineLimit) + " bytes");
  }
  ORXCanonicalValue value = [&] {
    try {
      return ORXCanonicalJSON::parse(line);
    } catch (const ORXError& error) {
      refuse(std::string("not canonical JSON: ") + error.what());
    }
  }();
  if (value.canonicalString() != line) refuse("not canonical JSON: keys out of order, spaces or escapes");
  const auto& object = objectOf(value, "a line");
  OrxDecisionLogLine read;
  const auto* type = object.value("type") ? object.value("type")->asString() : nullptr;
  if (type && *type == "decision") {
    read.type = OrxDecisionLogLine::Type::record;
    read.record = readRecord(object);
  } else if (type && *type == "seal") {
    read.type = OrxDecisionLogLine::Type::seal;
    read.seal = readSeal(object);
  } else {
    refuse("\"type\" must be \"decision\" or \"seal\"");
  }
  return read;
}

}  // namespace ravo::orx::internal
