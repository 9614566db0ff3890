#include "kalimkit/image/Pixelation.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kalim {

namespace {

struct Sums {
    std::uint64_t blue = 0;
    std::uint64_t green = 0;
    std::uint64_t red = 0;
    std::uint64_t count = 0;
};

std::uint8_t meanByte(std::uint64_t sum, std::uint64_t count) {
    // The divisor is deliberately formed in single precision.
    const double divisor = static_cast<double>(static_cast<float>(count) * 255.0F);
    const double component = static_cast<double>(sum) / divisor;
    return static_cast<std::uint8_t>(std::lround(std::clamp(component, 0.0, 1.0) * 255));
}

void writeMean(const Sums& sums, std::uint8_t* pixel) {
    pixel[0] = meanByte(sums.blue, sums.count);
    pixel[1] = meanByte(sums.green, sums.count);
    pixel[2] = meanByte(sums.red, sums.count);
    pixel[3] = 255;
}

// The block as the definition has it: positions run on into the next row, and count as long as they
// lie in the raster at all.
Sums literalSums(const gfx::Bitmap& raster, std::int32_t level, int x, int y) {
    const auto width = static_cast<std::int64_t>(raster.width());
    const std::int64_t total = width * raster.height();
    Sums sums;
    for (std::int64_t j = 0; j < level; ++j) {
        const std::int64_t first = (y + j) * width + x;
        if (first >= total) break;
        const std::int64_t end = std::min(first + level, total);
        for (std::int64_t position = first; position < end; ++position) {
            const std::uint8_t* pixel = raster.data() + position * 4;
            sums.blue += pixel[0];
            sums.green += pixel[1];
            sums.red += pixel[2];
            ++sums.count;
        }
    }
    return sums;
}

// Adds the bytes of rows to their column's sums; 16 bits hold 257 rows. Four at a time save going
// over the sums. Compiled for newer processors, too, and chosen when the program starts; the
// sanitizers do not get along with that.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && \
    !defined(__SANITIZE_ADDRESS__)
[[gnu::target_clones("arch=x86-64-v4", "arch=x86-64-v3", "default")]]
#endif
void addRows(const std::uint8_t* bytes, std::size_t stride, int rows, std::uint16_t* sums,
             std::size_t count) {
    for (; rows >= 4; rows -= 4, bytes += 4 * stride) {
        for (std::size_t i = 0; i < count; ++i) {
            sums[i] = static_cast<std::uint16_t>(sums[i] + bytes[i] + bytes[stride + i] +
                                                 bytes[2 * stride + i] + bytes[3 * stride + i]);
        }
    }
    for (; rows > 0; --rows, bytes += stride) {
        for (std::size_t i = 0; i < count; ++i)
            sums[i] = static_cast<std::uint16_t>(sums[i] + bytes[i]);
    }
}

constexpr std::int32_t mostRowsAtOnce = 257;

// The whole blocks of one row of blocks: columns first, which is one pass over memory, then across.
class BlockRow {
public:
    BlockRow(std::int32_t level, int wholeBlocks)
        : _level(level),
          _columns(static_cast<std::size_t>(wholeBlocks) * static_cast<std::size_t>(level) * 4),
          _blocks(static_cast<std::size_t>(wholeBlocks)) {}

    void sum(const gfx::Bitmap& raster, int y, int rows) {
        std::ranges::fill(_blocks, Sums{});
        for (int done = 0; done < rows;) {
            const int batch = std::min(rows - done, mostRowsAtOnce);
            std::ranges::fill(_columns, std::uint16_t{0});
            addRows(raster.row(y + done), raster.stride(), batch, _columns.data(), _columns.size());
            gather();
            done += batch;
        }
        for (Sums& block : _blocks) {
            block.count = static_cast<std::uint64_t>(rows) * static_cast<std::uint64_t>(_level);
        }
    }
    const std::vector<Sums>& blocks() const { return _blocks; }

private:
    void gather() {
        const std::uint16_t* column = _columns.data();
        for (Sums& block : _blocks) {
            for (std::int32_t i = 0; i < _level; ++i, column += 4) {
                block.blue += column[0];
                block.green += column[1];
                block.red += column[2];
            }
        }
    }

