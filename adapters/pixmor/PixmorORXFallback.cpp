// PixmorORXHost::fallback: the proposal the surface gets when the service cannot give one. It depends
// only on the intent, the presence of people and the device's model, GPU and thermal facts, so the
// same request always yields the same proposal.

#include <algorithm>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <ravo-orx/adapters/pixmor/PixmorORXHost.h>

namespace ravo::orx {

namespace {

constexpr std::int64_t gpuPreviewMaxPixels = 2'073'600;  // 1920 × 1080
constexpr std::int64_t cpuPreviewMaxPixels = 1'048'576;  // 1024 × 1024

std::string lowercased(std::string_view text) {
  std::string result;
  icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size())))
      .toLower(icu::Locale::getRoot())
      .toUTF8String(result);
  return result;
}

std::vector<std::string> stagesFor(const PixmorORXRequest& request) {
  const std::string intent = lowercased(request.intent());
  auto mentions = [&](std::initializer_list<std::string_view> words) {
    return std::ranges::any_of(words, [&](std::string_view word) { return intent.find(word) != std::string::npos; });
  };
  std::vector<std::string> kinds{"original", "rawDecode", "toneRecovery"};
  if (mentions({"noise", "denoise", "grain"})) kinds.emplace_back("denoise");
  if (request.imageFacts().hasPeople()) kinds.emplace_back("subjectMatte");
  if (mentions({"detail", "restore", "sharp"})) kinds.emplace_back("detailSynthesis");
  if (mentions({"bright", "sky", "relight"})) kinds.emplace_back("relight");
  if (mentions({"color", "warm"})) kinds.emplace_back("colorGrade");
  kinds.emplace_back("previewOutput");
  return kinds;
}

// Conservative starting strengths; stages without a row start from their own defaults.
std::vector<PixmorORXNodeDefaults> defaultsFor(const std::vector<std::string>& kinds) {
  static const std::map<std::string, std::map<std::string, double>, std::less<>> table{
      {"toneRecovery", {{"strength", 0.28}, {"naturalness", 0.8}}},
      {"denoise", {{"strength", 0.38}, {"structureProtection", 0.72}}},
      {"detailSynthesis", {{"strength", 0.34}, {"detailRecovery", 0.6}, {"naturalness", 0.78}}},
      {"relight", {{"strength", 0.22}, {"maskInfluence", 0.42}}},
  };
  std::vector<PixmorORXNodeDefaults> defaults;
  for (const auto& kind : kinds) {
    if (auto row = table.find(kind); row != table.end()) defaults.emplace_back(kind, row->second);
  }
  return defaults;
}

}  // namespace

PixmorORXResponse PixmorORXHost::fallback(const PixmorORXRequest& request, std::string_view reason) {
  const auto& device = request.executionFacts();
  auto kinds = stagesFor(request);
  auto defaults = defaultsFor(kinds);
  std::optional<std::string> explanation;
  if (request.selectedNodeKind()) {
    explanation = *request.selectedNodeKind() + " is inspected as a preview stage; it never edits the source file.";
  }
  return PixmorORXResponse(
      std::string(PixmorORXRequest::schemaName), request.requestID(), request.ability(), std::move(kinds),
      std::move(defaults),
      {{"Natural", "Preserve texture and restrained tone recovery"},
       {"Detail", "Prioritize detail synthesis with structure protection"},
       {"Soft Light", "Use gentle relight and natural colour"}},
      PixmorORXExecutionPolicy(device.gpuAvailable() ? gpuPreviewMaxPixels : cpuPreviewMaxPixels,
                               device.modelInstalled() && device.thermalClass() == 0, device.gpuAvailable(), true),
      {"Review the proposed stages before applying them.",
       "Preview changes are bounded and keep the source untouched.", "Export remains a separate explicit action."},
      std::move(explanation), PixmorORXResponseOrigin::localFallback, std::string(reason));
}

}  // namespace ravo::orx
