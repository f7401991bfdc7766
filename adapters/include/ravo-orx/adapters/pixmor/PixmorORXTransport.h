#pragma once
// Carries Pixmor requests to the Orx service.

#include <stop_token>
#include <string>

#include <ravo-orx/adapters/pixmor/PixmorORXRequest.h>

namespace ravo::orx {

class PixmorORXTransport {
 public:
  virtual ~PixmorORXTransport() = default;

  // Returns the service's answer, the JSON text of a PixmorORXResponse, or throws. The host calls it on
  // a thread of its own, possibly for several requests at once, and requests `stop` when it stops
  // waiting; it waits for the call to return, so an implementation should give up promptly then.
  virtual std::string execute(const PixmorORXRequest& request, std::stop_token stop) = 0;
};

}  // namespace ravo::orx
