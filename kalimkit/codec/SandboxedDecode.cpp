#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "kalimkit/codec/DecodeSteps.h"
#include "kalimkit/codec/Sandbox.h"

namespace kalim::codec {

namespace {

// What goes along with the pixels.
struct PictureFacts {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t orientation = 0;
    gfx::PixelGrid grid;
    std::int32_t isImported = 0;
    std::int32_t bitDepth = 0;
    std::array<char, 128> profileName{};
};

SandboxOutput* pixelOutput = nullptr;

std::shared_ptr<std::uint8_t[]> makeRoom(std::size_t bytes) {
    // It is the output's.
    return {pixelOutput->allocate(bytes), [](std::uint8_t*) {}};
}

std::optional<std::string> decodeJob(std::span<const ByteSpan> inputs, SandboxOutput& output) {
    DecodeLimits limits;
    std::memcpy(&limits, inputs[1].data(), sizeof limits);
    pixelOutput = &output;
    setPixelPlace(makeRoom);
    DecodeResult result = decode(inputs[0], {}, limits);
    if (result.error) return result.error->substr(std::string(": ").size());
    PictureFacts facts{result.bitmap.width(), result.bitmap.height(),
                       static_cast<std::int32_t>(result.orientation), result.grid};
    if (result.imported) {
        facts.isImported = 1;
        facts.bitDepth = result.imported->bitDepth;
        const std::string& name = result.imported->profileName;
        std::copy_n(name.begin(), std::min(name.size(), facts.profileName.size()),
                    facts.profileName.begin());
    }
    std::memcpy(output.facts().data(), &facts, sizeof facts);
    return std::nullopt;
}

bool isPlausible(const gfx::PixelGrid& grid) {
    constexpr int most = 1 << 10;
    const auto isWithin = [](int value, int least, int greatest) {
        return value >= least && value <= greatest;
    };
    return isWithin(grid.cell.width, 1, most) && isWithin(grid.cell.height, 1, most) &&
           isWithin(grid.x, -most, 0) && isWithin(grid.y, -most, 0) &&
           isWithin(grid.reach, 0, most);
}

// The pixels stay where they are.
DecodeResult take(SandboxOutcome outcome, const DecodeLimits& limits) {
    DecodeResult result;
    PictureFacts facts;
    std::memcpy(&facts, outcome.facts.data(), sizeof facts);
    const auto width = static_cast<std::uint32_t>(facts.width);
    const auto height = static_cast<std::uint32_t>(facts.height);
    result.error = sizeProblem(width, height, limits);
    if (result.error) return result;
    if (facts.orientation < 0 || facts.orientation > 7 || !isPlausible(facts.grid) ||
        outcome.size != std::uint64_t{4} * width * height) {
        result.error = "the decoder's answer is damaged";
        return result;
    }
    result.grid = facts.grid;
    if (facts.isImported != 0) {
        const std::string_view name(facts.profileName.data(), facts.profileName.size());
        result.imported = ImportedFacts{std::clamp(facts.bitDepth, 0, 64),
                                        std::string(name.substr(0, name.find('\0')))};
    }
    result.orientation = static_cast<gfx::ImageOrientation>(facts.orientation);
    result.bitmap = gfx::Bitmap::adopted(facts.width, facts.height, std::move(outcome.bytes));
    return result;
}

}  // namespace

DecodeResult decodeSandboxed(ByteSpan bytes, const std::string& name, const DecodeLimits& limits) {
    const ByteSpan asked{reinterpret_cast<const std::uint8_t*>(&limits), sizeof limits};
    const std::array<ByteSpan, 2> inputs{bytes, asked};
    SandboxOutcome outcome = Sandbox::run(decodeJob, inputs, {limits.maxMemory, limits.maxSeconds});
    if (outcome.isRefused) return decode(bytes, name, limits);
    DecodeResult result;
    result.error = std::move(outcome.error);
    if (!result.error) result = take(std::move(outcome), limits);
    if (result.error) result.error = name + ": " + *result.error;
    return result;
}

}  // namespace kalim::codec
