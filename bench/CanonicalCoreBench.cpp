// Canonical core costs: parsing, serializing and domain-digesting a typical host-contract record of about
// 2 KB, canonicalizing a document of about 1 MB of such records (written with spaces and every object's
// keys in reverse order) with and without building its value, canonicalizing and parsing one 8 MiB
// object of short keys in reverse order (the hostile shape: every member out of order, read again in
// key order), and SHA-256 throughput on 1 MB.
//
//   orx_canonical_core_bench --benchmark_filter=BM_DomainDigestRecord    the 2 KB record's domain digest
//   orx_canonical_core_bench --benchmark_filter=Document                 canon's work per byte
//   orx_canonical_core_bench --benchmark_filter=ReversedObject           one large object out of order

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include <ravo-orx/core/ORXCanonicalJSON.h>
#include <ravo-orx/core/ORXDigest.h>
#include <ravo-orx/core/ORXSHA256.h>
#include <ravo-orx/core/ORXTypedValue.h>
#include "limits/HostileInputs.h"

namespace ravo::orx {

namespace {

using V = ORXCanonicalValue;

V text(std::string value) { return V::string(std::move(value)); }

std::string digestText(char digit) { return "sha256:" + std::string(64, digit); }

// Shaped like a decision intent: identifiers, digests, a deadline, budgets and typed arguments.
V typicalRecord() {
  V::Array arguments;
  for (int i = 0; i < 14; ++i) {
    const ORXTypedValue value =
        i % 2 ? ORXTypedValue::i64(1700000000000 + i)
              : ORXTypedValue::option(ORXFlatTypeReference::primitive(ORXPrimitiveType::f64),
                                      ORXTypedValue::f64(ORXFloatRepresentation::bits("3ff0000000000000")));
    arguments.push_back(V::object({{"name", text("argument_" + std::to_string(i))}, {"value", value.canonicalValue()}}));
  }
  V::Array budgets;
  for (const char* resource : {"cpu.time", "memory.bytes", "network.requests", "storage.writes"}) {
    budgets.push_back(V::object({{"limit", V::integer(1 << 20)}, {"resource", text(resource)}}));
  }
  return V::object({
      {"action", text("ravo.player.seek")},
      {"arguments", V::array(std::move(arguments))},
      {"budgets", V::array(std::move(budgets))},
      {"capability", text("ravo.player.transport")},
      {"deadline", V::object({{"clock_domain", text("host.monotonic")}, {"value", V::integer(123456789)}})},
      {"effect_type", text("ravo.effect.media.transport")},
      {"generation", V::object({{"domain", text("player.session")}, {"epoch", V::integer(42)}})},
      {"grant_set_digest", text(digestText('a'))},
      {"input_digest", text(digestText('b'))},
      {"issuer_class", text("assistant.model")},
      {"note", text("Seek to the chapter the viewer asked for, \"Kapitel 3\" \xe2\x80\x94 t\xc3\xa9l\xc3\xa9")},
      {"policy_digest", text(digestText('c'))},
      {"target_class", text("player.local")},
  });
}

void BM_ParseRecord(benchmark::State& state) {
  const std::string canonical = typicalRecord().canonicalString();
  for (auto _ : state) benchmark::DoNotOptimize(ORXCanonicalJSON::parse(canonical));
  state.SetBytesProcessed(state.iterations() * canonical.size());
  state.counters["record_bytes"] = canonical.size();
}
BENCHMARK(BM_ParseRecord);

void BM_SerializeRecord(benchmark::State& state) {
  const V record = typicalRecord();
  const std::size_t size = record.canonicalString().size();
  for (auto _ : state) benchmark::DoNotOptimize(record.canonicalString());
  state.SetBytesProcessed(state.iterations() * size);
}
BENCHMARK(BM_SerializeRecord);

void BM_DomainDigestRecord(benchmark::State& state) {
  const V record = typicalRecord();
  const std::size_t size = record.canonicalString().size();
  for (auto _ : state) benchmark::DoNotOptimize(ORXDigest::domain(ORXDigestDomain::intent, record));
  state.SetBytesProcessed(state.iterations() * size);
}
BENCHMARK(BM_DomainDigestRecord);

// The value's text with spaces after punctuation and each object's members in reverse key order.
void appendReversed(std::string& out, const V& value) {
  if (const auto* elements = value.asArray()) {
    out += "[ ";
    for (std::size_t i = 0; i < elements->size(); ++i) {
      if (i) out += ", ";
      appendReversed(out, (*elements)[i]);
    }
    out += " ]";
  } else if (const auto* object = value.asObject()) {
    out += "{ ";
    const auto& fields = object->fields();
    for (auto field = fields.rbegin(); field != fields.rend(); ++field) {
      if (field != fields.rbegin()) out += ", ";
      out += V::string(field->first).canonicalString() + ": ";
      appendReversed(out, field->second);
    }
    out += " }";
  } else {
    value.appendCanonicalString(out);
  }
}

std::string megabyteDocument() {
  std::string record;
  appendReversed(record, typicalRecord());
  std::string document = "[";
  while (document.size() < (1 << 20)) document += record + ",\n";
  return document + record + "]";
}

void BM_CanonicalizeDocument(benchmark::State& state) {
  const std::string document = megabyteDocument();
  for (auto _ : state) benchmark::DoNotOptimize(ORXCanonicalJSON::canonicalize(document));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(document.size()));
}
BENCHMARK(BM_CanonicalizeDocument)->Unit(benchmark::kMillisecond);

// The same output through the value: what canon did before it wrote straight from the text.
void BM_ParseAndSerializeDocument(benchmark::State& state) {
  const std::string document = megabyteDocument();
  for (auto _ : state) benchmark::DoNotOptimize(ORXCanonicalJSON::parse(document).canonicalString());
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(document.size()));
}
BENCHMARK(BM_ParseAndSerializeDocument)->Unit(benchmark::kMillisecond);

const std::string& reversedObject() {
  static const std::string text = hostile_inputs::objectOfShortKeys(8u << 20, true);
  return text;
}

void BM_CanonicalizeReversedObject(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(ORXCanonicalJSON::canonicalize(reversedObject()));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(reversedObject().size()));
}
BENCHMARK(BM_CanonicalizeReversedObject)->Unit(benchmark::kMillisecond);

void BM_ParseReversedObject(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(ORXCanonicalJSON::parse(reversedObject()));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(reversedObject().size()));
}
BENCHMARK(BM_ParseReversedObject)->Unit(benchmark::kMillisecond);

void BM_SHA256OneMegabyte(benchmark::State& state) {
  const std::vector<std::uint8_t> data(1 << 20, 0x5a);
  for (auto _ : state) benchmark::DoNotOptimize(ORXSHA256::hash(data));
  state.SetBytesProcessed(state.iterations() * data.size());
}
BENCHMARK(BM_SHA256OneMegabyte);

}  // namespace

}  // namespace ravo::orx
