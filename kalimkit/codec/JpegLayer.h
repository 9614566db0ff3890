#pragma once

#include <array>

#include "kalimkit/codec/DrawnPixels.h"
#include "kalimkit/codec/JpegBlock.h"
#include "kalimkit/codec/JpegCoding.h"
#include "kalimkit/codec/JpegPlacement.h"
#include "kalimkit/codec/JpegReader.h"
#include "kalimkit/codec/JpegWriter.h"
#include "kalimkit/codec/PixelShares.h"

namespace kalim::codec {

// Makes a new JPEG of another one's coefficients, block by block, and of drawn pixels.
class JpegLayer : public JpegReader {
public:
    explicit JpegLayer(ByteSpan file) : JpegReader(file), _writer(*this) {}

    // The three must live until it returns. False with an error when the file or what would come of
    // it is beyond the library.
    bool lay(const JpegPlacement& placement, const DrawnPixels& drawn, const StoredResult& result);

    // Of the new file, when it is laid.
    const JpegCoding& coding() const { return _coding; }
    ByteSpan bytes() const { return _writer.bytes(); }

private:
    void readCoefficients();
    void prepareArrays();
    void layColour(int colour);
    void layRow(int colour, int y, JBLOCKROW row);
    // The source's block that comes to lie there, null where it has none.
    const JCOEF* sourceBlock(int colour, const gfx::PixelRect& shown);
    void mixBlock(int colour, const gfx::PixelRect& shown, bool hasSource, JCOEF* block) const;
    float drawnSample(const PixelShares& shares, const gfx::PixelRect& shown,
                      float sourceSample) const;

    JpegWriter _writer;
    JpegCoding _source;
    JpegCoding _coding;
    const JpegPlacement* _placement = nullptr;
    const DrawnPixels* _drawn = nullptr;
    const StoredResult* _result = nullptr;
    PixelMap _toSource;
    // Nothing moves, so that the blocks are changed where they are.
    bool _isInPlace = false;
    jvirt_barray_ptr* _sourceArrays = nullptr;
    std::array<jvirt_barray_ptr, JpegCoding::maxColours> _arrays{};
    JpegCodes _codes;
};

}  // namespace kalim::codec
