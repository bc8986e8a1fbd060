#include "LibjpegTurboPeer.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <stdexcept>

// jpeglib.h needs FILE and size_t declared first.
#include <jpeglib.h>
#include <turbojpeg.h>

namespace tavren::bench {

std::vector<std::uint8_t> EncodeWithLibjpegTurbo(const tavren::cImage& image, int quality) {
    jpeg_compress_struct compressor;
    jpeg_error_mgr errors;
    compressor.err = jpeg_std_error(&errors);
    jpeg_create_compress(&compressor);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&compressor, &bytes, &size);
    compressor.image_width = static_cast<JDIMENSION>(image.Width());
    compressor.image_height = static_cast<JDIMENSION>(image.Height());
    compressor.input_components = 3;
    compressor.in_color_space = JCS_RGB;
    jpeg_set_defaults(&compressor);  // 4:2:0 sampling
    jpeg_set_quality(&compressor, quality, TRUE);
    compressor.dct_method = JDCT_FLOAT;
    compressor.optimize_coding = TRUE;
    jpeg_start_compress(&compressor, TRUE);
    while (compressor.next_scanline < compressor.image_height) {
        JSAMPROW row =
            const_cast<JSAMPROW>(image.ScanLine(static_cast<int>(compressor.next_scanline)));
        jpeg_write_scanlines(&compressor, &row, 1);
    }
    jpeg_finish_compress(&compressor);
    std::vector<std::uint8_t> result(bytes, bytes + size);
    std::free(bytes);
    jpeg_destroy_compress(&compressor);
    return result;
}

std::vector<std::uint8_t> DecodeWithLibjpegTurbo(const std::vector<std::uint8_t>& jpeg, int width,
                                                 int height) {
    tjhandle decoder = tjInitDecompress();
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(width) * height * 3);
    const int failed = tjDecompress2(decoder, jpeg.data(), static_cast<unsigned long>(jpeg.size()),
                                     pixels.data(), width, 0, height, TJPF_RGB, 0);
    tjDestroy(decoder);
    if (failed != 0) {
        pixels.clear();
    }
    return pixels;
}

double Psnr(const tavren::cImage& original, const std::vector<std::uint8_t>& decoded) {
    const std::size_t count = original.BytesPerScanLine() * original.Height();
    if (decoded.size() != count) {
        return 0;
    }
    double squares = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const double d = static_cast<double>(decoded[i]) - original.DIBitsPtr()[i];
        squares += d * d;
    }
    if (squares == 0) {
        return std::numeric_limits<double>::infinity();
    }
    return 10 * std::log10(255.0 * 255.0 * static_cast<double>(count) / squares);
}

}  // namespace tavren::bench
