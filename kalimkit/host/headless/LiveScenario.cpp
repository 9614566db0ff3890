#include "kalimkit/host/headless/LiveScenario.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/host/headless/CanvasCalls.h"
#include "kalimkit/host/headless/EditorViews.h"
#include "kalimkit/host/headless/ScenarioFingers.h"
#include "kalimkit/host/seat/EditorSeat.h"
#include "kalimkit/json/JsonText.h"

namespace kalim {

namespace {

// Seconds. A longer wait is a slip of the pen.
constexpr double longestWait = 3600;
constexpr const char* noFocus = "no text view is focused";

}  // namespace

class LiveScenario::Steps {
public:
    Steps(EditorSeat& seat, Wait wait)
        : _seat(seat), _editor(seat.editor()), _wait(std::move(wait)), _fingers(seat.window()) {}

    Problem play(const JsonValue& step);

private:
    struct Kind {
        std::string_view key;
        Problem (Steps::*play)(const JsonValue& step, const JsonValue& value);
    };
    static const Kind kinds[];

    Problem touch(const JsonValue& step, const JsonValue& value);
    Problem tap(const JsonValue& step, const JsonValue& value);
    Problem type(const JsonValue& step, const JsonValue& value);
    Problem compose(const JsonValue& step, const JsonValue& value);
    Problem pressKey(const JsonValue& step, const JsonValue& value);
    Problem call(const JsonValue& step, const JsonValue& value);
    Problem wait(const JsonValue& step, const JsonValue& value);

    EditorSeat& _seat;
    // Not taken away while a step runs.
    std::shared_ptr<TesselViewController> _editor;
    Wait _wait;
    ScenarioFingers _fingers;
};

const LiveScenario::Steps::Kind LiveScenario::Steps::kinds[] = {
    {"touch", &Steps::touch},     {"tap", &Steps::tap},      {"type", &Steps::type},
    {"compose", &Steps::compose}, {"key", &Steps::pressKey}, {"call", &Steps::call},
    {"wait", &Steps::wait},
};

Problem LiveScenario::Steps::play(const JsonValue& step) {
    if (!step.object()) return wrongValue("a step", "an object", step);
    for (const Kind& kind : kinds) {
        if (const JsonValue* value = step.find(kind.key)) return (this->*kind.play)(step, *value);
    }
    if (step.object()->empty()) return "a step must say what to do";
    return "in a window there is no step " + cutQuote(dumpJson(step.object()->front().first));
}

Problem LiveScenario::Steps::touch(const JsonValue& step, const JsonValue& /*value*/) {
    return _fingers.play(step);
}

Problem LiveScenario::Steps::tap(const JsonValue& /*step*/, const JsonValue& value) {
    gfx::Point place;
    if (readValue(value, place)) return _fingers.tap(place);
    std::string path;
    if (!readValue(value, path)) {
        return wrongValue("\"tap\"", "the name of a view or a point [x,y]", value);
    }
    const auto view = editorView(*_editor, path);
    if (!view) return "there is no view " + shownName(path);
    return _fingers.tap(view->convertRectTo(view->bounds(), nullptr).center());
}

Problem LiveScenario::Steps::type(const JsonValue& /*step*/, const JsonValue& value) {
    std::string text;
    if (Problem problem = readAs(value, "\"type\"", text)) return problem;
    return _seat.insertText(text) ? Problem() : noFocus;
}

Problem LiveScenario::Steps::compose(const JsonValue& /*step*/, const JsonValue& value) {
    std::string text;
    if (Problem problem = readAs(value, "\"compose\"", text)) return problem;
    return _seat.composeText(text, {text.size(), text.size()}) ? Problem() : noFocus;
}

Problem LiveScenario::Steps::pressKey(const JsonValue& /*step*/, const JsonValue& value) {
    std::string name;
    if (Problem problem = readAs(value, "\"key\"", name)) return problem;
    const bool isDone = _seat.pressKey(name);
    _seat.releaseKey(name);
    return isDone ? Problem() : "nothing happens at the key " + shownName(name);
}

Problem LiveScenario::Steps::call(const JsonValue& step, const JsonValue& value) {
    std::string name;
    if (Problem problem = readAs(value, "\"call\"", name)) return problem;
    const JsonValue* given = step.find("args");
    if (given && !given->array()) return wrongValue("\"args\"", "a list", *given);
    return callCanvas(*_editor->drawView(), name, given ? *given->array() : JsonValue::Array())
        .problem;
}

Problem LiveScenario::Steps::wait(const JsonValue& /*step*/, const JsonValue& value) {
    double seconds = 0;
    if (Problem problem = readAs(value, "\"wait\"", seconds)) return problem;
    if (seconds < 0 || seconds > longestWait) {
        return wrongValue("\"wait\"", "a number of seconds from 0 to 3600", value);
    }
    _wait(seconds);
    return std::nullopt;
}

LiveScenario::LiveScenario(EditorSeat& seat, Wait wait)
    : _steps(std::make_unique<Steps>(seat, std::move(wait))) {}

LiveScenario::~LiveScenario() = default;

std::optional<std::string> LiveScenario::play(std::string_view line) {
    if (line.find_first_not_of(" \t\r\n") == std::string_view::npos) return std::nullopt;
    ParsedJson parsed = parseJson(line);
    return parsed.error ? std::move(parsed.error) : _steps->play(parsed.value);
}

}  // namespace kalim
