// The canonical text of a canonical value, written in one pass straight into the output asked for.

#include "core/ORXCanonicalTextOutput.h"
#include "core/ORXCanonicalValue.h"

void ORXCanonicalValue::appendCanonicalString(std::string& out) const {
  ORXCanonicalTextOutput::Buffered buffered([&out](const char* data, std::size_t size) { out.append(data, size); });
  ORXCanonicalTextOutput::appendValue(buffered, *this);
  buffered.finish();
}

std::string ORXCanonicalValue::canonicalString() const {
  std::string out;
  appendCanonicalString(out);
  return out;
}

std::vector<std::uint8_t> ORXCanonicalValue::canonicalData() const {
  std::vector<std::uint8_t> bytes;
  ORXCanonicalTextOutput::Buffered buffered(
      [&bytes](const char* data, std::size_t size) { bytes.insert(bytes.end(), data, data + size); });
  ORXCanonicalTextOutput::appendValue(buffered, *this);
  buffered.finish();
  return bytes;
}
