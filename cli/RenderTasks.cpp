#include "cli/RenderTasks.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <string_view>
#include <system_error>

namespace kalim::cli {

namespace {

namespace fs = std::filesystem;

// Without the endings that a document has.
std::string stemOf(const std::string& file) {
    const fs::path name = fs::path(file).filename();
    const bool isDocument = name.extension() == ".kalim" || name.extension() == ".png";
    return isDocument ? name.stem().string() : name.string();
}

std::string outputOf(const RenderOptions& options, const std::string& file, PictureFormat format) {
    if (!options.output.empty()) return options.output;
    if (file == "-") return "-";
    const fs::path folder =
        options.folder.empty() ? fs::path(file).parent_path() : fs::path(options.folder);
    return (folder / (stemOf(file) + endingOf(format))).string();
}

// Names differ by what they lead to.
std::string placeOf(const std::string& path) {
    std::error_code error;
    const fs::path place = fs::weakly_canonical(fs::absolute(path, error), error);
    return error ? path : place.string();
}

bool isUpToDate(const RenderTask& task) {
    std::error_code error;
    const auto written = fs::last_write_time(task.output, error);
    if (error) return false;
    const auto saved = fs::last_write_time(task.file, error);
    return !error && written >= saved;
}

// What holds for all files.
std::string problemOf(const RenderOptions& options, bool writesOutput) {
    if (options.files.size() > 1 && !options.output.empty())
        return "-o names one picture, and there are " + std::to_string(options.files.size()) +
               " files; --out-dir names a folder";
    std::error_code error;
    if (!options.folder.empty() && !fs::is_directory(options.folder, error))
        return options.folder + ": there is no such folder";
    if (writesOutput && options.isJson)
        return "--json and the picture cannot both go to standard output";
    if (writesOutput && ::isatty(STDOUT_FILENO) != 0)
        return "standard output is a terminal; name a file with -o";
    return {};
}

}  // namespace

std::vector<RenderTask> renderTasks(const RenderOptions& options, std::string& problem) {
    const PictureFormat format =
        options.format.value_or(pictureFormatOfPath(options.output).value_or(PictureFormat::Png));
    std::vector<RenderTask> tasks;
    std::map<std::string, std::string> takenBy;
    for (const std::string& file : options.files) {
        if (file != "-") takenBy.emplace(placeOf(file), "");
    }
    for (const std::string& file : options.files) {
        RenderTask task{file, outputOf(options, file, format), format, {}, false};
        const bool isFile = task.output != "-";
        const auto [taken, isFree] = takenBy.emplace(placeOf(task.output), file);
        if (isFile && !isFree) {
            const std::string owner =
                taken->second.empty() ? "a file to be rendered" : "the picture of " + taken->second;
            task.problem = file + ": " + task.output + " is " + owner;
        }
        task.isDone = options.isUpdate && isFile && task.problem.empty() && isUpToDate(task);
        tasks.push_back(std::move(task));
    }
    const bool writesOutput = std::ranges::count(tasks, "-", &RenderTask::output) > 0;
    problem = problemOf(options, writesOutput);
    if (!problem.empty()) tasks.clear();
    return tasks;
}

}  // namespace kalim::cli
