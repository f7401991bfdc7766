#include <ravo-orx/adapters/pixmor/UnavailablePixmorORXTransport.h>

#include <ravo-orx/adapters/pixmor/PixmorORXHostError.h>

namespace ravo::orx {

std::string UnavailablePixmorORXTransport::execute(const PixmorORXRequest&, std::stop_token) {
  throw PixmorORXHostError(PixmorORXHostError::Code::unavailable);
}

}  // namespace ravo::orx
