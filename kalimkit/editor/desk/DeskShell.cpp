#include "kalimkit/editor/desk/DeskShell.h"

#include <algorithm>
#include <utility>

#include "kalimkit/canvas/CanvasByKeys.h"
#include "kalimkit/canvas/CanvasPointer.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/editor/bar/TesselTopTool.h"
#include "kalimkit/editor/desk/DeskActions.h"
#include "kalimkit/editor/desk/DeskLayout.h"
#include "kalimkit/editor/desk/DeskMenu.h"
#include "kalimkit/editor/desk/DeskPens.h"
#include "kalimkit/editor/desk/DeskQuestion.h"
#include "kalimkit/editor/desk/DeskStatus.h"
#include "kalimkit/editor/desk/DeskStyle.h"
#include "kalimkit/editor/screen/EditorRemote.h"
#include "kalimkit/editor/screen/EditorTables.h"
#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/theme/Palette.h"
#include "kalimkit/theme/SafeArea.h"
#include "kalimkit/ui/control/AlertView.h"
#include "kalimkit/ui/desk/Menu.h"
#include "kalimkit/ui/desk/Overlay.h"
#include "kalimkit/ui/desk/Popover.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim {

namespace {

// Of the top bar, what a host may have.
constexpr double largestHostShare = 1.0 / 3;

}  // namespace

// All that the desk shows, as large as the editor. It reads the editor anew whenever it is laid
// out, which every change asks for.
class DeskShell::Desk : public ui::View, public ui::AppearanceObserver {
public:
    explicit Desk(const Editor& editor) : _editor(editor) {}

    void begin() {
        init({});
        setFillsSuperview(true);
        const auto& offered = _editor.screen.offer().pens();
        _pens = DeskPens::make(offered ? *offered : deskPens(), _editor.screen.offer().buttons(),
                               [this](unsigned pen) { _editor.remote.choosePen(pen); });
        _style = DeskStyle::make(_editor.screen, _editor.remote);
        _actions = DeskActions::make(_editor.screen, _editor.keys);
        _status = DeskStatus::make([this] { return _editor.pointer.canvasToZoom(); });
        for (const std::shared_ptr<ui::View>& part :
             {std::shared_ptr<ui::View>(_pens), std::shared_ptr<ui::View>(_style),
              std::shared_ptr<ui::View>(_actions), std::shared_ptr<ui::View>(_status)})
            addSubview(part);
    }

    DeskLayout layoutFor(gfx::Size size) const {
        return deskLayout(size, safeAreaInsets(), _pens->count());
    }

    // As they are on the screen, whatever the language.
    ui::EdgeInsets coveredEdges(gfx::Size size) const {
        const DeskLayout layout = layoutFor(size);
        const ui::EdgeInsets safe = safeAreaInsets();
        const ui::EdgeInsets covered =
            _editor.screen.isReadOnly()
                ? ui::EdgeInsets{safe.top, safe.left, layout.status.size.height, safe.right}
                : layout.covered(size);
        return ui::Environment::current().readsRightToLeft() ? covered.mirrored() : covered;
    }

    void addNames(std::vector<Named>& names) const {
        for (const DeskBar* bar :
             {static_cast<DeskBar*>(_pens.get()), static_cast<DeskBar*>(_style.get()),
              static_cast<DeskBar*>(_actions.get()), static_cast<DeskBar*>(_status.get())})
            bar->addNames("desk", names);
    }

    void showNote(const std::string& text) const {
        if (window()) ui::Overlay::in(*window())->tell(text, "done");
    }

    void showContextMenu(gfx::Point place) const {
        if (!window() || _editor.screen.isReadOnly() || isAsked()) return;
        const gfx::Rect canvas = coveredEdges(bounds().size).apply(bounds());
        if (!canvas.contains(convertPointFrom(place, nullptr))) return;
        ui::Menu::showAt(*window(), place, deskMenu(_editor, place));
    }

    void setHostRoom(double width) {
        _hostWidth = width;
        setNeedsLayout();
    }

    gfx::Rect hostRoom() const {
        if (!window() || _actions->isHidden()) return {};
        const gfx::Rect room =
            _actions->convertRectTo(_actions->mirrored(_actions->hostRoom()), nullptr);
        const auto overlay = ui::Overlay::existingIn(*window());
        if (!overlay) return room;
        const bool isCovered = std::ranges::any_of(overlay->popovers(), [&](const auto& popover) {
            return popover->isSheet() ||
                   popover->convertRectTo(popover->bounds(), nullptr).intersects(room);
        });
        return isCovered ? gfx::Rect() : room;
    }

