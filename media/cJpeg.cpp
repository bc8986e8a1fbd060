#include "media/cJpeg.h"

#include <cerrno>
#include <cstdio>
#include <stdexcept>

#include "media/jpeg/FrameTransformer.h"
#include "media/jpeg/ImageRows.h"
#include "media/jpeg/JpegConstants.h"
#include "media/jpeg/ThreadBudget.h"

namespace tavren {

cJpeg::cJpeg() {
    SetQuality(kDefaultQuality);
    SetSamplingFrequencies(2, 2, 1, 1, 1, 1);
}

void cJpeg::SetQuality(int quality) {
    if (quality < 1 || quality > 100) {
        return;
    }
    quality_ = quality;
    quantization_[0] = jpeg::QuantizationTable::FromBase(jpeg::kLuminanceBase, quality);
    quantization_[1] = jpeg::QuantizationTable::FromBase(jpeg::kChrominanceBase, quality);
}

void cJpeg::SetSamplingFrequencies(int h1, int v1, int h2, int v2, int h3, int v3) {
    if (h2 == 0 && v2 == 0 && h3 == 0 && v3 == 0) {
        sampling_ = {{1, 1, 0}};
        return;
    }
    for (int value : {h1, v1, h2, v2, h3, v3}) {
        if (value < 1 || value > 4) {
            throw JpegError(JpegError::kInvalidSamplingValue);
        }
    }
    sampling_ = {{h1, v1, 0}, {h2, v2, 1}, {h3, v3, 1}};
}

void cJpeg::SampleHDC(const cImage& source, int width, int height, int x, int y) {
    if (width < 1 || height < 1 || x < 0 || y < 0 || width > source.Width() - x ||
        height > source.Height() - y) {
        throw std::out_of_range("SampleHDC: rectangle outside the picture");
    }
    jpeg::ImageRows rows(
        source.ScanLine(y) + static_cast<std::size_t>(x) * jpeg::BytesPerPixel(source.Layout()),
        source.Stride(), width, height, source.Layout());
    Sample(rows);
}

void cJpeg::Sample(jpeg::PixelRows& source) {
    try {
        layout_.Prepare(source.Width(), source.Height(), sampling_);
        jpeg::FrameTransformer::Transform(source, layout_, quantization_, ThreadsNow(), blocks_);
    } catch (...) {
        // Never encode half a picture.
        layout_.Clear();
        blocks_.Clear();
        throw;
    }
}

void cJpeg::SetComment(std::string comment) {
    if (comment.size() > kLongestComment) {
        throw JpegError(JpegError::kIllegalCommentLength);
    }
    comment_ = std::move(comment);
}

void cJpeg::SetThreads(int threads) {
    threads_ = std::max(0, threads);
}

int cJpeg::ThreadsNow() const {
    // Beyond two threads the pieces of work get small for pictures of screen size.
    constexpr int kMostThreads = 2;
    return threads_ > 0 ? threads_ : jpeg::ThreadBudget::Available(kMostThreads);
}

void cJpeg::EncodeIntoBuffer() {
    if (layout_.Empty() || blocks_.Empty()) {
        throw std::logic_error("cJpeg: nothing sampled");
    }
    jpeg::FrameEncoder::Settings settings;
    settings.comment = comment_;
    settings.identification = kIdentification;
    settings.threads = ThreadsNow();
    encoder_.Encode(layout_, blocks_, settings, output_);
}

std::vector<std::uint8_t> cJpeg::Encode() {
    EncodeIntoBuffer();
    return {output_.Data(), output_.Data() + output_.Size()};
}

void cJpeg::SaveFile(const std::filesystem::path& path) {
    EncodeIntoBuffer();
#ifdef _WIN32
    std::FILE* file = _wfopen(path.c_str(), L"wb");
#else
    std::FILE* file = std::fopen(path.c_str(), "wb");
#endif
    if (file == nullptr) {
        throw JpegFileError(std::error_code(errno, std::generic_category()), path.string());
    }
    const std::size_t written = std::fwrite(output_.Data(), 1, output_.Size(), file);
    const int writeError = written == output_.Size() ? 0 : (errno != 0 ? errno : EIO);
    const int closeError = std::fclose(file) == 0 ? 0 : errno;
    if (writeError != 0 || closeError != 0) {
        // A half-written picture must not look like a finished one to whoever sends it on.
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
        throw JpegFileError(
            std::error_code(writeError != 0 ? writeError : closeError, std::generic_category()),
            path.string());
    }
}

}  // namespace tavren
