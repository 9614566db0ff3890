#include <cmath>
#include <string_view>
#include <utility>
#include <vector>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/host/headless/EditorPrint.h"
#include "kalimkit/host/headless/EditorViews.h"
#include "kalimkit/host/headless/ScenarioStage.h"

namespace kalim {

namespace {

constexpr const char* needsEditor =
    "this step is for the editor's screen, and this is the bare canvas";

JsonValue describeUserDefaults(const HeadlessEnvironment& environment) {
    JsonValue::Object defaults;
    for (const auto& [key, value] : environment.userDefaults())
        defaults.emplace_back(key, value);
    return defaults;
}

}  // namespace

void ScenarioPlayer::Stage::presentEditor(const EditorSetup& setup, bool forgiving) {
    const gfx::Size size = window().size();
    ui::Screen screen = _environment->screen();
    screen.isPhone = setup.nativeHeight.has_value();
    screen.nativeSize = {static_cast<int>(std::lround(size.width * screen.scale)),
                         static_cast<int>(std::lround(size.height * screen.scale))};
    if (setup.nativeHeight) screen.nativeSize.height = *setup.nativeHeight;
    _environment->setScreen(screen);
    _environment->setShowsAlerts(true);
    for (const auto& [key, value] : setup.userDefaults)
        _environment->setUserDefault(key, value);
    _host = EditorHost::make(setup, _seat, *_environment);
    _host->editor().setForgiving(forgiving);
    _canvas = _host->editor().drawView();
    _events = std::make_shared<CanvasEvents>(_host->sharedEditor());
    _canvas->setDrawViewdelegate(_events);
    _host->present(setup.layout);
}

// ---- fingers

Problem ScenarioPlayer::Stage::readTapPlace(const JsonValue& value, gfx::Point& place) const {
    if (value.array()) return readAs(value, "\"tap\"", place);
    std::string path;
    if (!readValue(value, path)) {
        return wrongValue("\"tap\"", "the name of a view or a point [x,y]", value);
    }
    const std::vector<NamedView> views = editorViews(_host->editor());
    std::vector<std::string_view> paths;
    for (const NamedView& named : views) {
        if (named.path == path) {
            place = named.view->convertRectTo(named.view->bounds(), nullptr).center();
            return std::nullopt;
        }
        paths.push_back(named.path);
    }
    return "there is no view " + shownName(path) + suggestion(path, paths);
}

Problem ScenarioPlayer::Stage::tap(const JsonValue& step) {
    if (!_host) return needsEditor;
    gfx::Point place;
    if (Problem problem = readTapPlace(*step.find("tap"), place)) return problem;
    return _fingers.tap(place);
}

// ---- the host

Problem ScenarioPlayer::Stage::host(const JsonValue& step) {
    if (!_host) return needsEditor;
    std::string name;
    if (Problem problem = readAs(*step.find("host"), "\"host\"", name)) return problem;
    const JsonValue* given = step.find("args");
    if (given && !given->array()) return wrongValue("\"args\"", "a list", *given);
    return _host->call(name, given ? *given->array() : JsonValue::Array());
}

Problem ScenarioPlayer::Stage::pick(const JsonValue& step) {
    if (!_host) return needsEditor;
    constexpr const char* nobodyAsks = "nobody asks for a picture";
    const JsonValue& given = *step.find("pick");
    if (given.isNull()) {
        return _environment->answerPick(std::nullopt) ? Problem() : nobodyAsks;
    }
    std::string path;
    if (Problem problem = readAs(given, "\"pick\"", path)) return problem;
    if (!_environment->isPicking()) return nobodyAsks;
    // A file that cannot be decoded is picked all the same: the editor has to say so.
    _environment->answerPick(_files.loadPicture(path).image);
    return std::nullopt;
}

Problem ScenarioPlayer::Stage::save(const JsonValue& step) {
    if (!_host) return needsEditor;
    std::string path;
    if (Problem problem = readAs(*step.find("save"), "\"save\"", path)) return problem;
    if (!_host->lastPicture()) return "no picture has been handed over";
    return _files.saveExport(path, _host->lastPicture(), *_canvas);
}

// ---- output

Problem ScenarioPlayer::Stage::screenshot(const JsonValue& step) {
    if (!_host) return needsEditor;
    std::string path;
    if (Problem problem = readAs(*step.find("screenshot"), "\"screenshot\"", path)) return problem;
    settle();
    return _files.savePicture(path, window().surface()->makeImage());
}

Problem ScenarioPlayer::Stage::printEditor() {
    if (!_host) return needsEditor;
    JsonValue::Object members = describeEditor(_host->editor());
    JsonValue::Object canvas = takeCanvas();
    members.emplace_back("messages", _host->takeMessages());
    members.emplace_back("logs", _host->takeLogs());
    members.emplace_back("alerts", *JsonValue(canvas).find("alerts"));
    members.emplace_back("userDefaults", describeUserDefaults(*_environment));
    members.emplace_back("canvas", std::move(canvas));
    printLine(std::move(members));
    return std::nullopt;
}

}  // namespace kalim
