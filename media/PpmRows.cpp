#include "media/PpmRows.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <system_error>

namespace tavren {
namespace {

// Enough for any header a program writes, comments included.
constexpr std::size_t kHeadBytes = 64 * 1024;

std::FILE* OpenForReading(const std::filesystem::path& path) {
#ifdef _WIN32
    return _wfopen(path.c_str(), L"rb");
#else
    return std::fopen(path.c_str(), "rb");
#endif
}

}  // namespace

std::unique_ptr<PpmRows> PpmRows::Open(const std::filesystem::path& path) {
    const std::string name = path.string();
    std::FILE* file = OpenForReading(path);
    if (file == nullptr) {
        throw std::system_error(errno != 0 ? errno : ENOENT, std::generic_category(),
                                "cannot open \"" + name + "\"");
    }
    std::string head(kHeadBytes, '\0');
    head.resize(std::fread(head.data(), 1, head.size(), file));
    const bool failed = std::ferror(file) != 0;
    try {
        if (failed) {
            throw std::system_error(EIO, std::generic_category(), "cannot read \"" + name + "\"");
        }
        const PpmHeader header = PpmHeader::Parse(head);
        std::error_code error;
        const std::uintmax_t size = std::filesystem::file_size(path, error);
        if (!error && std::filesystem::is_regular_file(path, error) &&
            (size - header.start) / header.BytesPerSample() < header.SampleCount()) {
            throw PpmFormatError("PPM file ends before its pixels do");
        }
        head.erase(0, header.start);
        return std::unique_ptr<PpmRows>(new PpmRows(file, header, std::move(head), name));
    } catch (...) {
        std::fclose(file);
        throw;
    }
}

PpmRows::PpmRows(std::FILE* file, const PpmHeader& header, std::string head, std::string name)
    : PixelRows(header.width, header.height, jpeg::PixelLayout::kRgb24),
      file_(file),
      header_(header),
      head_(std::move(head)),
      name_(std::move(name)) {}

PpmRows::~PpmRows() {
    std::fclose(file_);
}

void PpmRows::SetBand(int lines) {
    if (band_ >= 0) {
        throw std::logic_error("PpmRows: band height set after reading began");
    }
    bandLines_ = std::max(1, lines);
}

const std::uint8_t* PpmRows::Line(int y) {
    const int band = y / bandLines_;
    if (band != band_) {
        if (band < band_ || y >= Height()) {
            throw std::logic_error("PpmRows: lines asked for out of order");
        }
        while (band_ < band) {
            LoadBand(band_ + 1);  // a band skipped over is still read, to keep the file's order
        }
    }
    return lines_.data() + static_cast<std::size_t>(y - band * bandLines_) * Width() * 3;
}

void PpmRows::LoadBand(int band) {
    const int first = band * bandLines_;
    const int count = std::min(bandLines_, Height() - first);
    const std::size_t samples = static_cast<std::size_t>(count) * Width() * 3;
    lines_.resize(static_cast<std::size_t>(bandLines_) * Width() * 3);
    if (header_.Plain()) {
        Read(lines_.data(), samples);
    } else {
        stored_.resize(samples * header_.BytesPerSample());
        Read(stored_.data(), stored_.size());
        header_.ToBytes(stored_.data(), samples, lines_.data());
    }
    band_ = band;
}

void PpmRows::Read(std::uint8_t* to, std::size_t count) {
    const std::size_t fromHead = std::min(count, head_.size() - headUsed_);
    std::memcpy(to, head_.data() + headUsed_, fromHead);
    headUsed_ += fromHead;
    if (headUsed_ == head_.size() && !head_.empty()) {
        head_ = std::string();  // all handed out: give the memory back
        headUsed_ = 0;
    }
    const std::size_t rest = count - fromHead;
    if (rest > 0 && std::fread(to + fromHead, 1, rest, file_) != rest) {
        if (std::ferror(file_) != 0) {
            throw std::system_error(EIO, std::generic_category(), "cannot read \"" + name_ + "\"");
        }
        throw PpmFormatError("PPM file ends before its pixels do");
    }
}

}  // namespace tavren
