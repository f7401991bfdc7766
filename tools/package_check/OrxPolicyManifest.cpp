#include <ravo-orx/package_check/OrxPolicyManifest.h>

#include <algorithm>
#include <limits>
#include <set>
#include <stdexcept>
#include <string_view>
#include <variant>

#include <ravo-orx/core/ORXMessageText.h>
#include <ravo-orx/contracts/support/RavoJSON.h>
#include <ravo-orx/engine/OrxModuleInstance.h>
#include <ravo-orx/runtime/OrxDecisionKinds.h>
#include <ravo-orx/runtime/OrxEvidence.h>

namespace ravo::orx {

using namespace internal;

namespace {

[[noreturn]] void refuse(const std::string& where, const std::string& what) {
  throw std::runtime_error(where + ": " + what);
}

// A text of the manifest as a refusal shows it: printable, and cut after 200 bytes (a case name is a
// line; a key or a lane of megabytes is not worth echoing whole).
std::string shown(std::string_view text) { return ORXMessageText::printable(ORXMessageText::excerpt(text, 200)); }

std::string inQuotes(std::string_view key) { return "\"" + shown(key) + "\""; }

void decodeValue(const RavoJSON& json, const std::string& where, std::string& out) {
  if (!json.is_string()) refuse(where, "expected a string");
  out = json.get<std::string>();
}

void decodeValue(const RavoJSON& json, const std::string& where, std::int32_t& out) {
  constexpr std::int64_t minimum = std::numeric_limits<std::int32_t>::min();
  constexpr std::int64_t maximum = std::numeric_limits<std::int32_t>::max();
  // An unsigned number is compared as one: read as signed, 2^64 - 1 would pass as -1.
  const bool inRange = json.is_number_unsigned() ? json.get<std::uint64_t>() <= static_cast<std::uint64_t>(maximum)
                       : json.is_number_integer()
                           ? json.get<std::int64_t>() >= minimum && json.get<std::int64_t>() <= maximum
                           : false;
  if (!inRange) refuse(where, "expected an integer from " + std::to_string(minimum) + " to " + std::to_string(maximum));
  out = json.get<std::int32_t>();
}

// The objects of the schema, each decoded by its own table of keys.
template <class T>
constexpr bool kIsObject = std::is_same_v<T, OrxPolicyManifest> || std::is_same_v<T, OrxPolicyCase> ||
                           std::is_same_v<T, OrxManifestFactRange> || std::is_same_v<T, OrxManifestProof>;

template <class T>
constexpr bool kIsOptional = false;
template <class T>
constexpr bool kIsOptional<std::optional<T>> = true;

template <class Object>
void decodeObject(const RavoJSON& json, const std::string& where, Object& out);

template <class Item>
void decodeItem(const RavoJSON& json, const std::string& where, Item& out) {
  if constexpr (kIsObject<Item>) {
    decodeObject(json, where, out);
  } else {
    decodeValue(json, where, out);
  }
}

template <class Item>
void decodeValue(const RavoJSON& json, const std::string& where, std::vector<Item>& out) {
  if (!json.is_array()) refuse(where, "expected an array");
  for (std::size_t i = 0; i < json.size(); ++i) {
    Item item{};
    decodeItem(json[i], where + "[" + std::to_string(i) + "]", item);
    out.push_back(std::move(item));
  }
}

template <class Item>
void decodeValue(const RavoJSON& json, const std::string& where, std::optional<Item>& out) {
  decodeItem(json, where, out.emplace());
}

// One key of an object: its name, where its value goes, and whether the object may leave it out.
// Adding a key to the schema is one line of the object's table (and its field).
template <class Object>
struct Key {
  std::string_view name;
  std::variant<std::string Object::*, std::int32_t Object::*, std::vector<std::string> Object::*,
               std::vector<std::int32_t> Object::*, std::vector<OrxPolicyCase> Object::*,
               std::vector<OrxManifestFactRange> Object::*, std::optional<OrxManifestProof> Object::*>
      field;
  bool optional = false;
};

constexpr Key<OrxPolicyManifest> kManifestKeys[] = {
    {"module", &OrxPolicyManifest::module},   {"orxAbi", &OrxPolicyManifest::orxAbi},
    {"hostAbi", &OrxPolicyManifest::hostAbi}, {"imports", &OrxPolicyManifest::imports},
    {"decide", &OrxPolicyManifest::decide},   {"emitTag", &OrxPolicyManifest::emitTag},
    {"facts", &OrxPolicyManifest::facts},     {"cases", &OrxPolicyManifest::cases},
    {"factRanges", &OrxPolicyManifest::factRanges, true},
    {"properties", &OrxPolicyManifest::properties, true},
    {"proof", &OrxPolicyManifest::proof, true},
};

constexpr Key<OrxPolicyCase> kCaseKeys[] = {
    {"case", &OrxPolicyCase::name},
    {"facts", &OrxPolicyCase::facts},
    {"emits", &OrxPolicyCase::emits},
};

constexpr Key<OrxManifestFactRange> kFactRangeKeys[] = {
    {"fact", &OrxManifestFactRange::fact},
    {"from", &OrxManifestFactRange::from},
    {"to", &OrxManifestFactRange::to},
};

constexpr Key<OrxManifestProof> kProofKeys[] = {
    {"skip", &OrxManifestProof::skip},
};

template <class Object>
constexpr std::span<const Key<Object>> keysOf() {
  if constexpr (std::is_same_v<Object, OrxPolicyManifest>) {
    return kManifestKeys;
  } else if constexpr (std::is_same_v<Object, OrxPolicyCase>) {
    return kCaseKeys;
  } else if constexpr (std::is_same_v<Object, OrxManifestFactRange>) {
    return kFactRangeKeys;
  } else {
    return kProofKeys;
  }
}

void expectObject(const RavoJSON& json, const std::string& where) {
  if (!json.is_object()) refuse(where, "expected an object");
}

// Every key of the table present; the reader refused any other (SchemaFilter).
template <class Object>
void decodeObject(const RavoJSON& json, const std::string& where, Object& out) {
  expectObject(json, where);
  const auto keys = keysOf<Object>();
  for (const auto& key : keys) {
    const auto value = json.find(key.name);
    if (value == json.end()) {
      if (key.optional) continue;
      refuse(where, "missing key " + inQuotes(key.name));
    }
    const std::string at = where + ": " + inQuotes(key.name);
    std::visit([&](auto field) { decodeValue(*value, at, out.*field); }, key.field);
  }
}

template <class T>
struct MemberType;
template <class T, class Object>
struct MemberType<T Object::*> {
  using type = T;
};

// Hands `visit` a null pointer of the schema's type at `path` below a T: an object's key leads to its
// field's type (an optional one's to the type it holds), an element to the array's item type. Only
// paths the reader has let through arrive.
template <class T, class Visit>
void atPath(RavoJSONPath path, const Visit& visit) {
  if constexpr (kIsOptional<T>) {
    atPath<typename T::value_type>(path, visit);
  } else if (path.empty()) {
    visit(static_cast<T*>(nullptr));
  } else if constexpr (kIsObject<T>) {
    for (const auto& key : keysOf<T>()) {
      if (key.name != path.front().key) continue;
      std::visit([&](auto field) { atPath<typename MemberType<decltype(field)>::type>(path.subspan(1), visit); },
                 key.field);
    }
  } else if constexpr (requires { typename T::value_type; } && !std::is_same_v<T, std::string>) {
    atPath<typename T::value_type>(path.subspan(1), visit);
  }
}

// Where a refusal at `path` points: the file, then each key in quotes and each index in brackets, as
// decodeValue and decodeObject name them.
std::string whereOf(const std::string& name, RavoJSONPath path) {
  std::string where = name;
  for (const auto& step : path) where += step.index ? "[" + std::to_string(*step.index) + "]" : ": " + inQuotes(step.key);
  return where;
}

// The schema held as the manifest is read: an unknown key, a value of the wrong type (a container as it
// opens, so its contents are never read) and an item past its array's limit are refused before they
// are built, with the texts decodeValue and decodeObject give, so nothing a manifest is refused for
// costs memory, and a manifest the schema keeps costs little more than its text.
class SchemaFilter final : public RavoJSONFilter {
 public:
  explicit SchemaFilter(const std::string& name) : name_(name) {}

