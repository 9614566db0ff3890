#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kalimkit/codec/Saving.h"

// What a page calls to have one picture saved; every saving has a module of its own, so nothing is
// given back. Pixels lie as in a Bitmap.

#define KALIM_EXPORT(name) __attribute__((export_name(name)))

namespace {

using kalim::codec::FileFormat;
using kalim::codec::Metadata;
using kalim::gfx::Bitmap;

enum class Place { Result, Source };
enum class Answer { Bytes, Error, EncodedAnew };

kalim::codec::Bytes file;
Bitmap result;
Bitmap pixels;
kalim::gfx::PixelRects hidden;
kalim::codec::SavedPicture saved;

Bitmap& bitmapAt(Place place) {
    return place == Place::Result ? result : pixels;
}

std::string_view answerOf(Answer answer) {
    switch (answer) {
        case Answer::Bytes:
            return {reinterpret_cast<const char*>(saved.bytes.data()), saved.bytes.size()};
        case Answer::Error:
            return saved.error ? std::string_view(*saved.error) : std::string_view();
        case Answer::EncodedAnew:
            return saved.encodedAnew;
    }
    return {};
}

}  // namespace

// These answer with the place for what the page brings: the bytes of the file that the result came
// from; the pixels of the result and, where it is at its scale, those of the file; rectangles that
// the result hides, four numbers each.
KALIM_EXPORT("file") void* fileRoom(int bytes) {
    file.resize(static_cast<std::size_t>(bytes));
    return file.data();
}

KALIM_EXPORT("picture") void* pictureRoom(int place, int width, int height) {
    Bitmap& bitmap = bitmapAt(static_cast<Place>(place));
    bitmap = Bitmap::unwritten(width, height);
    return bitmap.data();
}

KALIM_EXPORT("hidden") void* hiddenRoom(int count) {
    static_assert(sizeof(kalim::gfx::PixelRect) == 4 * sizeof(int));
    hidden.resize(static_cast<std::size_t>(count));
    return hidden.data();
}

// Numbers as FileFormat and Metadata have them; a quality of 0 is the file's own. The part of the
// file's pixels that the result shows, and where it lies there, as in SavingSource. Whether it went
// well; answers say the rest.
KALIM_EXPORT("save")
bool save(int format, int quality, int metadata, int partX, int partY, int partWidth,
          int partHeight, int x, int y, int quarterTurns) {
    kalim::codec::SavingSource source;
    source.file = file;
    source.pixels = pixels.isEmpty() ? nullptr : &pixels;
    source.part = {partX, partY, partWidth, partHeight};
    source.x = x;
    source.y = y;
    source.quarterTurns = quarterTurns;
    source.hidden = hidden;
    kalim::codec::SavingOptions options;
    options.format = static_cast<FileFormat>(format);
    if (quality > 0) options.quality = quality;
    options.metadata = static_cast<Metadata>(metadata);
    saved = kalim::codec::savePicture(result, source, options);
    return !saved.error;
}

// 0 the bytes of the new file, 1 what is wrong, 2 why it had to be encoded anew.
KALIM_EXPORT("answer") const char* answer(int which) {
    return answerOf(static_cast<Answer>(which)).data();
}

KALIM_EXPORT("answer_length") int answerLength(int which) {
    return static_cast<int>(answerOf(static_cast<Answer>(which)).size());
}
