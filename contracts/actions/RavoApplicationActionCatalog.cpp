#include <ravo-orx/contracts/actions/RavoApplicationActionCatalog.h>

#include <algorithm>
#include <array>

namespace ravo::orx {

namespace {

using Fields = RavoApplicationActionDescriptor::Fields;

// Every built-in action may start from these surfaces; remote, external and MCP callers go through
// the assistant instead.
constexpr std::array kEntryPoints = {RavoActionEntryPoint::button, RavoActionEntryPoint::voice,
                                     RavoActionEntryPoint::kolto, RavoActionEntryPoint::appIntent};

Fields builtInFields() {
  return {.applicationID = RavoPlayerActionIDs::application(),
          .confirmation = RavoScenarioConfirmationPolicy::none,
          .egressPolicy = RavoScenarioDataEgressPolicy::none,
          .minimumGate = RavoActionGateRequirement::hostGrant,
          .adapterVersion = "1.0.0",
          .entryPoints = {kEntryPoints.begin(), kEntryPoints.end()}};
}

struct Playback {
  const RavoApplicationActionID& id;
  const char* title;
  const char* summary;
  const char* systemImage;
  std::int32_t actionCode;
  const RavoScenarioCapability& capability;
  const char* effectType;
  const char* targetClass;
  std::vector<std::string> searchTerms;
  std::vector<RavoActionParameterSchema> parameters = {};
};

RavoApplicationActionDescriptor playback(Playback action) {
  Fields fields = builtInFields();
  fields.id = action.id;
  fields.title = action.title;
  fields.summary = action.summary;
  fields.category = "Playback";
  fields.systemImage = action.systemImage;
  fields.searchTerms = std::move(action.searchTerms);
  fields.parameters = std::move(action.parameters);
  fields.requestedCapabilities = {action.capability};
  fields.effectTypes = {action.effectType};
  fields.risk = RavoScenarioRiskClass::low;
  fields.requiresStableTarget = true;
  fields.targetClass = action.targetClass;
  fields.adapterID = "ravo.native.playback";
  fields.actionCode = action.actionCode;
  return RavoApplicationActionDescriptor(std::move(fields));
}

RavoApplicationActionDescriptor navigation(const RavoApplicationActionID& id, const char* title, const char* systemImage,
                                           std::vector<std::string> searchTerms, std::int32_t actionCode,
                                           const char* targetClass) {
  Fields fields = builtInFields();
  fields.id = id;
  fields.title = title;
  fields.summary = "Navigate to a Ravo surface.";
  fields.category = "Navigation";
  fields.systemImage = systemImage;
  fields.searchTerms = std::move(searchTerms);
  fields.requestedCapabilities = {RavoScenarioCapability("ravo.ui.navigate")};
  fields.effectTypes = {"ravo.effect.ui.navigate"};
  fields.risk = RavoScenarioRiskClass::none;
  fields.requiresStableTarget = false;
  fields.targetClass = targetClass;
  fields.adapterID = "ravo.native.navigation";
  fields.actionCode = actionCode;
  return RavoApplicationActionDescriptor(std::move(fields));
}

// The level is a fraction of full volume, not a percentage.
RavoActionParameterSchema volumeLevel() {
  return RavoActionParameterSchema({.key = "level",
                                    .kind = RavoActionValueKind::number,
                                    .required = true,
                                    .minimum = 0.0,
                                    .maximum = 1.0,
                                    .defaultValue = RavoActionValue::number(0.5)});
}

RavoApplicationActionManifest buildPlayerManifest() {
  using IDs = RavoPlayerActionIDs;
  const auto& transport = RavoScenarioCapability::mediaTransport();
  const char* transportEffect = "ravo.effect.media.transport";
  const char* transportTarget = "ravo.playback.transport";
  std::vector<RavoApplicationActionDescriptor> actions = {
      playback({IDs::pause(), "Pause", "Pause current playback.", "pause.fill", 10, transport, transportEffect,
                transportTarget,
                {"pause", "stop", "пауза", "стоп", "стой", "поставь на паузу", "приостанови", "останови"}}),
      playback({IDs::resume(), "Resume", "Resume current playback.", "play.fill", 11, transport, transportEffect,
                transportTarget,
                {"resume", "continue", "continue playback", "продолжи", "продолжай", "продолжай воспроизведение"}}),
      playback({IDs::next(), "Next", "Play the next item.", "forward.end.fill", 12, transport, transportEffect,
                transportTarget, {"next", "следующий", "следующая", "дальше"}}),
      playback({IDs::previous(), "Previous", "Return to the previous item.", "backward.end.fill", 13, transport,
                transportEffect, transportTarget, {"previous", "предыдущий", "назад"}}),
      playback({IDs::setVolume(), "Set volume", "Set playback volume to an exact bounded level.",
                "speaker.wave.2.fill", 14, RavoScenarioCapability::audioVolume(), "ravo.effect.audio.volume",
                "ravo.playback.volume", {"volume", "set volume", "громкость", "установи громкость"},
                {volumeLevel()}}),
      navigation(IDs::openHome(), "Open Home", "house", {"open home", "домой", "открой главную"}, 20, "ravo.ui.home"),
      navigation(IDs::openVideo(), "Open Video", "film", {"open video", "видео", "открой видео"}, 21, "ravo.ui.video"),
      navigation(IDs::openMusic(), "Open Music", "music.note", {"open music", "музыка", "открой музыку"}, 22,
                 "ravo.ui.music"),
      navigation(IDs::openPixmor(), "Open Pixmor", "photo", {"open pixmor", "pixmor", "открой пиксмор"}, 23,
                 "ravo.ui.pixmor"),
      navigation(IDs::openKolto(), "Open Kolto", "point.3.connected.trianglepath.dotted",
                 {"open kolto", "kolto", "открой kolto"}, 24, "ravo.ui.kolto"),
  };
  return RavoApplicationActionManifest(IDs::application(), "Ravo Player", "1.0.0", std::move(actions));
}

}  // namespace

const RavoApplicationActionManifest& RavoApplicationActionCatalog::ravoPlayer() {
  static const RavoApplicationActionManifest manifest = buildPlayerManifest();
  return manifest;
}

const std::vector<RavoApplicationActionManifest>& RavoApplicationActionCatalog::builtInManifests() {
  static const std::vector<RavoApplicationActionManifest> manifests = {ravoPlayer()};
  return manifests;
}

const std::vector<RavoApplicationActionDescriptor>& RavoApplicationActionCatalog::descriptors() {
  static const std::vector<RavoApplicationActionDescriptor> all = [] {
    std::vector<RavoApplicationActionDescriptor> result;
    for (const auto& manifest : builtInManifests()) {
      result.insert(result.end(), manifest.actions().begin(), manifest.actions().end());
    }
    return result;
  }();
  return all;
}

const std::vector<RavoScenarioNodeDefinition>& RavoApplicationActionCatalog::scenarioNodeDefinitions() {
  static const std::vector<RavoScenarioNodeDefinition> all = [] {
    std::vector<RavoScenarioNodeDefinition> result;
    for (const auto& manifest : builtInManifests()) {
      auto definitions = manifest.scenarioNodeDefinitions();
      result.insert(result.end(), definitions.begin(), definitions.end());
    }
    return result;
  }();
  return all;
}

const RavoApplicationActionDescriptor* RavoApplicationActionCatalog::descriptor(const RavoApplicationActionID& id) {
  const auto& all = descriptors();
  auto found = std::find_if(all.begin(), all.end(), [&](const auto& d) { return d.id() == id; });
  return found == all.end() ? nullptr : &*found;
}

const RavoApplicationActionDescriptor* RavoApplicationActionCatalog::descriptor(const RavoScenarioNodeTypeID& nodeType) {
  return descriptor(RavoApplicationActionID(nodeType.rawValue()));
}

}  // namespace ravo::orx
