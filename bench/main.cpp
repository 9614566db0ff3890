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
    });
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\n%s", reporter.table().c_str());
    if (reporter.bytesPerStep() > 0) {
        std::printf("\nOne recorded change of a box keeps %.0f bytes (goal: at most 1024).\n",
                    reporter.bytesPerStep());
    }
    return 0;
}
