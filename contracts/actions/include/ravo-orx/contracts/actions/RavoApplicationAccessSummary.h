#pragma once
// What one installed application asks for: its actions, the union of their capabilities and whether
// any of them needs policy-verified admission. Shown to the person who grants access.

#include <string>
#include <vector>

#include <ravo-orx/contracts/actions/RavoApplicationActionManifest.h>

namespace ravo::orx {

class RavoApplicationAccessSummary {
 public:
  explicit RavoApplicationAccessSummary(const RavoApplicationActionManifest& manifest);

  const RavoApplicationID& applicationID() const { return applicationID_; }
  const std::string& displayName() const { return displayName_; }
  const std::string& version() const { return version_; }
  const std::vector<RavoApplicationActionDescriptor>& actions() const { return actions_; }
  // Every capability any action requests, once each, sorted.
  const std::vector<RavoScenarioCapability>& requestedCapabilities() const { return requestedCapabilities_; }
  bool containsORXVerifiedActions() const { return containsORXVerifiedActions_; }

  // "<application id>@<version>", like the manifest's.
  std::string id() const { return applicationID_.rawValue() + "@" + version_; }

  friend bool operator==(const RavoApplicationAccessSummary&, const RavoApplicationAccessSummary&) = default;

 private:
  RavoApplicationID applicationID_;
  std::string displayName_;
  std::string version_;
  std::vector<RavoApplicationActionDescriptor> actions_;
  std::vector<RavoScenarioCapability> requestedCapabilities_;
  bool containsORXVerifiedActions_;
};

}  // namespace ravo::orx
