#include "cli/Render.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <memory>
#include <new>
#include <thread>
#include <utility>

#include "cli/Complaint.h"
#include "cli/Fonts.h"
#include "cli/OpenedCanvas.h"
#include "cli/Opening.h"
#include "cli/RenderTasks.h"
#include "cli/StandardOutput.h"
#include "cli/Workers.h"
#include "kalimkit/backend/cairo/CairoDevice.h"
#include "kalimkit/codec/Files.h"
#include "kalimkit/document/Sha256.h"
#include "kalimkit/host/files/EncodedPicture.h"
#include "kalimkit/host/files/OpenedFile.h"
#include "kalimkit/image/MDrawImageUtil.h"
#include "kalimkit/json/JsonText.h"

namespace kalim::cli {

namespace {

// Makes one picture after the other. The fonts are looked for once.
class Renderer {
public:
    explicit Renderer(const RenderOptions& options) : _options(options) {}

    // Empty on success, else a sentence that begins with a name.
    std::string render(const RenderTask& task) {
        try {
            if (const auto problem = prepare()) return task.file + ": " + *problem;
            return renderFile(task);
        } catch (const std::bad_alloc&) {
            return task.file + ": there is not enough memory";
        } catch (const std::exception& error) {
            return task.file + ": " + error.what();
        }
    }

private:
    std::optional<std::string> prepare() {
        if (_device) return std::nullopt;
        auto device = gfx::CairoDevice::make();
        const auto problem = addFonts(*device, _options.fonts);
        if (!problem) _device = std::move(device);
        return problem;
    }

    std::string renderFile(const RenderTask& task) {
        OpenedFile opened = openFile(task.file, sandboxed(_options.isFlat));
        if (opened.error) return *opened.error;
        if (!opened.document && !_options.isFlat)
            return task.file + ": this is a picture without a document inside";
        // To reduce a picture an environment is needed as well.
        const Document blank;
        OpenedCanvas canvas(*_device, opened.document ? *opened.document : blank,
                            _options.isScreenSize);
        std::string problem;
        gfx::ImageRef image =
            opened.document ? drawn(canvas, opened, problem) : canvas.takePicture(opened);
        ExportedPicture exported = originOf(image, canvas);
        if (image && _options.maxSide) reduce(image, exported, *_options.maxSide);
        if (problem.empty() && isPhoto(task.output, opened)) {
            problem = task.output + " is its photo; name another place with -o or --out-dir";
        }
        if (problem.empty() && !image) problem = "there is nothing to render, or no room for it";
        if (!problem.empty()) return task.file + ": " + problem;
        return write(task, encodePicture(*image, exported, canvas.origins(),
                                         savingOptions(_options.writing, task.format)));
    }

    static ExportedPicture originOf(const gfx::ImageRef& image, OpenedCanvas& opened) {
        const MDrawView& canvas = opened.canvas();
        ExportedPicture origin;
        origin.source = canvas.sourceImage();
        if (!image || origin.source) return canvas.exportedPicture(image).value_or(origin);
        // A picture without a document.
        origin.source = image;
        origin.part = {0, 0, image->pixelSize().width, image->pixelSize().height};
        return origin;
    }

    gfx::ImageRef drawn(OpenedCanvas& canvas, OpenedFile& opened, std::string& problem) const {
        problem = canvas.open(opened).value_or("");
        if (!problem.empty()) return nullptr;
        return _options.isScreenSize ? canvas.canvas().exportImage()
                                     : canvas.canvas().exportImageAtPictureScale();
    }

    // Whether the picture would take the place of what the document was drawn on.
    static bool isPhoto(const std::string& output, const OpenedFile& opened) {
        const bool hasPhoto = opened.document && opened.document->picture;
        codec::Bytes there;
        if (!hasPhoto || output == "-" || codec::readFile(output, there)) return false;
        const std::string_view bytes{reinterpret_cast<const char*>(there.data()), there.size()};
        return sha256(bytes) == opened.document->picture->sha256;
    }

    static void reduce(gfx::ImageRef& image, ExportedPicture& exported, int side) {
        const gfx::PixelSize size = image->pixelSize();
        const int longer = std::max(size.width, size.height);
        if (longer <= side) return;
        const double factor = static_cast<double>(side) / longer;
        const auto shorten = [factor](int length) {
            return std::max(1.0, std::round(length * factor));
        };
        constexpr double pixelsPerPoint = 1;
        image = MDrawImageUtil::resizedImageToSize(
            image, {shorten(size.width), shorten(size.height)}, pixelsPerPoint);
        exported.part = {};
    }

    std::string write(const RenderTask& task, const codec::SavedPicture& picture) const {
        if (picture.error) return task.file + ": " + *picture.error;
        std::optional<std::string> problem;
        if (task.output == "-") {
            StandardOutput output;
            output.write(picture.bytes);
            problem = output.error();
        } else {
            problem = codec::writeFileAtomically(task.output, picture.bytes);
        }
        if (!problem) tellOf(picture, _options.writing, task.output);
        return problem.value_or(std::string());
    }

    const RenderOptions& _options;
    std::shared_ptr<gfx::CairoDevice> _device;
};

// What is told while the work goes on: a line that counts, what has failed, and JSON.
class Report {
public:
    Report(const RenderOptions& options, std::size_t count) : _options(options), _count(count) {}

    void tell(const RenderTask& task, const std::string& problem) {
        ++_done;
        if (!problem.empty()) {
            ++_failed;
            clearLine();
            say(problem);
        }
        if (_options.isJson) {
            const auto [key, value] =
                problem.empty() ? std::pair("output", task.output) : std::pair("error", problem);
            _output.printLine(dumpJson(JsonValue::Object{{"file", task.file}, {key, value}}));
        }
        count();
    }

    int finish() {
        clearLine();
        if (_output.error()) return complain(*_output.error());
        return _failed > 0 ? failure : 0;
    }

private:
    void count() const {
        if (!_counts) return;
        std::fprintf(stderr, "\r%zu of %zu", _done, _count);
        if (_failed > 0) std::fprintf(stderr, ", %zu failed", _failed);
        std::fflush(stderr);
    }
    void clearLine() const {
        if (_counts) std::fputs("\r\x1B[K", stderr);
    }

    const RenderOptions& _options;
    std::size_t _count;
    std::size_t _done = 0;
    std::size_t _failed = 0;
    bool _counts = ::isatty(STDERR_FILENO) != 0;
    StandardOutput _output;
};

}  // namespace

int render(const RenderOptions& options) {
    std::string problem;
    const std::vector<RenderTask> tasks = renderTasks(options, problem);
    if (!problem.empty()) return complain(problem);
    Report report(options, tasks.size());
    std::vector<std::size_t> numbers;
    for (std::size_t i = 0; i < tasks.size(); ++i) {
        const RenderTask& task = tasks[i];
        if (task.isDone || !task.problem.empty()) {
            report.tell(task, task.problem);
        } else {
            numbers.push_back(i);
        }
    }
    Renderer renderer(options);
    Workers workers(
        [&](std::size_t number) { return renderer.render(tasks[number]); },
        [&](std::size_t number) { return tasks[number].file; },
        [&](std::size_t number, const std::string& failed) { report.tell(tasks[number], failed); });
    const unsigned cores = std::max(1U, std::thread::hardware_concurrency());
    workers.run(numbers, options.workers > 0 ? static_cast<std::size_t>(options.workers) : cores);
    return report.finish();
}

}  // namespace kalim::cli
