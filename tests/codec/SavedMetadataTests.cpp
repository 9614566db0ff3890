#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "kalimkit/codec/CarriedMetadata.h"
#include "kalimkit/codec/Encode.h"
#include "kalimkit/codec/Md5.h"
#include "kalimkit/codec/PictureChunks.h"
#include "kalimkit/codec/Saving.h"
#include "kalimkit/codec/TiffStructure.h"
#include "tests/codec/PictureFiles.h"
#include "tests/support/ProgramRun.h"

namespace kalim::codec::test {

namespace {

using std::string_view_literals::operator""sv;
using kalim::test::readText;
using kalim::test::runProgram;
using kalim::test::TemporaryFolder;
using kalim::test::writeText;

const std::vector<std::string> endings{"jpg", "png", "webp"};
const std::map<std::string, Metadata> modes{
    {"safe", Metadata::Safe}, {"keep", Metadata::Keep}, {"none", Metadata::None}};

Bytes bytesOf(std::string_view text) {
    return {text.begin(), text.end()};
}

std::string textOf(const Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

gfx::Bitmap picture() {
    gfx::Bitmap bitmap(56, 56);
    for (int y = 0; y < bitmap.height(); ++y)
        std::fill_n(bitmap.row(y), bitmap.stride(), std::uint8_t{255});
    return bitmap;
}

FileFormat formatOf(const std::string& ending) {
    return ending == "jpg"   ? FileFormat::Jpeg
           : ending == "png" ? FileFormat::Png
                             : FileFormat::Webp;
}

Bytes saved(const Bytes& source, Metadata mode, const std::string& ending) {
    SavingSource from;
    from.file = source;
    SavingOptions options;
    options.format = formatOf(ending);
    options.metadata = mode;
    const SavedPicture saved = savePicture(picture(), from, options);
    EXPECT_EQ(saved.error, std::nullopt);
    EXPECT_EQ(errorOf(saved.bytes), "none");
    return saved.bytes;
}

Bytes freshFile(const std::string& ending) {
    return saved({}, Metadata::Safe, ending);
}

// What another program reads in a file: "IFD0:Make" and its value, as plain numbers.
using Told = std::map<std::string, std::string>;

class SavedMetadata : public testing::Test {
protected:
    void SetUp() override {
        if (std::string(KALIM_EXIFTOOL).empty()) GTEST_SKIP() << "exiftool is not installed";
    }
    void write(const std::string& name, const Bytes& bytes) const {
        writeText(folder.path() / name, textOf(bytes));
    }
    Bytes read(const std::string& name) const { return bytesOf(readText(folder.path() / name)); }

    void exiftool(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"-q", "-q", "-n", "-overwrite_original"});
        const auto run = runProgram(KALIM_EXIFTOOL, arguments, folder.path());
        ASSERT_EQ(run.status, 0) << run.errors;
    }
    // By the names of all files of the folder.
    std::map<std::string, Told> tellAll() const {
        const auto run =
            runProgram(KALIM_EXIFTOOL, {"-a", "-G1", "-s", "-n", "-U", "."}, folder.path());
        std::map<std::string, Told> all;
        Told* told = nullptr;
        std::istringstream lines(run.output);
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with("======== ./")) told = &all[line.substr(11)];
            const std::size_t groupEnd = line.find(']');
            const std::size_t colon = line.find(": ");
            if (!told || !line.starts_with('[') || colon == std::string::npos) continue;
            const std::size_t nameStart = line.find_first_not_of(' ', groupEnd + 1);
            const std::string name = line.substr(nameStart, line.find(' ', nameStart) - nameStart);
            (*told)[line.substr(1, groupEnd - 1) + ":" + name] = line.substr(colon + 2);
        }
        return all;
    }

    TemporaryFolder folder;
};

struct Row {
    // As the program writes it, or reads it where that differs; the values of secrets say so.
    std::string tag;
    std::string value;
    bool isSafe = false;
    std::string readValue = value;
    std::vector<std::string> sources = endings;
    std::vector<std::string> targets = endings;
};

const std::vector<std::string> jpegAndPng{"jpg", "png"};

