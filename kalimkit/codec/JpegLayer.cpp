#include "kalimkit/codec/JpegLayer.h"

#include <algorithm>

namespace kalim::codec {

namespace {

constexpr const char* beyondRange = "its coefficients are beyond the range of a JPEG";

}  // namespace

bool JpegLayer::lay(const JpegPlacement& placement, const DrawnPixels& drawn,
                    const StoredResult& result) {
    _placement = &placement;
    _drawn = &drawn;
    _result = &result;
    _toSource = placement.fromSource.inverse();
    if (setjmp(_failed) != 0) return false;
    _writer.create();
    readCoefficients();
    prepareArrays();
    _codes.begin(_coding);
    for (int colour = 0; colour < _coding.colourCount; ++colour)
        layColour(colour);
    _writer.writeCoefficients(_coding, _arrays.data(), _codes);
    return true;
}

// Tables may stand between the scans, so that the coding is known only now.
void JpegLayer::readCoefficients() {
    _readsPixels = true;
    _sourceArrays = jpeg_read_coefficients(&_info);
    expectAllScans();
    _source = JpegCoding::of(_info, storedSize());
    if (_source.space == JCS_UNKNOWN) fail("a JPEG colour has no quantisation table");
    _coding = _source;
    _coding.size = _placement->size;
    if (_placement->fromSource.exchangesSides()) _coding.exchangeSides();
    if (_coding.space == JCS_GRAYSCALE && _drawn->haveColour(*_result)) _coding.addNeutralColours();
}

void JpegLayer::prepareArrays() {
    _isInPlace = _placement->fromSource == PixelMap{} && _coding.size == _source.size;
    for (int colour = 0; colour < _coding.colourCount; ++colour) {
        const bool isSources = _isInPlace && colour < _source.colourCount;
        _arrays[static_cast<std::size_t>(colour)] =
            isSources ? _sourceArrays[colour] : _writer.requestArray(_coding, colour);
    }
    _writer.realizeArrays();
}

void JpegLayer::layColour(int colour) {
    const gfx::PixelSize blocks = _coding.blocks(colour);
    for (int y = 0; y < blocks.height; ++y) {
        const JBLOCKROW row = _info.mem->access_virt_barray(
            reinterpret_cast<j_common_ptr>(&_info), _arrays[static_cast<std::size_t>(colour)],
            static_cast<JDIMENSION>(y), 1, TRUE)[0];
        layRow(colour, y, row);
        if (_coding.isProgressive) continue;
        for (int x = 0; x < blocks.width; ++x) {
            if (!_codes.count(colour, row[x])) fail(beyondRange);
        }
    }
}

void JpegLayer::layRow(int colour, int y, JBLOCKROW row) {
    const gfx::PixelSize sample = _coding.sample(colour);
    const int width = DCTSIZE * sample.width;
    const int height = DCTSIZE * sample.height;
    const int count = _coding.blocks(colour).width;
    for (int x = 0; x < count; ++x) {
        const gfx::PixelRect shown{x * width, y * height, width, height};
        const bool isDrawn = _drawn->meets(shown);
        if (_isInPlace && !isDrawn) continue;
        const JCOEF* const source = sourceBlock(colour, shown);
        if (source != nullptr && source != row[x]) {
            turnBlock(source, _placement->fromSource, row[x]);
        }
        if (isDrawn) mixBlock(colour, shown, source != nullptr, row[x]);
    }
}

const JCOEF* JpegLayer::sourceBlock(int colour, const gfx::PixelRect& shown) {
    if (colour >= _source.colourCount) return nullptr;
    const gfx::PixelRect there = _toSource.apply(shown);
    const gfx::PixelSize count = _source.blocks(colour);
    if (there.x < 0 || there.y < 0) return nullptr;
    const int x = there.x / there.width;
    const int y = there.y / there.height;
    if (x >= count.width || y >= count.height) return nullptr;
    const JBLOCKARRAY rows =
        _info.mem->access_virt_barray(reinterpret_cast<j_common_ptr>(&_info), _sourceArrays[colour],
                                      static_cast<JDIMENSION>(y), 1, FALSE);
    return rows[0][x];
}

// Behind the picture's edge a block goes on as it is at the edge.
void JpegLayer::mixBlock(int colour, const gfx::PixelRect& shown, bool hasSource,
                         JCOEF* block) const {
    const JpegCoding::Colour& coding = _coding.colours[static_cast<std::size_t>(colour)];
    const gfx::PixelSize sample = _coding.sample(colour);
    const PixelShares shares = PixelShares::of(_coding.space, colour);
    BlockSamples samples{};
    if (hasSource && !_drawn->coverAll(shown)) showBlock(block, coding.table, samples);
    const auto countInside = [](int pixels, int ofSample) {
        return std::clamp((pixels + ofSample - 1) / ofSample, 1, DCTSIZE);
    };
    const gfx::PixelSize inside{countInside(_coding.size.width - shown.x, sample.width),
                                countInside(_coding.size.height - shown.y, sample.height)};
    const auto rowAt = [&samples](int y) {
        return samples.begin() + static_cast<std::ptrdiff_t>(DCTSIZE) * y;
    };
    for (int y = 0; y < inside.height; ++y) {
        const auto row = rowAt(y);
        for (int x = 0; x < inside.width; ++x) {
            const gfx::PixelRect pixels{shown.x + x * sample.width, shown.y + y * sample.height,
                                        sample.width, sample.height};
            row[x] = drawnSample(shares, pixels, row[x]);
        }
        std::fill(row + inside.width, row + DCTSIZE, row[inside.width - 1]);
    }
    for (int y = inside.height; y < DCTSIZE; ++y)
        std::copy_n(rowAt(inside.height - 1), DCTSIZE, rowAt(y));
    makeBlock(samples, coding.table, block);
}

// The mean of the pixels that it stands for. Of those that are the source's, all that is known is
// its own sample.
float JpegLayer::drawnSample(const PixelShares& shares, const gfx::PixelRect& shown,
                             float sourceSample) const {
    const int width = std::min(shown.width, _coding.size.width - shown.x);
    const int bottom = std::min(shown.y + shown.height, _coding.size.height);
    const std::ptrdiff_t step = _result->step();
    float sum = 0;
    for (int y = shown.y; y < bottom; ++y) {
        const std::uint8_t* pixel = _result->at(shown.x, y);
        const std::uint8_t* const drawn = _drawn->at(shown.x, y);
        for (int x = 0; x < width; ++x, pixel += step)
            sum += drawn[x] != 0 ? static_cast<float>(shares.sample(pixel)) : sourceSample;
    }
    return sum / static_cast<float>(width * (bottom - shown.y));
}

}  // namespace kalim::codec
