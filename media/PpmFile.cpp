#include "media/PpmFile.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace tavren {
namespace {

// Walks the header: tokens separated by white space, with '#' comments running to the end of
// the line.
class HeaderReader {
  public:
    explicit HeaderReader(std::string_view bytes) : bytes_(bytes) {}

    std::optional<long> Number() {
        SkipSpaceAndComments();
        long value = 0;
        std::size_t digits = 0;
        while (pos_ < bytes_.size() && bytes_[pos_] >= '0' && bytes_[pos_] <= '9') {
            if (value > 1'000'000) {
                return std::nullopt;  // far beyond any size we accept
            }
            value = value * 10 + (bytes_[pos_] - '0');
            ++pos_;
            ++digits;
        }
        if (digits == 0) {
            return std::nullopt;
        }
        return value;
    }

    // The header ends with exactly one white-space byte before the samples.
    bool EndOfHeader() {
        if (pos_ >= bytes_.size() || !IsSpace(bytes_[pos_])) {
            return false;
        }
        ++pos_;
        return true;
    }

    std::size_t Position() const { return pos_; }

  private:
    static bool IsSpace(char c) {
        return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
    }

    void SkipSpaceAndComments() {
        while (pos_ < bytes_.size()) {
            if (IsSpace(bytes_[pos_])) {
                ++pos_;
            } else if (bytes_[pos_] == '#') {
                while (pos_ < bytes_.size() && bytes_[pos_] != '\n' && bytes_[pos_] != '\r') {
                    ++pos_;
                }
            } else {
                break;
            }
        }
    }

    std::string_view bytes_;
    std::size_t pos_ = 2;  // after the magic number
};

}  // namespace

cImage PpmFile::Parse(std::string_view bytes) {
    if (bytes.size() < 2 || bytes[0] != 'P' || bytes[1] != '6') {
        throw FormatError("not a binary PPM (P6) file");
    }
    HeaderReader header(bytes);
    const std::optional<long> width = header.Number();
    const std::optional<long> height = header.Number();
    const std::optional<long> maxValue = header.Number();
    if (!width || !height || !maxValue || !header.EndOfHeader()) {
        throw FormatError("damaged PPM header");
    }
    if (*width < 1 || *width > 65535 || *height < 1 || *height > 65535) {
        throw FormatError("PPM picture size outside 1..65535");
    }
    if (*maxValue < 1 || *maxValue > 65535) {
        throw FormatError("PPM maximum sample value outside 1..65535");
    }
    const std::size_t bytesPerSample = *maxValue < 256 ? 1 : 2;
    const std::size_t samples = static_cast<std::size_t>(*width) * *height * 3;
    const std::size_t start = header.Position();
    if ((bytes.size() - start) / bytesPerSample < samples) {
        throw FormatError("PPM file ends before its pixels do");
    }

    cImage image(static_cast<int>(*width), static_cast<int>(*height));
    std::uint8_t* out = image.DIBitsPtr();
    const auto* in = reinterpret_cast<const std::uint8_t*>(bytes.data() + start);
    const unsigned long max = static_cast<unsigned long>(*maxValue);
    for (std::size_t i = 0; i < samples; ++i) {
        unsigned long value = bytesPerSample == 1 ? in[i] : (in[2 * i] << 8 | in[2 * i + 1]);
        value = std::min(value, max);
        out[i] = max == 255 ? static_cast<std::uint8_t>(value)
                            : static_cast<std::uint8_t>((value * 255 + max / 2) / max);
    }
    return image;
}

cImage PpmFile::Read(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::system_error(errno != 0 ? errno : ENOENT, std::generic_category(),
                                "cannot open \"" + path.string() + "\"");
    }
    std::string bytes;
    std::vector<char> chunk(1 << 16);
    while (file.read(chunk.data(), static_cast<std::streamsize>(chunk.size())) ||
           file.gcount() > 0) {
        bytes.append(chunk.data(), static_cast<std::size_t>(file.gcount()));
    }
    if (file.bad()) {
        throw std::system_error(EIO, std::generic_category(),
                                "cannot read \"" + path.string() + "\"");
    }
    return Parse(bytes);
}

void PpmFile::Write(const std::filesystem::path& path, const cImage& image) {
    std::ofstream file(path, std::ios::binary);
    const std::string header =
        "P6\n" + std::to_string(image.Width()) + " " + std::to_string(image.Height()) + "\n255\n";
    file.write(header.data(), static_cast<std::streamsize>(header.size()));
    file.write(reinterpret_cast<const char*>(image.DIBitsPtr()),
               static_cast<std::streamsize>(image.BytesPerScanLine() * image.Height()));
    if (!file) {
        throw std::system_error(errno != 0 ? errno : EIO, std::generic_category(),
                                "cannot write \"" + path.string() + "\"");
    }
}

}  // namespace tavren