const std::vector<Row>& rows() {
    static const std::vector<Row> table{
        {"IFD0:Make", "Canon", true},
        {"IFD0:Model", "Model X", true},
        {"IFD0:XResolution", "300", true},
        {"IFD0:ModifyDate", "2024:05:06 07:08:11", true},
        {"IFD0:Copyright", "Rights", true},
        {"IFD0:Orientation", "6", true, "1"},
        {"ExifIFD:DateTimeOriginal", "2024:05:06 07:08:09", true},
        {"ExifIFD:CreateDate", "2024:05:06 07:08:10", true},
        {"ExifIFD:OffsetTimeOriginal", "+02:00", true},
        {"ExifIFD:SubSecTimeOriginal", "123", true},
        {"ExifIFD:ExposureTime", "0.004", true},
        {"ExifIFD:FNumber", "2.8", true},
        {"ExifIFD:ISO", "400", true},
        {"ExifIFD:ExposureCompensation", "-0.5", true},
        {"ExifIFD:ExposureProgram", "3", true},
        {"ExifIFD:MeteringMode", "5", true},
        {"ExifIFD:Flash", "1", true},
        {"ExifIFD:FocalLength", "50", true},
        {"ExifIFD:WhiteBalance", "1", true},
        {"ExifIFD:ColorSpace", "1", true},
        {"ExifIFD:LensInfo", "24 70 2.8 4", true},
        {"ExifIFD:LensMake", "Lens Maker", true},
        {"ExifIFD:LensModel", "Lens 50", true},
        {"ExifIFD:ExifImageWidth", "9999", true, "56"},
        {"ExifIFD:ExifImageHeight", "8888", true, "56"},
        {"IFD0:Artist", "SECRET"},
        {"IFD0:ImageDescription", "SECRET"},
        {"IFD0:Software", "SECRET"},
        {"IFD0:XPComment", "SECRET"},
        {"ExifIFD:SerialNumber", "SECRET"},
        {"ExifIFD:LensSerialNumber", "SECRET"},
        {"ExifIFD:OwnerName", "SECRET"},
        {"ExifIFD:ImageUniqueID", "SECRET"},
        {"ExifIFD:UserComment", "SECRET"},
        {"GPS:GPSLatitude", "52.5"},
        {"GPS:GPSMapDatum", "SECRET"},
        {"XMP-dc:Title", "SECRET"},
        {"XMP-xmpMM:HistoryAction", "SECRET"},
        {"XMP-tiff:Orientation", "6", false, "1"},
        {"IPTC:City", "SECRET", false, "SECRET", jpegAndPng, jpegAndPng},
        {"File:Comment", "SECRET", false, "SECRET", {"jpg"}, {"jpg"}},
        {"PNG:Comment", "SECRET", false, "SECRET", {"png"}, {"png"}},
        {"PNG:Author", "SECRET", false, "SECRET", {"png"}, {"png"}},
        {"PNG:Copyright", "Rights", true, "Rights", {"png"}, {"png"}},
        {"PNG-pHYs:PixelsPerUnitX", "11811", true, "11811", {"png"}, {"png"}},
        {"JFIF:XResolution", "300", true, "300", jpegAndPng, {"jpg"}},
    };
    return table;
}

bool contains(const std::vector<std::string>& list, const std::string& one) {
    return std::ranges::count(list, one) > 0;
}

bool holdsSecret(const Bytes& file) {
    return textOf(file).find("SECRET") != std::string::npos ||
           textOf(file).find("S\0E\0C\0R\0"sv) != std::string::npos;
}

}  // namespace

TEST_F(SavedMetadata, AreThoseOfTheMode) {
    write("thumb.jpg", freshFile("jpg"));
    for (const std::string& source : endings) {
        std::vector<std::string> arguments{"-GPSLatitudeRef=N",
                                           "-JFIF:ResolutionUnit=1",
                                           "-JFIF:YResolution=300",
                                           "-PNG-pHYs:PixelsPerUnitY=11811",
                                           "-EXIF:SubjectArea=1 2 3 4",
                                           "-XMP-GCamera:MicroVideoOffset=77",
                                           "-ThumbnailImage<=thumb.jpg",
                                           "-XMP-xmp:ThumbnailImage<=thumb.jpg",
                                           "-PhotoshopThumbnail<=thumb.jpg"};
        for (const Row& row : rows()) {
            if (contains(row.sources, source)) arguments.push_back("-" + row.tag + "=" + row.value);
        }
        write("in." + source, freshFile(source));
        arguments.push_back("in." + source);
        exiftool(arguments);
        for (const auto& [modeName, mode] : modes) {
            for (const std::string& target : endings)
                write(modeName + "-" + source + "." + target,
                      saved(read("in." + source), mode, target));
        }
    }
    std::filesystem::remove(folder.path() / "thumb.jpg");
    const auto told = tellAll();
    ASSERT_EQ(told.size(), 30U);
    for (const auto& [name, file] : told) {
        const std::string mode = name.substr(0, name.find('-'));
        if (name.starts_with("in.")) {
            EXPECT_TRUE(file.contains("IFD1:ThumbnailImage") &&
                        file.contains("XMP-xmp:ThumbnailImage") &&
                        file.contains("XMP-GCamera:MicroVideoOffset"));
            continue;
        }
        const std::string source = name.substr(5, name.find('.') - 5);
        const std::string target = name.substr(name.find('.') + 1);
        // A JPEG is stored as the one before it was.
        const bool isTurned = source == "jpg" && target == "jpg";
        for (const Row& row : rows()) {
            const bool isOrientation = row.tag.ends_with(":Orientation");
            const bool isCarried = contains(row.sources, source) && contains(row.targets, target);
            const bool isThere = isCarried && (mode == "keep" || (mode == "safe" && row.isSafe) ||
                                               (isTurned && row.tag == "IFD0:Orientation"));
            const auto found = file.find(row.tag);
            if (!isThere) {
                // What another format had in another place may be here.
                const bool mayBe = mode == "keep" || (mode == "safe" && row.isSafe) ||
                                   row.tag.starts_with("JFIF:");
                EXPECT_TRUE(mayBe || found == file.end()) << name << " has " << row.tag;
                continue;
            }
            ASSERT_NE(found, file.end()) << name << " lacks " << row.tag;
            EXPECT_EQ(found->second, isTurned && isOrientation ? "6" : row.readValue)
                << name << " " << row.tag;
        }
        EXPECT_EQ(holdsSecret(read(name)), mode == "keep") << name;
        for (const auto& [tag, value] : file) {
            const bool isGone = tag.find("Thumbnail") != std::string::npos ||
                                tag.find("MicroVideo") != std::string::npos ||
                                tag.find("SubjectArea") != std::string::npos ||
                                tag.ends_with("Warning") || tag.ends_with("Error");
            EXPECT_FALSE(isGone) << name << " " << tag << value;
        }
    }
    EXPECT_EQ(told.at("keep-jpg.png").at("PNG:Comment"), "SECRET");
    EXPECT_EQ(told.at("keep-png.jpg").at("File:Comment"), "SECRET");
}

