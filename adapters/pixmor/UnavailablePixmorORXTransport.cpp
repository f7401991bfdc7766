#include "adapters/pixmor/UnavailablePixmorORXTransport.h"

#include "adapters/pixmor/PixmorORXHostError.h"

std::string UnavailablePixmorORXTransport::execute(const PixmorORXRequest&, std::stop_token) {
  throw PixmorORXHostError(PixmorORXHostError::Code::unavailable);
}
