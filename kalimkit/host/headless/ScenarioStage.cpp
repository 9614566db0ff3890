#include "kalimkit/host/headless/ScenarioStage.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

#include "kalimkit/crop/EditImageIntialView.h"
#include "kalimkit/host/headless/CanvasCalls.h"
#include "kalimkit/host/headless/CanvasMake.h"
#include "kalimkit/host/headless/CanvasPrint.h"
#include "kalimkit/host/headless/ScenarioGestures.h"
#include "kalimkit/image/SmallPicture.h"
#include "kalimkit/json/JsonText.h"

namespace kalim {

namespace {

// Seconds. A longer wait is a slip of the pen.
constexpr double longestWait = 3600;
constexpr const char* noFocus = "no text view is focused";

std::string quoted(std::string_view key) {
    return cutQuote(dumpJson(std::string(key)));
}

}  // namespace

ScenarioPlayer::Stage::Stage(gfx::Device& device, ScenarioFiles& files, Output output,
                             const ScenarioScreen& screen)
    : _files(files),
      _output(std::move(output)),
      _environment(std::make_shared<HeadlessEnvironment>(device, screen.scale)),
      _seat(_environment, screen.canvas),
      _fingers(_seat.window()) {
    if (!screen.language.empty()) _environment->setLanguage(screen.language);
    if (screen.editor) {
        presentEditor(*screen.editor, screen.forgiving);
    } else {
        _events = std::make_shared<CanvasEvents>();
        _canvas = MDrawView::initWithFrame({{}, screen.canvas});
        _canvas->setDrawViewdelegate(_events);
        _canvas->setForgiving(screen.forgiving);
        window().rootView()->addSubview(_canvas);
    }
    settle();
}

ScenarioPlayer::Stage::~Stage() {
    if (_host) _host->remove();
    _canvas->removeFromSuperview();
}

// ---- steps

struct ScenarioPlayer::Stage::Kind {
    std::string_view key;
    std::vector<std::string_view> otherKeys;
    Problem (Stage::*play)(const JsonValue& step);
};

const ScenarioPlayer::Stage::Kind ScenarioPlayer::Stage::kinds[] = {
    {"touch",
     {"points", "ids", "lifted", "modifiers", "kinds", "sizes", "pressures", "tilts"},
     &Stage::touch},
    {"hover", {}, &Stage::hover},
    {"wheel", {"at"}, &Stage::wheel},
    {"press", {}, &Stage::pressEditorKey},
    {"appearance", {}, &Stage::setAppearance},
    {"wait", {}, &Stage::wait},
    {"call", {"args"}, &Stage::call},
    {"gesture", {"state", "value", "at"}, &Stage::gesture},
    {"make", {"points", "text", "color", "lineWidth", "drawType"}, &Stage::make},
    {"print", {}, &Stage::print},
    {"picture", {}, &Stage::picture},
    {"stamp", {}, &Stage::stamp},
    {"export", {"at"}, &Stage::exportPicture},
    {"saveDocument", {"sealed", "link"}, &Stage::saveDocument},
    {"openDocument", {}, &Stage::openDocument},
    {"type", {}, &Stage::type},
    {"compose", {}, &Stage::compose},
    {"key", {}, &Stage::pressKey},
    {"keyboard", {}, &Stage::showKeyboard},
    {"tap", {}, &Stage::tap},
    {"activate", {}, &Stage::activate},
    {"host", {"args"}, &Stage::host},
    {"pick", {}, &Stage::pick},
    {"save", {}, &Stage::save},
    {"screenshot", {}, &Stage::screenshot},
};

Problem ScenarioPlayer::Stage::play(const JsonValue& step) {
    const JsonValue::Object* keys = step.object();
    if (!keys) return wrongValue("a step", "an object", step);
    const Kind* kind = kindOf(*keys);
    if (!kind) return unknownStep(*keys);
    if (Problem problem = checkKeys(*kind, *keys)) return problem;
    Problem problem = (this->*kind->play)(step);
    settle();
    return problem;
}

const ScenarioPlayer::Stage::Kind* ScenarioPlayer::Stage::kindOf(const JsonValue::Object& step) {
    for (const auto& [key, value] : step) {
        const auto kind = std::ranges::find(kinds, std::string_view(key), &Kind::key);
        if (kind != std::end(kinds)) return kind;
    }
    return nullptr;
}

std::string ScenarioPlayer::Stage::unknownStep(const JsonValue::Object& step) {
    if (step.empty()) return "a step must say what to do";
    std::vector<std::string_view> names;
    for (const Kind& kind : kinds)
        names.push_back(kind.key);
    return "there is no step " + quoted(step.front().first) + suggestion(step.front().first, names);
}

Problem ScenarioPlayer::Stage::checkKeys(const Kind& kind, const JsonValue::Object& step) {
    for (const auto& [key, value] : step) {
        if (key == kind.key) continue;
        if (std::ranges::find(kind.otherKeys, key) != kind.otherKeys.end()) continue;
        if (std::ranges::find(kinds, std::string_view(key), &Kind::key) != std::end(kinds)) {
            return "a step does one thing, not both " + quoted(kind.key) + " and " + quoted(key);
        }
        return quoted(kind.key) + " has no key " + quoted(key) + suggestion(key, kind.otherKeys);
    }
    return std::nullopt;
}

void ScenarioPlayer::Stage::settle() {
    _seat.show();
}

Problem ScenarioPlayer::Stage::touch(const JsonValue& step) {
    return _fingers.play(step);
}

Problem ScenarioPlayer::Stage::wait(const JsonValue& step) {
    double seconds = 0;
    const JsonValue& given = *step.find("wait");
    if (Problem problem = readAs(given, "\"wait\"", seconds)) return problem;
    if (seconds < 0 || seconds > longestWait) {
        return wrongValue("\"wait\"", "a number of seconds from 0 to 3600", given);
    }
    _environment->wait(seconds);
    return std::nullopt;
}

Problem ScenarioPlayer::Stage::call(const JsonValue& step) {
    std::string name;
    if (Problem problem = readAs(*step.find("call"), "\"call\"", name)) return problem;
    const JsonValue* given = step.find("args");
    if (given && !given->array()) return wrongValue("\"args\"", "a list", *given);
    CallOutcome outcome = callCanvas(*_canvas, name, given ? *given->array() : JsonValue::Array());
    if (outcome.result) printLine({{"result", std::move(*outcome.result)}});
    return outcome.problem;
}

Problem ScenarioPlayer::Stage::gesture(const JsonValue& step) {
    if (const auto crop = _host ? _host->editor().editImageInitialView() : nullptr) {
        return playGesture({*crop, *crop->rotationGestureRecognizer(),
                            *crop->pinchGestureRecognizer(), *crop->panGestureRecognizer()},
                           step);
    }
    return playGesture(
        {*_canvas, _canvas->rotationGesture(), _canvas->pinchGesture(), _canvas->panGesture()},
        step);
}

Problem ScenarioPlayer::Stage::make(const JsonValue& step) {
    return makeTool(*_canvas, step);
}

// ---- output

Problem ScenarioPlayer::Stage::print(const JsonValue& step) {
    std::string what;
    if (Problem problem = readAs(*step.find("print"), "\"print\"", what)) return problem;
    if (what == "editor") return printEditor();
    if (what == "accessibility") return printAccessibility();
    if (what == "pointer") return printPointer();
    if (what == "announcements") return printAnnouncements();
    if (what != "canvas") {
        return wrongValue("\"print\"", "canvas, editor, accessibility, pointer or announcements",
                          what);
    }
    printLine(takeCanvas());
    return std::nullopt;
}

JsonValue::Object ScenarioPlayer::Stage::takeCanvas() {
    JsonValue::Object members = describeCanvas(*_canvas);
    members.emplace_back("events", _events->take());
    members.emplace_back("alerts", takeAlerts());
    members.emplace_back("cost", JsonValue::Object{{"pixels", window().lastCost().pixels},
                                                   {"tools", _canvas->lastDrawnTools()}});
    return members;
}

void ScenarioPlayer::Stage::printLine(JsonValue::Object members) {
    _output(dumpJson(std::move(members)));
}

JsonValue ScenarioPlayer::Stage::takeAlerts() {
    JsonValue::Array alerts;
    for (const ui::Alert& alert : _environment->takeAlerts()) {
        JsonValue::Array buttons(alert.buttons.begin(), alert.buttons.end());
        alerts.push_back(JsonValue::Object{
            {"title", alert.title}, {"message", alert.message}, {"buttons", std::move(buttons)}});
    }
    return alerts;
}

// ---- pictures

Problem ScenarioPlayer::Stage::picture(const JsonValue& step) {
    std::string path;
    if (Problem problem = readAs(*step.find("picture"), "\"picture\"", path)) return problem;
    return setPicture(path);
}

Problem ScenarioPlayer::Stage::stamp(const JsonValue& step) {
    std::string path;
    if (Problem problem = readAs(*step.find("stamp"), "\"stamp\"", path)) return problem;
    const ScenarioFiles::LoadedPicture loaded = _files.loadPicture(path);
    if (!loaded.image) return loaded.error;
    const bool isTaken = _canvas->setToolDetail("picture", smallPictureText(loaded.image)) &&
                         _canvas->setToolProperty("sign", "picture");
    return isTaken ? std::nullopt
                   : Problem("nothing takes \"stamp\": neither the pen nor the selection");
}

Problem ScenarioPlayer::Stage::setPicture(const std::string& path) {
    ScenarioFiles::LoadedPicture loaded = _files.loadPicture(path);
    if (!loaded.image) return loaded.error;
    setPicture(loaded.image);
    return std::nullopt;
}

void ScenarioPlayer::Stage::setPicture(const gfx::ImageRef& picture) {
    _canvas->setSnipImage(picture);
    settle();
}

Problem ScenarioPlayer::Stage::exportPicture(const JsonValue& step) {
    std::string path;
    if (Problem problem = readAs(*step.find("export"), "\"export\"", path)) return problem;
    std::string at = "screen";
    if (Problem problem = readOwn(step, "at", at)) return problem;
    gfx::ImageRef image;
    if (at == "screen") {
        image = _canvas->exportImage();
    } else if (at == "picture") {
        image = _canvas->exportImageAtPictureScale();
    } else if (at == "view") {
        image = _canvas->exportImageForScale();
    } else {
        return wrongValue("\"at\"", "screen, picture or view", at);
    }
    if (image) return _files.saveExport(path, image, *_canvas);
    if (_canvas->ctxRect().isEmpty()) {
        return "there is nothing to export: no picture and nothing drawn";
    }
    return "the drawing is too large to export";
}

// ---- documents

Problem ScenarioPlayer::Stage::saveDocument(const JsonValue& step) {
    std::string path;
    ScenarioFiles::DocumentSaving saving;
    if (Problem problem = readAs(*step.find("saveDocument"), "\"saveDocument\"", path))
        return problem;
    if (Problem problem = readOwn(step, "sealed", saving.isSealed)) return problem;
    if (Problem problem = readOwn(step, "link", saving.isLinked)) return problem;
    return _files.saveDocument(path, *_canvas, saving);
}

Problem ScenarioPlayer::Stage::openDocument(const JsonValue& step) {
    std::string path;
    if (Problem problem = readAs(*step.find("openDocument"), "\"openDocument\"", path))
        return problem;
    return openDocument(_files.loadDocument(path));
}

Problem ScenarioPlayer::Stage::openDocument(const ScenarioFiles::LoadedDocument& loaded) {
    if (loaded.error) return loaded.error;
    Problem problem = _host ? _host->editor().openDocument(loaded.document, loaded.picture)
                            : _canvas->openDocument(loaded.document, loaded.picture);
    settle();
    return problem;
}

// ---- text

Problem ScenarioPlayer::Stage::type(const JsonValue& step) {
    std::string text;
    if (Problem problem = readAs(*step.find("type"), "\"type\"", text)) return problem;
    return _seat.insertText(text) ? Problem() : noFocus;
}

Problem ScenarioPlayer::Stage::compose(const JsonValue& step) {
    std::string text;
    if (Problem problem = readAs(*step.find("compose"), "\"compose\"", text)) return problem;
    return _seat.composeText(text, {text.size(), text.size()}) ? Problem() : noFocus;
}

Problem ScenarioPlayer::Stage::pressKey(const JsonValue& step) {
    std::string name;
    const JsonValue& given = *step.find("key");
    if (Problem problem = readAs(given, "\"key\"", name)) return problem;
    const auto stroke = ui::KeyStroke::parse(name);
    if (!stroke) return wrongValue("\"key\"", "a key as \"shift+left\"", given);
    const auto view = _seat.focusedText();
    if (!view) return noFocus;
    if (!view->handleKey(*stroke)) return "a text view does nothing with the key " + quoted(name);
    return std::nullopt;
}

Problem ScenarioPlayer::Stage::showKeyboard(const JsonValue& step) {
    double height = 0;
    const JsonValue& given = *step.find("keyboard");
    if (Problem problem = readAs(given, "\"keyboard\"", height)) return problem;
    const gfx::Size area = window().size();
    if (height < 0 || height > area.height) {
        return wrongValue("\"keyboard\"", "a height from 0 to that of the view", given);
    }
    // It may have gone with the focus already.
    if (height > 0 && !_seat.focusedText()) return noFocus;
    _environment->keyboard().setHeight(height, area);
    return std::nullopt;
}

}  // namespace kalim