    std::int32_t _level;
    std::vector<std::uint16_t> _columns;
    std::vector<Sums> _blocks;
};

int blocksAlong(int length, std::int32_t level) {
    return length / level + (length % level != 0);
}

// Copies a row past the caches, which a large picture would only wash out. Other threads see it
// after finishStreaming().
void streamRow(const std::uint8_t* source, std::uint8_t* target, std::size_t count) {
#if defined(__SSE2__)
    constexpr std::size_t step = sizeof(__m128i);
    const std::size_t beforeStep = (step - reinterpret_cast<std::uintptr_t>(target) % step) % step;
    std::size_t i = std::min(beforeStep, count);
    std::memcpy(target, source, i);
    for (; count - i >= step; i += step) {
        _mm_stream_si128(reinterpret_cast<__m128i*>(target + i),
                         _mm_loadu_si128(reinterpret_cast<const __m128i*>(source + i)));
    }
    std::memcpy(target + i, source + i, count - i);
#else
    std::memcpy(target, source, count);
#endif
}

void finishStreaming() {
#if defined(__SSE2__)
    _mm_sfence();
#endif
}

// Writes one row of the spread picture.
void spreadRow(const std::uint8_t* blocks, std::int32_t level, double scale, int width,
               std::uint8_t* target) {
    const double side = level * scale;
    for (int x = 0, block = 0; x < width; ++block, blocks += 4) {
        // Up to the last pixel whose centre lies before the block's far edge.
        const double edge = std::ceil((block + 1) * side - 0.5);
        const int end = edge < width ? static_cast<int>(edge) : width;
        for (; x < end; ++x)
            std::memcpy(target + static_cast<std::size_t>(x) * 4, blocks, 4);
    }
}

}  // namespace

gfx::Bitmap blockColors(const gfx::Bitmap& raster, std::int32_t level) {
    if (raster.isEmpty() || level < 1) return {};
    const int wholeBlocks = raster.width() / level;
    gfx::Bitmap blocks(blocksAlong(raster.width(), level), blocksAlong(raster.height(), level));
    BlockRow row(level, wholeBlocks);
    for (int by = 0; by < blocks.height(); ++by) {
        const int y = by * level;
        row.sum(raster, y, std::min(level, raster.height() - y));
        std::uint8_t* pixel = blocks.row(by);
        for (const Sums& sums : row.blocks()) {
            writeMean(sums, pixel);
            pixel += 4;
        }
        if (wholeBlocks < blocks.width()) {
            writeMean(literalSums(raster, level, wholeBlocks * level, y), pixel);
        }
    }
    return blocks;
}

void spreadBlocks(const gfx::Bitmap& blocks, std::int32_t level, double scale, gfx::PixelSize size,
                  gfx::Bitmap& target) {
    if (target.size() != size) target = gfx::Bitmap::unwritten(size.width, size.height);
    constexpr std::size_t mostCachedBytes = std::size_t{4} << 20;
    const bool streams = target.byteCount() > mostCachedBytes;
    const double side = level * scale;
    for (int y = 0, block = 0; y < size.height; ++block) {
        const double edge = std::ceil((block + 1) * side - 0.5);
        const int end = edge < size.height ? static_cast<int>(edge) : size.height;
        if (y >= end) continue;
        spreadRow(blocks.row(block), level, scale, size.width, target.row(y));
        const std::uint8_t* first = target.row(y);
        for (++y; y < end; ++y) {
            if (streams) {
                streamRow(first, target.row(y), target.stride());
            } else {
                std::memcpy(target.row(y), first, target.stride());
            }
        }
    }
    if (streams) finishStreaming();
}

}  // namespace kalim