    // What lies beside the bars is the canvas's.
    std::shared_ptr<ui::View> hitTest(gfx::Point p) override {
        const auto hit = View::hitTest(p);
        return hit.get() == this ? nullptr : hit;
    }

    void appearanceChanged() override {
        for (const std::shared_ptr<DeskBar>& bar :
             {std::shared_ptr<DeskBar>(_pens), std::shared_ptr<DeskBar>(_style),
              std::shared_ptr<DeskBar>(_actions), std::shared_ptr<DeskBar>(_status)})
            bar->applyColors();
        _editor.screen.view()->setBackgroundColor(gfx::makeColor(Palette::current().window));
        // Texts in the bars take their colours with what they show.
        setNeedsLayout();
    }

protected:
    void layoutSubviews() override {
        const DeskLayout layout = layoutFor(bounds().size);
        _actions->setHostRoom(std::min(_hostWidth, layout.top.size.width * largestHostShare));
        const double actions = _actions->wantedWidth();
        _pens->setColumns(layout.penColumns);
        _pens->setFrame(layout.pens);
        _status->setFrame(layout.status);
        _style->setFrame({0, 0, layout.top.size.width - actions, layout.top.size.height});
        _actions->setFrame({layout.top.size.width - actions, 0, actions, layout.top.size.height});
        const bool isReadOnly = _editor.screen.isReadOnly();
        for (const std::shared_ptr<ui::View>& bar :
             {std::shared_ptr<ui::View>(_pens), std::shared_ptr<ui::View>(_style),
              std::shared_ptr<ui::View>(_actions)})
            bar->setHidden(isReadOnly);
        if (window()) furnish(*ui::Overlay::in(*window()), layout);
        showReading();
    }

private:
    // What asks or crops lies over the canvas.
    bool isAsked() const {
        return ui::AlertView::topmostIn(*window()) || _editor.screen.actionSheet() ||
               _editor.screen.editImageInitialView();
    }

    void furnish(ui::Overlay& overlay, const DeskLayout& layout) const {
        overlay.setBottomInset(layout.status.size.height);
        overlay.setTabTaker([weak = weak_from_this(), this](bool forwards) {
            const auto desk = weak.lock();
            const auto canvas = desk ? _editor.screen.drawView() : nullptr;
            const bool isFree = canvas && canvas->forgiving() && !canvas->isReadOnly() &&
                                !_editor.screen.editImageInitialView();
            return isFree && canvas->byKeys()->selectNext(forwards);
        });
    }

    void showReading() {
        if (!window()) return;
        const DeskReading reading = DeskReading::of(_editor.screen, window()->hover().place());
        _pens->showPen(reading.penInHand);
        _style->show(reading);
        _actions->show(reading);
        _status->show(reading);
    }

    Editor _editor;
    std::shared_ptr<DeskPens> _pens;
    std::shared_ptr<DeskStyle> _style;
    std::shared_ptr<DeskActions> _actions;
    std::shared_ptr<DeskStatus> _status;
    double _hostWidth = 0;
};

std::shared_ptr<DeskShell> DeskShell::make(const Editor& editor) {
    const auto desk = std::make_shared<Desk>(editor);
    desk->begin();
    ui::Environment::current().addAppearanceObserver(desk);
    return std::shared_ptr<DeskShell>(new DeskShell(desk));
}

DeskShell::DeskShell(std::shared_ptr<Desk> desk) : _desk(std::move(desk)), _view(_desk) {}

DeskShell::~DeskShell() = default;

const std::shared_ptr<ui::View>& DeskShell::view() const {
    return _view;
}

ui::EdgeInsets DeskShell::coveredEdges(gfx::Size size) const {
    return _desk->coveredEdges(size);
}

gfx::ColorRef DeskShell::groundColor() const {
    return gfx::makeColor(Palette::current().window);
}

void DeskShell::editorDidChange() {
    _desk->setNeedsLayout();
}

void DeskShell::showNote(const std::string& text) {
    _desk->showNote(text);
}

void DeskShell::showContextMenu(gfx::Point place) {
    _desk->showContextMenu(place);
}

KLMActionsheetView::Layouter DeskShell::questionLayouter() const {
    return DeskQuestion::makeLayouter();
}

std::string DeskShell::confirmTitle(const std::string& title) const {
    return deskConfirmTitle(title);
}

void DeskShell::setHostRoom(double width) {
    _desk->setHostRoom(width);
}

gfx::Rect DeskShell::hostRoom() const {
    return _desk->hostRoom();
}

gfx::ColorRef DeskShell::textColor() const {
    return gfx::makeColor(Palette::current().text);
}

std::vector<EditorShell::Named> DeskShell::namedViews() const {
    std::vector<Named> names;
    _desk->addNames(names);
    return names;
}

}  // namespace kalim
