#include "tests/random/ScenarioRun.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "kalimkit/backend/cairo/CairoDevice.h"
#include "kalimkit/host/headless/ScenarioValues.h"
#include "kalimkit/json/JsonText.h"
#include "kalimkit/tool/MUndoManager.h"
#include "kalimkit/ui/window/Window.h"
#include "tests/random/RedrawComparison.h"

namespace kalim::test {

namespace {

constexpr std::size_t rareComparison = 7;

// Hands out the sample for every name, and keeps nothing that is exported.
class SampleFiles : public ScenarioFiles {
public:
    explicit SampleFiles(gfx::Device& device)
        : _sample(device.makeImage(samplePicture(), 1, gfx::ImageOrientation::Up)) {}
    LoadedPicture loadPicture(const std::string&) override { return {_sample, {}}; }
    std::optional<std::string> savePicture(const std::string&, const gfx::ImageRef&) override {
        return std::nullopt;
    }

private:
    gfx::ImageRef _sample;
};

}  // namespace

Setting Setting::ofSeed(std::uint32_t seed, bool isForgiving) {
    Setting setting{{{160, 240}, seed % 4 == 0 ? 2.0 : 1.0}, seed % 3 != 2, seed % 2 == 0};
    // A screen so fine that little content is too large.
    if (seed % 8 == 7) setting.screen = {{60, 80}, 8};
    setting.screen.forgiving = isForgiving;
    return setting;
}

gfx::Bitmap samplePicture() {
    gfx::Bitmap bitmap(200, 260);
    for (int y = 0; y < bitmap.height(); ++y) {
        for (int x = 0; x < bitmap.width(); ++x)
            bitmap.setColorAt(x, y, {x / 200.0, y / 260.0, (x / 5 + y / 5) % 2 * 0.5, 1});
    }
    return bitmap;
}

ScenarioRun::ScenarioRun(const Setting& setting)
    : _setting(setting), _device(gfx::CairoDevice::make()) {
    MDrawTool::resetNames();
    _files = std::make_unique<SampleFiles>(*_device);
    _player = std::make_unique<ScenarioPlayer>(
        *_device, *_files, [](const std::string&) {}, setting.screen);
    if (setting.hasPicture) _player->setPicture("picture.png");
    _watch = std::make_unique<CanvasWatch>(canvas());
    _survival = std::make_unique<Survival>(canvas());
}

ScenarioRun::~ScenarioRun() = default;

bool ScenarioRun::play(const std::string& line) {
    if (_fault) return false;
    _watch->willPlay();
    const bool isRefused = _player->play(line).has_value();
    // An export of nothing is refused, and has ended what was being drawn all the same.
    _fault = _watch->didPlay(parseJson(line).value);
    if (isRefused) return false;
    _played.push_back(line);
    if (_setting.comparesOften || _played.size() % rareComparison == 0) compare();
    return true;
}

void ScenarioRun::compare() {
    if (!_fault) _fault = differenceOfRedraw(canvas());
}

void ScenarioRun::finish() {
    compare();
    const std::size_t own = _played.size();
    JsonValue::Array ids;
    JsonValue::Array places;
    for (const ui::TouchRef& touch : canvas().window()->activeTouches()) {
        ids.push_back(touch->id());
        places.push_back(toJson(touch->locationIn(nullptr)));
    }
    if (!ids.empty())
        play(dumpJson(JsonValue::Object{{"touch", "ended"}, {"points", places}, {"ids", ids}}));
    play(R"({"call":"finalizeCurrentDrawing"})");
    play(R"({"wait":4})");
    undoAndRedoAll(own);
}

void ScenarioRun::undoAndRedoAll(std::size_t own) {
    play(R"({"call":"selectNone"})");
    const gfx::ImageRef shown = canvas().exportImage();
    checkSurvival();
    const std::size_t steps = canvas().undoManager().undoTools().size();
    for (std::size_t count = 0; count < steps; ++count)
        step(Survival::Direction::Undo);
    for (std::size_t count = 0; count < steps; ++count)
        step(Survival::Direction::Redo);
    if (!_fault && _setting.screen.forgiving) _fault = _survival->recover();
    // Null while there is nothing.
    if (_fault || !_setting.screen.forgiving || !shown) return;
    const auto difference =
        differenceOfPictures(*shown->pixels(), *canvas().exportImage()->pixels());
    if (!difference) return;
    _fault = "after all was undone and redone, " + *difference;
    // Every run ends like this by itself.
    _played.resize(own);
}

// What has no record is not to be recovered.
void ScenarioRun::checkSurvival() {
    if (!_fault) _fault = _survival->lossBySaving();
    if (!_fault && _setting.screen.forgiving) _fault = _survival->recover();
}

void ScenarioRun::step(Survival::Direction direction) {
    const bool isUndo = direction == Survival::Direction::Undo;
    play(isUndo ? R"({"call":"undo"})" : R"({"call":"redo"})");
    if (!_fault) _fault = _survival->follow(direction);
}

// ---- shrinking

namespace {

// The part of a message that stays the same when lines go: without digits.
std::string kindOf(const std::string& fault) {
    std::string kind;
    for (const char letter : fault)
        if (!std::isdigit(static_cast<unsigned char>(letter))) kind += letter;
    return kind;
}

// The lines that could be played, and the fault that came with the last of them.
Shrunk replay(const Setting& setting, const Lines& lines) {
    ScenarioRun run(setting);
    for (const std::string& line : lines)
        run.play(line);
    run.finish();
    return {run.played(), run.fault().value_or("")};
}

}  // namespace

Shrunk shrink(const Setting& setting, Lines lines, const std::string& fault) {
    // Lines to play; a scenario that is not the smallest will do.
    std::size_t left = 20000;
    const std::string kind = kindOf(fault);
    Shrunk best{std::move(lines), fault};
    for (std::size_t length = best.lines.size() / 2; length > 0; length /= 2) {
        for (std::size_t start = 0; start + length <= best.lines.size() && left > 0;) {
            Lines fewer = best.lines;
            const auto first = fewer.begin() + static_cast<std::ptrdiff_t>(start);
            fewer.erase(first, first + static_cast<std::ptrdiff_t>(length));
            left -= std::min(left, fewer.size());
            Shrunk candidate = replay(setting, fewer);
            if (kindOf(candidate.fault) == kind && candidate.lines.size() < best.lines.size()) {
                best = std::move(candidate);
            } else {
                start += length;
            }
        }
    }
    return best;
}

}  // namespace kalim::test
