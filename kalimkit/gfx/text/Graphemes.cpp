#include "kalimkit/gfx/text/Graphemes.h"

namespace kalim::gfx {

std::size_t graphemeCount(Device& device, std::string_view text) {
    if (text.empty()) return 0;
    return device.boundaries(text, TextBoundary::Grapheme).size() - 1;
}

}  // namespace kalim::gfx
