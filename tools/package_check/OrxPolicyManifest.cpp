#include <ravo-orx/package_check/OrxPolicyManifest.h>

#include <stdexcept>

#include <nlohmann/json.hpp>

namespace ravo::orx {

OrxPolicyManifest OrxPolicyManifest::decode(std::span<const std::uint8_t> json, const std::string& name) {
  try {
    const auto document = nlohmann::json::parse(json.begin(), json.end());
    OrxPolicyManifest manifest{document.at("module").get<std::string>(),
                               document.at("orxAbi").get<std::string>(),
                               document.at("hostAbi").get<std::string>(),
                               document.at("imports").get<std::vector<std::string>>(),
                               document.at("decide").get<std::string>(),
                               document.at("emitTag").get<std::int32_t>(),
                               document.at("facts").get<std::vector<std::string>>(),
                               {}};
    for (const auto& row : document.at("cases")) {
      OrxPolicyCase policyCase{row.at("case").get<std::string>(), row.at("facts").get<std::vector<std::int32_t>>(),
                               row.at("emits").get<std::vector<std::int32_t>>()};
      if (policyCase.facts.size() != manifest.facts.size() || policyCase.emits.size() != 5) {
        throw std::runtime_error("case \"" + policyCase.name + "\" needs " + std::to_string(manifest.facts.size()) +
                                 " facts and 5 emitted values");
      }
      manifest.cases.push_back(std::move(policyCase));
    }
    return manifest;
  } catch (const std::exception& error) {
    throw std::runtime_error(name + ": " + error.what());
  }
}

}  // namespace ravo::orx
