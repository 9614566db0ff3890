#include "kalimkit/codec/JpegLaying.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>

#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/PixelMap.h"
#include "kalimkit/image/UprightBitmap.h"
#include "tests/codec/JpegFiles.h"
#include "tests/codec/PictureFiles.h"

namespace kalim::codec::test {

namespace {

constexpr const char* samplings[] = {
    "1x1 1x1 1x1", "2x1 1x1 1x1", "1x2 1x1 1x1", "2x2 1x1 1x1", "4x1 1x1 1x1", "4x2 1x1 1x1",
    "2x2 2x1 1x2", "2x1 2x1 2x1", "1x1 2x2 1x1", "3x1 1x1 1x1", "1x1",         "2x2",
};

gfx::Bitmap uprightOf(const Bytes& file, gfx::ImageOrientation orientation) {
    const DecodeResult decoded = decode(file, "photo");
    EXPECT_EQ(decoded.error, std::nullopt);
    return uprightBitmap(decoded.bitmap, orientation);
}

gfx::Bitmap uprightOf(const Bytes& file) {
    return uprightOf(file, decode(file, "photo").orientation);
}

bool isNear(const std::uint8_t* first, const std::uint8_t* second, int most) {
    for (int part = 0; part < 3; ++part) {
        if (std::abs(first[part] - second[part]) > most) return false;
    }
    return true;
}

// Pixels that differ by more, outside of the rectangle.
int differences(const gfx::Bitmap& first, const gfx::Bitmap& second, const gfx::PixelRect& apart,
                int most = 0) {
    EXPECT_EQ(first.size(), second.size());
    int count = 0;
    for (int y = 0; y < first.height(); ++y) {
        for (int x = 0; x < first.width(); ++x) {
            const bool isApart = x >= apart.x && y >= apart.y && x < apart.x + apart.width &&
                                 y < apart.y + apart.height;
            if (!isApart && !isNear(first.row(y) + 4 * x, second.row(y) + 4 * x, most)) ++count;
        }
    }
    return count;
}

double squaredError(const gfx::Bitmap& first, const gfx::Bitmap& second) {
    double sum = 0;
    for (std::size_t i = 0; i < first.byteCount(); ++i) {
        const double difference = first.data()[i] - second.data()[i];
        sum += difference * difference;
    }
    return sum;
}

gfx::PixelRect grown(const gfx::PixelRect& rect, int by) {
    return {rect.x - by, rect.y - by, rect.width + 2 * by, rect.height + 2 * by};
}

// A picture, what is made of it and what of that is drawn.
struct Work {
    explicit Work(const Bytes& bytes) : file(bytes), upright(uprightOf(file)), result(upright) {
        source.file = file;
        source.part = {0, 0, upright.width(), upright.height()};
        touched.assign(result.byteCount() / 4, 0);
    }
    // The part alone, turned.
    void cut(const gfx::PixelRect& part, int quarterTurns) {
        gfx::Bitmap shown(part.width, part.height);
        for (int y = 0; y < part.height; ++y)
            std::copy_n(upright.row(part.y + y) + 4 * part.x, shown.stride(), shown.row(y));
        constexpr gfx::ImageOrientation turns[] = {
            gfx::ImageOrientation::Up, gfx::ImageOrientation::Left, gfx::ImageOrientation::Down,
            gfx::ImageOrientation::Right};
        result = uprightBitmap(shown, turns[quarterTurns]);
        source.part = part;
        source.quarterTurns = quarterTurns;
        touched.assign(result.byteCount() / 4, 0);
    }
    void draw(const gfx::PixelRect& rect, const Bytes& bgra) {
        for (int y = rect.y; y < rect.y + rect.height; ++y) {
            for (int x = rect.x; x < rect.x + rect.width; ++x) {
                std::ranges::copy(bgra, result.row(y) + 4 * x);
                touched[static_cast<std::size_t>(y * result.width() + x)] = 1;
            }
        }
    }
    LaidJpeg laid() const { return layIntoJpeg(result, source, touched); }

