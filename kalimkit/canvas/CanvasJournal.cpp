#include "kalimkit/canvas/CanvasJournal.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "kalimkit/canvas/CanvasContent.h"
#include "kalimkit/canvas/CanvasDocument.h"
#include "kalimkit/canvas/CanvasHistory.h"
#include "kalimkit/canvas/CanvasTools.h"
#include "kalimkit/canvas/CanvasTyping.h"
#include "kalimkit/canvas/MDrawMutableSelect.h"
#include "kalimkit/canvas/PictureCutStep.h"
#include "kalimkit/document/DocumentText.h"
#include "kalimkit/document/DocumentValues.h"
#include "kalimkit/json/JsonText.h"

namespace kalim {

namespace {

using Step = MUndoManagerDelegate::Step;

constexpr std::array<std::string_view, 7> stepNames{"recorded",  "removed", "undone",   "redone",
                                                    "forgotten", "reset",   "exchanged"};
// Beside the steps of the stacks.
constexpr std::string_view measuringName = "measuring";
constexpr std::int64_t mostSteps = std::int64_t{1} << 40U;
constexpr JsonLimits limits{.depth = 64, .keys = 1000};

JsonValue cutEntry(const PictureCut& cut) {
    return JsonValue::Object{{"crop", cut.crop ? jsonOf(*cut.crop) : JsonValue()},
                             {"quarterTurns", cut.quarterTurns}};
}

// Whoever shows it sees whether it is one of the picture.
PictureCut readCut(DocumentPlace place) {
    PictureCut cut;
    if (!place.need("crop").isNull()) cut.crop = readRect(place, "crop");
    cut.quarterTurns = static_cast<int>(place.whole("quarterTurns", 0, 3));
    return cut;
}

}  // namespace

void CanvasJournal::setListener(std::weak_ptr<StepListener> listener) {
    _listener = std::move(listener);
    if (!_isComplete) takeStart();
}

// Where nobody listens the start is taken when somebody does, or asks: it may be of many tools.
void CanvasJournal::restart() {
    _isComplete = false;
    const auto listener = _listener.lock();
    if (!listener) return;
    takeStart();
    listener->canvasDidRestart();
}

void CanvasJournal::takeStart() {
    _isComplete = true;
    takeCut();
    _start.clear();
    _tools = _canvas.tools.list();
    _numbers.clear();
    _colors = {};
    for (std::size_t i = 0; i < _tools.size(); ++i) {
        _numbers.emplace(_tools[i], static_cast<Number>(i));
        _colors.numberOf(_tools[i]->color());
        _start.push_back(describeTool(*_tools[i]));
    }
}

void CanvasJournal::takeCut() {
    _startCut = _canvas.document.head().cut;
}

// The cut may have changed since by a step, which would then be played on top of itself.
std::string CanvasJournal::setUp() {
    if (!_isComplete) takeStart();
    Document start = _canvas.document.head();
    start.cut = _startCut;
    start.tools = _start;
    return documentText(start);
}

// ---- writing

std::shared_ptr<void> CanvasJournal::paused() {
    _isPaused = true;
    return {nullptr, [this](void*) { _isPaused = false; }};
}

void CanvasJournal::note(Step step, const ToolRef& entry) {
    const auto listener = _listener.lock();
    if (_isPaused) return;
    if (!listener) {
        _isComplete = false;
        return;
    }
    JsonValue::Object members{
        {"step", std::string(stepNames[static_cast<std::size_t>(step)])},
    };
    // What was never written down leaves without a word.
    if (step == Step::Forgotten && !entry->mutabaleToolObjType() && !_numbers.contains(entry)) {
        return;
    }
    if (step == Step::Recorded && &entry->toolClass() == &PictureCutStep::Class()) {
        members.emplace_back("cut", cutEntry(static_cast<const PictureCutStep&>(*entry).after()));
        return listener->canvasDidStep(dumpJson(members));
    }
    if (step == Step::Recorded && &entry->toolClass() == &ToolOrderStep::Class()) {
        members.emplace_back("order", placesOf(static_cast<const ToolOrderStep&>(*entry).after()));
        return listener->canvasDidStep(dumpJson(members));
    }
    if (step == Step::Recorded || step == Step::Undone || step == Step::Redone ||
        step == Step::Exchanged) {
        members.emplace_back("tools", statesOf(entry));
    }
    if (step == Step::Recorded || step == Step::Removed || step == Step::Forgotten ||
        step == Step::Exchanged) {
        members.emplace_back("entry", entryNumbers(entry));
    }
    listener->canvasDidStep(dumpJson(members));
}

void CanvasJournal::noteMeasuring() {
    const auto listener = _listener.lock();
    if (_isPaused || !listener) return;
    const NewTools& pen = _canvas.tools.pen();
    listener->canvasDidStep(dumpJson(JsonValue::Object{{"step", std::string(measuringName)},
                                                       {"calibration", pen.calibration},
                                                       {"unit", pen.unit},
                                                       {"show", pen.showMeasurement}}));
}

CanvasJournal::Number CanvasJournal::numberOf(const ToolRef& tool) {
    const auto [entry, isNew] = _numbers.try_emplace(tool, static_cast<Number>(_tools.size()));
    if (isNew) _tools.push_back(tool);
    return entry->second;
}

JsonValue CanvasJournal::entryNumbers(const ToolRef& entry) {
    if (!entry->mutabaleToolObjType()) return numberOf(entry);
    JsonValue::Array numbers;
    for (const ToolRef& member : membersOf(entry))
        numbers.emplace_back(numberOf(member));
    return numbers;
}

JsonValue CanvasJournal::statesOf(const ToolRef& entry) {
    JsonValue::Array states;
    for (const ToolRef& member : membersOf(entry))
        states.push_back(stateOf(member));
    return states;
}

JsonValue CanvasJournal::stateOf(const ToolRef& tool) {
    const bool isNew = !_numbers.contains(tool);
    JsonValue::Object state{{"id", numberOf(tool)}, {"name", tool->name()}};
    if (isNew) {
        // New ones lie at the end, or near to it.
        const ToolList& list = _canvas.tools.list();
        const auto place = std::find(list.rbegin(), list.rend(), tool);
        state.emplace_back("at", list.rend() - place - 1);
    }
    // Apart, for a tool may have keys of others, whatever they are called.
    const auto always = [](const gfx::ColorRef&) { return true; };
    state.emplace_back("tool", kalim::entryOf(describeTool(*tool), _colors, always));
    return state;
}

// Each a tool's number and its place in the drawing order.
JsonValue CanvasJournal::placesOf(const ToolPlacements& placements) {
    JsonValue::Array places;
    for (const ToolPlacement& placement : placements)
        places.emplace_back(JsonValue::Array{numberOf(placement.tool), JsonValue(placement.place)});
    return places;
}

// ---- replaying

std::optional<std::string> CanvasJournal::replay(std::span<const std::string> steps,
                                                 const CutPicture& cutPicture) {
    if (!_isComplete) takeStart();
    const auto pause = paused();
    const auto quiet = _canvas.content.suspended();
    for (std::size_t i = 0; i < steps.size(); ++i) {
        ParsedJson parsed = parseJson(steps[i], limits);
        std::optional<std::string> problem = std::move(parsed.error);
        if (!problem) {
            DocumentPlace step(parsed.value, {}, problem);
            play(step, cutPicture);
        }
        if (problem) return "step " + std::to_string(i) + ": " + *problem;
    }
    return std::nullopt;
}

void CanvasJournal::play(DocumentPlace& step, const CutPicture& cutPicture) {
    const std::string name = step.text("step");
    if (name == measuringName) return playMeasuring(step);
    const auto found = std::ranges::find(stepNames, std::string_view(name));
    if (found == stepNames.end()) return step.fail("step", "one that is known");
    switch (static_cast<Step>(found - stepNames.begin())) {
        case Step::Recorded:
            playRecorded(step, cutPicture);
            break;
        case Step::Removed:
            if (const ToolRef entry = entryOf(step)) _canvas.tools.remove(entry);
            break;
        case Step::Forgotten:
            if (const ToolRef entry = entryOf(step)) _canvas.tools.forget(entry);
            break;
        case Step::Undone:
            _canvas.history.undo();
            playStates(step);
            break;
        case Step::Redone:
            _canvas.history.redo();
            playStates(step);
            break;
        case Step::Reset:
            _canvas.history.clear();
            break;
        case Step::Exchanged:
            playExchanged(step);
            break;
    }
}

void CanvasJournal::playRecorded(DocumentPlace& step, const CutPicture& cutPicture) {
    if (step.find("cut")) {
        const PictureCut cut = readCut(step.object("cut"));
        if (!step.hasFailed() && !cutPicture(cut)) step.fail("cut", "another cut of the picture");
        return;
    }
    if (step.find("order")) return playOrder(step);
    playStates(step);
    if (const ToolRef entry = entryOf(step)) _canvas.tools.record(entry);
}

void CanvasJournal::playOrder(DocumentPlace& step) {
    ToolPlacements placements;
    const JsonValue::Array* const places = step.need("order").array();
    const auto most = static_cast<double>(_canvas.tools.list().size());
    for (std::size_t i = 0; places && i < places->size(); ++i) {
        const JsonValue::Array* const pair = (*places)[i].array();
        const double* const place = pair && pair->size() == 2 ? pair->back().number() : nullptr;
        const ToolRef tool = place ? toolOf(step, pair->front()) : nullptr;
        if (!tool || !(*place >= 0) || *place >= most) break;
        placements.push_back({tool, static_cast<std::size_t>(*place)});
    }
    const bool isRead = places && placements.size() == places->size();
    if (!isRead || !_canvas.history.reorder(std::move(placements)))
        step.fail("order", "another order of tools that there are");
}

void CanvasJournal::playExchanged(DocumentPlace& step) {
    playStates(step);
    const ToolRef entry = entryOf(step);
    if (!entry) return;
    const ToolList both = membersOf(entry);
    if (both.size() != 2) return step.fail("entry", "two tools");
    _canvas.tools.exchange(both.front(), both.back());
    _canvas.tools.recordExchange(both.front(), both.back());
}

void CanvasJournal::playMeasuring(DocumentPlace& step) {
    constexpr double largest = 1e9;
    NewTools& pen = _canvas.tools.pen();
    pen.calibration = step.number("calibration", -largest, largest);
    pen.unit = step.text("unit");
    pen.showMeasurement = step.flag("show");
    _canvas.tools.refreshShared();
}

void CanvasJournal::playStates(DocumentPlace& step) {
    const JsonValue::Array* const states = step.need("tools").array();
    if (!states) return step.fail("tools", "a list");
    std::optional<std::string> problem;
    for (std::size_t i = 0; i < states->size() && !problem; ++i) {
        DocumentPlace state((*states)[i], "tools[" + std::to_string(i) + "]", problem);
        playState(state);
    }
    if (problem) step.complain(*problem);
}

void CanvasJournal::playState(DocumentPlace& state) {
    const auto number =
        static_cast<std::size_t>(state.whole("id", 0, static_cast<Number>(_tools.size())));
    const std::string name = state.text("name");
    DocumentPlace entry = state.object("tool");
    if (state.hasFailed()) return;
    const DocumentTool described = readEntry(entry, _colors);
    if (state.hasFailed()) return;
    if (number < _tools.size()) return takeDescription(*_tools[number], described);
    const auto at = state.whole("at", 0, mostSteps);
    if (state.hasFailed()) return;
    const ToolRef tool =
        makeTool(described, [this](MDrawTool& made) { _canvas.tools.pen().applyShared(made); });
    tool->takeName(name);
    _canvas.typing.adopt(tool);
    // What lay below it may have had no record yet.
    _canvas.tools.insert(tool, std::min(static_cast<std::size_t>(at), _canvas.tools.list().size()));
    numberOf(tool);
}

ToolRef CanvasJournal::toolOf(DocumentPlace& step, const JsonValue& number) {
    const double* const value = number.number();
    if (value && *value >= 0 && *value < static_cast<double>(_tools.size())) {
        return _tools[static_cast<std::size_t>(*value)];
    }
    step.fail("entry", "a tool's number, or a list of them");
    return nullptr;
}

ToolRef CanvasJournal::entryOf(DocumentPlace& step) {
    const JsonValue& numbers = step.need("entry");
    const JsonValue::Array* const members = numbers.array();
    if (step.hasFailed()) return nullptr;
    if (!members) return toolOf(step, numbers);
    const std::shared_ptr<MDrawMutableSelect> group = MDrawMutableSelect::make();
    for (const JsonValue& number : *members) {
        if (const ToolRef member = toolOf(step, number)) group->addSubTool(member);
    }
    return step.hasFailed() ? nullptr : group;
}

}  // namespace kalim
