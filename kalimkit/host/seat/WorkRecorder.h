#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "kalimkit/canvas/StepListener.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/ui/environment/WorkStore.h"

namespace kalim {

class TesselViewController;

// Has what is drawn in an editor survive the end of the process: every finished step goes to a
// store before it is displayed. A work begins with the first step, so that whoever only looks at a
// picture leaves nothing; it ends when the host says that it was sent or discarded, or when another
// picture or document takes the place of this one.
class KALIM_API WorkRecorder : public StepListener,
                               public std::enable_shared_from_this<WorkRecorder> {
public:
    // The store outlives the recorder.
    explicit WorkRecorder(ui::WorkStore& store) : _store(store) {}

    // What a work of the shown file begins with, but for its set-up. It is asked at the first step,
    // once a file. Without one nothing is recorded.
    using Source = std::function<ui::WorkStart()>;
    // Records what the editor's canvas does from now on. The editor has appeared; it shows the
    // file.
    void attach(std::weak_ptr<TesselViewController> editor, Source source);
    // The file that the canvas shows now; told right after it was opened in the place of another.
    void setSource(Source source) { _source = std::move(source); }

    // The file that the work belongs to was saved and has other bytes now, by which it is to be
    // found: the steps from its beginning go to a work of these, and the one before ends.
    void moveTo(Source source);

    // Goes on with a work that this store has opened, in the editor that is attached: sets the
    // canvas up with the picture, plays the steps, and records those that follow. Answers with what
    // is wrong with it. What could be played is on the canvas then; nothing is recorded any more,
    // and the work stays as it is.
    std::optional<std::string> goOnWith(const ui::Work& work, const gfx::ImageRef& picture);

    // The work was sent or discarded; a further step begins another one.
    void end();

    void canvasDidStep(const std::string& step) override;
    void canvasDidRestart() override;

private:
    void begin(const TesselViewController& editor);

    ui::WorkStore& _store;
    std::weak_ptr<TesselViewController> _editor;
    Source _source;
    // Empty before the first step.
    std::string _work;
    // All since the file was opened.
    std::vector<std::string> _steps;
};

// Finds the newest work of a file that nobody is at and tells it; nothing where there is none. Such
// works without a step, which were cut off as they began, are forgotten.
KALIM_API void findUnfinishedWork(
    ui::WorkStore& store, const std::string& sha256,
    const std::function<void(std::optional<ui::WorkSummary> work)>& found);

// Asks the user, in an alert, whether to go on with unfinished work or to start anew.
KALIM_API void askToGoOn(std::function<void(bool goesOn)> answer);

}  // namespace kalim
