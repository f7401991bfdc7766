#pragma once
// The closed label sets of language-model providers with their JSON texts, cases in declaration order.

#include <array>
#include <string_view>
#include <utility>

#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

enum class RavoModelProviderKind { appleFoundationModels, ollama, lmStudio, openAICompatibleCloud };

// Where a provider's requests travel.
enum class RavoModelProviderTransport { onDevice, loopback, cloud };

// The lifecycle of a provider; only an eligible provider may serve requests.
enum class RavoModelProviderState { discovered, configured, authenticated, healthy, eligible, unavailable, revoked, failed };

template <>
struct ORXRawValueTable<RavoModelProviderKind> {
  using E = RavoModelProviderKind;
  static constexpr std::array<std::pair<E, std::string_view>, 4> entries{
      {{E::appleFoundationModels, "appleFoundationModels"},
       {E::ollama, "ollama"},
       {E::lmStudio, "lmStudio"},
       {E::openAICompatibleCloud, "openAICompatibleCloud"}}};
};

template <>
struct ORXRawValueTable<RavoModelProviderTransport> {
  using E = RavoModelProviderTransport;
  static constexpr std::array<std::pair<E, std::string_view>, 3> entries{
      {{E::onDevice, "onDevice"}, {E::loopback, "loopback"}, {E::cloud, "cloud"}}};
};

template <>
struct ORXRawValueTable<RavoModelProviderState> {
  using E = RavoModelProviderState;
  static constexpr std::array<std::pair<E, std::string_view>, 8> entries{{{E::discovered, "discovered"},
                                                                          {E::configured, "configured"},
                                                                          {E::authenticated, "authenticated"},
                                                                          {E::healthy, "healthy"},
                                                                          {E::eligible, "eligible"},
                                                                          {E::unavailable, "unavailable"},
                                                                          {E::revoked, "revoked"},
                                                                          {E::failed, "failed"}}};
};

}  // namespace ravo::orx
