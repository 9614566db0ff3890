#include "cli/EditRecovery.h"

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/Complaint.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/document/DocumentText.h"
#include "kalimkit/document/Sha256.h"
#include "kalimkit/host/files/OpenedFile.h"
#include "kalimkit/store/SqliteWorkStore.h"

namespace kalim::cli {

namespace {

std::string hashOf(codec::ByteSpan bytes) {
    return sha256({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

WorkRecorder::Source sourceOf(EditRecovery::File file) {
    const auto kept = std::make_shared<const EditRecovery::File>(std::move(file));
    return [kept]() -> ui::WorkStart { return {kept->name, kept->sha256, kept->bytes, {}}; };
}

}  // namespace

EditRecovery::File EditRecovery::makeFile(const std::string& path, codec::Bytes bytes) {
    std::string hash = hashOf(bytes);
    const std::string name = path.substr(path.find_last_of('/') + 1);
    return {name == "-" ? "standard input" : name, std::move(bytes), std::move(hash)};
}

EditRecovery::EditRecovery(SdlWindow& window, EditOptions::Recovery choice)
    : _window(window), _choice(choice) {
    if (_choice == EditOptions::Recovery::Off) return;
    auto store = std::make_shared<store::SqliteWorkStore>(store::SqliteWorkStore::usualPath());
    store->setOnProblem([](const std::string& sentence) {
        say("what is drawn would not survive a crash: " + sentence);
    });
    _window.environment().setWorkStore(store);
    _recorder = std::make_shared<WorkRecorder>(*store);
}

void EditRecovery::start(File file, PictureOf pictureOf, std::function<void()> whenNone) {
    if (!_recorder) return whenNone();
    _sha256 = file.sha256;
    _pictureOf = std::move(pictureOf);
    _whenNone = std::move(whenNone);
    _recorder->attach(_window.seat().editor(), sourceOf(std::move(file)));
    offer();
}

void EditRecovery::follow(const std::string& path) {
    codec::Bytes bytes;
    if (!_recorder) return;
    if (path.empty()) return followClipboard();
    if (readOpenable(path, bytes)) return;
    _recorder->setSource(sourceOf(makeFile(path, std::move(bytes))));
}

void EditRecovery::save(const std::string& path) {
    codec::Bytes bytes;
    if (!_recorder || readOpenable(path, bytes)) return;
    File file = makeFile(path, std::move(bytes));
    _sha256 = file.sha256;
    _recorder->moveTo(sourceOf(std::move(file)));
}

// What was pasted is in no file that could be opened again: its work is found by the file that the
// window was opened with.
void EditRecovery::followClipboard() {
    const auto origin = _window.origins().find(_window.seat().canvas()->sourceImage());
    if (!origin) return;
    _recorder->setSource(
        sourceOf({"clipboard", {origin->data.begin(), origin->data.end()}, _sha256}));
}

void EditRecovery::end() {
    if (_recorder) _recorder->end();
}

// Of several works of one file the newest comes first; starting anew discards it and goes on to the
// next.
void EditRecovery::offer() {
    ui::WorkStore& store = *_window.environment().workStore();
    findUnfinishedWork(store, _sha256, [&](std::optional<ui::WorkSummary> work) {
        if (!work && _choice == EditOptions::Recovery::GoOn) work = heldWork();
        if (!work) return _whenNone();
        if (_choice == EditOptions::Recovery::GoOn) return goOnWith(work->id);
        askToGoOn([this, &store, id = work->id](bool goesOn) {
            if (goesOn) return goOnWith(id);
            store.forget(id);
            offer();
        });
    });
}

// One whose editor may have been killed a moment ago.
std::optional<ui::WorkSummary> EditRecovery::heldWork() const {
    std::optional<ui::WorkSummary> held;
    _window.environment().workStore()->list([&](const std::vector<ui::WorkSummary>& works) {
        for (const ui::WorkSummary& work : works) {
            if (work.sha256 == _sha256 && work.steps > 0) held = work;
        }
    });
    return held;
}

// Another process may have taken or forgotten it meanwhile.
void EditRecovery::goOnWith(const std::string& id) {
    _window.environment().workStore()->open(id, [&](const std::optional<ui::Work>& work) {
        if (!work) return _whenNone();
        DocumentReading reading;
        reading.needsBytes = false;
        const ReadDocument setUp = readDocument(work->setUp, reading);
        const bool hasPicture = !setUp.problem && setUp.document.picture;
        const bool isPasted = hashOf(work->bytes) != work->summary.sha256;
        const auto picture = _pictureOf(hasPicture ? setUp.document.picture->sha256 : "",
                                        isPasted ? &work->bytes : nullptr);
        if (const auto problem = _recorder->goOnWith(*work, picture)) {
            say("the unfinished drawing cannot be gone on with: " + *problem);
        }
    });
}

}  // namespace kalim::cli