// The fields of a Canon's note count their places from the start of all Exif.
TEST_F(SavedMetadata, KeepAMakersNoteInItsPlaceWithoutItsPictures) {
    constexpr std::uint32_t place = 500;
    TiffStructure exif;
    exif.main.push_back(TiffStructure::text(0x010F, "Canon"));
    Bytes note = concatenated(exif.number(1, 2), exif.number(0x0009, 2));
    note = concatenated(note, concatenated(exif.number(tiffType::ascii, 2), exif.number(32, 4)));
    note = concatenated(note, exif.number(place + 18, 4));
    note = concatenated(note,
                        bytesOf("\0\0\0\0SECRET owner\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"sv));
    const std::size_t preview = note.size();
    note = concatenated(note, concatenated(freshFile("jpg"), bytesOf("behind")));
    exif.exif.push_back({makerNoteTag, tiffType::undefined, note, place});
    for (const std::string& source : endings) {
        Bytes file = freshFile(source);
        ASSERT_EQ(addMetadata(file, {.exif = writeTiff(exif)}), std::nullopt);
        write("in." + source, file);
        for (const std::string& target : endings) {
            const Bytes kept = saved(file, Metadata::Keep, target);
            write("keep-" + source + "." + target, kept);
            Bytes blanked = note;
            std::fill(blanked.begin() + static_cast<std::ptrdiff_t>(preview), blanked.end() - 6,
                      std::uint8_t{0});
            EXPECT_NE(textOf(kept).find(textOf(blanked)), std::string::npos) << target;
            EXPECT_FALSE(holdsSecret(saved(file, Metadata::Safe, target)));
        }
    }
    const auto all = tellAll();
    for (const auto& [name, told] : all)
        EXPECT_EQ(told.at("Canon:OwnerName"), "SECRET owner") << name;
}

