#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/codec/ColorConversion.h"
#include "kalimkit/codec/FileColors.h"
#include "kalimkit/codec/PictureRows.h"
#include "kalimkit/codec/PixelMap.h"
#include "kalimkit/codec/Saving.h"

namespace kalim::codec {

// The pixels of a result in the colours of the file that it came from: those that nothing covers
// as that file has them, the others converted.
class ResultRows : public PictureRows {
public:
    // The result and the source's pixels must outlive it, as must what it is told below.
    ResultRows(const gfx::Bitmap& result, const SavingSource& source);

    // From sRGB to the file's colours; without one they are the same.
    void setConversion(const ColorConversion* conversion) { _conversion = conversion; }
    // The file's own pixels. Without them what nothing covers is converted as well.
    void setRaw(const RawPicture& raw);
    // What nothing covers is of no use, and may be anything.
    void setLeavesOut(bool leavesOut) { _leavesOut = leavesOut; }
    void setGrey(bool isGrey) { _isGrey = isGrey; }

    // Whether the result has all of its colours from the source.
    bool isDrawnInGrey() const;
    // A byte for each pixel of a row, 0 where it is the source's and nothing covers or hides it.
    void markTouched(int y, std::uint8_t* touched) const;

    gfx::PixelSize size() const override { return _result.size(); }
    bool isOpaque() const override;
    bool isGrey() const override { return _isGrey; }
    void read(int y, std::uint8_t* bgra) const override;

private:
    void copyDrawn(int y, int first, int last, std::uint8_t* bgra) const;
    void copyRaw(int y, int first, int last, std::uint8_t* bgra) const;

    const gfx::Bitmap& _result;
    const gfx::Bitmap* _pixels;
    // From the result's pixels to the source's upright ones, and to those of the file.
    PixelMap _toUpright;
    PixelMap _toRaw;
    // Pixels of the result: those of the source, and the ones among them that are hidden.
    gfx::PixelRect _placed;
    gfx::PixelRects _hidden;
    const ColorConversion* _conversion = nullptr;
    const gfx::Bitmap* _raw = nullptr;
    bool _isGrey = false;
    bool _leavesOut = false;
    // Found when somebody asks.
    mutable std::optional<bool> _isOpaque;
    // Of the row that is read.
    mutable Bytes _touched;
};

}  // namespace kalim::codec
