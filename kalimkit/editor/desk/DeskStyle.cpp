#include "kalimkit/editor/desk/DeskStyle.h"

#include <string>

#include "kalimkit/editor/desk/DeskLayout.h"
#include "kalimkit/editor/screen/EditorRemote.h"
#include "kalimkit/editor/screen/EditorTables.h"
#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/theme/HexColor.h"
#include "kalimkit/theme/SafeArea.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

constexpr double groupGap = 14;
// The dots of widths, from the thinnest to the thickest.
constexpr double thinnestDot = 4;
constexpr double thickerBy = 3;

}  // namespace

std::shared_ptr<DeskStyle> DeskStyle::make(TesselViewController& editor, EditorRemote& remote) {
    const std::shared_ptr<DeskStyle> bar(new DeskStyle);
    bar->begin("样式");
    bar->_remote = &remote;
    bar->_scroll = ui::ScrollView::initWithFrame({});
    bar->addSubview(bar->_scroll);
    bar->addColors(editor);
    bar->addWidths();
    return bar;
}

void DeskStyle::addColors(const TesselViewController& /*editor*/) {
    for (const std::string_view hex : editorColors()) {
        const gfx::ColorRef color = colorWithHexString(hex);
        const auto swatch =
            DeskSwatch::makeColor(color, [this, color] { _remote->chooseColor(color); });
        _scroll->addSubview(swatch);
        _colors.push_back(swatch);
    }
}

void DeskStyle::addWidths() {
    const ui::Environment& environment = ui::Environment::current();
    double diameter = thinnestDot;
    for (const PenSize& size : penSizes()) {
        const double width = size.lineWidth;
        const auto swatch =
            DeskSwatch::makeWidth(diameter, environment.localizedString(std::string(size.text)),
                                  [this, width] { _remote->chooseLineWidth(width); });
        _scroll->addSubview(swatch);
        _widths.push_back(swatch);
        diameter += thickerBy;
    }
}

void DeskStyle::show(const DeskReading& reading) {
    for (const auto& swatch : _colors)
        swatch->setSelected(gfx::equalColors(swatch->color(), reading.color));
    for (std::size_t i = 0; i < _widths.size(); ++i)
        _widths[i]->setSelected(penSizes()[i].lineWidth == reading.lineWidth);
}

std::vector<EditorShell::Named> DeskStyle::views() const {
    std::vector<EditorShell::Named> all;
    for (std::size_t i = 0; i < _colors.size(); ++i)
        all.push_back({"colors." + std::to_string(i), _colors[i]});
    for (std::size_t i = 0; i < _widths.size(); ++i)
        all.push_back({"widths." + std::to_string(i), _widths[i]});
    return all;
}

void DeskStyle::layoutSubviews() {
    const ui::EdgeInsets safe = safeAreaInsets();
    const double height = bounds().size.height - safe.top;
    _scroll->setFrame({safe.left, safe.top, bounds().size.width - safe.left, height - 1});
    double left = DeskLayout::barMargin;
    const auto place = [&](ui::View& view) {
        view.setFrame({left, (height - DeskSwatch::side) / 2, DeskSwatch::side, DeskSwatch::side});
        left += DeskSwatch::side + 2;
    };
    for (const auto& swatch : _colors)
        place(*swatch);
    left += groupGap;
    for (const auto& swatch : _widths)
        place(*swatch);
    _scroll->setContentSize({left, height - 1});
}

}  // namespace kalim
