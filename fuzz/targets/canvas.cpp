// The canvas under any fingers and calls in any order.

#include <string>

#include "fuzz/Stage.h"

namespace {

using kalim::fuzz::Numbers;

// Every % takes a number.
constexpr const char* lines[] = {
    R"({"call":"beginDrawingForTypeWithDrawType","args":[%,%]})",
    R"({"call":"setDrawColorIsTranslucent","args":["#3B30%",false]})",
    R"({"call":"setDrawLineWidth","args":[%]})",
    R"({"call":"undo","args":[]})",
    R"({"call":"redo","args":[]})",
    R"({"call":"deleteSelectTool","args":[]})",
    R"({"call":"selectNone","args":[]})",
    R"({"call":"finalizeDraw","args":[]})",
    R"({"call":"setPictureCut","args":[[%,%,%,%],%]})",
    R"({"call":"setClipsToPicture","args":[true]})",
    R"({"call":"setCanvasBasis","args":[%]})",
    R"({"call":"exportImage","args":[]})",
    R"({"export":"out.png","at":"picture"})",
    R"({"picture":"other.png"})",
    R"({"type":"text % and 文字"})",
    R"({"compose":"n%"})",
    R"({"key":"shift+left"})",
    R"({"key":"backspace"})",
    R"({"key":"enter"})",
    R"({"keyboard":%})",
    R"({"gesture":"rotation","state":"began","value":0})",
    R"({"gesture":"rotation","state":"changed","value":0.%})",
    R"({"gesture":"rotation","state":"ended","value":0.%})",
    R"({"gesture":"pinch","state":"changed","value":1.%})",
    R"({"gesture":"pan","state":"changed","value":[%,%]})",
    R"({"wait":0.%})",
    R"({"print":"canvas"})",
};

std::string lineOf(Numbers& numbers) {
    std::string line;
    const std::string_view form = lines[static_cast<std::size_t>(numbers.below(std::size(lines)))];
    for (const char letter : form) {
        if (letter == '%') {
            line += std::to_string(numbers.below(100));
        } else {
            line += letter;
        }
    }
    return line;
}

}  // namespace

KALIM_FUZZ(canvas, input) {
    Numbers numbers(input);
    kalim::fuzz::Stage stage(false);
    for (int step = 0; step < 60 && !numbers.isEmpty(); ++step) {
        if (numbers.below(2) == 0) {
            stage.touch(numbers);
        } else {
            stage.play(lineOf(numbers));
        }
    }
}
