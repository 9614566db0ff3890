#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/crop/EditImageIntialView.h"
#include "kalimkit/editor/bar/TesselTopTool.h"
#include "kalimkit/editor/picker/TesselDot.h"
#include "kalimkit/editor/picker/TesselPenView.h"
#include "kalimkit/editor/picker/TesselPopView.h"
#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/editor/sheet/KLMActionsheetView.h"
#include "kalimkit/editor/sheet/QNTMaskView.h"
#include "kalimkit/editor/sheet/TesselConfirmButton.h"
#include "kalimkit/ui/control/Button.h"
#include "kalimkit/ui/control/ImageView.h"
#include "tests/support/Finger.h"
#include "tests/support/TestHost.h"

namespace kalim::test {

// The host application: writes down what the editor tells it, and may do something about it.
class EditorOwner : public TesselViewControllerDelegate {
public:
    void didDrawViewControllerFinishHandleImage(TesselViewController&,
                                                const gfx::ImageRef& image) override {
        images.push_back(image);
        if (answer) answer();
    }
    void close() override {
        ++closed;
        if (answer) answer();
    }

    std::vector<gfx::ImageRef> images;
    int closed = 0;
    std::function<void()> answer;
};

// An editor with a picture of 300 x 400 points in a window of its own, and a finger to use it with.
class EditorScreen : public TestHost {
public:
    explicit EditorScreen(TestHostOptions options = {})
        : TestHost(options), owner(std::make_shared<EditorOwner>()) {
        editor = TesselViewController::initWithSourceImageWithDelegate(picture(300, 400), owner);
        editor->setLogTranferBlock([this](const std::string& text) { logs.push_back(text); });
    }
    ~EditorScreen() { MDrawView::setLogTransferToBlock({}); }

    gfx::ImageRef picture(int width, int height) {
        return environment().device().makeImage(gfx::Bitmap(width, height), 1,
                                                gfx::ImageOrientation::Up);
    }
    // On the screen and at rest, with the pen button there.
    EditorScreen& present() {
        window().setRootViewController(editor);
        wait(1);
        return *this;
    }
    void tap(const std::shared_ptr<ui::View>& view) {
        Finger(window()).tap(view->convertPointTo(view->bounds().center(), nullptr));
    }
    // What the tap sets going is over afterwards.
    void use(const std::shared_ptr<ui::View>& view) {
        tap(view);
        wait(1);
    }
    void drag(gfx::Point from, gfx::Point to) { Finger(window()).down(from).moveTo(to, 4).up(); }
    // An arrow, which is not selected.
    void draw() {
        drag({100, 300}, {250, 400});
        wait(1);
    }
    // Draws an arrow and selects it.
    void drawAndSelect() {
        draw();
        Finger(window()).tap({175, 350});
        wait(1);
    }
    gfx::Rect shown(const std::shared_ptr<ui::View>& view) const {
        return view->convertRectTo(view->bounds(), nullptr);
    }

    std::shared_ptr<EditorOwner> owner;
    std::shared_ptr<TesselViewController> editor;
    std::vector<std::string> logs;
};

inline bool isShown(const ui::View& view) {
    return !view.isHidden() && view.alpha() == 1;
}

}  // namespace kalim::test
