#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/ui/view/View.h"

namespace kalim {

// A view of the editor under the name that scenarios call it by: the path of property names that
// leads to it from the controller.
struct NamedView {
    std::string path;
    std::shared_ptr<ui::View> view;
};

// All that exist, what is hidden included, and those of the sheet and the alert above the editor.
std::vector<NamedView> editorViews(const TesselViewController& editor);

// Null for a path that there is nothing at.
std::shared_ptr<ui::View> editorView(const TesselViewController& editor, std::string_view path);

}  // namespace kalim
