#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "kalimkit/canvas/StepListener.h"
#include "kalimkit/canvas/ToolOrderStep.h"
#include "kalimkit/document/Document.h"
#include "kalimkit/document/ToolEntry.h"
#include "kalimkit/tool/MUndoManager.h"

namespace kalim {

class CanvasContent;
class CanvasDocument;
class CanvasHistory;
class CanvasTools;
class CanvasTyping;

// Writes the steps of a canvas down as texts, each of what it has changed alone, and plays such
// texts again: lists, stacks, snapshots and shared colours are then what they were.
class CanvasJournal {
public:
    // What of the canvas it uses.
    struct Canvas {
        CanvasTools& tools;
        CanvasContent& content;
        CanvasTyping& typing;
        CanvasDocument& document;
        CanvasHistory& history;
    };
    explicit CanvasJournal(const Canvas& canvas) : _canvas(canvas) {}

    // Steps are written down only while somebody listens.
    void setListener(std::weak_ptr<StepListener> listener);
    // The canvas has another picture or document and no steps.
    void restart();
    // The picture is cut otherwise without a step.
    void takeCut();

    // Nothing is written down as long as this lives.
    std::shared_ptr<void> paused();
    // Something was done to the stacks, see MUndoManagerDelegate.
    void note(MUndoManagerDelegate::Step step, const ToolRef& entry);

    // The canvas measures in another way.
    void noteMeasuring();

    // See MDrawView::stepsSetUp() and replaySteps().
    std::string setUp();
    // `cutPicture` makes a step of a cut.
    using CutPicture = std::function<bool(const PictureCut& cut)>;
    std::optional<std::string> replay(std::span<const std::string> steps,
                                      const CutPicture& cutPicture);

private:
    using Number = std::int64_t;

    // ---- writing
    void takeStart();
    Number numberOf(const ToolRef& tool);
    JsonValue entryNumbers(const ToolRef& entry);
    JsonValue statesOf(const ToolRef& entry);
    JsonValue stateOf(const ToolRef& tool);

    // ---- replaying
    void play(DocumentPlace& step, const CutPicture& cutPicture);
    void playRecorded(DocumentPlace& step, const CutPicture& cutPicture);
    void playExchanged(DocumentPlace& step);
    void playMeasuring(DocumentPlace& step);
    void playStates(DocumentPlace& step);
    void playState(DocumentPlace& state);
    ToolRef toolOf(DocumentPlace& step, const JsonValue& number);
    ToolRef entryOf(DocumentPlace& step);
    JsonValue placesOf(const ToolPlacements& placements);
    void playOrder(DocumentPlace& step);

    Canvas _canvas;
    std::weak_ptr<StepListener> _listener;
    // The tools that the canvas began with; numbers count from them on.
    std::vector<DocumentTool> _start;
    PictureCut _startCut;
    std::vector<ToolRef> _tools;
    std::map<ToolRef, Number> _numbers;
    ColorNumbers _colors;
    bool _isPaused = false;
    // Nothing has happened since the start that was not written down or played.
    bool _isComplete = true;
};

}  // namespace kalim
