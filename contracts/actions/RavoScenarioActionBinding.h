#pragma once
// The arguments with which a scenario's action node invokes its action.

#include "contracts/actions/RavoActionValue.h"

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