    Bytes file;
    gfx::Bitmap upright;
    gfx::Bitmap result;
    SavingSource source;
    Bytes touched;
};

// Changes between two files that differ within a square only.
TEST(PixelGrid, HoldsWhatADecoderMixes) {
    for (const std::string sampling : samplings) {
        for (std::uint16_t orientation = 1; orientation <= 8; ++orientation) {
            for (const int kind : {0, 1, 2}) {
                PatternRecipe recipe{.sampling = sampling, .orientation = orientation};
                recipe.isProgressive = kind > 0;
                recipe.lacksBits = kind > 1;
                const Bytes first = makePattern(recipe);
                recipe.otherX = 50, recipe.otherY = 41, recipe.otherSide = 3;
                const gfx::Bitmap one = uprightOf(first);
                const gfx::Bitmap other = uprightOf(makePattern(recipe));
                const gfx::PixelGrid grid = pixelGrid(first);
                // The stored cell around the square, and where it is seen.
                const gfx::ImageOrientation seen = decode(first, "").orientation;
                const auto [width, height] =
                    withExchangedSides(grid.cell, gfx::exchangesSides(seen));
                const gfx::PixelRect cell =
                    PixelMap::upright(seen, one.size())
                        .apply({51 / width * width, 42 / height * height, width, height});
                SCOPED_TRACE(sampling + " orientation " + std::to_string(orientation) + " kind " +
                             std::to_string(kind));
                EXPECT_EQ((cell.x - grid.x) % grid.cell.width, 0);
                EXPECT_EQ((cell.y - grid.y) % grid.cell.height, 0);
                EXPECT_EQ(differences(one, other, grown(cell, grid.reach)), 0);
                EXPECT_GT(differences(one, other, {}), 0);
            }
        }
    }
}

TEST(JpegLaying, KeepsWhatNothingTouches) {
    for (const std::string sampling : samplings) {
        for (std::uint16_t orientation = 1; orientation <= 8; ++orientation) {
            PatternRecipe recipe{.sampling = sampling, .orientation = orientation};
            recipe.isProgressive = orientation % 2 == 0;
            recipe.isRgb = orientation > 6;
            recipe.restartInterval = orientation == 5 ? 3 : 0;
            SCOPED_TRACE(sampling + " orientation " + std::to_string(orientation));
            Work work(makePattern(recipe));
            const JpegFacts before = factsOf(work.file);
            const gfx::PixelGrid grid = pixelGrid(work.file);
            const int reach = std::max(grid.cell.width, grid.cell.height) + grid.reach;

            // Nothing drawn: the same blocks, and the result of any number of saves.
            EXPECT_EQ(factsOf(work.laid().bytes), before);

            const gfx::PixelRect box{30, 40, 11, 9};
            const bool isGrey = sampling.size() == 3;
            work.draw(box, isGrey ? Bytes{200, 200, 200, 255} : Bytes{20, 30, 230, 255});
            const LaidJpeg laid = work.laid();
            ASSERT_EQ(laid.encodedAnew, "");
            EXPECT_EQ(laid.isGrey, isGrey);
            const JpegFacts after = factsOf(laid.bytes);
            EXPECT_EQ(after.isProgressive, before.isProgressive);
            EXPECT_EQ(after.restartInterval, before.restartInterval);
            EXPECT_EQ(after.space, before.space);
            ASSERT_EQ(after.colours.size(), before.colours.size());
            for (std::size_t i = 0; i < after.colours.size(); ++i) {
                EXPECT_EQ(after.colours[i].across, before.colours[i].across);
                EXPECT_EQ(after.colours[i].down, before.colours[i].down);
                EXPECT_EQ(after.colours[i].table, before.colours[i].table);
                EXPECT_NE(after.colours[i].blocks, before.colours[i].blocks);
            }
            const gfx::Bitmap seen = uprightOf(laid.bytes, decode(work.file, "").orientation);
            EXPECT_EQ(differences(seen, work.upright, grown(box, reach)), 0);
            EXPECT_TRUE(isNear(seen.row(44) + 4 * 35, work.result.row(44) + 4 * 35, 40));
        }
    }
}

// The first whole cells from the left and from the top, or the second ones.
gfx::PixelRect cellsOf(const gfx::PixelGrid& grid, gfx::PixelSize size) {
    const auto begin = [](int at, int cell, int side) {
        const int first = at < 0 ? at + cell : at;
        return first + 4 * cell <= side ? first + cell : first;
    };
    return {begin(grid.x, grid.cell.width, size.width),
            begin(grid.y, grid.cell.height, size.height), 3 * grid.cell.width,
            3 * grid.cell.height};
}

TEST(JpegLaying, TurnsAndCutsAtTheBordersOfCells) {
    for (const std::string sampling : samplings) {
        for (std::uint16_t orientation = 1; orientation <= 8; ++orientation) {
            // Three kinds are enough for all but the usual sampling: each is turned all around.
            if (sampling != "2x2 1x1 1x1" && orientation % 3 != 1) continue;
            for (int turns = 0; turns < 4; ++turns) {
                SCOPED_TRACE(sampling + " orientation " + std::to_string(orientation) + " turns " +
                             std::to_string(turns));
                PatternRecipe recipe{.sampling = sampling, .orientation = orientation};
                recipe.isProgressive = orientation % 2 == 0;
                Work work(makePattern(recipe));
                const gfx::ImageOrientation stored = decode(work.file, "").orientation;
                const gfx::PixelGrid grid = pixelGrid(work.file);
                const gfx::PixelRect part = cellsOf(grid, work.upright.size());
                work.cut(part, turns);
                const LaidJpeg alone = work.laid();
                ASSERT_EQ(alone.encodedAnew, "");
                // The arithmetic of a decoder is not quite the same across and down.
                const int most = turns == 0 ? 0 : 3;
                const gfx::Bitmap seen = uprightOf(alone.bytes, stored);
                const auto rimless = [&](gfx::Bitmap bitmap) {
                    for (int y = 0; y < bitmap.height(); ++y) {
                        std::fill_n(bitmap.row(y), 4 * grid.reach, 0);
                        std::fill_n(bitmap.row(y + 1) - 4 * grid.reach, 4 * grid.reach, 0);
                    }
                    const std::size_t rim = bitmap.stride() * static_cast<std::size_t>(grid.reach);
                    std::fill_n(bitmap.data(), rim, 0);
                    std::fill_n(bitmap.data() + bitmap.byteCount() - rim, rim, 0);
                    return bitmap;
                };
                EXPECT_EQ(differences(rimless(seen), rimless(work.result), {}, most), 0);

                const gfx::PixelRect box{1, 2, 12, 11};
                work.draw(box, {40, 40, 40, 255});
                const int reach = std::max(grid.cell.width, grid.cell.height) + grid.reach;
                const gfx::Bitmap drawn = uprightOf(work.laid().bytes, stored);
                EXPECT_EQ(differences(drawn, seen, grown(box, reach)), 0);
                EXPECT_TRUE(isNear(drawn.row(8) + 4 * 7, work.result.row(8) + 4 * 7, 24));
                EXPECT_FALSE(isNear(drawn.row(8) + 4 * 7, seen.row(8) + 4 * 7, 20));

                work.cut({part.x + 1, part.y, part.width - 1, part.height}, turns);
                EXPECT_NE(work.laid().encodedAnew, "");
            }
        }
    }
}

TEST(JpegLaying, SaysWhatItCannotKeep) {
    const auto answer = [](const PatternRecipe& recipe, const gfx::PixelRect& part, int turns) {
        Work work(makePattern(recipe));
        work.cut(part, turns);
        const LaidJpeg laid = work.laid();
        return (laid.bytes.empty() ? "not laid: " : "laid: ") + laid.encodedAnew;
    };
    const gfx::PixelRect whole{0, 0, 100, 76};
    EXPECT_EQ(answer({}, whole, 0), "laid: ");
    EXPECT_EQ(answer({.isArithmetic = true}, whole, 0), "laid: ");
    EXPECT_EQ(answer({.sampling = "1x1 2x2 2x2"}, whole, 0), "laid: ");
    const std::string off =
        "what is shown of it does not begin at the borders of its blocks of 16 x "
        "16 pixels";
    EXPECT_EQ(answer({}, whole, 1), "not laid: " + off);
    EXPECT_EQ(answer({}, {8, 0, 64, 64}, 0), "not laid: " + off);
    EXPECT_EQ(answer({}, {16, 0, 60, 64}, 0),
              "laid: what is shown of it does not end at the borders of its blocks of 16 x 16 "
              "pixels, so the last ones were encoded anew");
    EXPECT_EQ(answer({.isProgressive = true, .lacksBits = true}, whole, 0),
              "not laid: its progressive scans are not complete");

    Work work(makePattern({}));
    work.source.file = ByteSpan(work.file).first(work.file.size() / 2);
    EXPECT_EQ(work.laid().encodedAnew, "the JPEG data end too early");
    work.source.file = ByteSpan(work.file).first(3);
    EXPECT_EQ(work.laid().encodedAnew, "the JPEG data end too early");
    EXPECT_EQ(encodeLikeJpeg(work.result, work.source.file).encodedAnew,
              "the JPEG data end too early");
    EXPECT_EQ(jpegQuality(work.source.file), std::nullopt);
}

TEST(JpegLaying, DrawsBeyondThePictureAndGivesGreyOnesColours) {
    for (const std::string sampling : {"2x2 1x1 1x1", "2x2"}) {
        Work work(makePattern({.sampling = sampling}));
        const JpegFacts before = factsOf(work.file);
        gfx::Bitmap larger(130, 110);
        std::fill_n(larger.row(0), larger.byteCount(), 255);
        for (int y = 0; y < 76; ++y)
            std::copy_n(work.result.row(y), work.result.stride(), larger.row(16 + y) + 4 * 16);
        work.source.x = work.source.y = 16;
        work.result = larger;
        work.touched.assign(larger.byteCount() / 4, 0);
        work.draw({2, 2, 8, 4}, {170, 180, 230, 255});
        const LaidJpeg laid = work.laid();
        ASSERT_EQ(laid.encodedAnew, "");
        EXPECT_FALSE(laid.isGrey);
        EXPECT_EQ(factsOf(laid.bytes).colours.size(), 3U);
        const gfx::Bitmap seen = uprightOf(laid.bytes);
        EXPECT_EQ(differences(seen, work.result, {}, 45), 0);
        // What is well inside is as it was.
        const JpegFacts after = factsOf(laid.bytes);
        const auto& colour = before.colours[0];
        EXPECT_EQ(after.colours[0].blocks[static_cast<std::size_t>(
                      (16 / 8 + 3) * after.colours[0].blocksAcross + 16 / 8 + 4)],
                  colour.blocks[static_cast<std::size_t>(3 * colour.blocksAcross + 4)]);
        work.source.x = 12;
        EXPECT_TRUE(work.laid().bytes.empty());
    }
}

TEST(JpegLaying, EncodesAnewAsTheFileWas) {
    for (const std::string sampling : samplings) {
        for (std::uint16_t orientation = 1; orientation <= 8; ++orientation) {
            PatternRecipe recipe{.sampling = sampling, .orientation = orientation};
            recipe.isProgressive = orientation % 2 == 0;
            recipe.isRgb = orientation == 3;
            recipe.restartInterval = 2;
            recipe.quality = 60 + orientation;
            Work work(makePattern(recipe));
            EXPECT_EQ(jpegQuality(work.file), recipe.quality);
            const Bytes anew = encodeLikeJpeg(work.result, work.file).bytes;
            JpegFacts before = factsOf(work.file);
            JpegFacts after = factsOf(anew);
            const gfx::Bitmap seen = uprightOf(anew, decode(work.file, "").orientation);
            EXPECT_LT(differences(seen, work.result, {}, 24), 76) << sampling << orientation;
            for (JpegFacts* facts : {&before, &after}) {
                for (JpegFacts::Colour& colour : facts->colours)
                    colour.blocks.clear();
            }
            EXPECT_EQ(after, before);
        }
    }
}

// Readers take such tables, and the library that writes divides by their steps.
TEST(JpegLaying, EncodesAnewWhereATableHasAStepOfNone) {
    Work work(makePattern({}));
    constexpr std::array<std::uint8_t, 4> tableStart{0xFF, 0xDB, 0, 67};
    const auto table = std::ranges::search(work.file, tableStart).begin();
    ASSERT_NE(table, work.file.end());
    table[5] = 0;
    ASSERT_EQ(errorOf(work.file), "none");
    EXPECT_EQ(errorOf(encodeLikeJpeg(work.result, work.file).bytes), "none");
    std::ranges::fill(work.touched, 1);
    EXPECT_EQ(errorOf(work.laid().bytes), "none");
}

TEST(JpegLaying, MakesBlocksAsWellAsTheLibrary) {
    for (const std::string sampling : samplings) {
        Work work(makePattern({.sampling = sampling}));
        const std::string fine = sampling.size() == 3 ? "1x1" : "1x1 1x1 1x1";
        work.result = uprightOf(
            makePattern({.sampling = fine, .quality = 100, .otherX = 0, .otherSide = 100}));
        work.touched.assign(work.touched.size(), 1);
        const gfx::Bitmap laid = uprightOf(work.laid().bytes);
        const gfx::Bitmap anew = uprightOf(encodeLikeJpeg(work.result, work.file).bytes);
        EXPECT_LT(squaredError(laid, work.result), 1.01 * squaredError(anew, work.result))
            << sampling;
    }
}

TEST(JpegLaying, LosesNothingBesideTheDrawingsInTenSaves) {
    Bytes first;
    ASSERT_EQ(readPictureFile(KALIM_PHOTOS "/rocket.jpg", first), std::nullopt);
    // Without its profile, which the laid ones do not have either.
    first = Work(first).laid().bytes;
    const gfx::Bitmap photo = uprightOf(first);
    Bytes file = first;
    for (int save = 0; save < 10; ++save) {
        Work work(file);
        work.draw({10 + save * 9, 20 + save * 14, 60, 2}, {30, 40, 250, 255});
        file = work.laid().bytes;
    }
    const gfx::PixelGrid grid = pixelGrid(first);
    const int beside = std::max(grid.cell.width, grid.cell.height) + grid.reach;
    EXPECT_EQ(differences(uprightOf(file), photo, grown({10, 20, 141, 128}, beside)), 0);
    EXPECT_LT(file.size(), first.size() * 11 / 10);
}

TEST(JpegLaying, KeepsNothingOfWhatIsHidden) {
    for (const std::string sampling : {"1x1 1x1 1x1", "2x1 1x1 1x1", "2x2 1x1 1x1", "1x1"}) {
        for (std::uint16_t orientation = 1; orientation <= 8; ++orientation) {
            SCOPED_TRACE(sampling + " orientation " + std::to_string(orientation));
            PatternRecipe recipe{.width = 96, .height = 80, .sampling = sampling};
            recipe.orientation = orientation;
            recipe.isProgressive = orientation % 2 == 0;
            PatternRecipe changed = recipe;
            changed.otherX = 37, changed.otherY = 21, changed.otherSide = 9;
            std::array works{Work(makePattern(recipe)), Work(makePattern(changed))};
            ASSERT_NE(works[0].file, works[1].file);
            // The cells around the square, upright, and what is mixed with them.
            const gfx::PixelSize size = works[0].upright.size();
            const PixelMap map = PixelMap::upright(decode(works[0].file, "").orientation, size);
            const gfx::PixelRect hidden =
                grown(map.apply({32, 16, 16, 16}), pixelGrid(works[0].file).reach);
            for (int turns = 0; turns < 4; ++turns) {
                for (Work& work : works) {
                    for (int y = hidden.y; y < hidden.y + hidden.height; ++y)
                        std::fill_n(work.upright.row(y) + 4 * hidden.x, 4 * hidden.width, 255);
                    work.cut({0, 0, size.width, size.height}, turns);
                    work.source.hidden = {hidden};
                }
                const Bytes laid = works[0].laid().bytes;
                EXPECT_FALSE(laid.empty());
                EXPECT_TRUE(laid == works[1].laid().bytes);
                EXPECT_TRUE(encodeLikeJpeg(works[0].result, works[0].file).bytes ==
                            encodeLikeJpeg(works[1].result, works[1].file).bytes);
            }
        }
    }
}

}  // namespace

}  // namespace kalim::codec::test
