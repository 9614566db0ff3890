#include "kalimkit/codec/JpegWriter.h"

#include <cstdlib>

namespace kalim::codec {

JpegWriter::~JpegWriter() {
    // Does nothing to one that was never created.
    jpeg_destroy_compress(&_info);
    std::free(_bytes);
}

void JpegWriter::onError(j_common_ptr info) {
    std::array<char, JMSG_LENGTH_MAX> message{};
    info->err->format_message(info, message.data());
    static_cast<JpegWriter*>(info->client_data)->_reader.fail(message.data());
}

void JpegWriter::create() {
    _info.err = jpeg_std_error(&_errors);
    _errors.error_exit = onError;
    _errors.output_message = [](j_common_ptr) {};
    _info.client_data = this;
    jpeg_create_compress(&_info);
    jpeg_mem_dest(&_info, &_bytes, &_byteCount);
}

jvirt_barray_ptr JpegWriter::requestArray(const JpegCoding& coding, int colour) {
    const JpegCoding::Colour& of = coding.colours[static_cast<std::size_t>(colour)];
    const gfx::PixelSize blocks = coding.blocks(colour);
    const auto whole = [](int count, int step) {
        return static_cast<JDIMENSION>((count + step - 1) / step * step);
    };
    return _info.mem->request_virt_barray(
        reinterpret_cast<j_common_ptr>(&_info), JPOOL_IMAGE, TRUE, whole(blocks.width, of.across),
        whole(blocks.height, of.down), static_cast<JDIMENSION>(of.down));
}

void JpegWriter::realizeArrays() {
    _info.mem->realize_virt_arrays(reinterpret_cast<j_common_ptr>(&_info));
}

void JpegWriter::writeCoefficients(const JpegCoding& coding, jvirt_barray_ptr* arrays,
                                   JpegCodes& codes) {
    _info.input_components = coding.colourCount;
    _info.in_color_space = coding.space;
    coding.apply(_info);
    if (!coding.isProgressive) codes.apply(_info);
    jpeg_write_coefficients(&_info, arrays);
    jpeg_finish_compress(&_info);
}

}  // namespace kalim::codec
