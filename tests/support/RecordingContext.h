#pragma once

#include <string>
#include <vector>

#include "kalimkit/gfx/Context.h"

namespace kalim::test {

// Writes down what is painted, one readable line a call, and paints nothing. Paths are in the
// surface's points, numbers are rounded to 0.01, and what has its default value is left out:
//
//     fill [M 0,0 L 10,0 L 10,5 Z] #FF0000FF shadow=(1,1) blur=2 #00000059
//     stroke [M 0,0 L 10,0] #000000FF width=2 cap=round join=round pen=[2 0 0 1]
//     fill [M 0,0 L 9,0 L 9,9 Z] pattern=20x20@1 transform=[1 0 0 1 5 5]
//     raster 40x30@2 rect=(0,0,20,15) transform=[2 0 0 2 5 5] alpha=0.5
//     text "abc" at=(10,20) size=14 bold #000000FF
//     outline "abc" at=(10,20) size=14 #FFFFFFFF width=3
//     clip [M 0,0 L 4,0 L 4,4 L 0,4 Z]      and when a restore takes it back: unclip
//     begin group alpha=0.5                 until: end group
//
// `pen` is the linear part of the transform at a stroke.
class RecordingContext : public gfx::Context {
public:
    const std::vector<std::string>& lines() const { return _lines; }
    // The recorded lines, and none are left.
    std::vector<std::string> takeLines();

protected:
    void onSave() override;
    void onRestore() override;
    void onClip(const gfx::Path& path) override;
    void onFill(const gfx::Path& path) override;
    void onStroke(const gfx::Path& path) override;
    void onDrawRaster(const gfx::Image& image, const gfx::Rect& rect) override;
    void onDrawText(std::string_view text, gfx::Point baseline, const gfx::Font& font) override;
    void onBeginGroup() override;
    void onEndGroup() override;

private:
    std::vector<std::string> _lines;
    // For each saved state, how many clips have been set since.
    std::vector<int> _clips{0};
};

// A path as RecordingContext writes it, brackets included.
std::string describe(const gfx::Path& path);

}  // namespace kalim::test
