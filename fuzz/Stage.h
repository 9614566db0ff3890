#pragma once

#include <memory>
#include <optional>
#include <string>

#include "fuzz/SharedDevice.h"
#include "kalimkit/host/headless/ScenarioFiles.h"
#include "kalimkit/host/headless/ScenarioPlayer.h"

namespace kalim::fuzz {

// 24 x 16 pixels of stripes.
inline gfx::ImageRef smallPicture() {
    gfx::Bitmap bitmap(24, 16);
    for (int y = 0; y < bitmap.height(); ++y) {
        for (std::size_t x = 0; x < bitmap.stride(); ++x)
            bitmap.row(y)[x] =
                x % 4 == 3 || (x / 12 + static_cast<std::size_t>(y) / 4) % 2 == 0 ? 255 : 40;
    }
    return device().makeImage(std::move(bitmap), 1, gfx::ImageOrientation::Up);
}

// Has one picture under every name, and keeps nothing.
class NoFiles : public ScenarioFiles {
public:
    LoadedPicture loadPicture(const std::string& /*path*/) override { return {smallPicture(), {}}; }
    std::optional<std::string> savePicture(const std::string& /*path*/,
                                           const gfx::ImageRef& image) override {
        require(image != nullptr, "what is saved is a picture");
        return std::nullopt;
    }
};

// A small screen and steps on it, as a scenario has them.
class Stage {
public:
    explicit Stage(bool hasEditor) {
        ScenarioScreen screen;
        screen.canvas = {120, 200};
        screen.scale = 1;
        screen.forgiving = true;
        if (hasEditor) screen.editor.emplace().picture = smallPicture();
        _player.emplace(
            device(), _files, [](const std::string& /*line*/) {}, screen);
        if (!hasEditor) _player->setPicture(smallPicture());
    }

    // A line that is not understood changes nothing.
    void play(const std::string& line) { _player->play(line); }
    void playAll(std::string_view text) { _player->playAll(text); }

    // The next event of one or two fingers, at a place that the numbers choose; some lie outside.
    void touch(Numbers& numbers) {
        constexpr const char* states[] = {"began", "moved", "moved", "moved", "ended", "cancelled"};
        const int state = numbers.below(6);
        std::string points = point(numbers);
        if (numbers.below(4) == 0) points += "," + point(numbers);
        play(std::string(R"({"touch":")") + states[state] + R"(","points":[)" + points + "]}");
    }

private:
    static std::string point(Numbers& numbers) {
        const int x = numbers.next() - 60;
        const int y = numbers.next() - 20;
        return "[" + std::to_string(x) + "," + std::to_string(y) + ".5]";
    }

    NoFiles _files;
    std::optional<ScenarioPlayer> _player;
};

}  // namespace kalim::fuzz
