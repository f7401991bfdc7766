#pragma once
// The transport of builds without an Orx service: every request gets a local fallback.

#include <ravo-orx/adapters/pixmor/PixmorORXTransport.h>

namespace ravo::orx {

class UnavailablePixmorORXTransport final : public PixmorORXTransport {
 public:
  // Always throws PixmorORXHostError(unavailable).
  std::string execute(const PixmorORXRequest& request, std::stop_token stop) override;
};

}  // namespace ravo::orx
