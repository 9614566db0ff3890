#pragma once

#include <memory>
#include <utility>

#include "kalimkit/canvas/MDrawViewDelegate.h"
#include "kalimkit/canvas/ZoomedCanvasView.h"

namespace kalim {

class CanvasScreen;

// Where the parts of a canvas are at home: its view, which owns them all, and the owner that is
// told what happens. Whoever calls a part from outside holds the view meanwhile; the parts
// themselves need not.
class CanvasHome {
public:
    CanvasHome(ZoomedCanvasView& view, CanvasScreen& screen) : _view(view), _screen(screen) {}

    ZoomedCanvasView& view() const { return _view; }
    // A part as somebody else's delegate: it is there as long as the view is, and whoever calls it
    // holds the view.
    template <typename Part>
    std::shared_ptr<Part> held(Part& part) const {
        return {_view.shared_from_this(), &part};
    }

    // Null while nobody wants to know.
    std::shared_ptr<MDrawViewDelegate> owner() const { return _owner.lock(); }
    void setOwner(std::weak_ptr<MDrawViewDelegate> owner) { _owner = std::move(owner); }

    // The selection and what is being created may look different.
    void redisplay();

private:
    ZoomedCanvasView& _view;
    CanvasScreen& _screen;
    std::weak_ptr<MDrawViewDelegate> _owner;
};

}  // namespace kalim
