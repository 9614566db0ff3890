#include "kalimkit/host/headless/EditorViews.h"

#include <algorithm>
#include <utility>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/crop/EditImageIntialView.h"
#include "kalimkit/editor/bar/TesselTopTool.h"
#include "kalimkit/editor/picker/TesselDot.h"
#include "kalimkit/editor/picker/TesselPenView.h"
#include "kalimkit/editor/picker/TesselPopView.h"
#include "kalimkit/editor/screen/EditorShell.h"
#include "kalimkit/editor/sheet/KLMActionsheetView.h"
#include "kalimkit/editor/sheet/QNTMaskView.h"
#include "kalimkit/editor/sheet/TesselConfirmButton.h"
#include "kalimkit/ui/control/AlertView.h"
#include "kalimkit/ui/control/Button.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim {

namespace {

class Collector {
public:
    void add(std::string path, const std::shared_ptr<ui::View>& view) {
        if (view) _views.push_back({std::move(path), view});
    }
    template <typename Views>
    void addList(const std::string& path, const Views& views) {
        for (std::size_t index = 0; index < views.size(); ++index)
            add(path + "." + std::to_string(index), views[index]);
    }
    std::vector<NamedView> take() { return std::move(_views); }

private:
    std::vector<NamedView> _views;
};

void addToolBar(const std::shared_ptr<TesselTopTool>& bar, Collector& all) {
    if (!bar) return;
    all.add("toolView", bar);
    all.add("toolView.closeButton", bar->closeButton());
    all.add("toolView.confirmButton", bar->confirmButton());
    all.add("toolView.doneButton", bar->doneButton());
    all.add("toolView.moreButton", bar->moreButton());
    all.add("toolView.undoButton", bar->undoButton());
    all.add("toolView.redoButton", bar->redoButton());
}

void addPanel(const TesselViewController& editor, Collector& all) {
    all.add("panelView", editor.panelView());
    all.add("colorPopView", editor.colorPopView());
    all.add("sizePopView", editor.sizePopView());
    all.add("penPopView", editor.penPopView());
    all.addList("colorViews", editor.colorViews());
    all.addList("sizeViews", editor.sizeViews());
    all.addList("penViews", editor.penViews());
}

void addShell(const EditorShell* shell, Collector& all) {
    if (!shell) return;
    for (auto& [path, view] : shell->namedViews())
        all.add(std::move(path), view);
}

void addCrop(const std::shared_ptr<EditImageIntialView>& crop, Collector& all) {
    if (!crop) return;
    const std::string path = "editImageInitialView";
    all.add(path, crop);
    all.add(path + ".cropGridView", crop->cropGridView());
    const auto& bar = crop->cropToolBar();
    if (!bar) return;
    all.add(path + ".cropToolBar", bar);
    all.add(path + ".cropToolBar.cancelBtn", bar->cancelBtn());
    all.add(path + ".cropToolBar.revertBtn", bar->revertBtn());
    all.add(path + ".cropToolBar.doneBtn", bar->doneBtn());
    all.add(path + ".cropToolBar.rotateBtn", bar->rotateBtn());
}

// What lies above the editor's own views.
void addQuestions(const TesselViewController& editor, Collector& all) {
    if (const auto& sheet = editor.actionSheet()) {
        for (const int tag : {1, 2, 0})
            all.add("actionSheet." + std::to_string(tag), sheet->buttonWithTag(tag));
    }
    if (!editor.window()) return;
    if (const auto alert = ui::AlertView::topmostIn(*editor.window())) {
        all.addList("alert", alert->buttons());
    }
}

}  // namespace

std::vector<NamedView> editorViews(const TesselViewController& editor) {
    if (!editor.window()) return {};
    Collector all;
    addToolBar(editor.toolView(), all);
    all.add("drawView", editor.drawView());
    all.add("maskView", editor.maskView());
    all.add("penView", editor.penView());
    all.add("confirmButton", editor.confirmButton());
    addPanel(editor, all);
    all.add("configViewEdit", editor.configViewEdit());
    all.add("configViewDelete", editor.configViewDelete());
    addShell(editor.shell().get(), all);
    addCrop(editor.editImageInitialView(), all);
    addQuestions(editor, all);
    return all.take();
}

std::shared_ptr<ui::View> editorView(const TesselViewController& editor, std::string_view path) {
    const std::vector<NamedView> all = editorViews(editor);
    const auto found = std::ranges::find(all, path, &NamedView::path);
    return found == all.end() ? nullptr : found->view;
}

}  // namespace kalim
