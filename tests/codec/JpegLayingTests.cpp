#include "kalimkit/codec/JpegLaying.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "kalimkit/codec/Decode.h"
#include "kalimkit/image/UprightBitmap.h"
#include "tests/codec/JpegFiles.h"

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
                const auto isBeside = [&](int at, int begin, int cell, int middle) {
                    const int from = begin + (middle - begin) / cell * cell;
                    return at < from - grid.reach || at >= from + cell + grid.reach;
                };
                const bool onSide = one.width() != recipe.width;
                const bool fromRight =
                    orientation == 2 || orientation == 3 || orientation == 6 || orientation == 7;
                const bool fromBottom =
                    orientation == 3 || orientation == 4 || orientation == 7 || orientation == 8;
                const int x = onSide ? 42 : 51;
                const int y = onSide ? 51 : 42;
                int changed = 0;
                for (int row = 0; row < one.height(); ++row) {
                    for (int column = 0; column < one.width(); ++column) {
                        if (isNear(one.row(row) + 4 * column, other.row(row) + 4 * column, 0))
                            continue;
                        ++changed;
                        EXPECT_FALSE(isBeside(column, grid.x, grid.cell.width,
                                              fromRight ? one.width() - 1 - x : x) ||
                                     isBeside(row, grid.y, grid.cell.height,
                                              fromBottom ? one.height() - 1 - y : y))
                            << sampling << " orientation " << orientation << " kind " << kind
                            << " at " << column << ", " << row;
                    }
                }
                EXPECT_GT(changed, 0);
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

}  // namespace

}  // namespace kalim::codec::test
