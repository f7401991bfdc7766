#pragma once
// The closed label sets of the action model with their JSON texts, cases in declaration order.

#include <array>
#include <string_view>
#include <utility>

#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

// The surfaces that may start an action.
enum class RavoActionEntryPoint { button, voice, kolto, appIntent, remote, externalProvider, mcp };

enum class RavoActionValueKind { string, boolean, integer, number };

// The weakest gate level an action accepts.
enum class RavoActionGateRequirement { hostGrant, orxVerified };

// Who proposed an action.
enum class RavoActionProposalOrigin { deterministicRouter, userInterface, appleIntelligence, kolto, appIntent, externalModel, mcp };

enum class RavoActionReceiptOutcome { completed, blocked, failed };

// Proposals from assistant models must be admitted at the verified gate level, whatever the action asks.
constexpr bool ravoIsModelOrigin(RavoActionProposalOrigin origin) {
  switch (origin) {
    case RavoActionProposalOrigin::appleIntelligence:
    case RavoActionProposalOrigin::kolto:
    case RavoActionProposalOrigin::externalModel:
    case RavoActionProposalOrigin::mcp:
      return true;
    default:
      return false;
  }
}

template <>
struct ORXRawValueTable<RavoActionEntryPoint> {
  using E = RavoActionEntryPoint;
  static constexpr std::array<std::pair<E, std::string_view>, 7> entries{{{E::button, "button"},
                                                                          {E::voice, "voice"},
                                                                          {E::kolto, "kolto"},
                                                                          {E::appIntent, "appIntent"},
                                                                          {E::remote, "remote"},
                                                                          {E::externalProvider, "externalProvider"},
                                                                          {E::mcp, "mcp"}}};
};

template <>
struct ORXRawValueTable<RavoActionValueKind> {
  using E = RavoActionValueKind;
  static constexpr std::array<std::pair<E, std::string_view>, 4> entries{
      {{E::string, "string"}, {E::boolean, "boolean"}, {E::integer, "integer"}, {E::number, "number"}}};
};

template <>
struct ORXRawValueTable<RavoActionGateRequirement> {
  using E = RavoActionGateRequirement;
  static constexpr std::array<std::pair<E, std::string_view>, 2> entries{
      {{E::hostGrant, "hostGrant"}, {E::orxVerified, "orxVerified"}}};
};

template <>
struct ORXRawValueTable<RavoActionProposalOrigin> {
  using E = RavoActionProposalOrigin;
  static constexpr std::array<std::pair<E, std::string_view>, 7> entries{
      {{E::deterministicRouter, "deterministicRouter"},
       {E::userInterface, "userInterface"},
       {E::appleIntelligence, "appleIntelligence"},
       {E::kolto, "kolto"},
       {E::appIntent, "appIntent"},
       {E::externalModel, "externalModel"},
       {E::mcp, "mcp"}}};
};

template <>
struct ORXRawValueTable<RavoActionReceiptOutcome> {
  using E = RavoActionReceiptOutcome;
  static constexpr std::array<std::pair<E, std::string_view>, 3> entries{
      {{E::completed, "completed"}, {E::blocked, "blocked"}, {E::failed, "failed"}}};
};

}  // namespace ravo::orx
