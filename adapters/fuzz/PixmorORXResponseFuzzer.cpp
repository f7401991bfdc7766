// Service answers of any shape: they either decode or are refused with RavoJSONDecodingError, and what
// decodes validates without failing and survives a round trip through its JSON form. The same bytes,
// taken as the person's intent, must give a local proposal that passes validation.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <ravo-orx/adapters/pixmor/PixmorORXHost.h>

using namespace ravo::orx;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);

  const PixmorORXRequest asIntent(PixmorORXAbility::pipelineBuilder, std::string(text), {}, std::string(text),
                                  PixmorORXImageFacts(0, 0, false, size % 2 == 0, 0),
                                  PixmorORXExecutionFacts(true, size % 3 == 0, 0, 0));
  if (!PixmorORXHost::isValid(PixmorORXHost::fallback(asIntent, "fuzz"), asIntent)) __builtin_trap();

  std::optional<PixmorORXResponse> response;
  try {
    response = PixmorORXResponse::fromJSONText(text);
  } catch (const RavoJSONDecodingError&) {
    return 0;
  }
  // Validate against the request the answer claims to answer, so every check after the identity runs.
  const PixmorORXRequest request(response->ability(), "", {}, std::nullopt, PixmorORXImageFacts(0, 0, false, false, 0),
                                 PixmorORXExecutionFacts(false, false, 0, 0), response->requestID());
  static_cast<void>(PixmorORXHost::isValid(*response, request));
  if (PixmorORXResponse::fromJSON(parseRavoJSON(response->toJSON().dump())) != *response) __builtin_trap();
  return 0;
}
