// Runs the benchmarks; each stands beside a yardstick of the same run, since machines are noisy.
#include <cstdio>

#include "bench/RatioReporter.h"

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    kalim::bench::RatioReporter reporter({
        {"pixelation of 4000x3000 at level 20, against memcpy", "pixelate12MP", "copy12MP",
         "at most 2.2"},
        {"the same against the loop as defined", "pixelate12MP", "pixelateLiterally12MP", ""},
        {"its blocks alone, as the canvas keeps them, against memcpy", "mosaicBlocks12MP",
         "copy12MP", ""},
        {"blur of 4000x3000 by 100, against memcpy", "blur12MP/radius100", "copy12MP",
         "at most 10"},
        {"blur by 100 against blur by 5", "blur12MP/radius100", "blur12MP/radius5", "at most 1.15"},
        {"arrow of 100 points, width 12, scale 3: with against without its shadow",
         "arrowWithShadow", "arrowWithoutShadow", "at most 10"},
        {"hit test that misses: 10,000 tools against 10", "hitTest10000", "hitTest10", ""},
        {"10,000 undo steps, against memcpy of 12 megapixels", "undoSteps10000", "copy12MP", ""},
        {"frame of a drag at 1170x2532: 100 tools against 10", "dragFrame/of100", "dragFrame/of10",
         ""},
        {"the same: 1,000 tools against 10", "dragFrame/of1000", "dragFrame/of10", ""},
        {"the same: 10,000 tools against 10", "dragFrame/of10000", "dragFrame/of10", "at most 1.3"},
        {"frame of a drag of 200x200 points, against memcpy of its damage", "dragFrame/large",
         "copyDamageOfLarge", ""},
        {"12 frames of the panel's opening at 1170x2532, against memcpy of as many screens",
         "panelOpening", "copyScreens", ""},
        {"20 points added by hand, a frame each: at 10,000 points against 100",
         "addedPoints/at10000", "addedPoints/at100", "at most 1.2"},
        {"outlined text of 7 characters, 72 pixels high, at first: against filling its box",
         "textFirst", "fillTextBox", ""},
        {"the same, laid out already", "textAgain", "fillTextBox", ""},
        {"a letter typed at the end of 100,000 characters, with its frame: against shaping them "
         "once",
         "longTextTyped", "longTextShaped", "at most 1"},
        {"the same amid them", "longTextTypedAmid", "longTextShaped", "at most 1"},
        {"the same where they are one paragraph", "longTextTypedAmidOne", "longTextShaped",
         "at most 1"},
        {"typing them ended, with its frame", "longTextEnded/iterations:3", "longTextShaped",
         "at most 1"},
        {"a step of their drag, with its frame", "longTextDragged/iterations:20", "longTextShaped",
         "at most 1"},
        {"12 megapixels exported as PNG, against the encoder alone", "exportAsPng",
         "encodePngAlone", "at most 1.2"},
        {"a JPEG of 12 megapixels saved with an arrow, against decoding and encoding it once",
         "saveJpegWithArrow", "decodeAndEncodeJpeg", "at most 1"},
        {"finishing a line, with its frame: 10,000 tools against 10", "lineStep/finish10000",
         "lineStep/finish10", ""},
        {"undoing it, the same", "lineStep/undo10000", "lineStep/undo10", ""},
        {"redoing it, the same", "lineStep/redo10000", "lineStep/redo10", ""},
        {"selecting a tool, touch-down and first move: 10,000 tools against 10",
         "selectTool/of10000", "selectTool/of10", ""},
        {"recording a step: 10,000 tools against 10", "recordStep/of10000", "recordStep/of10",
         "at most 1.2"},
    });
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\n%s", reporter.table().c_str());
    if (reporter.bytesPerStep() > 0) {
        std::printf("\nOne recorded change of a box keeps %.0f bytes (goal: at most 1024).\n",
                    reporter.bytesPerStep());
    }
    return 0;
}
