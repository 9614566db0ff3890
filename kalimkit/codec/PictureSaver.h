#pragma once

#include <memory>
#include <optional>
#include <string>

#include "kalimkit/codec/FileColors.h"
#include "kalimkit/codec/JpegLaying.h"
#include "kalimkit/codec/ResultRows.h"
#include "kalimkit/codec/Saving.h"

namespace kalim::codec {

// Does what savePicture() says.
class PictureSaver {
public:
    // What it is given must outlive it.
    PictureSaver(const gfx::Bitmap& result, const SavingSource& source,
                 const SavingOptions& options);

    SavedPicture save();

private:
    // Nothing but the file's data goes along.
    bool isApart() const { return !_options.takesAfterFile && !_source.pixels; }
    void chooseColors();
    // As its source's JPEG file is encoded.
    void saveLikeJpeg();
    LaidJpeg laidJpeg();
    gfx::Bitmap convertedResult() const;
    // As any other.
    void saveRows();
    void readRaw();
    void encodeRows();
    std::string reasonOfLoss() const;
    ByteSpan profile(bool isGrey) const;
    void addData();

    const gfx::Bitmap& _result;
    const SavingSource& _source;
    const SavingOptions& _options;
    FileFormat _sourceFormat;
    FileColors _colors;
    // Of three colours also where the file's own one is of grey; empty for sRGB.
    Bytes _profile;
    // From sRGB; null where nothing changes.
    std::unique_ptr<ColorConversion> _conversion;
    // The file's profile has been given up.
    bool _losesColors = false;
    RawPicture _raw;
    ResultRows _rows;
    // How the new file's pixels are stored.
    gfx::ImageOrientation _orientation = gfx::ImageOrientation::Up;
    SavedPicture _saved;
};

}  // namespace kalim::codec
