#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kalimkit/ui/control/Label.h"
#include "kalimkit/ui/view/View.h"

namespace kalim {

// A short note over the picture that goes by itself, such as "Copied". It takes no touches.
class DeskNote : public ui::View {
public:
    static std::shared_ptr<DeskNote> make();

    // One that is there already gives way.
    void show(const std::string& text);
    // In the lower middle of a part of the desk.
    void placeIn(const gfx::Rect& room);

private:
    DeskNote() = default;
    void place();
    void fade();

    std::shared_ptr<ui::Label> _label;
    gfx::Rect _room;
    // Counts the notes, so that the end of one that has given way is ignored.
    std::uint64_t _count = 0;
};

}  // namespace kalim
