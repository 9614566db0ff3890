#include <algorithm>
#include <cstdio>
#include <iterator>
#include <string>

#include "kalimkit/host/browser/PageEditor.h"

// What the page tells an assistive technology of the editor.

#define KALIM_EXPORT(name) __attribute__((export_name(name)))

namespace {

// Between fields and after nodes; neither is in a text.
constexpr char fieldEnd = '\x1f';
constexpr char nodeEnd = '\x1e';

std::string description;

void append(double number) {
    char text[32];
    const int length = std::snprintf(text, sizeof(text), "%.1f", number);
    description.append(text, static_cast<std::size_t>(length)) += fieldEnd;
}

void append(const std::string& text) {
    std::ranges::replace_copy_if(
        text, std::back_inserter(description),
        [](char character) { return static_cast<unsigned char>(character) < 0x20; }, ' ');
    description += fieldEnd;
}

void append(const kalim::ui::AccessibilityNode& node) {
    append(node.id);
    append(node.parent);
    append(static_cast<double>(node.role));
    append((node.isEnabled ? 1 : 0) + (node.isSelected ? 2 : 0) + (node.isFocused ? 4 : 0));
    const kalim::gfx::Rect& frame = node.frame;
    append(frame.minX());
    append(frame.minY());
    append(frame.size.width);
    append(frame.size.height);
    append(node.label);
    append(node.value);
    description += nodeEnd;
}

}  // namespace

// The number of bytes of a new description of the screen; -1 while nothing is different.
KALIM_EXPORT("accessibility_update") int accessibilityUpdate() {
    kalim::ui::AccessibilityTree& tree = kalim::pageEditor()->seat().accessibility();
    if (!tree.update()) return -1;
    description.clear();
    for (const kalim::ui::AccessibilityNode& node : tree.nodes())
        append(node);
    return static_cast<int>(description.size());
}

// Of each node its id, its parent's, its role, 1 where it is enabled with 2 where it is selected
// and 4 where it has the focus, its frame in points, its label and its value.
KALIM_EXPORT("accessibility_text") const char* accessibilityText() {
    return description.data();
}

// Does what a tap on it does; false where that is nothing.
KALIM_EXPORT("accessibility_activate") bool accessibilityActivate(int id) {
    const bool done = kalim::pageEditor()->seat().accessibility().activate(id);
    kalim::pageEditor()->show();
    return done;
}
