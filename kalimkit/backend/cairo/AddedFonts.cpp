#include "kalimkit/backend/cairo/AddedFonts.h"

#include <fontconfig/fcfreetype.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <span>
#include <string_view>
#include <utility>

namespace kalim::gfx {

namespace {

// A file without a name, which the process reaches by its number; -1 and errno after an error.
int makeFile(const std::vector<std::uint8_t>& bytes) {
    const int file = ::memfd_create("font", MFD_CLOEXEC);
    for (std::size_t written = 0; file >= 0 && written < bytes.size();) {
        const ssize_t count = ::write(file, bytes.data() + written, bytes.size() - written);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) {
            ::close(file);
            return -1;
        }
        written += static_cast<std::size_t>(count);
    }
    return file;
}

bool isPacked(const std::vector<std::uint8_t>& file) {
    const std::string_view head(reinterpret_cast<const char*>(file.data()),
                                std::min<std::size_t>(file.size(), 4));
    return head == "wOFF" || head == "wOF2";
}

// Empty for what is no font, or one that cannot be drawn at every size.
std::string familyOf(const std::string& path) {
    const auto* const name = reinterpret_cast<const FcChar8*>(path.c_str());
    int count = 0;
    FcPattern* const pattern = FcFreeTypeQuery(name, 0, nullptr, &count);
    if (!pattern) return {};
    FcChar8* family = nullptr;
    FcBool isScalable = FcFalse;
    const bool isFound = FcPatternGetString(pattern, FC_FAMILY, 0, &family) == FcResultMatch &&
                         FcPatternGetBool(pattern, FC_SCALABLE, 0, &isScalable) == FcResultMatch;
    std::string result;
    if (isFound && isScalable) result = reinterpret_cast<const char*>(family);
    FcPatternDestroy(pattern);
    return result;
}

// Pango takes commas for the ends of names.
std::string ownName(std::string family) {
    std::ranges::replace(family, ',', ' ');
    return family + " (added)";
}

// Gives the faces of a file names of their own; these, each once, in the order of the faces.
std::vector<std::string> rename(FcFontSet* fonts, const std::string& path) {
    std::vector<std::string> names;
    for (FcPattern* const font : std::span(fonts->fonts, static_cast<std::size_t>(fonts->nfont))) {
        FcChar8* file = nullptr;
        FcChar8* family = nullptr;
        const bool isOfFile = FcPatternGetString(font, FC_FILE, 0, &file) == FcResultMatch &&
                              path == reinterpret_cast<const char*>(file) &&
                              FcPatternGetString(font, FC_FAMILY, 0, &family) == FcResultMatch;
        if (!isOfFile) continue;
        const std::string name = ownName(reinterpret_cast<const char*>(family));
        FcPatternDel(font, FC_FAMILY);
        FcPatternAddString(font, FC_FAMILY, reinterpret_cast<const FcChar8*>(name.c_str()));
        if (std::ranges::find(names, name) == names.end()) names.push_back(name);
    }
    return names;
}

}  // namespace

AddedFonts::~AddedFonts() {
    for (const int file : _files)
        ::close(file);
}

AddedFont AddedFonts::add(const std::vector<std::uint8_t>& file) {
    if (isPacked(file)) return {{}, "this is a WOFF file; only TrueType and OpenType are read"};
    const int number = makeFile(file);
    if (number < 0)
        return {{}, std::string("there is no room for a font: ") + std::strerror(errno)};
    const std::string path = "/proc/self/fd/" + std::to_string(number);
    const std::string family = familyOf(path);
    if (!family.empty() && !_config) _config.reset(FcInitLoadConfigAndFonts());
    const bool isAdded =
        !family.empty() && _config &&
        FcConfigAppFontAddFile(_config.get(), reinterpret_cast<const FcChar8*>(path.c_str()));
    if (!isAdded) {
        ::close(number);
        return {{}, "this is no font that can be read and drawn at every size"};
    }
    _files.push_back(number);
    for (std::string& name : rename(FcConfigGetFonts(_config.get(), FcSetApplication), path)) {
        if (std::ranges::find(_families, name) == _families.end())
            _families.push_back(std::move(name));
    }
    return {family, {}};
}

std::string AddedFonts::named(const std::string& family) const {
    const std::string name = ownName(family);
    return std::ranges::find(_families, name) == _families.end() ? family : name;
}

}  // namespace kalim::gfx
