#pragma once

#include <array>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/codec/JpegCodes.h"
#include "kalimkit/codec/JpegCoding.h"
#include "kalimkit/codec/JpegReader.h"

namespace kalim::codec {

// Writes a JPEG into memory while another one is read: its errors are the reader's, so that one
// setjmp is enough for both.
class JpegWriter {
public:
    explicit JpegWriter(JpegReader& reader) : _reader(reader) {}
    ~JpegWriter();
    JpegWriter(const JpegWriter&) = delete;
    JpegWriter& operator=(const JpegWriter&) = delete;

    // The following may jump.

    // Before anything else: makes the library's object, whose format of samples is to be set then.
    void create();
    // A sequential file gets the codes.
    void writeCoefficients(const JpegCoding& coding, jvirt_barray_ptr* arrays, JpegCodes& codes);
    // An array for one colour's blocks, all of them 0.
    jvirt_barray_ptr requestArray(const JpegCoding& coding, int colour);
    // Makes the arrays that were requested ready.
    void realizeArrays();

    jpeg_compress_struct& info() { return _info; }
    ByteSpan bytes() const { return {_bytes, _byteCount}; }

private:
    static void onError(j_common_ptr info);

    JpegReader& _reader;
    jpeg_compress_struct _info{};
    jpeg_error_mgr _errors{};
    // Made and enlarged by the library with malloc.
    unsigned char* _bytes = nullptr;
    unsigned long _byteCount = 0;
};

}  // namespace kalim::codec
