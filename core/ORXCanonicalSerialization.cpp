// The canonical text of a canonical value, written in one pass straight into the output asked for.

#include "core/ORXCanonicalTextOutput.h"
#include "core/ORXCanonicalValue.h"

namespace {

// Appends to a byte vector, so canonicalData() needs no intermediate string.
struct ByteVectorOutput {
  std::vector<std::uint8_t>& bytes;
  void push_back(char c) { bytes.push_back(static_cast<std::uint8_t>(c)); }
  void append(const char* data, std::size_t size) { bytes.insert(bytes.end(), data, data + size); }
};

}  // namespace

void ORXCanonicalValue::appendCanonicalString(std::string& out) const { ORXCanonicalTextOutput::appendValue(out, *this); }

std::string ORXCanonicalValue::canonicalString() const {
  std::string out;
  appendCanonicalString(out);
  return out;
}

std::vector<std::uint8_t> ORXCanonicalValue::canonicalData() const {
  std::vector<std::uint8_t> bytes;
  ByteVectorOutput out{bytes};
  ORXCanonicalTextOutput::appendValue(out, *this);
  return bytes;
}
