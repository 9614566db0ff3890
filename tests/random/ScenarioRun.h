#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kalimkit/gfx/Device.h"
#include "kalimkit/host/headless/ScenarioPlayer.h"
#include "tests/random/CanvasWatch.h"
#include "tests/random/Survival.h"

namespace kalim::test {

using Lines = std::vector<std::string>;

// What a seed's scenarios are played on.
struct Setting {
    ScenarioScreen screen;
    bool hasPicture = true;
    // Everything is redrawn, to compare, after every step or after every seventh: each redraw heals
    // what is wrong, so that faults that build up show only without it.
    bool comparesOften = true;

    static Setting ofSeed(std::uint32_t seed, bool isForgiving);
};

// One scenario on a canvas of its own, checked step by step.
class ScenarioRun {
public:
    explicit ScenarioRun(const Setting& setting);
    ~ScenarioRun();

    MDrawView& canvas() { return _player->canvas(); }
    // Whether the line could be played; one that cannot has done nothing.
    bool play(const std::string& line);
    // Lets everything come to rest, undoes all and redoes all.
    void finish();
    // Everything drawn anew, whatever the setting says.
    void compare();
    // What went wrong first; nothing is played after that.
    const std::optional<std::string>& fault() const { return _fault; }
    // The lines so far, without those that could not be played.
    const Lines& played() const { return _played; }

private:
    // `own` lines came before the end.
    void undoAndRedoAll(std::size_t own);
    void checkSurvival();
    void step(Survival::Direction direction);

    Setting _setting;
    std::shared_ptr<gfx::Device> _device;
    std::unique_ptr<ScenarioFiles> _files;
    std::unique_ptr<ScenarioPlayer> _player;
    std::unique_ptr<CanvasWatch> _watch;
    std::unique_ptr<Survival> _survival;
    std::optional<std::string> _fault;
    Lines _played;
};

// The picture that "picture.png" is in a run.
gfx::Bitmap samplePicture();

// A fault's scenario without the lines that it does not need.
struct Shrunk {
    Lines lines;
    std::string fault;
};
Shrunk shrink(const Setting& setting, Lines lines, const std::string& fault);

}  // namespace kalim::test
