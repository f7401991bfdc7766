#pragma once
// The arguments with which a scenario's action node invokes its action.

#include <ravo-orx/contracts/actions/RavoActionValue.h>

namespace ravo::orx {

class RavoScenarioActionBinding {
 public:
  explicit RavoScenarioActionBinding(RavoActionArguments arguments) : arguments_(std::move(arguments)) {}

  const RavoActionArguments& arguments() const { return arguments_; }

  RavoJSON toJSON() const { return RavoJSONObjectWriter().add("arguments", arguments_).take(); }
  static RavoScenarioActionBinding fromJSON(const RavoJSON& json) {
    return RavoScenarioActionBinding(
        RavoJSONObjectReader(json, "RavoScenarioActionBinding").required<RavoActionArguments>("arguments"));
  }

  friend bool operator==(const RavoScenarioActionBinding&, const RavoScenarioActionBinding&) = default;

 private:
  RavoActionArguments arguments_;
};

}  // namespace ravo::orx
