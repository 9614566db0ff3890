#pragma once

#include <memory>
#include <string>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/host/headless/CanvasEvents.h"
#include "kalimkit/host/headless/EditorHost.h"
#include "kalimkit/host/headless/HeadlessEnvironment.h"
#include "kalimkit/host/headless/ScenarioFingers.h"
#include "kalimkit/host/headless/ScenarioPlayer.h"
#include "kalimkit/host/headless/ScenarioValues.h"
#include "kalimkit/host/seat/EditorSeat.h"
#include "kalimkit/json/JsonValue.h"

namespace kalim {

// The canvas, or the editor, in its window, and what the steps of a scenario do to it. Every step
// leaves the main queue empty and the window displayed.
class ScenarioPlayer::Stage {
public:
    Stage(gfx::Device& device, ScenarioFiles& files, Output output, const ScenarioScreen& screen);
    ~Stage();
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    // A whole step; a problem means that nothing of it was done.
    Problem play(const JsonValue& step);
    Problem setPicture(const std::string& path);
    void setPicture(const gfx::ImageRef& picture);
    Problem openDocument(const ScenarioFiles::LoadedDocument& loaded);
    MDrawView& canvas() const { return *_canvas; }
    ui::Window& window() { return _seat.window(); }

private:
    // A kind of step: the key that names it, the other keys that it may have, and what it does.
    struct Kind;
    static const Kind kinds[];
    static const Kind* kindOf(const JsonValue::Object& step);
    static Problem checkKeys(const Kind& kind, const JsonValue::Object& step);
    static std::string unknownStep(const JsonValue::Object& step);

    Problem touch(const JsonValue& step);
    // ---- a mouse, and a desktop's keys (ScenarioPointerSteps.cpp)
    Problem hover(const JsonValue& step);
    Problem wheel(const JsonValue& step);
    Problem pressEditorKey(const JsonValue& step);
    Problem setAppearance(const JsonValue& step);
    Problem printPointer();
    Problem printAnnouncements();

    Problem wait(const JsonValue& step);
    Problem call(const JsonValue& step);
    Problem gesture(const JsonValue& step);
    Problem make(const JsonValue& step);
    Problem print(const JsonValue& step);
    Problem picture(const JsonValue& step);
    Problem stamp(const JsonValue& step);
    Problem exportPicture(const JsonValue& step);
    Problem saveDocument(const JsonValue& step);
    Problem openDocument(const JsonValue& step);
    Problem type(const JsonValue& step);
    Problem compose(const JsonValue& step);
    Problem pressKey(const JsonValue& step);
    Problem showKeyboard(const JsonValue& step);

    // ---- with the editor's screen alone (ScenarioEditorSteps.cpp)
    void presentEditor(const EditorSetup& setup, bool forgiving);
    Problem tap(const JsonValue& step);
    Problem host(const JsonValue& step);
    Problem pick(const JsonValue& step);
    Problem save(const JsonValue& step);
    Problem screenshot(const JsonValue& step);
    Problem printEditor();
    Problem readTapPlace(const JsonValue& value, gfx::Point& place) const;

    // ---- without aiming (ScenarioAccessibilitySteps.cpp)
    Problem activate(const JsonValue& step);
    Problem printAccessibility();

    void settle();
    void printLine(JsonValue::Object members);
    JsonValue takeAlerts();
    JsonValue::Object takeCanvas();

    ScenarioFiles& _files;
    Output _output;
    std::shared_ptr<HeadlessEnvironment> _environment;
    EditorSeat _seat;
    std::shared_ptr<CanvasEvents> _events;
    // A bare canvas has none.
    std::shared_ptr<EditorHost> _host;
    std::shared_ptr<MDrawView> _canvas;
    ScenarioFingers _fingers;
};

}  // namespace kalim
