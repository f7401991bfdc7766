#include <ravo-orx/contracts/services/RavoJSONScenarioDraftProposer.h>

#include <ravo-orx/contracts/support/RavoTextNormalization.h>

namespace ravo::orx {

namespace {

constexpr std::string_view kInstructions =
    "You draft home and media automations (scenarios) for Ravo. Answer with one JSON object and nothing "
    "else, with the keys \"title\" (a short title), \"graph\" and \"unresolvedQuestions\" (questions for "
    "the person, at most 8). The graph has \"nodes\" (each with \"id\", a new uppercase UUID, "
    "\"nodeType\" and \"nodeVersion\" from the allowed nodes, \"stableTargetIDs\", and for nodes with "
    "action parameters an \"actionBinding\" of the form {\"arguments\": {\"<key>\": {\"kind\": \"number\", "
    "\"number\": 0.5}}}), \"edges\" (each with \"fromNodeID\", \"outputKey\", \"toNodeID\", \"inputKey\"; "
    "values travel under the key \"event\") and \"requestedCapabilities\". Use only the allowed nodes.\n";

// The text between one pair of ``` fences (an info string such as "json" after the opening fence is
// skipped), or the text itself when it is not fenced.
std::string_view unfenced(std::string_view text) {
  constexpr std::string_view fence = "```";
  if (!text.starts_with(fence) || !text.ends_with(fence) || text.size() < 2 * fence.size()) return text;
  text = text.substr(fence.size(), text.size() - 2 * fence.size());
  auto lineEnd = text.find('\n');
  return lineEnd == std::string_view::npos ? text : text.substr(lineEnd + 1);
}

}  // namespace

std::string RavoJSONScenarioDraftProposer::prompt(const RavoScenarioDraftingRequest& request) {
  RavoJSON context = RavoJSONObjectWriter()
                         .add("userText", request.userText())
                         .add("localOnly", request.localOnly())
                         .add("allowedNodes", request.allowedNodes())
                         .take();
  return std::string(kInstructions) + context.dump();
}

RavoScenarioDraftingResponse RavoJSONScenarioDraftProposer::parseAnswer(std::string_view answer,
                                                                        const RavoScenarioDraftingRequest& request) {
  if (answer.size() > maximumAnswerBytes) {
    throw RavoJSONDecodingError("model answer: answer of " + std::to_string(answer.size()) +
                                " bytes exceeds the limit of " + std::to_string(maximumAnswerBytes));
  }
  std::string trimmed = ravoTrimmedText(answer);
  RavoJSON json = parseRavoJSON(unfenced(trimmed));
  RavoJSONObjectReader reader(json, "model answer");
  auto title = reader.required<std::string>("title");
  auto decoded = reader.required<RavoScenarioGraph>("graph");
  auto questions = reader.optional<std::vector<std::string>>("unresolvedQuestions").value_or(std::vector<std::string>{});
  // Models list parts in any order; the graph constructor puts them in normal order.
  RavoScenarioGraph graph(decoded.nodes(), decoded.edges(), decoded.requestedCapabilities());
  RavoScenarioDraft draft(RavoUUID::random(), std::move(title), std::move(graph),
                          RavoScenarioActivationRequest::notRequested, RavoScenarioLifecycle::draft);
  return {RavoUUID::random(), request.id(), std::move(draft), std::move(questions)};
}

RavoScenarioDraftingResponse RavoJSONScenarioDraftProposer::proposeDraft(const RavoScenarioDraftingRequest& request) {
  return parseAnswer(model_(prompt(request)), request);
}

}  // namespace ravo::orx
