#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "kalimkit/gfx/Device.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Size.h"
#include "kalimkit/host/headless/EditorSetup.h"
#include "kalimkit/host/headless/ScenarioFiles.h"

namespace kalim {

class MDrawView;

// What a scenario is played on.
struct ScenarioScreen {
    // The canvas is this large, in points.
    gfx::Size canvas{390, 844};
    // So many pixels make a point.
    double scale = 2;
    // See MDrawView::setForgiving and TesselViewController::setForgiving.
    bool forgiving = false;
    // Its presence puts the whole editor in the place of the bare canvas.
    std::optional<EditorSetup> editor = std::nullopt;
    // What texts are in, see Languages::choose; empty for the Chinese ones that are given.
    std::string language = {};
};

// Plays scenarios, one JSON object a line, on a canvas that fills a window of its own, without a
// screen: time stands still but for the scenario's waits. While it lives, its environment is the
// current one; the one before comes back with its end.
class KALIM_API ScenarioPlayer {
public:
    // Gets each line that the scenario prints, without a line feed.
    using Output = std::function<void(const std::string& line)>;

    // The device and the files must outlive the player.
    ScenarioPlayer(gfx::Device& device, ScenarioFiles& files, Output output,
                   const ScenarioScreen& screen = {});
    ~ScenarioPlayer();
    ScenarioPlayer(const ScenarioPlayer&) = delete;
    ScenarioPlayer& operator=(const ScenarioPlayer&) = delete;

    // Each answers with nothing, or with a sentence that says what is wrong; what cannot be
    // understood has done nothing then.

    // Does the same as a line {"picture":path}.
    std::optional<std::string> setPicture(const std::string& path);
    // The same with one that is there already.
    void setPicture(const gfx::ImageRef& picture);
    // Takes a document and its picture in the place of all that is there.
    std::optional<std::string> openDocument(const ScenarioFiles::LoadedDocument& loaded);
    // One line. A blank one does nothing.
    std::optional<std::string> play(std::string_view line);
    // All lines of a text up to the first that fails; its number, counted from 1, is put in front
    // of the sentence: "line 3: ...".
    std::optional<std::string> playAll(std::string_view text);

    // What it plays on, for those who watch.
    MDrawView& canvas();

private:
    class Stage;
    std::unique_ptr<Stage> _stage;
};

}  // namespace kalim
