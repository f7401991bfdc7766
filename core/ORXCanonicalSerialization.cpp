// The canonical text of a canonical value, written in one pass straight into the output asked for.

#include <ravo-orx/core/ORXCanonicalTextOutput.h>
#include <ravo-orx/core/ORXCanonicalValue.h>

namespace ravo::orx {

using namespace internal;

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

}  // namespace ravo::orx
