#pragma once
// The code that performs one action. It may be called from several executions at once and may throw;
// a throw becomes a "handler.failed" receipt.

#include <functional>
#include <string>

#include <ravo-orx/contracts/actions/RavoActionProposal.h>

namespace ravo::orx {

class RavoActionHandlerResult {
 public:
  RavoActionHandlerResult(std::string code, std::string message)
      : code_(std::move(code)), message_(std::move(message)) {}

  // Becomes the receipt's reason, "handler." + code.
  const std::string& code() const { return code_; }
  // For the caller's own display; receipts do not keep it.
  const std::string& message() const { return message_; }

  friend bool operator==(const RavoActionHandlerResult&, const RavoActionHandlerResult&) = default;

 private:
  std::string code_;
  std::string message_;
};

using RavoActionHandler = std::function<RavoActionHandlerResult(const RavoActionProposal&)>;

}  // namespace ravo::orx
