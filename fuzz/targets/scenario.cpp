// Lines of a scenario, as they are read.

#include <string>

#include "fuzz/Stage.h"

KALIM_FUZZ(scenario, input) {
    constexpr std::size_t longest = 2000;
    const std::string_view text = kalim::fuzz::textOf(input).substr(0, longest);
    kalim::fuzz::Stage stage(false);
    std::size_t start = 0;
    for (int line = 0; line < 20 && start < text.size(); ++line) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        stage.play(std::string(text.substr(start, end - start)));
        start = end + 1;
    }
}
