#pragma once

#include <cstdint>
#include <utility>

namespace kalim {

// How many tools the last frame drew, into layers or onto the screen.
class FrameCount {
public:
    int tools() const { return _tools; }
    void add(int tools = 1) { _tools += tools; }
    // Counts a drawing into a layer for the next frame.
    void addAhead() { ++_ahead; }
    // A view draws several times in a frame where several rectangles are damaged.
    void begin(std::uint64_t frame) {
        if (std::exchange(_frame, frame) != frame) _tools = std::exchange(_ahead, 0);
    }

private:
    int _tools = 0;
    int _ahead = 0;
    std::uint64_t _frame = 0;
};

}  // namespace kalim