  void key(RavoJSONPath object, std::string_view name) const override {
    atPath<OrxPolicyManifest>(object, [&]<class T>(T*) {
      if constexpr (kIsObject<T>) {
        const auto keys = keysOf<T>();
        if (std::none_of(keys.begin(), keys.end(), [&](const auto& key) { return key.name == name; })) {
          refuse(whereOf(name_, object), "unknown key " + inQuotes(name) + " (the schema is docs/POLICY-MANIFEST.md)");
        }
      }
    });
  }

  void value(RavoJSONPath path, const RavoJSON& value, std::string_view) const override {
    atPath<OrxPolicyManifest>(path, [&]<class T>(T*) {
      if (!path.empty() && path.back().index) checkCount<T>(path);
      const std::string where = whereOf(name_, path);
      if constexpr (kIsObject<T>) {
        expectObject(value, where);
      } else {
        T scratch{};  // a container arrives empty: only its type is checked, its items come one by one
        decodeValue(value, where, scratch);
      }
    });
  }

 private:
  // An array's item at `path` is within the array's limit.
  template <class Item>
  void checkCount(RavoJSONPath path) const {
    constexpr bool isCase = std::is_same_v<Item, OrxPolicyCase>;
    constexpr std::size_t limit = isCase ? kOrxPolicyManifestCaseLimit : kOrxPolicyManifestListLimit;
    if (*path.back().index < limit) return;
    refuse(whereOf(name_, path.first(path.size() - 1)),
           "more than " + std::to_string(limit) +
               (isCase ? " cases, the most a manifest holds" : " items, the most a list of a manifest holds"));
  }

