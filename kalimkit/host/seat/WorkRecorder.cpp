#include "kalimkit/host/seat/WorkRecorder.h"

#include <cstddef>
#include <utility>
#include <vector>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/document/DocumentText.h"
#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

void WorkRecorder::attach(std::weak_ptr<TesselViewController> editor, Source source) {
    _editor = std::move(editor);
    _source = std::move(source);
    if (const auto attached = _editor.lock()) {
        attached->drawView()->setStepListener(weak_from_this());
    }
}

std::optional<std::string> WorkRecorder::goOnWith(const ui::Work& work,
                                                  const gfx::ImageRef& picture) {
    const auto editor = _editor.lock();
    if (!editor) return std::nullopt;
    MDrawView& canvas = *editor->drawView();
    end();
    canvas.setStepListener({});
    DocumentReading reading;
    reading.needsBytes = false;
    const ReadDocument start = readDocument(work.setUp, reading);
    std::optional<std::string> problem = start.problem;
    if (!problem) problem = canvas.openDocument(start.document, picture);
    if (!problem) problem = canvas.replaySteps(work.steps);
    if (problem) return problem;
    _work = work.summary.id;
    _steps = work.steps;
    canvas.setStepListener(weak_from_this());
    return std::nullopt;
}

void WorkRecorder::end() {
    if (!_work.empty()) _store.end(_work);
    _work.clear();
}

void WorkRecorder::begin(const TesselViewController& editor) {
    if (!_source || !_store.problem().empty()) return;
    ui::WorkStart start = _source();
    start.setUp = editor.drawView()->stepsSetUp();
    _work = _store.begin(start);
    // Of before the last work was sent, where there are any: undo goes back beyond it.
    for (const std::string& earlier : _steps)
        if (!_work.empty()) _store.record(_work, earlier);
}

// At no moment there is none.
void WorkRecorder::moveTo(Source source) {
    _source = std::move(source);
    const auto editor = _editor.lock();
    if (_work.empty() || !editor) return;
    const std::string before = std::exchange(_work, {});
    begin(*editor);
    if (_work.empty()) {
        _work = before;
    } else {
        _store.end(before);
    }
}

void WorkRecorder::canvasDidStep(const std::string& step) {
    const auto editor = _editor.lock();
    if (_work.empty() && editor) begin(*editor);
    _steps.push_back(step);
    if (!_work.empty()) _store.record(_work, step);
}

void WorkRecorder::canvasDidRestart() {
    end();
    _steps.clear();
    _source = {};
}

void findUnfinishedWork(ui::WorkStore& store, const std::string& sha256,
                        const std::function<void(std::optional<ui::WorkSummary> work)>& found) {
    store.list([&store, sha256, found](const std::vector<ui::WorkSummary>& works) {
        std::optional<ui::WorkSummary> newest;
        for (const ui::WorkSummary& work : works) {
            if (work.sha256 != sha256 || work.isHeld) continue;
            if (work.steps == 0) {
                store.forget(work.id);
            } else {
                newest = work;
            }
        }
        found(newest);
    });
}

void askToGoOn(std::function<void(bool goesOn)> answer) {
    ui::Environment& environment = ui::Environment::current();
    environment.presentAlert(
        {environment.localizedString("继续上次的标注？"),
         environment.localizedString("上次的标注没有发送，重新开始会丢弃它"),
         {environment.localizedString("继续"), environment.localizedString("重新开始")},
         [answer = std::move(answer)](std::size_t button) { answer(button == 0); }});
}

}  // namespace kalim
