#include "kalimkit/host/headless/ScenarioPlayer.h"

#include <algorithm>
#include <utility>

#include "kalimkit/host/headless/ScenarioStage.h"
#include "kalimkit/json/JsonText.h"

namespace kalim {

ScenarioPlayer::ScenarioPlayer(gfx::Device& device, ScenarioFiles& files, Output output,
                               const ScenarioScreen& screen)
    : _stage(std::make_unique<Stage>(device, files, std::move(output), screen)) {}

ScenarioPlayer::~ScenarioPlayer() = default;

std::optional<std::string> ScenarioPlayer::setPicture(const std::string& path) {
    return _stage->setPicture(path);
}

void ScenarioPlayer::setPicture(const gfx::ImageRef& picture) {
    _stage->setPicture(picture);
}

std::optional<std::string> ScenarioPlayer::openDocument(
    const ScenarioFiles::LoadedDocument& loaded) {
    return _stage->openDocument(loaded);
}

std::optional<std::string> ScenarioPlayer::play(std::string_view line) {
    if (line.find_first_not_of(" \t\r\n") == std::string_view::npos) return std::nullopt;
    const ParsedJson step = parseJson(line);
    return step.error ? step.error : _stage->play(step.value);
}

std::optional<std::string> ScenarioPlayer::playAll(std::string_view text) {
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        if (const auto problem = play(text.substr(0, end))) {
            return "line " + std::to_string(number) + ": " + *problem;
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return std::nullopt;
}

MDrawView& ScenarioPlayer::canvas() {
    return _stage->canvas();
}

}  // namespace kalim