  const std::string& name_;
};

template <class Item>
std::string listed(const std::vector<Item>& items) {
  std::string text;
  for (const auto& item : items) text += (text.empty() ? "" : ", ") + shown(item);
  return "[" + text + "]";
}

// What the prover is told: ranges of the kind's facts, each given once and not empty; properties that
// parse; a reason for skipping the proof.
void checkProofSettings(const OrxPolicyManifest& manifest, const OrxDecisionKind& kind, const std::string& where) {
  std::set<std::string> ranged;
  for (std::size_t i = 0; i < manifest.factRanges.size(); ++i) {
    const auto& range = manifest.factRanges[i];
    const std::string at = where + ": \"factRanges\"[" + std::to_string(i) + "]";
    if (std::find(kind.factNames.begin(), kind.factNames.end(), range.fact) == kind.factNames.end()) {
      refuse(at, inQuotes(range.fact) + " is no fact of " + std::string(kind.module));
    }
    if (!ranged.insert(range.fact).second) refuse(at, "the range of " + inQuotes(range.fact) + " is given before");
    if (range.from > range.to) {
      refuse(at, "the range " + std::to_string(range.from) + ".." + std::to_string(range.to) + " is empty");
    }
  }
  for (std::size_t i = 0; i < manifest.properties.size(); ++i) {
    try {
      OrxPolicyProperty::parse(manifest.properties[i], kind);
    } catch (const std::exception& error) {
      refuse(where + ": \"properties\"[" + std::to_string(i) + "] " + inQuotes(manifest.properties[i]), error.what());
    }
  }
  if (manifest.proof && manifest.proof->skip.find_first_not_of(" \t") == std::string::npos) {
    refuse(where + ": \"proof\": \"skip\"", "a skipped proof states its reason");
  }
}

// What the kind fixes: the lanes, the tag and the facts; then the cases themselves.
void checkAgainstKind(const OrxPolicyManifest& manifest, const std::string& where) {
  const OrxDecisionKind* kind = orxDecisionKindOfModule(manifest.module);
  if (!kind) refuse(where + ": \"module\"", inQuotes(manifest.module) + " is no module of this runtime");
  auto differs = [&](std::string_view key, const std::string& given, std::string_view wanted) {
    if (given != wanted) {
      refuse(where + ": " + inQuotes(key), shown(given) + " is not " + std::string(wanted) + ", the runtime's for " +
                                             std::string(kind->module));
    }
  };
  differs("orxAbi", manifest.orxAbi, kOrxAbiLane);
  differs("hostAbi", manifest.hostAbi, kOrxHostAbiLane);
  differs("emitTag", std::to_string(manifest.emitTag), std::to_string(kind->emitTag));
  if (!std::equal(manifest.facts.begin(), manifest.facts.end(), kind->factNames.begin(), kind->factNames.end())) {
    refuse(where + ": \"facts\"", listed(manifest.facts) + " are not the runtime's " + std::string(kind->module) +
                                      " facts " + listed(std::vector<std::string>(kind->factNames.begin(),
                                                                                  kind->factNames.end())));
  }
  if (manifest.cases.empty()) refuse(where + ": \"cases\"", "no cases: a manifest tests its module with at least one");
  std::set<std::string> names;
  for (const auto& policyCase : manifest.cases) {
    const std::string at = where + ": case " + inQuotes(policyCase.name);
    if (!names.insert(policyCase.name).second) refuse(at, "the name is given to another case before it");
    if (policyCase.facts.size() != manifest.facts.size()) {
      refuse(at + ": \"facts\"", "has " + std::to_string(policyCase.facts.size()) + " values instead of " +
                                     std::to_string(manifest.facts.size()));
    }
    if (policyCase.emits.size() != 5) {
      refuse(at + ": \"emits\"", "has " + std::to_string(policyCase.emits.size()) + " values instead of 5");
    }
  }
  checkProofSettings(manifest, *kind, where);
}

}  // namespace

OrxPolicyManifest OrxPolicyManifest::decode(std::span<const std::uint8_t> json, const std::string& name) {
  RavoJSON document;
  const std::string_view text(reinterpret_cast<const char*>(json.data()), json.size());
  try {
    document = parseRavoJSON(text, SchemaFilter(name));
  } catch (const RavoJSONDecodingError& error) {
    refuse(name, error.what());
  }
  OrxPolicyManifest manifest;
  decodeObject(document, name, manifest);
  checkAgainstKind(manifest, name);
  return manifest;
}

std::vector<OrxPolicyProperty> OrxPolicyManifest::parsedProperties() const {
  std::vector<OrxPolicyProperty> parsed;
  for (const auto& text : properties) parsed.push_back(OrxPolicyProperty::parse(text, *orxDecisionKindOfModule(module)));
  return parsed;
}

std::vector<std::string> orxManifestContractProblems(const OrxPolicyManifest& manifest,
                                                     std::span<const std::uint8_t> wasm) {
  const auto interface = describeModuleInterface(wasm.data(), wasm.size());
  if (!interface) return {"not a valid WebAssembly module"};
  std::vector<std::string> problems;
  if (interface->imports != manifest.imports) {
    problems.push_back("\"imports\": the module imports " + listed(interface->imports) + ", the manifest lists " +
                       listed(manifest.imports));
  }
  if (std::find(interface->exports.begin(), interface->exports.end(), manifest.decide) == interface->exports.end()) {
    problems.push_back("\"decide\": the module exports no " + manifest.decide);
  }
  return problems;
}

}  // namespace ravo::orx
