// The crop editor under any fingers, its buttons and the time between them.

#include <string>

#include "fuzz/Stage.h"

namespace {

constexpr const char* lines[] = {
    R"({"tap":"editImageInitialView.cropToolBar.rotateBtn"})",
    R"({"tap":"editImageInitialView.cropToolBar.revertBtn"})",
    R"({"tap":"editImageInitialView.cropToolBar.cancelBtn"})",
    R"({"tap":"editImageInitialView.cropToolBar.doneBtn"})",
    R"({"gesture":"pinch","state":"changed","value":1.7})",
    R"({"gesture":"pan","state":"changed","value":[12,-7]})",
    R"({"wait":0.05})",
    R"({"wait":1.1})",
    R"({"tap":"penViews.5"})",
    R"({"call":"undo","args":[]})",
    R"({"print":"editor"})",
};

}  // namespace

KALIM_FUZZ(crop, input) {
    kalim::fuzz::Numbers numbers(input);
    kalim::fuzz::Stage stage(true);
    for (const char* line : {R"({"wait":0.6})", R"({"tap":"penView"})", R"({"wait":0.6})",
                             R"({"tap":"penViews.5"})", R"({"wait":0.6})"})
        stage.play(line);
    for (int step = 0; step < 30 && !numbers.isEmpty(); ++step) {
        if (numbers.below(2) == 0) {
            stage.touch(numbers);
        } else {
            stage.play(lines[static_cast<std::size_t>(numbers.below(std::size(lines)))]);
        }
    }
}