TEST_F(SavedMetadata, KeepLongXmpAndOnlyWhatIsNoPicture) {
    const std::string title(100'000, '-');
    write("thumb.jpg", freshFile("jpg"));
    write("in.jpg", freshFile("jpg"));
    exiftool({"-XMP-dc:Title=" + title, "-XMP-dc:Rights=Mine & yours", "in.jpg"});
    std::filesystem::remove(folder.path() / "thumb.jpg");
    for (const std::string& target : endings)
        write("keep." + target, saved(read("in.jpg"), Metadata::Keep, target));
    // And back out of a format that does not cut it.
    write("again.jpg", saved(read("keep.webp"), Metadata::Keep, "jpg"));
    write("safe.jpg", saved(read("in.jpg"), Metadata::Safe, "jpg"));
    auto all = tellAll();
    for (const char* name : {"in.jpg", "keep.jpg", "keep.png", "keep.webp", "again.jpg"})
        EXPECT_EQ(all[name]["XMP-dc:Title"], title) << name;
    EXPECT_EQ(all["safe.jpg"]["IFD0:Copyright"], "Mine & yours");
    EXPECT_EQ(md5(bytesOf("abc")), "900150983CD24FB0D6963F7D28E17F72");

    // Blocks that nobody knows, behind the pixels' start as well as behind the file's end.
    const Bytes plain = freshFile("jpg");
    const auto segment = [](std::uint8_t marker, std::string_view data) {
        return concatenated({0xFF, marker, 0, static_cast<std::uint8_t>(data.size() + 2)},
                            bytesOf(data));
    };
    Bytes file = withInserted(plain, 20, segment(0xE9, "Unknown SECRET"));
    file = withInserted(file, 20, segment(0xE8, "Hidden \xFF\xD8\xFF\xE0 SECRET8"));
    file = withInserted(file, 20, segment(0xEB, "JP SECRET11"));
    file = concatenated(file, concatenated(plain, bytesOf("SECRET behind")));
    const std::string kept = textOf(saved(file, Metadata::Keep, "jpg"));
    EXPECT_NE(kept.find("Unknown SECRET"), std::string::npos);
    for (const char* gone : {"SECRET8", "SECRET11", "SECRET behind"})
        EXPECT_EQ(kept.find(gone), std::string::npos) << gone;
    EXPECT_FALSE(holdsSecret(saved(file, Metadata::Safe, "jpg")));
}

// A field of the list may be of a form in which others travel, or nowhere in the block.
TEST(SafeMetadata, HoldNothingBesideTheFieldsHoweverDamaged) {
    TiffStructure exif;
    TiffEntry model = TiffStructure::text(0x0110, "Model");
    model.value = concatenated(model.value, bytesOf("SECRET\0"sv));
    exif.main = {{0x010F, tiffType::undefined, bytesOf("SECRET"), 0},
                 model,
                 TiffStructure::text(0x0132, "2024 SECRET"),
                 {0x8298, tiffType::ascii, bytesOf("Mine\0Ours\0SECRET"sv), 0}};
    exif.exif = {{0x829A, tiffType::byte, bytesOf("SECRET"), 0},
                 {0x8827, tiffType::shortNumber, Bytes(3000, 7), 0},
                 {0x9000, tiffType::undefined, bytesOf("SECRET"), 0}};
    Bytes block = writeTiff(exif);
    for (const std::string& ending : endings) {
        Bytes file = freshFile(ending);
        addMetadata(file,
                    {.exif = concatenated(block, bytesOf("SECRET")), .xmp = bytesOf("<SECRET")});
        const Bytes safe = saved(file, Metadata::Safe, ending);
        EXPECT_FALSE(holdsSecret(safe)) << ending;
        EXPECT_NE(textOf(safe).find("Model\0"sv), std::string::npos);
        EXPECT_NE(textOf(safe).find("Mine\0Ours\0"sv), std::string::npos);
        EXPECT_LT(safe.size(), freshFile(ending).size() + 200);
        // What is no whole XML is not carried.
        EXPECT_EQ(textOf(saved(file, Metadata::Keep, ending)).find("<SECRET"), std::string::npos);
    }
    constexpr std::size_t behindHeader = 33;
    const Bytes text = makeChunk("tEXt", bytesOf("Copyright\0Mine\0SECRET"sv));
    const Bytes png =
        saved(withInserted(freshFile("png"), behindHeader, text), Metadata::Safe, "png");
    EXPECT_FALSE(holdsSecret(png));
    EXPECT_NE(textOf(png).find("Mine"), std::string::npos);
    std::erase_if(exif.exif, [](const TiffEntry& entry) { return entry.value.size() > 2000; });
    block = writeTiff(exif);
    const MetadataFacts facts{.format = FileFormat::Jpeg, .width = 64, .height = 48};
    Bytes file = freshFile("jpg");
    addMetadata(file, {.exif = block,
                       .xmp = bytesOf("<a b='c'><!-- d --><e:f>g</e:f></a>"),
                       .photoshop = bytesOf("8BIM\x04\x04\0\0\0\0\0\x0A\x1C\2\x5A\0\5Paris"sv)});
    const std::size_t end = file.size() - freshFile("jpg").size() + 20;
    for (std::size_t at = 2; at < end; ++at) {
        for (const int value : {0, 1, 8, 0x7F, 0xFF}) {
            Bytes damaged = file;
            damaged[at] = static_cast<std::uint8_t>(value);
            for (const auto& [name, mode] : modes) {
                const CarriedMetadata carried = carriedMetadata(damaged, mode, facts);
                EXPECT_LE(carried.exif.size(), file.size() + 200);
            }
            carriedMetadata(ByteSpan(damaged).first(at), Metadata::Keep, facts);
        }
    }
    // Directories that lead to themselves.
    const Bytes circle = bytesOf(
        "II\x2A\0\x08\0\0\0\2\0\x69\x87\4\0\1\0\0\0\x08\0\0\0\x25\x88\4\0\1\0\0\0\x08\0\0\0\0\0\0\0"sv);
    EXPECT_TRUE(readTiff(circle)->isEmpty());
}

}  // namespace kalim::codec::test
