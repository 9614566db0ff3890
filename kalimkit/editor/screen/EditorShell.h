#pragma once

#include <memory>
#include <string>
#include <vector>

#include "kalimkit/editor/sheet/KLMActionsheetView.h"
#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/gfx/Size.h"
#include "kalimkit/ui/environment/EdgeInsets.h"
#include "kalimkit/ui/view/View.h"

namespace kalim {

// The bars and buttons around the canvas in the place of the phone's: attached to a controller by
// TesselViewController::setShell, which changes nothing but what lies over the canvas. What is
// drawn, selected, typed and chosen is under both.
class KALIM_API EditorShell {
public:
    virtual ~EditorShell() = default;

    // All that it shows, laid over the canvas as large as the controller's view. Touches that it
    // does not take are the canvas's.
    virtual const std::shared_ptr<ui::View>& view() const = 0;
    // What its bars cover at the edges of a view of that size, points: the picture is fitted
    // between.
    virtual ui::EdgeInsets coveredEdges(gfx::Size size) const = 0;
    // What lies around the picture.
    virtual gfx::ColorRef groundColor() const = 0;
    // Something that it may show is another: the tool in hand, the selection, what can be undone,
    // the zoom, a shape that grows. Comes often, at most once a frame while a finger draws; what it
    // shows is read anew and compared.
    virtual void editorDidChange() = 0;
    // Tells people shortly that something was done, such as "Copied".
    virtual void showNote(const std::string& text) = 0;

    // Offers what can be done at a place of the canvas, window points.
    virtual void showContextMenu(gfx::Point place) = 0;
    // Whether menus may open over the canvas at all.
    virtual bool opensMenus() const { return true; }

    // Where it shows the question before closing, if not where the phone does.
    virtual KLMActionsheetView::Layouter questionLayouter() const { return {}; }
    // What it calls the button that is titled so on the phone.
    virtual std::string confirmTitle(const std::string& title) const { return title; }

    // ---- what a host lays over a bar
    // Leaves so many points of a bar's length free for it, as far as there are; 0 for none.
    virtual void setHostRoom(double /*width*/) {}
    // Where that is, window points; empty where it is nowhere, or something lies over it.
    virtual gfx::Rect hostRoom() const { return {}; }
    // Of texts that stand out from the bar.
    virtual gfx::ColorRef textColor() const { return gfx::makeColor(1, 1, 1); }

    // Its views by the names that scenarios call them by, such as "desk.pens.arrow".
    struct Named {
        std::string path;
        std::shared_ptr<ui::View> view;
    };
    virtual std::vector<Named> namedViews() const = 0;
};

}  // namespace kalim
