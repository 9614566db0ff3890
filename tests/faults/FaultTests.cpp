#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kalimkit/backend/cairo/CairoDevice.h"
#include "kalimkit/codec/Encode.h"
#include "kalimkit/codec/Files.h"
#include "kalimkit/host/files/EncodedPicture.h"
#include "kalimkit/host/files/OpenedFile.h"
#include "kalimkit/host/files/SavedDocument.h"
#include "kalimkit/host/headless/ScenarioPlayer.h"
#include "kalimkit/store/SqliteWorkStore.h"
#include "tests/faults/Faults.h"
#include "tests/support/ProgramRun.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace kalim::test {

namespace {

namespace fs = std::filesystem;

class Files : public ScenarioFiles {
public:
    explicit Files(gfx::Device& device) : _device(device) {}

    LoadedPicture loadPicture(const std::string& path) override {
        OpenedFile opened = openFile(path);
        if (opened.error) return {nullptr, *opened.error};
        return {_origins.make(_device, opened), {}};
    }
    std::optional<std::string> savePicture(const std::string& path,
                                           const gfx::ImageRef& image) override {
        return write(path, encodePicture(*image, {}, _origins, {}));
    }
    std::optional<std::string> saveExport(const std::string& path, const gfx::ImageRef& image,
                                          const MDrawView& canvas) override {
        codec::SavingOptions options;
        options.format = codec::FileFormat::Jpeg;
        return write(path, encodeExport(image, canvas, _origins, options));
    }
    std::optional<std::string> saveDocument(const std::string& path, MDrawView& canvas,
                                            const DocumentSaving& /*saving*/) override {
        return kalim::saveDocument(canvas, _origins, {}, path);
    }

private:
    static std::optional<std::string> write(const std::string& path,
                                            const codec::SavedPicture& saved) {
        return saved.error ? saved.error : codec::writeFileAtomically(path, saved.bytes);
    }

    gfx::Device& _device;
    PictureOrigins _origins;
};

// Opens a picture, draws on it, saves it and the work, and goes on with what another run has left.
// Whether nobody has complained.
bool openDrawSaveAndRecover(gfx::Device& device, const fs::path& folder) {
    const auto file = [&](const char* name) { return "\"" + (folder / name).string() + "\""; };
    const std::string steps[] = {
        "{\"picture\":" + file("photo.jpg") + "}",
        R"({"call":"beginDrawingForTypeWithDrawType","args":[7,0]})",
        R"({"touch":"began","points":[[20,20]]})",
        R"({"touch":"moved","points":[[40,30]]})",
        R"({"touch":"ended","points":[[60,60]]})",
        R"({"call":"undo"})",
        R"({"call":"redo"})",
        R"({"print":"canvas"})",
        "{\"export\":" + file("out.jpg") + R"(,"at":"picture"})",
        "{\"saveDocument\":" + file("work.kalim") + "}",
    };
    Files files(device);
    ScenarioScreen screen;
    screen.canvas = {120, 120};
    screen.scale = 1;
    ScenarioPlayer player(
        device, files, [](const std::string&) {}, screen);
    for (const std::string& step : steps)
        if (player.play(step)) return false;
    store::SqliteWorkStore works((folder / "works.sqlite").string());
    const std::string id = works.begin({"photo", std::string(64, 'a'), {1, 2, 3}, "set-up"});
    works.record(id, "step");
    std::string left;
    works.list([&](const std::vector<ui::WorkSummary>& list) {
        if (!list.empty()) left = list.front().id;
    });
    works.open(left, [](const std::optional<ui::Work>&) {});
    works.end(id);
    return !id.empty();
}

enum Verdict { fine = 0, leaks = 3, leavesHalf = 4, isBroken = 5 };

class Faults : public testing::Test {
protected:
    void SetUp() override {
        codec::Bytes photo;
        ASSERT_EQ(codec::encodeJpeg(gfx::Bitmap(64, 48), 90, photo), std::nullopt);
        ASSERT_EQ(codec::writeFileAtomically(folder.path() / "photo.jpg", photo), std::nullopt);
        device = gfx::CairoDevice::make();
        // What is made once for the whole process is not of the run.
        ASSERT_TRUE(openDrawSaveAndRecover(*device, folder.path()));
        picture = readText(folder.path() / "out.jpg");
        document = readText(folder.path() / "work.kalim");
    }
    void TearDown() override {
        device.reset();
        gfx::CairoDevice::releaseFontCaches();
    }

    // Runs with one fault, in a process of its own, and once more without.
    Verdict verdictOn(const std::function<void()>& plantFault) const {
        plantFault();
        try {
            openDrawSaveAndRecover(*device, folder.path());
        } catch (const std::exception&) {
        }
        failAllocation(0);
        failFileCall(0, 0);
        if (!isWhole("out.jpg", picture) || !isWhole("work.kalim", document)) return leavesHalf;
        for (const auto& entry : fs::directory_iterator(folder.path()))
            if (entry.path().filename().string().starts_with(".kalim")) return leavesHalf;
        if (!openDrawSaveAndRecover(*device, folder.path())) return isBroken;
#if defined(__SANITIZE_ADDRESS__)
        if (__lsan_do_recoverable_leak_check() != 0) return leaks;
#endif
        return fine;
    }

    void expectFine(long number, const std::function<void()>& plantFault) const {
        const pid_t process = ::fork();
        if (process == 0) ::_exit(verdictOn(plantFault));
        int status = 0;
        ::waitpid(process, &status, 0);
        EXPECT_EQ(status, fine) << "fault " << number;
    }

    // So many that the sanitizers stay quick; all where the user asks for it.
    static long strideOf(long count) {
        constexpr long usual = 60;
        return std::getenv("KALIM_ALL_FAULTS") != nullptr ? 1 : std::max(1L, count / usual);
    }

    TemporaryFolder folder;
    std::shared_ptr<gfx::CairoDevice> device;
    std::string picture;
    std::string document;

private:
    // The old file, which is the same as the new one, all of it or nothing.
    bool isWhole(const char* name, const std::string& expected) const {
        return !fs::exists(folder.path() / name) || readText(folder.path() / name) == expected;
    }
};

TEST_F(Faults, OfEveryAllocationAreErrors) {
    failAllocation(0);
    openDrawSaveAndRecover(*device, folder.path());
    const long count = allocations();
    ASSERT_GT(count, 500);
    for (long number = 1; number <= count; number += strideOf(count))
        expectFine(number, [number] { failAllocation(number); });
}

TEST_F(Faults, OfEveryWriteAreErrors) {
    failFileCall(0, 0);
    openDrawSaveAndRecover(*device, folder.path());
    const long count = fileCalls();
    ASSERT_GT(count, 20);
    for (long number = 1; number <= count; number += strideOf(count))
        expectFine(number, [=] { failFileCall(number, number % 2 == 0 ? EIO : ENOSPC); });
}

}  // namespace

}  // namespace kalim::test
