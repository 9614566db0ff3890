#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "kalimkit/editor/desk/DeskBar.h"
#include "kalimkit/editor/desk/DeskReading.h"
#include "kalimkit/ui/control/Label.h"

namespace kalim {

class MDrawView;

// The desk's bar at the bottom: the zoom with its buttons, the size of the picture, where the
// pointer is in it, and what is measured.
class DeskStatus : public DeskBar {
public:
    // Null where the canvas cannot be zoomed now; see CanvasPointer::canvasToZoom.
    using CanvasToZoom = std::function<MDrawView*()>;
    static std::shared_ptr<DeskStatus> make(CanvasToZoom canvas);

    void show(const DeskReading& reading);
    void applyColors() override;

protected:
    void layoutSubviews() override;
    std::vector<EditorShell::Named> views() const override;

private:
    DeskStatus() : DeskBar("status", Edge::Top) {}
    std::shared_ptr<ui::DeskButton> addButton(const std::string& icon, const std::string& label,
                                              const std::string& key, std::function<void()> action);
    void openZooms();
    std::shared_ptr<ui::Label> addLabel();
    void zoom(const std::function<void(MDrawView& canvas)>& how) const;

    CanvasToZoom _canvas;
    std::shared_ptr<ui::DeskButton> _zoomOut;
    std::shared_ptr<ui::DeskButton> _zoom;
    std::shared_ptr<ui::DeskButton> _zoomIn;
    std::shared_ptr<ui::Label> _size;
    std::shared_ptr<ui::Label> _pointer;
    std::shared_ptr<ui::Label> _measure;
    double _magnification = 0;
};

}  // namespace kalim
