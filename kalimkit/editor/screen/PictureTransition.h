#pragma once

#include <functional>
#include <memory>

#include "kalimkit/editor/bar/TesselTopTool.h"
#include "kalimkit/editor/screen/EditorPicture.h"
#include "kalimkit/editor/screen/EditorStage.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/ui/control/ImageView.h"

namespace kalim {

// The zoom of the picture from where the host showed it into its place on the canvas, and back out:
// a picture of its own moves in front of the canvas, under the bar, which fades in or out along.
// One that begins overtakes the one under way.
class PictureTransition {
public:
    // The bar may be made later.
    PictureTransition(const EditorStage& stage, EditorPicture& picture,
                      const std::shared_ptr<TesselTopTool>& bar)
        : _stage(stage), _picture(picture), _bar(bar) {}

    // Where it is to begin, and whether the host is going to begin it.
    void setStart(bool isWanted, const gfx::Rect& fromRect, double fromScale);
    // Shows the picture where it is to begin, where the host is going to do so.
    void prepare();
    // What `alongside` changes is animated along.
    void start(const std::function<void()>& alongside);
    // Fills the target in the end; see TesselViewController::startAnimateOut.
    void leave(const gfx::Rect& target, std::function<void(bool finished)> completion);

    // ---- readings
    // The way in has been announced and is not over, or the way out is under way: the canvas is not
    // to be seen.
    bool isNeeded() const { return _isNeeded; }
    const gfx::Rect& fromRect() const { return _fromRect; }
    double fromScale() const { return _fromScale; }
    // Null while there is none.
    const std::shared_ptr<ui::ImageView>& view() const { return _view; }

private:
    void makeView(const gfx::ImageRef& image);
    void dropView();
    void insertView();
    void place(const gfx::Rect& rect, double scale);
    void placeInto(const gfx::Rect& seen, double scale);
    void didStart();
    void didLeave();
    void animate(const std::function<void()>& changes, void (PictureTransition::*ended)(),
                 std::function<void(bool finished)> completion = {});
    void cleanUp(void (PictureTransition::*finish)());
    void finishStart();
    void finishLeave();

    const EditorStage& _stage;
    EditorPicture& _picture;
    const std::shared_ptr<TesselTopTool>& _bar;
    std::shared_ptr<ui::ImageView> _view;
    bool _isNeeded = false;
    gfx::Rect _fromRect;
    double _fromScale = 0;
    // Counts the ways, so that the end of one that has been overtaken is ignored.
    unsigned _way = 0;
};

}  // namespace kalim
