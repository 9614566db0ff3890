#include "cli/Fonts.h"

#include <cstdint>
#include <utility>

#include "kalimkit/codec/Files.h"

namespace kalim::cli {

namespace {

// More than the largest fonts have.
constexpr std::uint64_t largestFont = 256 << 20;

}  // namespace

std::optional<std::string> addFonts(gfx::Device& device, const std::vector<std::string>& files) {
    for (const std::string& file : files) {
        codec::Bytes bytes;
        if (const auto problem = codec::readFile(file, bytes, largestFont))
            return "--font: " + *problem;
        const gfx::AddedFont added = device.addFont({bytes.begin(), bytes.end()});
        if (!added) return "--font: " + file + ": " + added.problem;
    }
    return std::nullopt;
}

}  // namespace kalim::cli
