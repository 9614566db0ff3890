#pragma once

#include <array>
#include <csetjmp>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/JpegFrame.h"
#include "kalimkit/gfx/Image.h"

// jpeglib.h relies on <cstdio> before it.
#include <jpeglib.h>

namespace kalim::codec {

// Reads a JPEG file's header and answers for the library's errors; what is to be read after that, a
// subclass knows. libjpeg leaves an error by longjmp, which skips destructors: everything that
// lives on the stack between a setjmp(_failed) and the library is trivial, the rest are members.
class JpegReader {
public:
    explicit JpegReader(ByteSpan bytes);
    JpegReader(const JpegReader&) = delete;
    JpegReader& operator=(const JpegReader&) = delete;

    bool readHeader();

    jpeg_decompress_struct& info() { return _info; }
    const jpeg_decompress_struct& info() const { return _info; }
    // Says why the last step failed.
    std::string error() const { return _message.data(); }
    // Of a file whose header has been read.
    const JpegFrame& frame() const { return *_frame; }
    gfx::ImageOrientation orientation() const { return frame().orientation; }
    // After the header and before the pixels.
    gfx::PixelSize storedSize() const;
    // The picture's extent when it is turned as the orientation says.
    gfx::PixelSize seenSize() const;
    // Why the header asks for more than the limits or its own bytes allow, or nothing.
    std::optional<std::string> headerProblem(const DecodeLimits& limits) const;
    // Ends what the library is doing, for this file or for one that is written from it.
    [[noreturn]] void fail(const char* message);

protected:
    ~JpegReader();
    // To be called after the library has begun with the pixels: fails when whole colours are
    // missing.
    void expectAllScans();

    jpeg_decompress_struct _info{};
    std::jmp_buf _failed{};
    std::array<char, JMSG_LENGTH_MAX + 64> _message{};
    // Set before the pixels are read.
    bool _readsPixels = false;

private:
    static JpegReader& of(j_common_ptr info) {
        return *static_cast<JpegReader*>(info->client_data);
    }
    static void onError(j_common_ptr info);
    static void onMessage(j_common_ptr info, int level);
    static boolean onBytesWanted(j_decompress_ptr info);
    bool holdsEnoughData() const;
    std::optional<std::string> scanProblem(const DecodeLimits& limits) const;
    // Bytes that decoding takes, the pixels included.
    std::uint64_t neededMemory() const;
    bool hasAllScans() const;

    ByteSpan _bytes;
    std::optional<JpegFrame> _frame;
    jpeg_error_mgr _errors{};
    jpeg_source_mgr _source{};
    // The file's bytes are used up.
    bool _hasEnded = false;
};

}  // namespace kalim::codec
