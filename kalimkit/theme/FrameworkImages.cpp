#include "kalimkit/theme/FrameworkImages.h"

#include <algorithm>
#include <iterator>

#include "kalimkit/theme/IconDrawing.h"
#include "kalimkit/theme/IconTable.h"
#include "kalimkit/theme/KeptPictures.h"
#include "kalimkit/theme/Pens.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

constexpr std::string_view deskPrefix = "icon_desk_";
// What the phone shows of a pen, in the picker and on the pen button; the sides are points.
struct PenPicture {
    std::string_view prefix;
    double side;
};
constexpr PenPicture penPictures[] = {{"icon_tool_", 38}, {"icon_pen_", 50}};

const Icon* iconNamed(std::string_view name) {
    const std::span<const Icon> icons = frameworkIcons();
    const auto found = std::ranges::find(icons, name, &Icon::name);
    return found == icons.end() ? nullptr : &*found;
}

// Whether it points where one reads, or back, and the other way round in this language.
bool isMirroredIcon(std::string_view name) {
    constexpr std::string_view pointing[] = {"undo",
                                             "redo",
                                             "next",
                                             "icon_tool_undo",
                                             "icon_tool_undo_disable",
                                             "icon_tool_redo",
                                             "icon_tool_redo_disable"};
    return ui::Environment::current().readsRightToLeft() &&
           std::ranges::find(pointing, name) != std::end(pointing);
}

const Icon* deskIconNamed(std::string_view name) {
    if (const Icon* const icon = iconNamed(std::string(deskPrefix).append(name))) return icon;
    const auto all = pens();
    const auto own = std::ranges::find_if(
        all, [name](const Pen& pen) { return pen.drawing && pen.icon == name; });
    return own == all.end() ? nullptr : own->drawing;
}

}  // namespace

gfx::ImageRef imageNamedForFramework(const std::string& name) {
    KeptPictures& pictures = KeptPictures::current();
    const double scale = ui::Environment::current().screen().scale;
    const bool isMirrored = isMirroredIcon(name);
    if (const Icon* const icon = iconNamed(name))
        return pictures.iconImage(name, *icon, scale, {}, isMirrored);
    for (const auto& [prefix, side] : penPictures) {
        if (!name.starts_with(prefix)) continue;
        const Icon* const icon = deskIconNamed(std::string_view(name).substr(prefix.size()));
        if (icon) return pictures.iconImage(name, *icon, scale, {side, side}, isMirrored);
    }
    return nullptr;
}

bool drawDeskIcon(gfx::Context& context, std::string_view name, const gfx::Rect& rect,
                  const gfx::Color& color) {
    const Icon* const icon = deskIconNamed(name);
    if (!icon) return false;
    const gfx::GraphicsStateGuard guard(context);
    const double size = std::min(rect.size.width, rect.size.height);
    const double scale = size / icon->width;
    context.translate(rect.midX() - size / 2, rect.midY() - size / 2);
    if (isMirroredIcon(name)) {
        context.translate(size, 0);
        context.scale(-1, 1);
    }
    context.scale(scale, scale);
    drawIcon(context, *icon, color);
    return true;
}

std::string frameworkImageName(const gfx::ImageRef& image) {
    return KeptPictures::current().nameOf(image);
}

}  // namespace kalim
