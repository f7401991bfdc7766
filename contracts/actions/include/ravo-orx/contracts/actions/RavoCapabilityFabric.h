#pragma once
// The registry of every action that installed applications offer. It checks the manifests for
// consistency once, answers look-ups by action id, summarises what each application asks for, and
// ranks actions against free text so that an assistant model is shown only a handful of plausible
// actions.

#include <cstdint>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <ravo-orx/contracts/actions/RavoApplicationAccessSummary.h>
#include <ravo-orx/contracts/actions/RavoApplicationActionManifest.h>

namespace ravo::orx {

class RavoCapabilityFabricError : public std::runtime_error {
 public:
  enum class Code {
    duplicateActionID,          // one action id declared twice with different descriptors
    actionApplicationMismatch,  // an action that names another application than its manifest
  };

  RavoCapabilityFabricError(Code code, std::string actionID);

  Code code() const { return code_; }
  const std::string& actionID() const { return actionID_; }

 private:
  Code code_;
  std::string actionID_;
};

class RavoCapabilityFabric {
 public:
  // The most descriptors a shortlist returns, whatever the limit asked for.
  static constexpr std::size_t maximumShortlist = 24;

  // Throws the first inconsistency met, in manifest and action order. An action declared again with
  // an equal descriptor is accepted.
  explicit RavoCapabilityFabric(std::vector<RavoApplicationActionManifest> manifests);

  // The fabric over the built-in manifests, built once.
  static const RavoCapabilityFabric& builtIn();

  // Sorted by application id.
  const std::vector<RavoApplicationActionManifest>& manifests() const { return manifests_; }
  // One summary per manifest, in `manifests` order.
  std::vector<RavoApplicationAccessSummary> applicationAccesses() const;
  // Every action once, by id.
  std::vector<RavoApplicationActionDescriptor> actions() const;
  // The action with this id, or null.
  const RavoApplicationActionDescriptor* descriptor(const RavoApplicationActionID& id) const;

  // The actions ranked against the query, best first, ties by id; at least one and at most
  // `maximumShortlist`. Actions that do not match at all still fill the list after those that do.
  std::vector<RavoApplicationActionDescriptor> shortlist(std::string_view query, std::int64_t limit) const;

  friend bool operator==(const RavoCapabilityFabric& a, const RavoCapabilityFabric& b) {
    return a.manifests_ == b.manifests_;
  }

 private:
  // A descriptor with its texts normalised once, for ranking.
  struct Entry {
    RavoApplicationActionDescriptor descriptor;
    std::string title;
    std::string category;
    std::set<std::string> tokens;
  };

  static std::int64_t score(const Entry& entry, const std::string& query, const std::set<std::string>& queryTokens);

  std::vector<RavoApplicationActionManifest> manifests_;
  std::map<RavoApplicationActionID, Entry> actionsByID_;
};

}  // namespace ravo::orx
