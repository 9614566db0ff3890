#pragma once

#include <string>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/loop/RunLoop.h"
#include "kalimkit/ui/motion/LayerAnimation.h"
#include "kalimkit/ui/motion/LayerValues.h"

namespace kalim::ui {

// The keyed animations of one layer, in the order in which they were added.
class KALIM_API LayerAnimations {
public:
    // Starts now; replaces the one that has the key.
    void add(const LayerAnimation& animation, std::string key, Time now);
    // False when there is none.
    bool remove(const std::string& key);
    void clear() { _playing.clear(); }
    // Drops those that are over and do not stay at their end.
    void dropOver(Time now);
    // The layer leaves the screen, or the user wants nothing to move: those that stay at their end
    // are there now, the others go.
    void jumpToEnd();

    // What stays at its end counts.
    bool isEmpty() const { return _playing.empty(); }
    bool isRunning(Time now) const;
    // Of those that run; what only stays at its end has no part in it.
    std::vector<std::string> runningKeys(Time now) const;
    LayerValues valuesAt(Time time) const;

private:
    struct Playing {
        std::string key;
        LayerAnimation animation;
        Time start = 0;
        // The end of an endless one is infinite.
        Time end = 0;
    };

    std::vector<Playing> _playing;
};

}  // namespace kalim::ui
