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

// A warning means libjpeg found damaged data and made do; for our files that is a failure.
void FailOnWarning(j_common_ptr info, int level) {
    if (level < 0) {
        JumpOut(info);
    }
}

}  // namespace

DecodedPicture Decode(const std::vector<std::uint8_t>& jpeg, bool asGrey) {
    DecodedPicture picture;
    jpeg_decompress_struct decoder;
    ErrorManager errors;
    decoder.err = jpeg_std_error(&errors.base);
    errors.base.error_exit = JumpOut;
    errors.base.emit_message = FailOnWarning;
    jpeg_create_decompress(&decoder);
    if (setjmp(errors.escape) != 0) {
        jpeg_destroy_decompress(&decoder);
        return DecodedPicture{};
    }
    jpeg_mem_src(&decoder, jpeg.data(), static_cast<unsigned long>(jpeg.size()));
    jpeg_read_header(&decoder, TRUE);
    decoder.out_color_space = asGrey ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_start_decompress(&decoder);
    picture.width = static_cast<int>(decoder.output_width);
    picture.height = static_cast<int>(decoder.output_height);
    picture.channels = decoder.output_components;
    const std::size_t rowBytes = static_cast<std::size_t>(picture.width) * picture.channels;
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

double Psnr(const tavren::cImage& original, const DecodedPicture& decoded) {
    const std::size_t pixels = static_cast<std::size_t>(original.Width()) * original.Height();
    if (!decoded.ok || decoded.pixels.size() != pixels * decoded.channels) {
        return 0;
    }
    const std::uint8_t* rgb = original.DIBitsPtr();
    double squares = 0;
    for (std::size_t i = 0; i < decoded.pixels.size(); ++i) {
        const double expected =
            decoded.channels == 3
                ? rgb[i]
                : 0.299 * rgb[3 * i] + 0.587 * rgb[3 * i + 1] + 0.114 * rgb[3 * i + 2];
        squares += (decoded.pixels[i] - expected) * (decoded.pixels[i] - expected);
    }
    return squares == 0 ? std::numeric_limits<double>::infinity()
                        : 10 * std::log10(255.0 * 255.0 * decoded.pixels.size() / squares);
}

}  // namespace tavren::test
