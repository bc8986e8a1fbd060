#include "media/support/TurboDecoder.h"

#include <csetjmp>
#include <cstdio>
#include <cstdlib>
// jpeglib.h needs FILE and size_t declared first.
#include <jpeglib.h>

#include <cmath>
#include <limits>

namespace tavren::test {
namespace {

// libjpeg reports errors by calling error_exit, which must not return: jump back out.
struct ErrorManager {
    jpeg_error_mgr base;
    std::jmp_buf escape;
};

void JumpOut(j_common_ptr info) {
    std::longjmp(reinterpret_cast<ErrorManager*>(info->err)->escape, 1);
}

void Quiet(j_common_ptr, int) {}

DecodedPicture Decode(const std::vector<std::uint8_t>& jpeg, J_COLOR_SPACE space) {
    DecodedPicture picture;
    jpeg_decompress_struct decoder;
    ErrorManager errors;
    decoder.err = jpeg_std_error(&errors.base);
    errors.base.error_exit = JumpOut;
    errors.base.emit_message = Quiet;
    jpeg_create_decompress(&decoder);
    if (setjmp(errors.escape) != 0) {
        jpeg_destroy_decompress(&decoder);
        return DecodedPicture{};
    }
    jpeg_mem_src(&decoder, jpeg.data(), static_cast<unsigned long>(jpeg.size()));
    jpeg_read_header(&decoder, TRUE);
    decoder.out_color_space = space;
    jpeg_start_decompress(&decoder);
    picture.width = static_cast<int>(decoder.output_width);
    picture.height = static_cast<int>(decoder.output_height);
    const std::size_t rowBytes =
        static_cast<std::size_t>(picture.width) * decoder.output_components;
    picture.pixels.resize(rowBytes * picture.height);
    while (decoder.output_scanline < decoder.output_height) {
        JSAMPROW row = picture.pixels.data() + rowBytes * decoder.output_scanline;
        jpeg_read_scanlines(&decoder, &row, 1);
    }
    jpeg_finish_decompress(&decoder);
    jpeg_destroy_decompress(&decoder);
    picture.ok = true;
    return picture;
}

double Psnr(double squares, std::size_t count) {
    if (squares == 0) {
        return std::numeric_limits<double>::infinity();
    }
    return 10 * std::log10(255.0 * 255.0 * static_cast<double>(count) / squares);
}

}  // namespace

DecodedPicture DecodeRgb(const std::vector<std::uint8_t>& jpeg) {
    return Decode(jpeg, JCS_RGB);
}
DecodedPicture DecodeGrey(const std::vector<std::uint8_t>& jpeg) {
    return Decode(jpeg, JCS_GRAYSCALE);
}

std::vector<std::uint8_t> EncodeWithTurbo(const tavren::cImage& picture, int quality,
                                          const std::array<int, 6>& sampling) {
    jpeg_compress_struct encoder;
    jpeg_error_mgr errors;
    encoder.err = jpeg_std_error(&errors);
    jpeg_create_compress(&encoder);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&encoder, &bytes, &size);
    encoder.image_width = static_cast<JDIMENSION>(picture.Width());
    encoder.image_height = static_cast<JDIMENSION>(picture.Height());
    encoder.input_components = 3;
    encoder.in_color_space = JCS_RGB;
    jpeg_set_defaults(&encoder);
    if (sampling[2] == 0) {
        jpeg_set_colorspace(&encoder, JCS_GRAYSCALE);
    } else {
        for (int c = 0; c < 3; ++c) {
            encoder.comp_info[c].h_samp_factor = sampling[2 * c];
            encoder.comp_info[c].v_samp_factor = sampling[2 * c + 1];
        }
    }
    jpeg_set_quality(&encoder, quality, TRUE);
    encoder.dct_method = JDCT_FLOAT;
    encoder.optimize_coding = TRUE;
    jpeg_start_compress(&encoder, TRUE);
    while (encoder.next_scanline < encoder.image_height) {
        JSAMPROW row =
            const_cast<JSAMPROW>(picture.ScanLine(static_cast<int>(encoder.next_scanline)));
        jpeg_write_scanlines(&encoder, &row, 1);
    }
    jpeg_finish_compress(&encoder);
    std::vector<std::uint8_t> result(bytes, bytes + size);
    std::free(bytes);
    jpeg_destroy_compress(&encoder);
    return result;
}

double PsnrRgb(const tavren::cImage& original, const DecodedPicture& decoded) {
    const std::size_t count = original.BytesPerScanLine() * original.Height();
    if (!decoded.ok || decoded.pixels.size() != count) {
        return 0;
    }
    double squares = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const double d = double(decoded.pixels[i]) - original.DIBitsPtr()[i];
        squares += d * d;
    }
    return Psnr(squares, count);
}

double PsnrGrey(const tavren::cImage& original, const DecodedPicture& decoded) {
    const std::size_t count = static_cast<std::size_t>(original.Width()) * original.Height();
    if (!decoded.ok || decoded.pixels.size() != count) {
        return 0;
    }
    double squares = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t* p = original.DIBitsPtr() + 3 * i;
        const double luma = 0.299 * p[0] + 0.587 * p[1] + 0.114 * p[2];
        const double d = decoded.pixels[i] - luma;
        squares += d * d;
    }
    return Psnr(squares, count);
}

}  // namespace tavren::test
