#include "tests/random/Survival.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "kalimkit/canvas/ToolClasses.h"
#include "kalimkit/document/DocumentText.h"
#include "kalimkit/host/headless/CanvasPrint.h"
#include "kalimkit/json/JsonText.h"
#include "kalimkit/shapes/MDrawRect.h"
#include "tests/random/RedrawComparison.h"

namespace kalim::test {

namespace {

constexpr double precision = 1e9;
const DocumentReading withoutBytes{.needsBytes = false};

// A touch may put the corners of a box in order, to the last digits, which is no step and nothing
// that is seen.
void inOrder(JsonValue& tool) {
    const std::string& name = *tool.find("class")->string();
    const ToolClass* const kind = toolClassNamed(name);
    if (!kind || !kind->isKindOf(MDrawRect::Class())) return;
    std::array<JsonValue::Array*, 2> corners{};
    for (auto& [key, value] : *tool.object()) {
        if (key == "startPoint") corners[0] = value.array();
        if (key == "endPoint") corners[1] = value.array();
    }
    for (const std::size_t axis : {0U, 1U}) {
        JsonValue& low = (*corners[0])[axis];
        JsonValue& high = (*corners[1])[axis];
        if (*low.number() > *high.number()) std::swap(low, high);
        for (JsonValue* const number : {&low, &high})
            *number = std::round(*number->number() * precision) / precision;
    }
}

// The tools without what belongs to a gesture. A forgiving canvas begins every turning with the
// angle that there is.
JsonValue::Array toolsOf(const MDrawView& canvas, bool hasNames) {
    JsonValue::Array tools = *describeCanvas(canvas).front().second.array();
    for (JsonValue& tool : tools) {
        inOrder(tool);
        std::erase_if(*tool.object(), [&](const JsonValue::Member& member) {
            constexpr std::array passing{"selected", "moveDirection"};
            return std::ranges::find(passing, member.first) != passing.end() ||
                   (canvas.forgiving() && member.first == "lastRotateAngle") ||
                   (!hasNames && member.first == "name");
        });
    }
    return tools;
}

std::optional<std::string> differenceOfTools(const JsonValue::Array& then,
                                             const JsonValue::Array& now) {
    if (then == now) return std::nullopt;
    if (then.size() != now.size()) {
        return std::to_string(then.size()) + " tools became " + std::to_string(now.size());
    }
    const auto [a, b] = std::ranges::mismatch(then, now);
    return dumpJson(*a) + " became " + dumpJson(*b);
}

}  // namespace

struct Survival::Steps : StepListener {
    explicit Steps(MDrawView& owner) : canvas(owner), setUp(owner.stepsSetUp()) {}
    // Goes on where others end.
    Steps(MDrawView& owner, const Steps& before)
        : canvas(owner), setUp(before.setUp), texts(before.texts) {}
    void canvasDidStep(const std::string& step) override {
        // As whoever keeps works does: a canvas is settled by its first display.
        if (texts.empty()) setUp = canvas.stepsSetUp();
        texts.push_back(step);
    }
    void canvasDidRestart() override { texts.clear(); }

    MDrawView& canvas;
    std::string setUp;
    std::vector<std::string> texts;
};

Survival::Survival(MDrawView& canvas) : _canvas(canvas), _steps(std::make_shared<Steps>(canvas)) {
    canvas.setStepListener(_steps);
}

Survival::~Survival() = default;

Survival::Loss Survival::lossBySaving() {
    const Document saved = _canvas.document();
    const std::string text = documentText(saved);
    const ReadDocument read = readDocument(text, withoutBytes);
    if (read.problem) return "what was saved cannot be read: " + *read.problem;
    const auto other = MDrawView::initWithFrame({0, 0, 320, 70});
    other->setForgiving(_canvas.forgiving());
    other->setClipsToPicture(_canvas.clipsToPicture());
    if (const auto problem = other->openDocument(read.document, _canvas.sourceImage())) {
        return "what was saved cannot be opened: " + *problem;
    }
    if (other->canUndo() || other->canRedo()) return std::string("there are steps after opening");
    if (auto loss = differenceOfTools(toolsOf(_canvas, false), toolsOf(*other, false))) {
        return "saved and opened, " + *loss;
    }
    const std::string again = documentText(other->document());
    if (again != text) return "saved again it is " + again + " instead of " + text;
    const gfx::ImageRef then = _canvas.exportImageAtPictureScale();
    const gfx::ImageRef now = other->exportImageAtPictureScale();
    if (!then || !now || !_canvas.sourceImage()) return std::nullopt;
    const auto difference = differenceOfPictures(*then->pixels(), *now->pixels());
    return difference ? std::optional("saved and opened, " + *difference) : std::nullopt;
}

Survival::Loss Survival::recover() {
    const ReadDocument setUp = readDocument(_steps->setUp, withoutBytes);
    if (setUp.problem) return "the set-up cannot be read: " + *setUp.problem;
    _recovered = MDrawView::initWithFrame({0, 0, 60, 333});
    _recovered->setForgiving(_canvas.forgiving());
    _recovered->setClipsToPicture(_canvas.clipsToPicture());
    auto problem = _recovered->openDocument(setUp.document, _canvas.sourceImage());
    if (!problem) problem = _recovered->replaySteps(_steps->texts);
    if (problem) return "it cannot be recovered: " + *problem;
    _steps = std::make_shared<Steps>(*_recovered, *_steps);
    _recovered->setStepListener(_steps);
    return lossByRecovery();
}

Survival::Loss Survival::follow(Direction direction) {
    if (!_recovered) return std::nullopt;
    if (direction == Direction::Undo) {
        _recovered->undo();
    } else {
        _recovered->redo();
    }
    return lossByRecovery();
}

Survival::Loss Survival::lossByRecovery() const {
    if (_canvas.canUndo() != _recovered->canUndo() || _canvas.canRedo() != _recovered->canRedo()) {
        return std::string("recovered, the stacks are others");
    }
    const auto loss = differenceOfTools(toolsOf(_canvas, true), toolsOf(*_recovered, true));
    if (loss) return "recovered, " + *loss;
    const ToolList& then = _canvas.tools();
    const ToolList& now = _recovered->tools();
    for (std::size_t i = 0; i < then.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            const bool wasShared = then[i]->color() == then[j]->color();
            if (wasShared != (now[i]->color() == now[j]->color())) {
                return std::string("recovered, tools share other colours");
            }
        }
    }
    return std::nullopt;
}

}  // namespace kalim::test
